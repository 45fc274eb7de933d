#include "measure/CGVLCircleT.h"

#include "calibration/MeasureTables.h"
#include "platform/DebugLog.h"

#include <cmath>

namespace {

// A centre or radius beyond this is no measurement (three points a hair off
// a line), and box arithmetic around it must not overflow.
constexpr double kFarthest = double(1 << 28);

bool Within(double v)
{
    return std::abs(v) <= kFarthest; // false for NaN and infinities too
}

} // namespace

CGVLCircleT::CGVLCircleT(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLThreeClick(unit, color, wnd, mgr, ShapeType::TriCircle, kToolTriCircle)
{
}

CGVLCircleT::Circle CGVLCircleT::FitCircle() const
{
    if (CoordCount() != 3)
        return {};
    const qint64 x0 = m_arCoord[0].x(), y0 = m_arCoord[0].y();
    const qint64 x1 = m_arCoord[1].x(), y1 = m_arCoord[1].y();
    const qint64 x2 = m_arCoord[2].x(), y2 = m_arCoord[2].y();
    if (x0 == x1 && x1 == x2) {
        qCDebug(lcMeasure, "in the same line1");
        return {};
    }
    // A pair with exactly one vertical chord passes, as it always did.
    if (x0 != x1 && x1 != x2 && (y1 - y0) * (x2 - x1) == (y2 - y1) * (x1 - x0)) {
        qCDebug(lcMeasure, "in the same line2");
        return {};
    }
    // Integer midpoints, halves rounded up (C division).
    const qint64 m1x = (x0 + 1 + x1) / 2, m1y = (y0 + 1 + y1) / 2;
    const qint64 m2x = (x1 + 1 + x2) / 2, m2y = (y1 + 1 + y2) / 2;
    double cx = 0.0;
    double cy = 0.0;
    if (y1 == y0) {
        cx = double(m1x);
        const double k2 = double(x2 - x1) / double(y1 - y2);
        cy = double(m1x) * k2 + double(m2y) - double(m2x) * k2;
    } else if (y1 == y2) {
        cx = double(m2x);
        const double k1 = double(x1 - x0) / double(y0 - y1);
        cy = double(m2x) * k1 + double(m1y) - double(m1x) * k1;
    } else {
        const double k1 = double(x1 - x0) / double(y0 - y1);
        const double k2 = double(x2 - x1) / double(y1 - y2);
        const double b1 = double(m1y) - double(m1x) * k1;
        const double x = ((double(m2y) - double(m2x) * k2) - b1) / (k1 - k2);
        cy = x * k1 + b1;
        cx = std::trunc(x + 0.5);
    }
    cy = std::trunc(cy + 0.5);
    // Two equal points leave a bisector undefined: no centre then.
    if (!Within(cx) || !Within(cy))
        return {};
    const double dx = cx - double(x0);
    const double dy = cy - double(y0);
    const double r = std::trunc(std::sqrt(dx * dx + dy * dy));
    if (!Within(r))
        return {};
    return { QPoint(int(cx), int(cy)), int(r) };
}

CGVLCircleT::ExactCircle CGVLCircleT::Circumcircle(const QPointF& a, const QPointF& b, const QPointF& c)
{
    const QPointF ab = b - a;
    const QPointF ac = c - a;
    const double d = 2 * (ab.x() * ac.y() - ab.y() * ac.x());
    const double ab2 = QPointF::dotProduct(ab, ab);
    const double ac2 = QPointF::dotProduct(ac, ac);
    if (std::abs(d) < 1e-9 * (ab2 + ac2))
        return {};
    const QPointF o((ac.y() * ab2 - ab.y() * ac2) / d, (ab.x() * ac2 - ac.x() * ab2) / d);
    const double r = std::hypot(o.x(), o.y());
    if (!Within(r))
        return {};
    return { a + o, r };
}

double CGVLCircleT::ExactRadius() const
{
    if (CoordCount() != 3)
        return 0.0;
    if (IsSnapped())
        return Circumcircle(ExactCoord(0), ExactCoord(1), ExactCoord(2)).radius;
    return FitCircle().radius;
}

double CGVLCircleT::RadiusUncertainty() const
{
    if (CoordCount() != 3 || !IsSnapped())
        return 0.0;
    // Each point was placed along its line from the centre; how far the
    // radius follows a small step of it there, times its own uncertainty.
    const QPointF p[3] = { ExactCoord(0), ExactCoord(1), ExactCoord(2) };
    const ExactCircle circle = Circumcircle(p[0], p[1], p[2]);
    if (circle.radius == 0.0)
        return 0.0;
    constexpr double kStep = 1e-3;
    double sum = 0.0;
    for (int i = 0; i < 3; ++i) {
        QPointF moved[3] = { p[0], p[1], p[2] };
        moved[i] += (p[i] - circle.centre) / circle.radius * kStep;
        const double slope = (Circumcircle(moved[0], moved[1], moved[2]).radius - circle.radius) / kStep;
        sum += slope * slope * CoordSigma(i) * CoordSigma(i);
    }
    const CalibrationRecord& unit = Unit();
    return kSnapCoverage * std::sqrt(sum) * (unit.m_dcxPerPixel + unit.m_dcyPerPixel) / 2;
}

double CGVLCircleT::GetRadius() const
{
    if (CoordCount() != 3)
        return 0.0;
    const CalibrationRecord& unit = Unit();
    return (unit.m_dcyPerPixel + unit.m_dcxPerPixel) * ExactRadius() * 0.5;
}

double CGVLCircleT::GetArea() const
{
    if (CoordCount() != 3)
        return 0.0;
    const CalibrationRecord& unit = Unit();
    const double r = ExactRadius();
    return r * 3.14159 * unit.m_dcxPerPixel * r * unit.m_dcyPerPixel;
}

int CGVLCircleT::OnLButtonUp(unsigned flags, const QPoint& point, int tool)
{
    const bool completes = tool == m_nOwnTool && m_bDown && m_nClick == 2;
    const bool dragged = tool == kToolMove && m_bDown && m_bDragging;
    const int hit = CGVLThreeClick::OnLButtonUp(flags, point, tool);
    if ((completes || dragged) && CoordCount() == 3) {
        const ExactCircle circle = Circumcircle(m_arCoord[0], m_arCoord[1], m_arCoord[2]);
        if (circle.radius > 0.0) {
            std::vector<QPointF> outward;
            for (const QPoint& p : m_arCoord)
                outward.push_back(QPointF(p) - circle.centre);
            SnapPoints(outward);
        }
    }
    return hit;
}

QString CGVLCircleT::RadiusText() const
{
    if (IsSnapped()) {
        return MeasureTables::FormatLabel(
            MeasureTables::kRadiusFormats, Precision(), GetRadius(), UnitText(), RadiusUncertainty());
    }
    return MeasureTables::FormatLabel(MeasureTables::kRadiusFormats, Precision(), GetRadius(), UnitText());
}

void CGVLCircleT::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    // Gaps of dotted strokes are filled like label backgrounds.
    SetLabelBackground(dc);
    if (CoordCount() == 3) {
        const Circle c = FitCircle();
        const QPoint& o = c.centre;
        DrawEllipse(dc, hidden, m_bSelected,
            { o.x() - c.radius, o.y() - c.radius, o.x() + c.radius, o.y() + c.radius });
        DrawLabel(dc, { o.x(), o.y() - 20 }, AreaText());
        DrawLabel(dc, { o.x(), o.y() - 48 }, RadiusText());
    }
    // While being placed the clicked points stay visible.
    if (m_bSelected || CoordCount() < 3) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}

void CGVLCircleT::UpdateElem()
{
    if (m_arCoord.empty())
        return;
    std::vector<QPoint> points = m_arCoord;
    if (CoordCount() == 3) {
        const Circle c = FitCircle();
        points.push_back(c.centre - QPoint(c.radius, c.radius));
        points.push_back(c.centre + QPoint(c.radius, c.radius));
    }
    InvalidateAround(GdiRect::Around(points));
}

bool CGVLCircleT::IsDegenerate() const
{
    return CoordCount() == 3 && FitCircle().radius == 0;
}
