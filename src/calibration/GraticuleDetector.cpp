#include "calibration/GraticuleDetector.h"

#include "image/Median.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

// Tick spacings the search considers, in pixels: below 3 the ticks are not
// resolved; above 80 a micrometer shows too few of them to fit.
constexpr double kMinPitch = 3.0;
constexpr double kMaxPitch = 80.0;
constexpr int kMinTicks = 8;
// Resampled pixels outside the picture carry this mark; any share of it makes
// a pixel fall below kInside.
constexpr float kOutside = -1.0e6f;
constexpr float kInside = -0.5f;

QString Tr(const char* text)
{
    return QCoreApplication::translate("GraticuleDetector", text);
}

GraticuleFit Fail(const char* reason)
{
    GraticuleFit fit;
    fit.reason = Tr(reason);
    return fit;
}

// The strongest periodic pattern of the picture: the peak of its spectrum
// among the spacings the search considers, as a frequency in cycles per pixel
// along x and y, refined between the bins.
struct Peak
{
    double fx = 0.0;
    double fy = 0.0;
    double prominence = 0.0; // peak power over the median power at those spacings
};

// The strongest few, each at least a few bins from the others, best first.
std::vector<Peak> SpectrumPeaks(const cv::Mat& picture, int count)
{
    const int W = cv::getOptimalDFTSize(picture.cols);
    const int H = cv::getOptimalDFTSize(picture.rows);
    cv::Mat window;
    cv::createHanningWindow(window, picture.size(), CV_32F);
    cv::Mat padded = cv::Mat::zeros(H, W, CV_32F);
    cv::Mat centred = picture - cv::mean(picture)[0];
    cv::multiply(centred, window, padded(cv::Rect(0, 0, picture.cols, picture.rows)));
    cv::Mat spectrum;
    cv::dft(padded, spectrum, cv::DFT_COMPLEX_OUTPUT);

    // A real picture's spectrum is symmetric, so the half with u >= 0 holds it all.
    auto power = [&](int u, int v) {
        if (u < 0) {
            u = -u;
            v = -v;
        }
        v = ((v % H) + H) % H;
        const cv::Vec2f c = spectrum.at<cv::Vec2f>(v, u);
        return double(c[0]) * c[0] + double(c[1]) * c[1];
    };
    const double fMin = 1.0 / std::min(kMaxPitch, std::max(picture.cols, picture.rows) / 6.0);
    const double fMax = 1.0 / kMinPitch;
    // The picture's broad shapes (the scale's own outline among them) put
    // most power into low frequencies, falling about as 1/f; the search
    // weighs that out.
    struct Bin
    {
        double score;
        int u;
        int v;
    };
    std::vector<Bin> bins;
    std::vector<double> ring;
    for (int vs = -H / 2; vs < H / 2; ++vs) {
        const double fy = double(vs) / H;
        for (int u = (vs < 0 ? 1 : 0); u <= W / 2; ++u) {
            const double fx = double(u) / W;
            const double f2 = fx * fx + fy * fy;
            if (f2 < fMin * fMin || f2 > fMax * fMax)
                continue;
            const double p = power(u, vs);
            if ((u + vs) % 7 == 0)
                ring.push_back(p);
            bins.push_back({ p * f2, u, vs });
        }
    }
    const double floor = std::max(Median(std::move(ring)), 1e-12);
    const auto strongest = [](const Bin& l, const Bin& r) { return l.score > r.score; };
    const std::size_t keep = std::min<std::size_t>(bins.size(), 64);
    std::partial_sort(bins.begin(), bins.begin() + std::ptrdiff_t(keep), bins.end(), strongest);
    bins.resize(keep);

    std::vector<Peak> peaks;
    std::vector<Bin> taken;
    for (const Bin& bin : bins) {
        if (int(taken.size()) >= count)
            break;
        const bool near = std::any_of(taken.begin(), taken.end(),
            [&](const Bin& t) { return std::abs(t.u - bin.u) <= 3 && std::abs(t.v - bin.v) <= 3; });
        if (near)
            continue;
        taken.push_back(bin);
        // A parabola through the logarithms of the neighbouring bins finds
        // the peak between them.
        auto refine = [](double a, double b, double c) {
            const double la = std::log(a + 1e-12), lb = std::log(b + 1e-12), lc = std::log(c + 1e-12);
            const double den = la - 2 * lb + lc;
            return den < 0 ? std::clamp(0.5 * (la - lc) / den, -0.5, 0.5) : 0.0;
        };
        auto peakAt = [&](int u, int v) {
            const double p = power(u, v);
            const double du = refine(power(u - 1, v), p, power(u + 1, v));
            const double dv = refine(power(u, v - 1), p, power(u, v + 1));
            return Peak { (u + du) / W, (v + dv) / H, p / floor };
        };
        // Thin ticks have strong harmonics: when half or a third of the
        // found frequency carries a good share of its power, that is likely
        // the fundamental, tried first; blur can make that wrong, so the
        // frequency itself is tried next.
        const double best = power(bin.u, bin.v);
        for (int k : { 3, 2 }) {
            const int cu = int(std::lround(double(bin.u) / k));
            const int cv = int(std::lround(double(bin.v) / k));
            double p = -1.0;
            int pu = cu;
            int pv = cv;
            for (int dv = -1; dv <= 1; ++dv) {
                for (int du = -1; du <= 1; ++du) {
                    const double q = power(cu + du, cv + dv);
                    if (q > p) {
                        p = q;
                        pu = cu + du;
                        pv = cv + dv;
                    }
                }
            }
            const double fu = double(pu) / W;
            const double fv = double(pv) / H;
            if (p >= 0.2 * best && fu * fu + fv * fv >= fMin * fMin) {
                peaks.push_back(peakAt(pu, pv));
                break;
            }
        }
        peaks.push_back(peakAt(bin.u, bin.v));
    }
    return peaks;
}

// The picture turned so that the scale runs along x and its ticks stand
// upright, with room for every corner; the rows the ticks cross, which carry
// the pattern's frequency most strongly; and that frequency's share of each row.
struct Turned
{
    cv::Mat image;
    cv::Mat turn;
    int top = 0;
    int bottom = 0;
    std::vector<std::complex<double>> rows;
};

Turned TurnAndFindBand(const cv::Mat& f, double angle, double frequency)
{
    Turned t;
    const int side = int(std::ceil(std::hypot(f.cols, f.rows))) + 2;
    const cv::Point2f centre(float(f.cols) / 2, float(f.rows) / 2);
    t.turn = cv::getRotationMatrix2D(centre, angle, 1.0);
    t.turn.at<double>(0, 2) += side / 2.0 - centre.x;
    t.turn.at<double>(1, 2) += side / 2.0 - centre.y;
    cv::warpAffine(f, t.image, t.turn, cv::Size(side, side), cv::INTER_LINEAR, cv::BORDER_CONSTANT,
        cv::Scalar(kOutside));

    std::vector<double> cosTab(static_cast<std::size_t>(side));
    std::vector<double> sinTab(static_cast<std::size_t>(side));
    for (int x = 0; x < side; ++x) {
        cosTab[std::size_t(x)] = std::cos(2 * std::numbers::pi * x * frequency);
        sinTab[std::size_t(x)] = std::sin(2 * std::numbers::pi * x * frequency);
    }
    t.rows.assign(std::size_t(side), {});
    std::vector<double> strength(std::size_t(side), 0.0);
    for (int y = 0; y < side; ++y) {
        const float* row = t.image.ptr<float>(y);
        double sum = 0.0, c = 0.0, s = 0.0, cm = 0.0, sm = 0.0;
        int n = 0;
        for (int x = 0; x < side; ++x) {
            if (row[x] > kInside) {
                sum += row[x];
                c += row[x] * cosTab[std::size_t(x)];
                s += row[x] * sinTab[std::size_t(x)];
                cm += cosTab[std::size_t(x)];
                sm += sinTab[std::size_t(x)];
                ++n;
            }
        }
        if (n < 2.0 / frequency)
            continue;
        // Without the row's mean: a constant row picks up something over a
        // cut-off number of periods.
        const double mean = sum / n;
        t.rows[std::size_t(y)] = { c - mean * cm, -(s - mean * sm) };
        strength[std::size_t(y)] = std::abs(t.rows[std::size_t(y)]);
    }
    const int peakRow = int(std::max_element(strength.begin(), strength.end()) - strength.begin());
    const double strongest = strength[std::size_t(peakRow)];
    t.top = peakRow;
    t.bottom = peakRow + 1;
    while (t.top > 0 && strength[std::size_t(t.top - 1)] >= 0.5 * strongest)
        --t.top;
    while (t.bottom < side && strength[std::size_t(t.bottom)] >= 0.5 * strongest)
        ++t.bottom;
    return t;
}

// How far the ticks of the band still lean from upright, in degrees: the
// slope of the pattern's phase down the band's rows.
double Lean(const Turned& t, double frequency)
{
    double sw = 0.0, sy = 0.0, sp = 0.0, syy = 0.0, syp = 0.0;
    double phase = 0.0;
    for (int y = t.top; y < t.bottom; ++y) {
        const std::complex<double> z = t.rows[std::size_t(y)];
        double ph = std::arg(z);
        if (y > t.top)
            ph = phase + std::remainder(ph - phase, 2 * std::numbers::pi);
        phase = ph;
        const double w = std::abs(z);
        sw += w;
        sy += w * y;
        sp += w * ph;
        syy += w * y * y;
        syp += w * y * ph;
    }
    const double den = sw * syy - sy * sy;
    if (!(den > 0))
        return 0.0;
    const double slope = (sw * syp - sy * sp) / den;
    return std::atan(slope / (2 * std::numbers::pi * frequency)) * 180.0 / std::numbers::pi;
}

// Mean of each column over rows [top, bottom) of the turned picture, NaN where
// fewer than 60 % of its pixels came from the picture.
std::vector<double> ColumnProfile(const cv::Mat& turned, int top, int bottom)
{
    std::vector<double> sum(std::size_t(turned.cols), 0.0);
    std::vector<int> count(std::size_t(turned.cols), 0);
    for (int y = top; y < bottom; ++y) {
        const float* row = turned.ptr<float>(y);
        for (int x = 0; x < turned.cols; ++x) {
            if (row[x] > kInside) {
                sum[std::size_t(x)] += row[x];
                ++count[std::size_t(x)];
            }
        }
    }
    const int need = std::max(1, (bottom - top) * 6 / 10);
    std::vector<double> profile(sum.size(), std::nan(""));
    for (std::size_t x = 0; x < sum.size(); ++x) {
        if (count[x] >= need)
            profile[x] = sum[x] / count[x];
    }
    return profile;
}

struct Tick
{
    double x; // along the turned picture's rows
    double height;
    int index = 0;
    double residual = 0.0;
};

// Centres of the ticks along a profile in which they are peaks.
std::vector<Tick> FindTicks(const std::vector<double>& s, int first, int last, double pitch)
{
    const int reach = std::max(1, int(pitch / 3));
    const double half = std::max(1.0, 0.3 * pitch);
    std::vector<Tick> ticks;
    for (int x = first + reach; x <= last - reach; ++x) {
        bool top = s[std::size_t(x)] > 0;
        for (int j = 1; top && j <= reach; ++j)
            top = s[std::size_t(x)] >= s[std::size_t(x - j)] && s[std::size_t(x)] > s[std::size_t(x + j)];
        if (!top)
            continue;
        // Centroid above the lowest value within half a pitch: unbiased for a
        // symmetric tick, however it falls on the pixel grid.
        const int lo = std::max(first, int(std::floor(x - pitch / 2)));
        const int hi = std::min(last, int(std::ceil(x + pitch / 2)));
        double base = s[std::size_t(x)];
        for (int i = lo; i <= hi; ++i)
            base = std::min(base, s[std::size_t(i)]);
        double w = 0.0;
        double wx = 0.0;
        for (int i = std::max(first, int(std::ceil(x - half)));
             i <= std::min(last, int(std::floor(x + half))); ++i) {
            const double v = s[std::size_t(i)] - base;
            w += v;
            wx += v * i;
        }
        if (w > 0)
            ticks.push_back({ wx / w, s[std::size_t(x)] - base });
    }
    return ticks;
}

struct LineFit
{
    double a = 0.0;
    double slope = 0.0;
    double slopeSigma = 0.0;
    double rms = 0.0;
};

LineFit FitLine(const std::vector<Tick>& ticks)
{
    LineFit fit;
    const double n = double(ticks.size());
    double mk = 0.0;
    double mx = 0.0;
    for (const Tick& t : ticks) {
        mk += t.index;
        mx += t.x;
    }
    mk /= n;
    mx /= n;
    double skk = 0.0;
    double skx = 0.0;
    for (const Tick& t : ticks) {
        skk += (t.index - mk) * (t.index - mk);
        skx += (t.index - mk) * (t.x - mx);
    }
    if (skk <= 0.0)
        return fit;
    fit.slope = skx / skk;
    fit.a = mx - fit.slope * mk;
    double ss = 0.0;
    for (const Tick& t : ticks) {
        const double r = t.x - fit.a - fit.slope * t.index;
        ss += r * r;
    }
    fit.rms = std::sqrt(ss / n);
    fit.slopeSigma = ticks.size() > 2 ? std::sqrt(ss / (n - 2) / skk) : 0.0;
    return fit;
}

// Numbers the ticks by the spacing, keeps those that sit on one evenly spaced
// row, and fits it.
LineFit FitTicks(std::vector<Tick>& ticks, double pitch)
{
    LineFit fit { ticks.empty() ? 0.0 : ticks.front().x, pitch, 0.0, 0.0 };
    for (int round = 0; round < 4 && ticks.size() >= std::size_t(kMinTicks); ++round) {
        for (Tick& t : ticks) {
            t.index = int(std::lround((t.x - fit.a) / fit.slope));
            t.residual = t.x - fit.a - fit.slope * t.index;
        }
        // One tick per division: the one nearest the row.
        std::sort(ticks.begin(), ticks.end(), [](const Tick& l, const Tick& r) {
            return l.index != r.index ? l.index < r.index : std::abs(l.residual) < std::abs(r.residual);
        });
        ticks.erase(std::unique(ticks.begin(), ticks.end(),
                        [](const Tick& l, const Tick& r) { return l.index == r.index; }),
            ticks.end());
        std::vector<double> off;
        for (const Tick& t : ticks)
            off.push_back(std::abs(t.residual));
        const double limit = round == 0
            ? 0.3 * fit.slope
            : std::min(0.25 * fit.slope, std::max(0.05, 4.5 * 1.4826 * Median(off)));
        std::erase_if(ticks, [&](const Tick& t) { return std::abs(t.residual) > limit; });
        if (ticks.size() < std::size_t(kMinTicks))
            break;
        fit = FitLine(ticks);
    }
    return fit;
}

GraticuleFit FitAtPeak(const cv::Mat& f, const Peak& peak, double division);

} // namespace

GraticuleFit DetectGraticule(const QImage& picture, double division, const QRect& region)
{
    if (picture.isNull())
        return Fail("There is no picture to look for a micrometer in.");
    if (!(division > 0.0))
        return Fail("The division value must be a positive number.");
    const QRect area = region.isEmpty() ? picture.rect() : (region & picture.rect());
    if (area.width() < 48 || area.height() < 16)
        return Fail("The region is too small to hold a micrometer scale.");

    const QImage gray = picture.convertToFormat(QImage::Format_Grayscale8);
    const cv::Mat whole(gray.height(), gray.width(), CV_8U, const_cast<uchar*>(gray.constBits()),
        std::size_t(gray.bytesPerLine()));
    cv::Mat f;
    whole(cv::Rect(area.x(), area.y(), area.width(), area.height())).convertTo(f, CV_32F);

    // The strongest pattern is nearly always the scale; when it is not (a
    // blurred scale among sharp objects), the next ones are tried.
    GraticuleFit failed = Fail("No micrometer scale found: the picture shows no evenly spaced ticks.");
    bool first = true;
    for (const Peak& peak : SpectrumPeaks(f, 4)) {
        GraticuleFit fit = FitAtPeak(f, peak, division);
        if (fit.found) {
            for (QPointF& t : fit.ticks)
                t += QPointF(area.topLeft());
            return fit;
        }
        // The strongest pattern's reason is the one worth telling.
        if (first)
            failed = fit;
        first = false;
    }
    return failed;
}

namespace {

GraticuleFit FitAtPeak(const cv::Mat& f, const Peak& peak, double division)
{
    const double frequency = std::hypot(peak.fx, peak.fy);
    if (frequency <= 0.0 || peak.prominence < 8.0)
        return Fail("No micrometer scale found: the picture shows no evenly spaced ticks.");
    const double pitch0 = 1.0 / frequency;
    double angle = std::atan2(peak.fy, peak.fx) * 180.0 / std::numbers::pi;
    if (angle <= -90.0)
        angle += 180.0;

    Turned t = TurnAndFindBand(f, angle, frequency);
    // Ticks that still lean in the turned picture shift the pattern's phase
    // from row to row; that slope corrects the angle, twice at most.
    for (int round = 0; round < 2 && t.bottom - t.top >= 3; ++round) {
        const double lean = Lean(t, frequency);
        if (!(std::abs(lean) > 0.002 && std::abs(lean) < 5.0))
            break;
        angle += lean;
        t = TurnAndFindBand(f, angle, frequency);
    }
    const cv::Mat& turned = t.image;
    const cv::Mat& turn = t.turn;
    const int side = turned.cols;
    const int top = t.top;
    const int bottom = t.bottom;
    std::vector<double> profile = ColumnProfile(turned, top, bottom);
    int first = 0;
    while (first < side && std::isnan(profile[std::size_t(first)]))
        ++first;
    int last = side - 1;
    while (last > first && std::isnan(profile[std::size_t(last)]))
        --last;
    for (int x = first; x <= last; ++x) {
        if (std::isnan(profile[std::size_t(x)]))
            profile[std::size_t(x)] = profile[std::size_t(x - 1)];
    }
    if (last - first < 4 * pitch0)
        return Fail("No micrometer scale found: the picture shows no evenly spaced ticks.");

    // Take away the slowly changing light (a running mean over two spacings)
    // and turn the ticks into peaks whether they are dark or light: thin ticks
    // stand out further from the background than the gaps between them.
    const int reach = std::max(1, int(std::lround(pitch0)));
    std::vector<double> s(profile.size(), 0.0);
    double skew = 0.0;
    for (int x = first; x <= last; ++x) {
        const int lo = std::max(first, x - reach);
        const int hi = std::min(last, x + reach);
        double m = 0.0;
        for (int i = lo; i <= hi; ++i)
            m += profile[std::size_t(i)];
        s[std::size_t(x)] = profile[std::size_t(x)] - m / (hi - lo + 1);
        skew += std::pow(s[std::size_t(x)], 3);
    }
    if (skew < 0) {
        for (double& v : s)
            v = -v;
    }

    std::vector<Tick> ticks = FindTicks(s, first, last, pitch0);
    if (ticks.size() >= std::size_t(kMinTicks)) {
        std::vector<double> heights;
        for (const Tick& t : ticks)
            heights.push_back(t.height);
        std::sort(heights.begin(), heights.end());
        const double strong = heights[heights.size() * 3 / 4];
        std::erase_if(ticks, [&](const Tick& t) { return t.height < 0.35 * strong; });
    }
    if (ticks.size() < std::size_t(kMinTicks))
        return Fail("No micrometer scale found: too few ticks stand out.");
    const LineFit fit = FitTicks(ticks, pitch0);
    if (ticks.size() < std::size_t(kMinTicks) || fit.slope <= 0.0)
        return Fail("No micrometer scale found: the ticks are not evenly spaced.");
    const int span = ticks.back().index - ticks.front().index + 1;
    if (double(ticks.size()) < 0.6 * span || fit.rms > 0.2 * fit.slope)
        return Fail("No micrometer scale found: the ticks are not evenly spaced.");

    // Real ticks stand far out of the noise between them; a row of noise
    // peaks that happens to fit a spacing does not.
    std::vector<double> gaps;
    for (std::size_t i = 1; i < ticks.size(); ++i) {
        if (ticks[i].index != ticks[i - 1].index + 1)
            continue;
        const double mid = (ticks[i].x + ticks[i - 1].x) / 2;
        const int reachGap = int(fit.slope / 6);
        for (int x = int(std::lround(mid)) - reachGap; x <= int(std::lround(mid)) + reachGap; ++x)
            gaps.push_back(s[std::size_t(std::clamp(x, first, last))]);
    }
    std::vector<double> heights;
    for (const Tick& t : ticks)
        heights.push_back(t.height);
    const double gapMid = Median(gaps);
    for (double& g : gaps)
        g = std::abs(g - gapMid);
    const double gapNoise = 1.4826 * Median(gaps);
    if (gaps.size() < 8 || Median(heights) < 6.0 * gapNoise)
        return Fail("No micrometer scale found: the ticks do not stand out of the noise.");

    GraticuleFit result;
    result.found = true;
    result.pitchPx = fit.slope;
    // Besides the scatter of the tick centres, resampling leaves each centre
    // a bias of up to about a hundredth of a pixel that does not average out;
    // it counts at the two ends of the fitted span.
    const double spanPx = fit.slope * (ticks.back().index - ticks.front().index);
    result.pitchSigmaPx = std::hypot(fit.slopeSigma, 0.01 * std::sqrt(2.0) * fit.slope / spanPx);
    result.angleDeg = angle;
    result.perPixel = division / fit.slope;
    result.perPixelU = 2.0 * result.perPixel * result.pitchSigmaPx / fit.slope;
    cv::Mat back;
    cv::invertAffineTransform(turn, back);
    const double row = (top + bottom - 1) / 2.0;
    for (const Tick& t : ticks) {
        const double x = back.at<double>(0, 0) * t.x + back.at<double>(0, 1) * row + back.at<double>(0, 2);
        const double y = back.at<double>(1, 0) * t.x + back.at<double>(1, 1) * row + back.at<double>(1, 2);
        result.ticks.emplace_back(x, y);
        result.tickIndex.push_back(t.index - ticks.front().index);
    }
    return result;
}

} // namespace

QString GraticuleResultText(const GraticuleFit& fit)
{
    if (!fit.found)
        return fit.reason;
    // Four decimals as the calibration keeps them, more when the uncertainty
    // is smaller than that, so it always shows a significant digit.
    int decimals = 4;
    while (decimals < 8 && fit.perPixelU > 0 && fit.perPixelU < 0.95 * std::pow(10.0, -decimals))
        ++decimals;
    return QCoreApplication::translate("GraticuleDetector", "1 px = %1 µm ± %2")
               .arg(QString::number(fit.perPixel, 'f', decimals),
                   QString::number(fit.perPixelU, 'f', decimals))
        + QStringLiteral("\n")
        + QCoreApplication::translate(
            "GraticuleDetector", "%n ticks, scale at %1°", nullptr, int(fit.ticks.size()))
              .arg(QString::number(fit.angleDeg, 'f', 1));
}
