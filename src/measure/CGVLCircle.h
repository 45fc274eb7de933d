#pragma once

#include "measure/CGVLShape.h"

#include <QString>

// The circle by centre and rim point (type 6, tool 6): point 0 the centre,
// point 1 on the rim. A drag that makes a radius below 6 pixels is dropped.
class CGVLCircle : public CGVLShape
{
public:
    static constexpr int kMinRadius = 6;

    CGVLCircle(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    // Distance between the two points, truncated; 0 with fewer points.
    int PixelRadius() const;
    // The radius takes the mean of the x and y scales, the perimeter the x
    // scale alone: two fixed choices, kept apart as the values always were.
    virtual double GetRadius() const;
    double GetPerimeter() const override;
    double GetArea() const override;

    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    void ClearCoords() override;
    bool IsDegenerate() const override;

    // "R=" with the radius; empty outside precision 1..5. A snapped circle
    // adds its uncertainty.
    QString RadiusText() const;
    // The radius in pixels: to a fraction of a pixel when snapped, else
    // PixelRadius.
    double ExactRadius() const;
    // The expanded uncertainty of GetRadius for a snapped circle, else 0.
    double RadiusUncertainty() const;

private:
    // The rim point finds its edge along the drag and the opposite rim its
    // own; the centre goes midway between them.
    void SnapRim();
};
