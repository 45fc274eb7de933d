#include "measure/CGVLNo.h"

#include "calibration/MeasureTables.h"

#include <algorithm>

CGVLNo::CGVLNo(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Counting);
}

namespace {

GdiRect CircleAround(const QPoint& p, const QSize& extent)
{
    const int r = std::max(extent.width(), extent.height());
    return { p.x() - r + 5, p.y() - r + 5, p.x() + r - 5, p.y() + r - 5 };
}

} // namespace

GdiRect CGVLNo::CircleRect() const
{
    if (CoordCount() != 1)
        return {};
    return CircleAround(m_arCoord[0], Gdi::TextExtent(LabelFont(), QString::number(m_nNumber)));
}

QRect CGVLNo::DrawnBounds() const
{
    if (CoordCount() != 1)
        return {};
    // The label and the circle lie within the number's extent around the
    // point; measuring it costs as much as drawing, so it is bounded from the
    // label cell instead: a digit is never twice the average character wide,
    // the line never twice the cell high.
    const QSize cell = LabelCell(FontSize());
    const int digits = int(QString::number(m_nNumber).size());
    const int reach = std::max(2 * cell.height(), 2 * cell.width() * digits) + 4;
    const QPoint& p = m_arCoord[0];
    return QRect(p - QPoint(reach, reach), p + QPoint(reach, reach));
}

void CGVLNo::Draw(QPainter& dc, int hidden, int)
{
    if (hidden || CoordCount() != 1)
        return;
    const QString text = QString::number(m_nNumber);
    const QSize extent = Gdi::TextExtent(LabelFont(), text);
    const QPoint& p = m_arCoord[0];
    DrawLabel(dc, { p.x() - extent.width() / 2, p.y() - extent.height() / 2 }, text);
    DrawEllipse(dc, hidden, m_bSelected, CircleAround(p, extent));
}

int CGVLNo::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    return StandardLButtonDown(point, tool, kToolCounting);
}

int CGVLNo::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown)
        return -1;
    return StandardMouseMove(point);
}

int CGVLNo::OnLButtonUp(unsigned, const QPoint&, int tool)
{
    // Every marker hears every release: one it leaves as it is is not repainted.
    if (!m_bDown && m_nHit == -1 && !(m_bSelected && tool == kToolCounting))
        return -1;
    UpdateElem();
    m_bDown = false;
    m_nHit = -1;
    if (tool == kToolCounting)
        m_bSelected = false;
    return -1;
}

void CGVLNo::UpdateElem()
{
    if (CoordCount() != 1)
        return;
    const QPoint& p = m_arCoord[0];
    // Reaches further left than right, as it always has.
    Invalidate({ p.x() - 140, p.y() - 40, p.x() + 40, p.y() + 40 });
}

void CGVLNo::ClearCoords()
{
    LeaveManager();
}
