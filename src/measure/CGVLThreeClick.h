#pragma once

#include "measure/CGVLMultiClick.h"

// The input shared by the shapes placed with three clicks, the angle and the
// circle through three points. The element stays down until its third
// point, which is how the manager finds it to hand it the next press of its
// tool.
class CGVLThreeClick : public CGVLMultiClick
{
public:
    // The tool whose moves drag the rubber band, for both kinds.
    static constexpr int kRubberTool = kToolAngle;

    // Only the element being placed (still down) takes the point: another
    // one left half-placed, by switching to the move tool, keeps what it has
    // instead of collecting the clicks meant for the new element.
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    // The move tool drags only after a press on the element: an element
    // still being placed is down, and must not follow a cursor that merely
    // passes over it.
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;

    // Releases taken with the own tool while being placed.
    int ClickCount() const { return m_nClick; }

protected:
    using CGVLMultiClick::CGVLMultiClick;

    // Repaints the box with generous margins for handles and the labels that
    // sit to the right of their position.
    void InvalidateAround(GdiRect box) const;
};
