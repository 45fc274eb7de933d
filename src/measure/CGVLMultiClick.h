#pragma once

#include "measure/CGVLShape.h"

// Base of the shapes placed one click at a time, the polygon and the
// three-click shapes: each release of the own tool while the shape is being
// placed adds a point, and a rubber band runs from the last point to the
// cursor meanwhile.
class CGVLMultiClick : public CGVLShape
{
public:
    // Other tools act as on any shape, and a press of the move tool that
    // takes the shape starts a drag; the own tool selects it, and its first
    // press puts the shape down with the rubber band at the cursor.
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    void ClearCoords() override;
    bool TakeStoredPoints(std::vector<QPoint> points) override;

    // Where the cursor was last seen while the shape was being placed.
    QPoint RubberPoint() const { return m_ptRubber; }

protected:
    CGVLMultiClick(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr,
        ShapeType type, int ownTool);

    // The rubber band follows the cursor, with the last point placed as the
    // hit one.
    int FollowRubber(const QPoint& point);

    const int m_nOwnTool;
    // Releases of the own tool taken while being placed.
    int m_nClick = 0;
    QPoint m_ptRubber;
    // A press of the move tool took the shape. A shape is down for all of
    // its placement, so being down alone does not mean a drag.
    bool m_bDragging = false;
};
