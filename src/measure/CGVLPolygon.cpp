#include "measure/CGVLPolygon.h"

#include "measure/CGVLElemMgr.h"

#include <cmath>
#include <cstdlib>

CGVLPolygon::CGVLPolygon(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLMultiClick(unit, color, wnd, mgr, ShapeType::Polygon, kToolPolygon)
{
}

bool CGVLPolygon::IsLastElement() const
{
    return !m_pMgr || (!m_pMgr->m_arShape.empty() && m_pMgr->m_arShape.back().get() == this);
}

double CGVLPolygon::GetArea() const
{
    const std::vector<QPoint> v = m_arCoord;
    const std::size_t n = v.size();
    if (n < 3)
        return 0.0;
    // Each product is an integer; halving it is exact.
    auto term = [](const QPoint& a, const QPoint& b) {
        return 0.5 * double((qint64(a.x()) - b.x()) * (qint64(a.y()) + b.y()));
    };
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < n; ++i)
        sum += term(v[i], v[i + 1]);
    sum += term(v[n - 1], v[0]);
    const CalibrationRecord& unit = Unit();
    return std::abs(sum * unit.m_dcxPerPixel * unit.m_dcyPerPixel);
}

void CGVLPolygon::Draw(QPainter& dc, int hidden, int)
{
    if (hidden || m_arCoord.empty())
        return;
    for (std::size_t i = 0; i + 1 < m_arCoord.size(); ++i)
        DrawLine(dc, hidden, false, m_arCoord[i], m_arCoord[i + 1]);
    if (!m_bClosed) {
        DrawLine(dc, hidden, false, m_arCoord.back(), m_ptRubber);
        return;
    }
    DrawLine(dc, hidden, false, m_arCoord.back(), m_arCoord.front());
    DrawLabel(dc, AreaLabelPos(), AreaText());
}

int CGVLPolygon::OnLButtonUp(unsigned, const QPoint& point, int tool)
{
    // Safeguard: only the polygon being placed, the last element, takes the click.
    if (tool == m_nOwnTool && IsLastElement()) {
        if (!m_bClosed) {
            AddOneCoord(point);
            UpdateElem();
        }
        ++m_nClick;
        m_bSelected = false;
    } else if (tool == kToolMove && m_bDragging) {
        // An open polygon is still being placed: it stays down and its
        // rubber band follows the cursor again with the polygon tool.
        UpdateElem();
        m_bDragging = false;
        m_nHit = -1;
        m_bDown = !m_bClosed;
    }
    return -1;
}

int CGVLPolygon::OnMouseMove(unsigned, const QPoint& point, int tool)
{
    if (!m_bDown)
        return -1;
    if (tool == m_nOwnTool) {
        if (m_bClosed || !IsLastElement())
            return m_nHit;
        return FollowRubber(point);
    }
    if (tool != kToolMove || !m_bDragging)
        return -1;
    return StandardMouseMove(point);
}

int CGVLPolygon::OnRButtonDown(unsigned, const QPoint&, int tool)
{
    if (tool != m_nOwnTool)
        return -1;
    UpdateElem();
    m_bClosed = true;
    m_bDown = false;
    m_nHit = -1;
    if (IsDegenerate())
        ClearCoords(); // may leave the manager: nothing of this element from here on
    return -1;
}

void CGVLPolygon::UpdateElem()
{
    if (m_arCoord.empty())
        return;
    InvalidateWithAreaLabel(GdiRect::Around(m_arCoord).With(m_ptRubber));
}

int CGVLPolygon::GetHit() const
{
    return m_nHit;
}

int CGVLPolygon::HitVertex(const QPoint& point) const
{
    if (CoordCount() < 4)
        return -1;
    for (const QPoint& v : m_arCoord) {
        if (std::abs(point.x() - v.x()) <= 10 && std::abs(point.y() - v.y()) <= 10)
            return 1;
    }
    return -1;
}

bool CGVLPolygon::IsDegenerate() const
{
    return CoordCount() < 3;
}

bool CGVLPolygon::TakeStoredPoints(std::vector<QPoint> points)
{
    m_bClosed = true;
    return CGVLMultiClick::TakeStoredPoints(std::move(points));
}
