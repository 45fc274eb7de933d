#pragma once

#include "measure/CGVLShape.h"

#include <QString>

// The coordinate point (type 1, tool 1): a marked pixel labelled with its raw
// window coordinates, never calibrated. It has no selection state.
class CGVLPoint : public CGVLShape
{
public:
    CGVLPoint(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    void ClearCoords() override;

    // "(x, y)" of the point; empty without a point.
    QString LabelText() const;
};
