#include "measure/CGVLAngle.h"

#include "calibration/MeasureTables.h"
#include "platform/DebugLog.h"

#include <cmath>

namespace {

constexpr int kArcRadius = 20;

} // namespace

CGVLAngle::CGVLAngle(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLThreeClick(unit, color, wnd, mgr, ShapeType::Angle, kToolAngle)
{
}

double CGVLAngle::Direction(int dx, int dy)
{
    if (dx == 0)
        return dy > 0 ? 0.0 : 180.0;
    // The five-decimal pi is part of the measured value, kept as it is.
    const double a = std::atan(double(dy) / double(dx)) / 3.14159 * 180.0;
    return dx > 0 ? 90.0 - a : 270.0 - a;
}

double CGVLAngle::GetAngle() const
{
    if (CoordCount() != 3)
        return 0.0;
    const QPoint& v = m_arCoord[1];
    const QPoint first = m_arCoord[0] - v;
    const QPoint second = m_arCoord[2] - v;
    double a = Direction(first.x(), first.y()) - Direction(second.x(), second.y());
    if (a < 0)
        a += 360.0;
    return a;
}

QPoint CGVLAngle::OnArc(const QPoint& armEnd) const
{
    const QPoint& v = m_arCoord[1];
    const double dx = armEnd.x() - v.x();
    const double dy = armEnd.y() - v.y();
    const double length = std::sqrt(dx * dx + dy * dy);
    // An arm of no length points nowhere: its end is the vertex itself.
    if (length == 0.0)
        return v;
    return v + QPoint(int(kArcRadius * dx / length), int(kArcRadius * dy / length));
}

GdiRect CGVLAngle::ArcBox() const
{
    if (CoordCount() != 3)
        return {};
    const QPoint& v = m_arCoord[1];
    return { v.x() - kArcRadius, v.y() - kArcRadius, v.x() + kArcRadius, v.y() + kArcRadius };
}

QPoint CGVLAngle::ArcStart() const
{
    return CoordCount() == 3 ? OnArc(m_arCoord[0]) : QPoint();
}

QPoint CGVLAngle::ArcEnd() const
{
    return CoordCount() == 3 ? OnArc(m_arCoord[2]) : QPoint();
}

QPoint CGVLAngle::LabelPos() const
{
    if (CoordCount() != 3)
        return {};
    const QPoint sum = m_arCoord[0] + m_arCoord[1] + m_arCoord[2];
    return { sum.x() / 3, sum.y() / 3 };
}

QString CGVLAngle::LabelText() const
{
    return MeasureTables::FormatLabel(MeasureTables::kAngleFormats, Precision(), GetAngle());
}

void CGVLAngle::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    // Gaps of dotted strokes are filled like label backgrounds.
    SetLabelBackground(dc);
    switch (CoordCount()) {
    case 1:
        qCDebug(lcMeasure, "pt0:%d,%d", m_arCoord[0].x(), m_arCoord[0].y());
        DrawLine(dc, hidden, false, m_arCoord[0], m_ptRubber);
        break;
    case 2:
        DrawLine(dc, hidden, false, m_arCoord[0], m_arCoord[1]);
        DrawLine(dc, hidden, false, m_arCoord[1], m_ptRubber);
        break;
    case 3:
        DrawLine(dc, hidden, m_bSelected, m_arCoord[0], m_arCoord[1]);
        DrawLine(dc, hidden, m_bSelected, m_arCoord[1], m_arCoord[2]);
        DrawArc(dc, hidden, false, ArcBox(), ArcStart(), ArcEnd());
        DrawLabel(dc, LabelPos(), LabelText());
        break;
    default:
        break;
    }
    if (m_bSelected) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}

void CGVLAngle::UpdateElem()
{
    if (m_arCoord.empty())
        return;
    std::vector<QPoint> points = m_arCoord;
    if (CoordCount() < 3)
        points.push_back(m_ptRubber);
    InvalidateAround(GdiRect::Around(points));
}
