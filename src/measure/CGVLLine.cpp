#include "measure/CGVLLine.h"

#include "calibration/MeasureTables.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

CGVLLine::CGVLLine(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLLine(unit, color, wnd, mgr, ShapeType::Line, kToolLine, 5)
{
}

CGVLLine::CGVLLine(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr,
    ShapeType type, int ownTool, int minSize)
    : CGVLShape(unit, color, wnd, mgr)
    , m_nOwnTool(ownTool)
    , m_nMinSize(minSize)
{
    m_nType = int(type);
}

namespace {

double Calibrated(double dx, double dy, const CalibrationRecord& unit)
{
    return std::sqrt(dx * dx * unit.m_dcxPerPixel * unit.m_dcxPerPixel
        + dy * dy * unit.m_dcyPerPixel * unit.m_dcyPerPixel);
}

} // namespace

double CGVLLine::GetLength() const
{
    if (CoordCount() != 2)
        return 0.0;
    if (IsSnapped()) {
        const QPointF d = ExactCoord(0) - ExactCoord(1);
        return Calibrated(d.x(), d.y(), Unit());
    }
    const double dx = m_arCoord[0].x() - m_arCoord[1].x();
    const double dy = m_arCoord[0].y() - m_arCoord[1].y();
    const CalibrationRecord& unit = Unit();
    return std::sqrt(dx * dx * unit.m_dcxPerPixel * unit.m_dcxPerPixel
        + dy * dy * unit.m_dcyPerPixel * unit.m_dcyPerPixel);
}

void CGVLLine::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    SetLabelBackground(dc);
    if (CoordCount() == 2) {
        DrawLine(dc, hidden, m_bSelected, m_arCoord[0], m_arCoord[1]);
        if (m_bSelected)
            DrawEndBars(dc, hidden);
        DrawLabel(dc, LabelPos(), LabelText());
    }
    if (m_bSelected) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}

void CGVLLine::DrawEndBars(QPainter& dc, int hidden)
{
    const QPoint& p0 = m_arCoord[0];
    const QPoint& p1 = m_arCoord[1];
    const int dx = p1.x() - p0.x();
    const int dy = p1.y() - p0.y();
    const double length = std::sqrt(double(dx) * dx + double(dy) * dy);
    if (length == 0.0)
        return;
    // The unit normal scaled to 30 pixels; which way it leans depends on
    // whether the line falls or rises from left to right.
    const int nx = int(std::abs(dy) / length * 30);
    const int ny = int(std::abs(dx) / length * 30);
    const QPoint half = (dx >= 0) == (dy >= 0) ? QPoint(nx, -ny) : QPoint(nx, ny);
    for (const QPoint& p : { p0, p1 })
        DrawLine(dc, hidden, true, p - half, p + half);
}

int CGVLLine::OnLButtonDown(unsigned, const QPoint& point, int tool)
{
    return StandardLButtonDown(point, tool, m_nOwnTool);
}

int CGVLLine::OnMouseMove(unsigned, const QPoint& point, int)
{
    if (!m_bDown)
        return -1;
    // The first move of a new line gives it its second point; point 0 then
    // follows the mouse until the release.
    if (CoordCount() == 1)
        AddOneCoord(point);
    return StandardMouseMove(point);
}

int CGVLLine::OnLButtonUp(unsigned, const QPoint&, int tool)
{
    const bool tooShort = IsDegenerate();
    // Both ends look for their edge along the line, the way the drag went.
    if (m_bDown && m_nOwnTool == kToolLine && CoordCount() == 2 && !tooShort) {
        const QPointF along(m_arCoord[0] - m_arCoord[1]);
        SnapPoints({ along, along });
    }
    return ReleaseOrDiscard(tool, m_nOwnTool, tooShort);
}

void CGVLLine::UpdateElem()
{
    if (CoordCount() == 2) {
        const QPoint& a = m_arCoord[0];
        const QPoint& b = m_arCoord[1];
        // Wide to the right, where the label lies.
        Invalidate({ std::min(a.x(), b.x()) - 50, std::min(a.y(), b.y()) - 50, std::max(a.x(), b.x()) + 250,
            std::max(a.y(), b.y()) + 50 });
    } else if (CoordCount() == 1) {
        const QPoint& p = m_arCoord[0];
        Invalidate({ p.x() - 10, p.y() - 10, p.x() + 10, p.y() + 10 });
    }
}

bool CGVLLine::IsPtOnShape(const QPoint& point) const
{
    // The whole bounding box counts, so a long diagonal is easy to take.
    if (CoordCount() != 2)
        return false;
    const QPoint& a = m_arCoord[0];
    const QPoint& b = m_arCoord[1];
    return GdiRect { a.x(), a.y(), b.x(), b.y() }.Normalized().Contains(point);
}

void CGVLLine::ClearCoords()
{
    LeaveManager();
}

QPoint CGVLLine::LabelPos() const
{
    if (CoordCount() != 2)
        return QPoint();
    const QPoint& a = m_arCoord[0];
    const QPoint& b = m_arCoord[1];
    const QPoint mid((a.x() + b.x()) / 2, (a.y() + b.y()) / 2);
    if (a.x() == b.x())
        return mid + QPoint(10, -20);
    if (a.y() == b.y())
        return mid + QPoint(0, -20);
    // Above the line, unless it rises steeply enough to run into the text.
    const double slope = double(a.y() - b.y()) / double(a.x() - b.x());
    return mid + (slope >= -0.08 ? QPoint(10, -20) : QPoint(10, 10));
}

double CGVLLine::LengthUncertainty() const
{
    if (CoordCount() != 2 || !IsSnapped())
        return 0.0;
    const QPointF d = ExactCoord(0) - ExactCoord(1);
    const double length = std::hypot(d.x(), d.y());
    if (length == 0.0)
        return 0.0;
    // Each end was placed along the line: it moves the length by its own
    // error, at the calibrated scale along the line.
    const double scale = Calibrated(d.x() / length, d.y() / length, Unit());
    return kSnapCoverage * scale * std::hypot(CoordSigma(0), CoordSigma(1));
}

QString CGVLLine::LabelText() const
{
    if (IsSnapped()) {
        return MeasureTables::FormatLabel(
            MeasureTables::kLengthFormats, Precision(), GetLength(), UnitText(), LengthUncertainty());
    }
    return MeasureTables::FormatLabel(MeasureTables::kLengthFormats, Precision(), GetLength(), UnitText());
}

bool CGVLLine::IsDegenerate() const
{
    return CoordCount() == 2 && std::abs(m_arCoord[0].x() - m_arCoord[1].x()) < m_nMinSize
        && std::abs(m_arCoord[0].y() - m_arCoord[1].y()) < m_nMinSize;
}
