#include "measure/CGVLPoint.h"

#include "platform/DebugLog.h"
#include "platform/NumberText.h"

CGVLPoint::CGVLPoint(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Point);
}

void CGVLPoint::Draw(QPainter& dc, int hidden, int)
{
    if (hidden || m_arCoord.empty())
        return;
    const int x = m_arCoord[0].x();
    const int y = m_arCoord[0].y();
    const Gdi::Pen outer { AdjustColor(), 1, Gdi::PenStyle::Solid };
    Gdi::Ellipse(dc, outer, { x - 3, y - 3, x + 4, y + 4 });
    Gdi::Line(dc, outer, { x - 6, y }, { x + 7, y });
    Gdi::Line(dc, outer, { x, y - 6 }, { x, y + 7 });
    const Gdi::Pen inner { CoordColor(), 1, Gdi::PenStyle::Solid };
    Gdi::Line(dc, inner, { x - 2, y }, { x + 3, y });
    Gdi::Line(dc, inner, { x, y - 2 }, { x, y + 3 });
    DrawLabel(dc, { x, y - 20 }, LabelText());
}

int CGVLPoint::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    return StandardLButtonDown(point, tool, kToolPoint);
}

int CGVLPoint::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown || m_arCoord.empty())
        return -1;
    UpdateElem();
    SetCoord(0, point);
    UpdateElem();
    return m_nHit;
}

int CGVLPoint::OnLButtonUp(unsigned, const QPoint&, int)
{
    if (!m_bDown)
        return -1;
    UpdateElem();
    m_bDown = false;
    return -1;
}

void CGVLPoint::UpdateElem()
{
    qCDebug(lcMeasure, "UpdateElem");
    if (m_arCoord.empty())
        return;
    const int x = m_arCoord[0].x();
    const int y = m_arCoord[0].y();
    Invalidate({ x - 20, y - 30, x + 100, y + 20 });
}

void CGVLPoint::ClearCoords()
{
    LeaveManager();
}

QString CGVLPoint::LabelText() const
{
    if (m_arCoord.empty())
        return QString();
    return NumberText::FormatC("(%d, %d)", m_arCoord[0].x(), m_arCoord[0].y());
}
