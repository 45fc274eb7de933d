#include "image/Registration.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace Registration {

namespace {

// Peaks of the correlation surface checked against each other: a small
// overlap of a textured specimen is rarely the highest one.
constexpr int kPeaks = 10;
// The coarse search fades the frames out over this many pixels at their
// edges: their outlines would otherwise correlate best at no shift at all.
constexpr int kTaper = 8;
// The high-pass disturbs this many full-size pixels along a frame's edges.
constexpr int kEdge = 16;
// The thinnest overlap, in pixels, the edges above are kept out of.
constexpr int kThinnest = 24;
// The pyramid stops at this smaller side; the refinement starts there.
constexpr int kSmallestLevel = 48;
constexpr int kMaxLevels = 3;
// Refinement works on at most this many pixels a side of the overlap: more
// barely improves the fraction of a pixel and costs time at every frame.
constexpr int kRefineSide = 640;
// The views must agree at least this much where they overlap.
constexpr double kMinNcc = 0.6;

cv::Mat Tapered(const cv::Mat& frame)
{
    cv::Mat out = frame.clone();
    for (int y = 0; y < out.rows; ++y) {
        float* line = out.ptr<float>(y);
        const double wy = std::min(1.0, std::min(y + 0.5, out.rows - y - 0.5) / kTaper);
        for (int x = 0; x < out.cols; ++x) {
            const double wx = std::min(1.0, std::min(x + 0.5, out.cols - x - 0.5) / kTaper);
            const double w = wx * wy;
            line[x] = float(line[x] * w * w * (3.0 - 2.0 * w));
        }
    }
    return out;
}

double Ncc(const cv::Mat& a, const cv::Mat& b)
{
    cv::Scalar meanA, devA, meanB, devB;
    cv::meanStdDev(a, meanA, devA);
    cv::meanStdDev(b, meanB, devB);
    if (devA[0] <= 1e-9 || devB[0] <= 1e-9)
        return 0.0;
    const double cross = (a - meanA[0]).dot(b - meanB[0]) / double(a.total());
    return cross / (devA[0] * devB[0]);
}

// The overlap in the moving view's pixels for an integer shift, shrunk by
// `margin` and, as far as a thin overlap allows, by `edge` more.
cv::Rect OverlapInMoving(cv::Size reference, cv::Size moving, cv::Point shift, int margin, int edge = 0)
{
    int x0 = std::max(0, -shift.x) + margin;
    int y0 = std::max(0, -shift.y) + margin;
    int x1 = std::min(moving.width, reference.width - shift.x) - margin;
    int y1 = std::min(moving.height, reference.height - shift.y) - margin;
    const int ex = std::clamp((x1 - x0 - kThinnest) / 2, 0, edge);
    const int ey = std::clamp((y1 - y0 - kThinnest) / 2, 0, edge);
    x0 += ex, x1 -= ex, y0 += ey, y1 -= ey;
    if (x1 <= x0 || y1 <= y0)
        return {};
    return { x0, y0, x1 - x0, y1 - y0 };
}

cv::Mat Gradient(const cv::Mat& level, int dx, int dy)
{
    cv::Mat g;
    cv::Sobel(level, g, CV_32F, dx, dy, 3, 1.0 / 8.0, 0, cv::BORDER_REPLICATE);
    return g;
}

// The offset of a peak from its integer place by a parabola through three values.
double PeakOffset(float before, float at, float after)
{
    const double curvature = double(before) - 2.0 * at + after;
    if (curvature >= 0.0)
        return 0.0;
    return std::clamp(0.5 * (double(before) - after) / curvature, -0.5, 0.5);
}

} // namespace

cv::Mat Sampled(const cv::Mat& frame, cv::Point2d at, cv::Size size)
{
    const int ix = int(std::floor(at.x)), iy = int(std::floor(at.y));
    const double tx = at.x - ix, ty = at.y - iy;
    auto weights = [](double t) {
        cv::Mat_<float> w(1, 4);
        w(0) = float(((-0.5 * t + 1.0) * t - 0.5) * t);
        w(1) = float((1.5 * t - 2.5) * t * t + 1.0);
        w(2) = float(((-1.5 * t + 2.0) * t + 0.5) * t);
        w(3) = float((0.5 * t - 0.5) * t * t);
        return w;
    };
    const cv::Rect need(ix - 1, iy - 1, size.width + 3, size.height + 3);
    const cv::Rect inside = need & cv::Rect(0, 0, frame.cols, frame.rows);
    cv::Mat source;
    if (inside == need) {
        source = frame(need);
    } else {
        cv::copyMakeBorder(frame(inside), source, inside.y - need.y, need.br().y - inside.br().y,
            inside.x - need.x, need.br().x - inside.br().x, cv::BORDER_REPLICATE);
    }
    cv::Mat out;
    cv::sepFilter2D(
        source, out, CV_32F, weights(tx), weights(ty), cv::Point(0, 0), 0.0, cv::BORDER_REPLICATE);
    return out(cv::Rect(0, 0, size.width, size.height)).clone();
}

double OverlapFraction(cv::Size reference, cv::Size moving, cv::Point2d shift)
{
    const double w = std::min<double>(reference.width, shift.x + moving.width) - std::max(0.0, shift.x);
    const double h = std::min<double>(reference.height, shift.y + moving.height) - std::max(0.0, shift.y);
    if (w <= 0.0 || h <= 0.0)
        return 0.0;
    return w * h / std::min(double(reference.area()), double(moving.area()));
}

Prepared Prepare(const cv::Mat& gray)
{
    Prepared out;
    out.size = gray.size();
    // In logarithms vignetting and exposure add a smooth term that the
    // high-pass below takes away; the offset keeps dark noise from exploding.
    cv::Mat brightness;
    if (gray.depth() == CV_8U) {
        // A camera's bytes take 256 values: a table instead of a logarithm
        // per pixel.
        static const cv::Mat table = [] {
            cv::Mat t(1, 256, CV_32F);
            for (int v = 0; v < 256; ++v)
                t.at<float>(v) = std::log(float(v) + 4.0f);
            return t;
        }();
        cv::LUT(gray, table, brightness);
    } else {
        gray.convertTo(brightness, CV_32F);
        cv::log(brightness + 4.0f, brightness);
    }
    cv::Mat fine;
    cv::GaussianBlur(brightness, fine, cv::Size(), 1.0);
    // The slow part: three box filters make a blur as wide as a Gaussian of
    // about 7.5 pixels at a cost that does not grow with the width, and,
    // unlike blurring a reduced copy, they treat every sub-pixel shift alike.
    cv::Mat slow = brightness;
    for (int pass = 0; pass < 3; ++pass)
        cv::blur(slow, slow, cv::Size(15, 15), cv::Point(-1, -1), cv::BORDER_REFLECT);
    out.levels.push_back(fine - slow);
    while (int(out.levels.size()) < kMaxLevels) {
        const cv::Mat& last = out.levels.back();
        if (std::min(last.cols, last.rows) / 2 < kSmallestLevel)
            break;
        cv::Mat next;
        cv::pyrDown(last, next);
        out.levels.push_back(next);
    }
    for (const cv::Mat& level : out.levels) {
        out.gradX.push_back(Gradient(level, 1, 0));
        out.gradY.push_back(Gradient(level, 0, 1));
    }
    const int longer = std::max(gray.cols, gray.rows);
    out.reducedScale = std::min(1.0, double(kSearchSide) / longer);
    cv::resize(out.levels[0], out.reduced, cv::Size(), out.reducedScale, out.reducedScale, cv::INTER_AREA);
    return out;
}

void Reduce(Prepared& view)
{
    view.levels.clear();
    view.gradX.clear();
    view.gradY.clear();
    view.spectrum.release();
    view.spectrumSize = {};
}

std::size_t Bytes(const Prepared& view)
{
    std::size_t bytes
        = view.reduced.total() * view.reduced.elemSize() + view.spectrum.total() * view.spectrum.elemSize();
    for (const auto* mats : { &view.levels, &view.gradX, &view.gradY })
        for (const cv::Mat& m : *mats)
            bytes += m.total() * m.elemSize();
    return bytes;
}

Match Coarse(const Prepared& reference, const Prepared& moving, double minOverlap)
{
    if (reference.reduced.empty() || !moving.Full())
        return {};
    const double scale = reference.reducedScale;
    const cv::Mat& a = reference.reduced;
    cv::Mat b = moving.reduced;
    // Views of different sizes are compared at the reference's scale.
    if (moving.reducedScale != scale)
        cv::resize(moving.levels[0], b, cv::Size(), scale, scale, cv::INTER_AREA);
    // Padding both to the sum of their sizes makes every shift that leaves an
    // overlap appear once, without wrapping onto another.
    const int width = cv::getOptimalDFTSize(a.cols + b.cols);
    const int height = cv::getOptimalDFTSize(a.rows + b.rows);
    const cv::Size padded(width, height);
    const auto spectrumOf = [padded](const cv::Mat& view) {
        cv::Mat p = cv::Mat::zeros(padded, CV_32F);
        Tapered(view).copyTo(p(cv::Rect(0, 0, view.cols, view.rows)));
        cv::Mat f;
        cv::dft(p, f, cv::DFT_COMPLEX_OUTPUT);
        return f;
    };
    const auto cached = [&](const Prepared& view) -> const cv::Mat& {
        if (view.spectrumSize != padded || view.spectrum.empty()) {
            view.spectrum = spectrumOf(view.reduced);
            view.spectrumSize = padded;
        }
        return view.spectrum;
    };
    cv::Mat cross;
    cv::mulSpectrums(
        cached(reference), moving.reducedScale == scale ? cached(moving) : spectrumOf(b), cross, 0, true);
    // Whitening: the phase alone, so a broad bright area does not outweigh detail.
    cv::Mat planes[2];
    cv::split(cross, planes);
    cv::Mat magnitude;
    cv::magnitude(planes[0], planes[1], magnitude);
    magnitude += 1e-6f;
    cv::divide(planes[0], magnitude, planes[0]);
    cv::divide(planes[1], magnitude, planes[1]);
    cv::merge(planes, 2, cross);
    cv::Mat surface;
    cv::idft(cross, surface, cv::DFT_REAL_OUTPUT | cv::DFT_SCALE);

    Match best;
    cv::Mat search = surface.clone();
    for (int peak = 0; peak < kPeaks; ++peak) {
        double top = 0.0;
        cv::Point at;
        cv::minMaxLoc(search, nullptr, &top, nullptr, &at);
        if (top <= 0.0)
            break;
        cv::rectangle(search, cv::Rect(at.x - 2, at.y - 2, 5, 5), cv::Scalar(0.0), cv::FILLED);
        auto value
            = [&](int x, int y) { return surface.at<float>((y + height) % height, (x + width) % width); };
        const cv::Point2d sub(
            at.x + PeakOffset(value(at.x - 1, at.y), value(at.x, at.y), value(at.x + 1, at.y)),
            at.y + PeakOffset(value(at.x, at.y - 1), value(at.x, at.y), value(at.x, at.y + 1)));
        // Indices past the reference's extent are negative shifts wrapped round.
        const cv::Point2d shift(
            sub.x > width - b.cols ? sub.x - width : sub.x, sub.y > height - b.rows ? sub.y - height : sub.y);
        if (OverlapFraction(a.size(), b.size(), shift) < minOverlap)
            continue;
        const cv::Point whole(int(std::lround(shift.x)), int(std::lround(shift.y)));
        const cv::Rect inMoving
            = OverlapInMoving(a.size(), b.size(), whole, 1, int(std::ceil(kEdge * scale)));
        if (inMoving.width < 8 || inMoving.height < 8)
            continue;
        const double ncc = Ncc(b(inMoving), a(inMoving + whole));
        if (ncc > best.ncc) {
            best.ncc = ncc;
            best.shift = shift / scale;
        }
    }
    best.ok = best.ncc >= kMinNcc;
    best.weight = best.ncc;
    return best;
}

Match Refine(const Prepared& reference, const Prepared& moving, cv::Point2d start, double minOverlap)
{
    Match result;
    if (!reference.Full() || !moving.Full())
        return result;
    if (OverlapFraction(reference.Size(), moving.Size(), start) < minOverlap)
        return result;
    const int levels = int(std::min(reference.levels.size(), moving.levels.size()));
    cv::Point2d shift = start;
    for (int level = levels - 1; level >= 0; --level) {
        const double factor = std::ldexp(1.0, -level);
        const cv::Mat& ref = reference.levels[level];
        const cv::Mat& mov = moving.levels[level];
        cv::Point2d s = shift * factor;
        // A margin the shift may move by without leaving the reference.
        const int margin = 3;
        cv::Rect roi = OverlapInMoving(ref.size(), mov.size(),
            cv::Point(int(std::ceil(s.x)), int(std::ceil(s.y))), margin, int(std::ceil(kEdge * factor)));
        if (roi.width < 8 || roi.height < 8) {
            // Too thin at this level: the finer ones still may do.
            if (level > 0)
                continue;
            return result;
        }
        const int cap = std::max(32, int(kRefineSide * factor));
        if (roi.width > cap)
            roi = cv::Rect(roi.x + (roi.width - cap) / 2, roi.y, cap, roi.height);
        if (roi.height > cap)
            roi = cv::Rect(roi.x, roi.y + (roi.height - cap) / 2, roi.width, cap);
        const cv::Mat templ = mov(roi);
        const cv::Mat gx = moving.gradX[level](roi);
        const cv::Mat gy = moving.gradY[level](roi);
        const double hxx = gx.dot(gx), hxy = gx.dot(gy), hyy = gy.dot(gy);
        const double det = hxx * hyy - hxy * hxy;
        if (det <= 1e-12)
            return result;
        cv::Mat warped, error;
        for (int iteration = 0; iteration < 30; ++iteration) {
            warped = Sampled(ref, cv::Point2d(roi.x + s.x, roi.y + s.y), roi.size());
            cv::subtract(warped, templ, error);
            const double bx = gx.dot(error), by = gy.dot(error);
            // The template's gradients stay fixed (inverse compositional),
            // so the normal matrix is the same at every step.
            const cv::Point2d step((hyy * bx - hxy * by) / det, (hxx * by - hxy * bx) / det);
            s -= step;
            if (std::abs(s.x - shift.x * factor) > margin + 2 * (level + 1)
                || std::abs(s.y - shift.y * factor) > margin + 2 * (level + 1))
                return result;
            // A coarser level only hands a start to the next; the full size
            // settles to a thousandth of a pixel.
            if (step.dot(step) < (level > 0 ? 1e-4 : 1e-6))
                break;
        }
        shift = s / factor;
        if (level == 0) {
            warped = Sampled(ref, cv::Point2d(roi.x + s.x, roi.y + s.y), roi.size());
            result.ncc = Ncc(warped, templ);
            cv::subtract(warped, templ, error);
            const double residual = error.dot(error) / double(error.total());
            // Inverse of the estimate's variance, up to a common factor.
            result.weight = (hxx + hyy) / (residual + 1e-9);
        }
    }
    result.shift = shift;
    result.ok
        = result.ncc >= kMinNcc && OverlapFraction(reference.Size(), moving.Size(), shift) >= minOverlap;
    return result;
}

double Agreement(const Prepared& reference, const Prepared& moving, cv::Point2d shift)
{
    constexpr int kBlocks = 4;
    constexpr int kSmallestBlock = 8;
    constexpr double kBlockNcc = 0.4;
    if (!reference.Full() || !moving.Full())
        return 0.0;
    // Half size is plenty to tell agreement from chance and costs a quarter.
    const int level = std::min(1, int(std::min(reference.levels.size(), moving.levels.size())) - 1);
    const double factor = std::ldexp(1.0, -level);
    const cv::Mat& ref = reference.levels[level];
    const cv::Mat& mov = moving.levels[level];
    const cv::Point whole(int(std::lround(shift.x * factor)), int(std::lround(shift.y * factor)));
    const cv::Rect overlap
        = OverlapInMoving(ref.size(), mov.size(), whole, 1, int(std::ceil(kEdge * factor)));
    const int across = std::min(kBlocks, overlap.width / kSmallestBlock);
    const int down = std::min(kBlocks, overlap.height / kSmallestBlock);
    if (across < 1 || down < 1)
        return 0.0;
    int agreeing = 0;
    for (int by = 0; by < down; ++by) {
        for (int bx = 0; bx < across; ++bx) {
            const int x0 = overlap.x + overlap.width * bx / across;
            const int y0 = overlap.y + overlap.height * by / down;
            const cv::Rect block(x0, y0, overlap.x + overlap.width * (bx + 1) / across - x0,
                overlap.y + overlap.height * (by + 1) / down - y0);
            agreeing += Ncc(mov(block), ref(block + whole)) >= kBlockNcc;
        }
    }
    return double(agreeing) / (across * down);
}

} // namespace Registration
