#pragma once

#include "measure/CGVLThreeClick.h"

#include <QString>

// The circle through three clicked points (type 7, tool 7, "Tri-circle" in
// the export). Centre and radius are integer pixels, recomputed from the
// points whenever they are needed.
class CGVLCircleT : public CGVLThreeClick
{
public:
    CGVLCircleT(CalibrationRecord* unit, ColorRecord* color, QWidget* wnd, CGVLElemMgr* mgr);

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

    virtual double GetRadius() const;
    double GetArea() const override;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    void UpdateElem() override;

    // "R=" with the radius; empty outside precision 1..5.
    QString RadiusText() const;
};
