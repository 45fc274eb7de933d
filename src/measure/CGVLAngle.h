#pragma once

#include "measure/CGVLThreeClick.h"

#include <QString>

// The angle (type 3, tool 3): first arm end, vertex, second arm end, placed
// with three clicks. Its value is the turn from the second arm to the first,
// in degrees within [0, 360): the click order matters, so swapping the arms
// gives 360 minus the value. Never converted by the calibration.
class CGVLAngle : public CGVLThreeClick
{
public:
    CGVLAngle(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    // Direction of an arm in degrees with y growing downward: 0 straight
    // down, 90 right, 180 up, 270 left.
    static double Direction(int dx, int dy);

    // The angle, or 0 until the element has its three points.
    double GetAngle() const;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    void UpdateElem() override;

    // The arc of radius 20 around the vertex: its box, and where the arms cross it.
    GdiRect ArcBox() const;
    QPoint ArcStart() const;
    QPoint ArcEnd() const;
    // The centroid of the three points; top-left of the label's cell.
    QPoint LabelPos() const;
    // "A=" with the angle in degrees; empty outside precision 1..5.
    QString LabelText() const;

private:
    QPoint OnArc(const QPoint& armEnd) const;
};
