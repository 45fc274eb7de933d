#pragma once

#include "measure/CGVLShape.h"

// The input shared by the shapes placed with three clicks, the angle and the
// circle through three points. Each release of the own tool adds a point;
// the element stays down until its third point, which is how the manager
// finds it to hand it the next press of its tool.
class CGVLThreeClick : public CGVLShape
{
public:
    // The tool whose moves drag the rubber band, for both kinds.
    static constexpr int kRubberTool = 3;

    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    // Only the element being placed (still down) takes the point: another
    // one left half-placed, by switching to the move tool, keeps what it has
    // instead of collecting the clicks meant for the new element.
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    // The move tool drags only after a press on the element: an element
    // still being placed is down, and must not follow a cursor that merely
    // passes over it.
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void ClearCoords() override;

    // Releases taken with the own tool while being placed.
    int ClickCount() const { return m_nClick; }
    // Where the cursor was last seen while the element was being placed.
    QPoint RubberPoint() const { return m_ptRubber; }

protected:
    CGVLThreeClick(
        CalibrationRecord* unit, ColorRecord* color, QWidget* wnd, CGVLElemMgr* mgr, int type, int ownTool);

    // Repaints the box with generous margins for handles and the labels that
    // sit to the right of their position.
    void InvalidateAround(GdiRect box) const;

    const int m_nOwnTool;
    int m_nClick = 0;
    QPoint m_ptRubber;
    bool m_bDragging = false;
};
