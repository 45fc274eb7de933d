#include "measure/CGVLThreeClick.h"

int CGVLThreeClick::OnLButtonUp(unsigned, const QPoint& point, int tool)
{
    // Safeguard: only the shape still being placed takes the click.
    if (tool == m_nOwnTool && m_bDown) {
        if (m_nClick < 3)
            AddOneCoord(point);
        ++m_nClick;
        m_bSelected = false;
        if (m_nClick >= 3) {
            m_nHit = -1;
            m_bDown = false;
        }
    } else if (tool == kToolMove && (m_bDown || m_bDragging || m_nHit != -1)) {
        m_bDown = false;
        m_bDragging = false;
        m_nHit = -1;
    } else {
        // Not this shape's release: nothing to repaint.
        return -1;
    }
    InvalidateAll();
    return -1;
}

int CGVLThreeClick::OnMouseMove(unsigned, const QPoint& point, int tool)
{
    if (!m_bDown)
        return -1;
    if (tool == kRubberTool && CoordCount() < 3)
        FollowRubber(point);
    else if (tool == kToolMove && m_bDragging)
        StandardMouseMove(point);
    m_bSelected = true;
    return m_nHit;
}

void CGVLThreeClick::InvalidateAround(GdiRect box) const
{
    box = box.Normalized();
    Invalidate({ box.left - 60, box.top - 60, box.right + 300, box.bottom + 60 });
}
