#include "measure/CGVLAnoText.h"

#include <algorithm>

namespace {

constexpr int kLineGap = 5;

} // namespace

CGVLAnoText::CGVLAnoText(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Text);
}

void CGVLAnoText::Draw(QPainter& dc, int hidden, int)
{
    if (hidden || CoordCount() != 1)
        return;
    // The label font's nominal cell, as the font is built for the size.
    const QSize cell = LabelCell(FontSize());
    m_nCharHeight = cell.height();
    m_nCharWidth = cell.width();
    const QPoint& p = m_arCoord[0];
    for (int i = 0; i < m_arText.size(); ++i)
        DrawLabel(dc, { p.x(), p.y() + i * (m_nCharHeight + kLineGap) }, m_arText[i]);
}

int CGVLAnoText::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    const int hit = StandardLButtonDown(point, tool, kToolText);
    if (tool == kToolText) {
        // Placed with the one click: no drag follows it.
        m_bDown = false;
    } else if (tool == kToolMove && hit != -1) {
        // The text jumps to the press and then follows the drag.
        SetCoord(0, point);
        UpdateElem();
    }
    return hit; // after the delete tool the element may be gone
}

int CGVLAnoText::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown)
        return -1;
    return StandardMouseMove(point);
}

int CGVLAnoText::OnLButtonUp(unsigned, const QPoint&, int tool)
{
    m_bDown = false;
    m_nHit = -1;
    if (tool == kToolText)
        m_bSelected = false;
    return -1;
}

bool CGVLAnoText::IsPtOnShape(const QPoint& point) const
{
    if (CoordCount() != 1 || HitHandle(point) != -1)
        return false;
    int w = 0;
    for (const QString& line : m_arText)
        w = std::max(w, m_nCharWidth * int(line.size()));
    const QPoint& p = m_arCoord[0];
    const int lines = int(m_arText.size());
    return GdiRect { p.x() - 40, p.y() - 40, p.x() + w, p.y() + m_nCharHeight * lines }.Normalized().Contains(
        point);
}

void CGVLAnoText::UpdateElem()
{
    if (CoordCount() != 1)
        return;
    int w = 0;
    for (const QString& line : m_arText)
        w = std::max(w, (m_nCharWidth + 2) * int(line.size()) + 50);
    const QPoint& p = m_arCoord[0];
    const int lines = int(m_arText.size());
    Invalidate({ p.x() - 140, p.y() - 140, p.x() + w, p.y() + (m_nCharHeight + kLineGap) * lines + 20 });
}

void CGVLAnoText::ClearCoords()
{
    LeaveManager();
}
