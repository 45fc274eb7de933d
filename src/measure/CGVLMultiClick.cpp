#include "measure/CGVLMultiClick.h"

#include <algorithm>

CGVLMultiClick::CGVLMultiClick(
    CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr, ShapeType type, int ownTool)
    : CGVLShape(unit, color, wnd, mgr)
    , m_nOwnTool(ownTool)
{
    m_nType = int(type);
}

int CGVLMultiClick::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    if (tool != m_nOwnTool) {
        const int hit = StandardLButtonDown(point, tool, m_nOwnTool);
        if (tool == kToolMove)
            m_bDragging = hit != -1;
        return hit; // after the delete tool the shape may be gone
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

int CGVLMultiClick::FollowRubber(const QPoint& point)
{
    m_nHit = std::max(m_nClick - 1, 0);
    UpdateElem();
    m_ptRubber = point;
    UpdateElem();
    return m_nHit;
}

void CGVLMultiClick::ClearCoords()
{
    LeaveManager();
}

bool CGVLMultiClick::TakeStoredPoints(std::vector<QPoint> points)
{
    m_nClick = int(points.size());
    if (!points.empty())
        m_ptRubber = points.back();
    return CGVLShape::TakeStoredPoints(std::move(points));
}
