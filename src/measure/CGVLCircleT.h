#pragma once

#include "measure/CGVLThreeClick.h"

#include <QString>

// The circle through three clicked points (type 7, tool 7, "Tri-circle" in
// the export). Centre and radius are integer pixels, recomputed from the
// points whenever they are needed.
class CGVLCircleT : public CGVLThreeClick
{
public:
    CGVLCircleT(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    struct Circle
    {
        QPoint centre;
        int radius = 0;
        bool operator==(const Circle&) const = default;
    };
    // The circle through the three points: the centre on the bisectors of
    // the chords 0-1 and 1-2, through midpoints rounded up at halves, and the
    // radius to point 0, truncated. Collinear points, and points too close to
    // collinear for a centre within reach, give centre (0, 0) and radius 0.
    Circle FitCircle() const;

    // The circle through three points to a fraction of a pixel; radius 0
    // for (nearly) collinear points.
    struct ExactCircle
    {
        QPointF centre;
        double radius = 0.0;
    };
    static ExactCircle Circumcircle(const QPointF& a, const QPointF& b, const QPointF& c);

    virtual double GetRadius() const;
    // Collinear points. Drawn, such a circle stays with radius 0; read from a
    // picture, it is dropped.
    bool IsDegenerate() const override;
    double GetArea() const override;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    // The third click, or the end of a drag, snaps the points to the rim
    // while "Snap to edges" is on.
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;

    // "R=" with the radius; empty outside precision 1..5. A snapped circle
    // adds its uncertainty.
    QString RadiusText() const;
    // The radius in pixels: through the snapped points when snapped, else
    // FitCircle's.
    double ExactRadius() const;
    // The expanded uncertainty of GetRadius for a snapped circle, else 0.
    double RadiusUncertainty() const;
};
