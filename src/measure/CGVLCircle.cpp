#include "measure/CGVLCircle.h"

#include "calibration/MeasureTables.h"

#include <algorithm>
#include <climits>
#include <cmath>

CGVLCircle::CGVLCircle(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Circle);
}

int CGVLCircle::PixelRadius() const
{
    if (CoordCount() < 2)
        return 0;
    const double dx = double(m_arCoord[1].x()) - m_arCoord[0].x();
    const double dy = double(m_arCoord[1].y()) - m_arCoord[0].y();
    return int(std::min(std::sqrt(dx * dx + dy * dy), double(INT_MAX)));
}

double CGVLCircle::ExactRadius() const
{
    if (CoordCount() == 2 && IsSnapped()) {
        const QPointF d = ExactCoord(1) - ExactCoord(0);
        return std::hypot(d.x(), d.y());
    }
    return PixelRadius();
}

double CGVLCircle::RadiusUncertainty() const
{
    if (CoordCount() != 2 || !IsSnapped())
        return 0.0;
    // The centre's uncertainty, half the two rims' together, is the radius's.
    const CalibrationRecord& unit = Unit();
    return kSnapCoverage * CoordSigma(0) * (unit.m_dcxPerPixel + unit.m_dcyPerPixel) / 2;
}

double CGVLCircle::GetRadius() const
{
    const CalibrationRecord& unit = Unit();
    return ExactRadius() * (unit.m_dcxPerPixel + unit.m_dcyPerPixel) / 2;
}

double CGVLCircle::GetPerimeter() const
{
    return ExactRadius() * 6.28318 * Unit().m_dcxPerPixel;
}

double CGVLCircle::GetArea() const
{
    const CalibrationRecord& unit = Unit();
    const double r = ExactRadius();
    return r * 3.14159 * r * unit.m_dcxPerPixel * unit.m_dcyPerPixel;
}

QString CGVLCircle::RadiusText() const
{
    const CalibrationRecord& unit = Unit();
    if (IsSnapped()) {
        return MeasureTables::FormatLabel(
            MeasureTables::kRadiusFormats, Precision(), GetRadius(), UnitText(), RadiusUncertainty());
    }
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
    const bool tooSmall = IsDegenerate();
    if (m_bDown && CoordCount() == 2 && !tooSmall)
        SnapRim();
    return ReleaseOrDiscard(tool, kToolCircle, tooSmall);
}

void CGVLCircle::SnapRim()
{
    const QImage picture = SnapPicture();
    if (picture.isNull())
        return;
    const QPoint centre = m_arCoord[0];
    const QPointF along(m_arCoord[1] - centre);
    const std::optional<EdgePoint> rim = SnapToEdge(picture, m_arCoord[1], along);
    if (!rim)
        return;
    // Looked for as far beyond the centre as the rim found lies before it,
    // so only the centre's own misplacement is left to search.
    const QPointF mirrored = 2 * QPointF(centre) - rim->exact;
    const std::optional<EdgePoint> opposite = SnapToEdge(picture, mirrored.toPoint(), along);
    if (!opposite)
        return;
    const QPointF middle = (rim->exact + opposite->exact) / 2;
    SetSnapped({ { middle.toPoint(), middle, std::hypot(rim->sigma, opposite->sigma) / 2 }, *rim });
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

bool CGVLCircle::IsDegenerate() const
{
    return CoordCount() == 2 && PixelRadius() < kMinRadius;
}
