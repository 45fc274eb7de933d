#include "measure/GdiPainter.h"

#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <mutex>
#include <numbers>
#include <tuple>

namespace Gdi {

void ResetDC(QPainter& dc)
{
    dc.setRenderHint(QPainter::Antialiasing, false);
    dc.setRenderHint(QPainter::TextAntialiasing, false);
    dc.setBackgroundMode(Qt::OpaqueMode);
    dc.setBackground(QBrush(Qt::white));
    dc.setBrush(Qt::NoBrush);
}

void SetBkMode(QPainter& dc, bool opaque)
{
    dc.setBackgroundMode(opaque ? Qt::OpaqueMode : Qt::TransparentMode);
}

void SetBkColor(QPainter& dc, const QColor& color)
{
    dc.setBackground(QBrush(color));
}

namespace {

// On and off lengths of a styled pen's pattern.
struct Pattern
{
    int on;
    int period;
};

Pattern PatternOf(PenStyle style)
{
    switch (style) {
    case PenStyle::Dot:
        return { 3, 6 };
    case PenStyle::Dash:
        return { 18, 24 };
    case PenStyle::Solid:
        break;
    }
    return { 1, 1 };
}

QPen QtPen(const Pen& pen)
{
    QPen q(pen.color);
    q.setWidth(std::max(pen.width, 1));
    q.setCapStyle(Qt::FlatCap);
    q.setJoinStyle(Qt::MiterJoin);
    if (pen.width <= 1 && pen.style != PenStyle::Solid) {
        const Pattern p = PatternOf(pen.style);
        q.setDashPattern({ qreal(p.on), qreal(p.period - p.on) });
    }
    return q;
}

// Runs of pixels along the major axis, gathered so that a long straight
// stroke costs one fill instead of one call per pixel.
class RunFiller
{
public:
    RunFiller(QPainter& dc, bool xMajor)
        : m_dc(dc)
        , m_xMajor(xMajor)
    {
    }
    ~RunFiller() { Flush(); }

    void Add(int x, int y, const QColor* color)
    {
        const bool extends = m_count > 0 && color == m_color
            && (m_xMajor ? (y == m_y0 && (x == m_x1 + 1 || x == m_x1 - 1))
                         : (x == m_x0 && (y == m_y1 + 1 || y == m_y1 - 1)));
        if (!extends) {
            Flush();
            m_x0 = x;
            m_y0 = y;
            m_color = color;
        }
        m_x1 = x;
        m_y1 = y;
        ++m_count;
    }

    void Flush()
    {
        if (m_count > 0 && m_color) {
            const QRect r(QPoint(std::min(m_x0, m_x1), std::min(m_y0, m_y1)),
                QPoint(std::max(m_x0, m_x1), std::max(m_y0, m_y1)));
            m_dc.fillRect(r, *m_color);
        }
        m_count = 0;
    }

private:
    QPainter& m_dc;
    bool m_xMajor;
    int m_x0 = 0, m_y0 = 0, m_x1 = 0, m_y1 = 0;
    int m_count = 0;
    const QColor* m_color = nullptr;
};

} // namespace

namespace {

// Coordinates beyond this are first cut back to it, so the arithmetic of a
// line cannot overflow; no window or picture comes near it.
constexpr double kFar = double(1 << 24);

// The part of a-b inside the square of +-kFar (Liang-Barsky); false when none.
bool ClipFar(QPoint& a, QPoint& b)
{
    const double x0 = a.x();
    const double y0 = a.y();
    const double dx = double(b.x()) - x0;
    const double dy = double(b.y()) - y0;
    double t0 = 0.0;
    double t1 = 1.0;
    // Keeps the part of the segment where p * t <= q.
    auto keep = [&](double p, double q) {
        if (p == 0.0)
            return q >= 0.0;
        const double t = q / p;
        if (p < 0.0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        return t0 <= t1;
    };
    if (!keep(-dx, x0 + kFar) || !keep(dx, kFar - x0) || !keep(-dy, y0 + kFar) || !keep(dy, kFar - y0))
        return false;
    a = QPoint(int(std::lround(x0 + t0 * dx)), int(std::lround(y0 + t0 * dy)));
    b = QPoint(int(std::lround(x0 + t1 * dx)), int(std::lround(y0 + t1 * dy)));
    return true;
}

} // namespace

void Line(QPainter& dc, const Pen& pen, const QPoint& a, const QPoint& b)
{
    if (a == b)
        return;
    if (pen.width > 1) {
        // Wide pens are geometric: solid, with round ends.
        dc.setPen(QPen(pen.color, pen.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        dc.drawLine(a, b);
        return;
    }
    // Qt's own one-pixel lines cover the same pixels whichever way they run,
    // leaving out the larger end; here the end left out is always b, and a
    // pattern starts at a.
    QPoint from = a;
    QPoint to = b;
    const auto far
        = [](const QPoint& p) { return std::abs(double(p.x())) > kFar || std::abs(double(p.y())) > kFar; };
    if ((far(from) || far(to)) && (!ClipFar(from, to) || from == to))
        return;
    const QPaintDevice* device = dc.device();
    if (!device)
        return;

    const qint64 dx = std::abs(qint64(to.x()) - from.x());
    const qint64 dy = std::abs(qint64(to.y()) - from.y());
    const bool xMajor = dx >= dy;
    const qint64 major = xMajor ? dx : dy;
    const qint64 minor = xMajor ? dy : dx;
    const int majorStep = (xMajor ? to.x() > from.x() : to.y() > from.y()) ? 1 : -1;
    const int minorStep = (xMajor ? to.y() > from.y() : to.x() > from.x()) ? 1 : -1;
    const qint64 majorStart = xMajor ? from.x() : from.y();
    const qint64 minorStart = xMajor ? from.y() : from.x();

    // Only the steps whose major coordinate lies on the device are walked, so
    // a line reaching far outside costs no more than one across the picture.
    const qint64 extent = xMajor ? device->width() : device->height();
    qint64 first = 0;
    qint64 last = major - 1;
    if (majorStep > 0) {
        first = std::max(first, -majorStart);
        last = std::min(last, extent - 1 - majorStart);
    } else {
        first = std::max(first, majorStart - (extent - 1));
        last = std::min(last, majorStart);
    }
    if (first > last)
        return;

    // Bresenham with the error term centred, so the minor axis steps at the
    // half-way points; the state after `first` steps is computed directly.
    const qint64 centre = major / 2;
    const qint64 carries = first * minor > centre ? (first * minor - centre + major - 1) / major : 0;
    qint64 err = centre - first * minor + carries * major;
    qint64 m = majorStart + majorStep * first;
    qint64 n = minorStart + minorStep * carries;

    const Pattern pattern = PatternOf(pen.style);
    const QColor on = pen.color;
    const QColor gap = dc.background().color();
    const QColor* gapColor = dc.backgroundMode() == Qt::OpaqueMode ? &gap : nullptr;
    RunFiller filler(dc, xMajor);
    for (qint64 i = first; i <= last; ++i) {
        const QColor* color = (i % pattern.period) < pattern.on ? &on : gapColor;
        filler.Add(int(xMajor ? m : n), int(xMajor ? n : m), color);
        m += majorStep;
        err -= minor;
        if (err < 0) {
            n += minorStep;
            err += major;
        }
    }
}

namespace {

// Qt strokes a curve one pixel smaller on the right and bottom while the
// painter is in opaque mode, so curves are drawn in transparent mode; the gaps
// of a styled pen are filled by first drawing the whole curve in the
// background colour.
template <typename DrawCurve> void StrokeCurve(QPainter& dc, const Pen& pen, DrawCurve&& draw)
{
    const Qt::BGMode mode = dc.backgroundMode();
    dc.setBackgroundMode(Qt::TransparentMode);
    dc.setBrush(Qt::NoBrush);
    if (mode == Qt::OpaqueMode && pen.width <= 1 && pen.style != PenStyle::Solid) {
        dc.setPen(QtPen(Pen { dc.background().color(), 1, PenStyle::Solid }));
        draw();
    }
    dc.setPen(QtPen(pen));
    draw();
    dc.setBackgroundMode(mode);
}

} // namespace

void Ellipse(QPainter& dc, const Pen& pen, const GdiRect& rect)
{
    const GdiRect r = rect.Normalized();
    if (r.right - r.left < 2 || r.bottom - r.top < 2)
        return;
    // With a one-pixel pen this covers columns left..right-1, rows top..bottom-1.
    const QRect box(r.left, r.top, r.right - r.left - 1, r.bottom - r.top - 1);
    StrokeCurve(dc, pen, [&] { dc.drawEllipse(box); });
}

void Arc(QPainter& dc, const Pen& pen, const GdiRect& box, const QPoint& start, const QPoint& end)
{
    const GdiRect r = box.Normalized();
    if (r.right - r.left < 2 || r.bottom - r.top < 2)
        return;
    const double cx = (r.left + r.right) / 2.0;
    const double cy = (r.top + r.bottom) / 2.0;
    const double rx = (r.right - r.left) / 2.0;
    const double ry = (r.bottom - r.top) / 2.0;
    // Screen y grows downward; Qt's angles, like the platform's arc, turn
    // counter-clockwise as seen on the screen. Qt takes parametric angles of
    // the ellipse, so the ray's direction is scaled by the radii: on a wide
    // ellipse the ray through (right, top) meets it at 45 degrees, not at
    // the ray's own angle.
    auto angle = [&](const QPoint& p) {
        return std::atan2((cy - p.y()) / ry, (p.x() - cx) / rx) * 180.0 / std::numbers::pi;
    };
    const double from = angle(start);
    double span = angle(end) - from;
    while (span <= 0.0)
        span += 360.0;
    while (span > 360.0)
        span -= 360.0;
    const QRect bounds(r.left, r.top, r.right - r.left - 1, r.bottom - r.top - 1);
    StrokeCurve(
        dc, pen, [&] { dc.drawArc(bounds, int(std::lround(from * 16.0)), int(std::lround(span * 16.0))); });
}

namespace {

struct FontFit
{
    int pixelSize;
    int stretch;
};

QFont ArialBase(int pixelSize, int weight)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(std::max(pixelSize, 1));
    font.setWeight(QFont::Weight(std::clamp(weight, 1, 1000)));
    font.setStyleStrategy(QFont::NoAntialias);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setKerning(false);
    return font;
}

// The pixel size whose cell height comes closest to `height`, and the
// stretch that brings the average character width to `width`. The search
// measures a few dozen fonts, so each answer is kept for the process.
FontFit Fit(int height, int width, int weight)
{
    static std::mutex mutex;
    static std::map<std::tuple<int, int, int>, FontFit> fits;
    std::lock_guard lock(mutex);
    const auto key = std::make_tuple(height, width, weight);
    if (auto it = fits.find(key); it != fits.end())
        return it->second;

    const int wanted = std::max(height, 1);
    int best = wanted;
    int bestError = -1;
    for (int size = 1; size <= wanted * 2; ++size) {
        const int error = std::abs(QFontMetrics(ArialBase(size, weight)).height() - wanted);
        if (bestError < 0 || error < bestError) {
            best = size;
            bestError = error;
        }
    }
    int stretch = 100;
    if (width > 0) {
        const qreal average = QFontMetricsF(ArialBase(best, weight)).averageCharWidth();
        if (average > 0)
            stretch = std::clamp(int(std::lround(100.0 * width / average)), 1, 4000);
    }
    const FontFit fit { best, stretch };
    fits.emplace(key, fit);
    return fit;
}

} // namespace

QFont MakeFont(int height, int width, int weight)
{
    const FontFit fit = Fit(height, width, weight);
    QFont font = ArialBase(fit.pixelSize, weight);
    if (fit.stretch != 100)
        font.setStretch(fit.stretch);
    return font;
}

void TextOut(QPainter& dc, int x, int y, const QString& text, const QColor& color)
{
    if (text.isEmpty())
        return;
    dc.setPen(QPen(color));
    // Qt places the baseline; the cell's top is one ascent above it.
    dc.drawText(QPoint(x, y + dc.fontMetrics().ascent()), text);
}

QSize TextExtent(const QFont& font, const QString& text)
{
    const QFontMetrics metrics(font);
    return QSize(metrics.horizontalAdvance(text), metrics.height());
}

} // namespace Gdi
