#pragma once

#include "measure/CGVLShape.h"

// The counting marker (type 11, tool 202): its number inside a circle sized
// by the number's text. The manager numbers the markers as they are made.
class CGVLNo : public CGVLShape
{
public:
    CGVLNo(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    void ClearCoords() override;
    QRect DrawnBounds() const override;

    int GetNumber() const { return m_nNumber; }
    void SetNumber(int number) { m_nNumber = number; }
    // The marker's circle for the current label font.
    GdiRect CircleRect() const;

private:
    int m_nNumber = 0;
};
