#include "measure/CGVLRect.h"

#include <cstdlib>

CGVLRect::CGVLRect(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Rect);
}

double CGVLRect::GetPerimeter() const
{
    if (CoordCount() != 4)
        return 0.0;
    const CalibrationRecord& unit = Unit();
    const double w = std::abs(double(m_arCoord[3].x()) - m_arCoord[0].x());
    const double h = std::abs(double(m_arCoord[3].y()) - m_arCoord[0].y());
    return 2 * (w * unit.m_dcxPerPixel + h * unit.m_dcyPerPixel);
}

double CGVLRect::GetArea() const
{
    if (CoordCount() != 4)
        return 0.0;
    const CalibrationRecord& unit = Unit();
    const double w = std::abs(double(m_arCoord[3].x()) - m_arCoord[0].x());
    const double h = std::abs(double(m_arCoord[3].y()) - m_arCoord[0].y());
    return w * unit.m_dcxPerPixel * h * unit.m_dcyPerPixel;
}

void CGVLRect::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    // Gaps of dotted strokes are filled like label backgrounds.
    SetLabelBackground(dc);
    if (CoordCount() == 4) {
        const std::vector<QPoint>& p = m_arCoord;
        DrawLine(dc, hidden, m_bSelected, p[0], p[1]);
        DrawLine(dc, hidden, m_bSelected, p[1], p[3]);
        DrawLine(dc, hidden, m_bSelected, p[0], p[2]);
        DrawLine(dc, hidden, m_bSelected, p[2], p[3]);
        DrawLabel(dc, AreaLabelPos(), AreaText());
    }
    if (m_bSelected) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}

int CGVLRect::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    return StandardLButtonDown(point, tool, kToolRect);
}

int CGVLRect::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown)
        return -1;
    // The first move of a new rectangle makes its other three corners; the
    // drag goes on with the corner opposite the press.
    if (CoordCount() == 1) {
        for (int i = 0; i < 3; ++i)
            AddOneCoord(point);
        m_nHit = 3;
        PlaceSideCorners();
    }
    return StandardMouseMove(point);
}

int CGVLRect::OnLButtonUp(unsigned, const QPoint&, int tool)
{
    const bool tooSmall = IsDegenerate();
    return ReleaseOrDiscard(tool, kToolRect, tooSmall);
}

int CGVLRect::SetCoord(int index, const QPoint& point)
{
    const int result = CGVLShape::SetCoord(index, point);
    if (result < 0 || CoordCount() != 4)
        return result;
    std::vector<QPoint>& p = m_arCoord;
    if (index == 1) {
        p[3].setX(point.x());
        p[0].setY(point.y());
    } else if (index == 2) {
        p[0].setX(point.x());
        p[3].setY(point.y());
    }
    PlaceSideCorners();
    return result;
}

void CGVLRect::PlaceSideCorners()
{
    if (CoordCount() != 4)
        return;
    std::vector<QPoint>& p = m_arCoord;
    p[1] = QPoint(p[3].x(), p[0].y());
    p[2] = QPoint(p[0].x(), p[3].y());
}

void CGVLRect::UpdateElem()
{
    if (m_arCoord.empty())
        return;
    InvalidateWithAreaLabel(GdiRect::Around(m_arCoord));
}

void CGVLRect::ClearCoords()
{
    LeaveManager();
}

bool CGVLRect::IsDegenerate() const
{
    return CoordCount() == 4 && std::abs(m_arCoord[3].x() - m_arCoord[0].x()) < kMinSide
        && std::abs(m_arCoord[3].y() - m_arCoord[0].y()) < kMinSide;
}
