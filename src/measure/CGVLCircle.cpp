#include "measure/CGVLCircle.h"

#include "calibration/MeasureTables.h"

#include <algorithm>
#include <climits>
#include <cmath>

CGVLCircle::CGVLCircle(CalibrationRecord* unit, ColorRecord* color, QWidget* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = 6;
}

int CGVLCircle::PixelRadius() const
{
    if (CoordCount() < 2)
        return 0;
    const double dx = double(m_arCoord[1].x()) - m_arCoord[0].x();
    const double dy = double(m_arCoord[1].y()) - m_arCoord[0].y();
    return int(std::min(std::sqrt(dx * dx + dy * dy), double(INT_MAX)));
}

double CGVLCircle::GetRadius() const
{
    const CalibrationRecord& unit = Unit();
    return PixelRadius() * (unit.m_dcxPerPixel + unit.m_dcyPerPixel) / 2;
}

double CGVLCircle::GetPerimeter() const
{
    return PixelRadius() * 6.28318 * Unit().m_dcxPerPixel;
}

double CGVLCircle::GetArea() const
{
    const CalibrationRecord& unit = Unit();
    const int r = PixelRadius();
    return r * 3.14159 * r * unit.m_dcxPerPixel * unit.m_dcyPerPixel;
}

QString CGVLCircle::RadiusText() const
{
    const CalibrationRecord& unit = Unit();
    const double radius = PixelRadius() * (unit.m_dcyPerPixel + unit.m_dcxPerPixel) * 0.5;
    return MeasureTables::FormatLabel(MeasureTables::kRadiusFormats, Precision(), radius, UnitText());
}

void CGVLCircle::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    // Gaps of dotted strokes are filled like label backgrounds.
    SetLabelBackground(dc);
    if (CoordCount() == 2) {
        const QPoint& c = m_arCoord[0];
        const int r = PixelRadius();
        DrawEllipse(dc, hidden, m_bSelected, { c.x() - r, c.y() - r, c.x() + r, c.y() + r });
        DrawLabel(dc, { c.x(), c.y() - 20 }, AreaText());
        DrawLabel(dc, { c.x(), c.y() - 48 }, RadiusText());
    }
    if (m_bSelected) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}

int CGVLCircle::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    return StandardLButtonDown(point, tool, kToolCircle);
}

int CGVLCircle::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown)
        return -1;
    // The first move of a new circle gives it its rim point, which then
    // follows the mouse; the centre stays at the press.
    if (CoordCount() == 1) {
        AddOneCoord(point);
        m_nHit = 1;
    }
    return StandardMouseMove(point);
}

int CGVLCircle::OnLButtonUp(unsigned, const QPoint&, int tool)
{
    return ReleaseOrDiscard(tool, kToolCircle, CoordCount() == 2 && PixelRadius() < kMinRadius);
}

void CGVLCircle::UpdateElem()
{
    if (m_arCoord.empty())
        return;
    const QPoint& c = m_arCoord[0];
    const int r = PixelRadius();
    // Handles reach 6 pixels past the rim, the labels run to the right of the centre.
    Invalidate({ c.x() - r - 10, c.y() - r - 60, c.x() + std::max(r, 300) + 10, c.y() + r + 10 });
}

void CGVLCircle::ClearCoords()
{
    LeaveManager();
}
