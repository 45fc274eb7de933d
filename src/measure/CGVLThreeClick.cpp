#include "measure/CGVLThreeClick.h"

#include <algorithm>

CGVLThreeClick::CGVLThreeClick(
    CalibrationRecord* unit, ColorRecord* color, QWidget* wnd, CGVLElemMgr* mgr, int type, int ownTool)
    : CGVLShape(unit, color, wnd, mgr)
    , m_nOwnTool(ownTool)
{
    m_nType = type;
}

int CGVLThreeClick::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    if (tool != m_nOwnTool) {
        const int hit = StandardLButtonDown(point, tool, m_nOwnTool);
        if (tool == kToolMove)
            m_bDragging = hit != -1;
        return hit; // after tool 200 the element may be gone
    }
    m_bSelected = true;
    m_nHit = m_nClick;
    if (m_nClick == 0) {
        m_bDown = true;
        m_ptRubber = point;
    }
    UpdateElem();
    return m_nHit;
}

int CGVLThreeClick::OnLButtonUp(unsigned, const QPoint& point, int tool)
{
    if (tool == m_nOwnTool && m_bDown) {
        if (m_nClick < 3)
            AddOneCoord(point);
        ++m_nClick;
        m_bSelected = false;
        if (m_nClick >= 3) {
            m_nHit = -1;
            m_bDown = false;
        }
    } else if (tool == kToolMove) {
        m_bDown = false;
        m_bDragging = false;
        m_nHit = -1;
    }
    InvalidateAll();
    return -1;
}

int CGVLThreeClick::OnMouseMove(unsigned, const QPoint& point, int tool)
{
    if (!m_bDown)
        return -1;
    if (tool == kRubberTool && CoordCount() < 3) {
        m_nHit = std::max(m_nClick - 1, 0);
        UpdateElem();
        m_ptRubber = point;
        UpdateElem();
    } else if (tool == kToolMove && m_bDragging) {
        StandardMouseMove(point);
    }
    m_bSelected = true;
    return m_nHit;
}

void CGVLThreeClick::ClearCoords()
{
    LeaveManager();
}

void CGVLThreeClick::InvalidateAround(GdiRect box) const
{
    box = box.Normalized();
    Invalidate({ box.left - 60, box.top - 60, box.right + 300, box.bottom + 60 });
}
