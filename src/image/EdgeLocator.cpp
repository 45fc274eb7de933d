#include "image/EdgeLocator.h"

#include "image/Median.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

// Samples per pixel along the search line.
constexpr int kSteps = 8;
constexpr double kStep = 1.0 / kSteps;
// How far either side of its peak an edge's change is followed, pixels.
constexpr int kWindow = 4;
// What resampling leaves even without noise, pixels: nothing for an edge
// along the pixel grid, up to 0.08 for an oblique one (interpolating between
// pixel centres across it is not exact).
constexpr double kFloorSigma = 0.045;

double Bilinear(const QImage& gray, double x, double y)
{
    const int x0 = int(std::floor(x));
    const int y0 = int(std::floor(y));
    const double fx = x - x0;
    const double fy = y - y0;
    const uchar* r0 = gray.constScanLine(y0);
    const uchar* r1 = gray.constScanLine(std::min(y0 + 1, gray.height() - 1));
    const int x1 = std::min(x0 + 1, gray.width() - 1);
    const double top = r0[x0] + (r0[x1] - r0[x0]) * fx;
    const double bottom = r1[x0] + (r1[x1] - r1[x0]) * fx;
    return top + (bottom - top) * fy;
}

// The spread of the picture's noise around a point, from how far each pixel
// stands from the mean of its four neighbours (robust against the edge that
// also lies there).
double NoiseNear(const QImage& gray, const QPointF& at)
{
    const int cx = int(std::lround(at.x()));
    const int cy = int(std::lround(at.y()));
    std::vector<double> r;
    for (int y = std::max(1, cy - 5); y <= std::min(gray.height() - 2, cy + 5); ++y) {
        const uchar* up = gray.constScanLine(y - 1);
        const uchar* row = gray.constScanLine(y);
        const uchar* down = gray.constScanLine(y + 1);
        for (int x = std::max(1, cx - 5); x <= std::min(gray.width() - 2, cx + 5); ++x)
            r.push_back(std::abs(row[x] - (up[x] + down[x] + row[x - 1] + row[x + 1]) / 4.0));
    }
    if (r.size() < 9)
        return 1.0;
    // For normal noise of spread s the residual's spread is s * sqrt(1.25).
    return std::max(0.3, 1.4826 * Median(std::move(r)) / std::sqrt(1.25));
}

} // namespace

std::optional<EdgeFix> LocateEdge(
    const QImage& picture, const QPointF& from, const QPointF& direction, double reach)
{
    const double length = std::hypot(direction.x(), direction.y());
    if (picture.isNull() || !(length > 0.0) || !(reach > 0.0))
        return std::nullopt;
    const QImage gray = picture.format() == QImage::Format_Grayscale8
        ? picture
        : picture.convertToFormat(QImage::Format_Grayscale8);
    const QPointF d = direction / length;

    // The profile along the line, reaching past the search so an edge at its
    // end is seen whole; the mean of the line and its two neighbours a pixel
    // to each side, which an edge across the line crosses alike.
    const QPointF side(-d.y(), d.x());
    const int half = int(std::ceil((reach + kWindow + 1.0) * kSteps));
    std::vector<double> f(std::size_t(2 * half + 1));
    for (int i = -half; i <= half; ++i) {
        double sum = 0.0;
        for (int k = -1; k <= 1; ++k) {
            const QPointF p = from + d * (i * kStep) + side * k;
            if (p.x() < 0 || p.y() < 0 || p.x() > gray.width() - 1 || p.y() > gray.height() - 1)
                return std::nullopt;
            sum += Bilinear(gray, p.x(), p.y());
        }
        f[std::size_t(i + half)] = sum / 3;
    }
    // The brightness change over two pixels, centred on each sample: a
    // blurred edge stands out of the noise better than over one.
    std::vector<double> g(f.size(), 0.0);
    for (std::size_t i = kSteps; i + kSteps < f.size(); ++i)
        g[i] = f[i + kSteps] - f[i - kSteps];

    // The noise of one profile sample: three pixels' worth averaged.
    const double noise = NoiseNear(gray, from) / std::sqrt(3.0);
    const int searchHalf = int(std::floor(reach * kSteps));
    double strongest = 0.0;
    for (int i = -searchHalf; i <= searchHalf; ++i)
        strongest = std::max(strongest, std::abs(g[std::size_t(i + half)]));
    // A change carries the noise of two samples.
    const double clear = std::max(4.5 * noise * std::sqrt(2.0), 0.3 * strongest);
    int best = 0;
    bool found = false;
    for (int i = -searchHalf; i <= searchHalf; ++i) {
        const std::size_t k = std::size_t(i + half);
        const double a = std::abs(g[k]);
        if (a < clear || a < std::abs(g[k - 1]) || a <= std::abs(g[k + 1]))
            continue;
        if (!found || std::abs(i) < std::abs(best)) {
            best = i;
            found = true;
        }
    }
    if (!found)
        return std::nullopt;

    // The centre of mass of the change, over the run of one sign around the
    // peak down to its tails, at most kWindow pixels each side.
    const std::size_t peak = std::size_t(best + half);
    const double sign = g[peak] > 0 ? 1.0 : -1.0;
    const double floor = 0.02 * std::abs(g[peak]);
    std::size_t lo = peak;
    std::size_t hi = peak;
    while (lo > std::size_t(kSteps) && peak - lo < std::size_t(kWindow * kSteps) && sign * g[lo - 1] > floor)
        --lo;
    while (
        hi + 1 + kSteps < g.size() && hi - peak < std::size_t(kWindow * kSteps) && sign * g[hi + 1] > floor)
        ++hi;
    double w = 0.0;
    double wt = 0.0;
    for (std::size_t k = lo; k <= hi; ++k) {
        const double v = sign * g[k];
        w += v;
        wt += v * ((double(k) - half) * kStep);
    }
    const double t = wt / w;
    // Noise moves the centre of mass through the window's ends and its width;
    // the change over two pixels counts the contrast twice.
    const double contrast = w / kSteps / 2;
    const double a = (double(lo) - half) * kStep - t;
    const double b = (double(hi) - half) * kStep - t;
    const double noiseSigma = noise * std::sqrt(a * a + b * b + (b - a)) / contrast;

    EdgeFix fix;
    fix.shift = t;
    fix.position = from + d * t;
    fix.sigma = std::hypot(noiseSigma, kFloorSigma);
    return fix;
}
