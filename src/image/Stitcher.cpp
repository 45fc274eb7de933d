#include "image/Stitcher.h"

#include "image/Registration.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <opencv2/imgproc.hpp>
#include <vector>

// Named outside the anonymous namespace: Stitcher::Impl, which other files can name, holds them.
struct StitchTile
{
    cv::Mat rgb; // CV_8UC3, as given
    Registration::Prepared prepared;
    cv::Mat logSmall; // log brightness, reduced and smoothed, for the shading fit
    cv::Point2d position; // top-left in the first picture's pixels
    double gain = 0.0; // log of the exposure relative to the first picture
    std::uint64_t lastCompared = 0; // when it was last compared in full
};

namespace {

// Neighbours a new picture is refined against: the ones it overlaps most.
constexpr int kNeighbours = 4;
// An estimate further than this from the others is dropped as a mismatch.
constexpr double kOutlier = 2.0;
// The shading is read from brightness at this fraction of the size.
constexpr double kShadingScale = 0.25;
// Samples per overlapping pair for the shading fit.
constexpr int kShadingSamples = 400;
// Rows blended at a time.
constexpr int kBand = 256;

cv::Mat RgbOf(const QImage& picture)
{
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    return cv::Mat(
        rgb.height(), rgb.width(), CV_8UC3, const_cast<uchar*>(rgb.constBits()), size_t(rgb.bytesPerLine()))
        .clone();
}

cv::Mat GrayOf(const cv::Mat& rgb)
{
    cv::Mat gray;
    cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
    return gray;
}

// Squared distance of a pixel from the centre, 1 at the corners.
double Radius2(cv::Point2d pixel, cv::Size size)
{
    const double cx = 0.5 * size.width, cy = 0.5 * size.height;
    const double dx = pixel.x + 0.5 - cx, dy = pixel.y + 0.5 - cy;
    return (dx * dx + dy * dy) / (cx * cx + cy * cy);
}

// Where a pixel of the full picture lies in a copy reduced by `scale`.
double Reduced(double pixel, double scale)
{
    return (pixel + 0.5) * scale - 0.5;
}

float Bilinear(const cv::Mat& m, double x, double y)
{
    const int x0 = std::clamp(int(std::floor(x)), 0, m.cols - 2);
    const int y0 = std::clamp(int(std::floor(y)), 0, m.rows - 2);
    const double fx = std::clamp(x - x0, 0.0, 1.0), fy = std::clamp(y - y0, 0.0, 1.0);
    const float* r0 = m.ptr<float>(y0);
    const float* r1 = m.ptr<float>(y0 + 1);
    return float(
        (1 - fy) * ((1 - fx) * r0[x0] + fx * r0[x0 + 1]) + fy * ((1 - fx) * r1[x0] + fx * r1[x0 + 1]));
}

} // namespace

struct Stitcher::Impl
{
    Options options;
    std::vector<StitchTile> tiles;
    // Vignetting in logarithms: a r^2 + b r^4.
    double shadingA = 0.0;
    double shadingB = 0.0;
    bool shadingKnown = false;
    // Feathering and shading weights per picture size.
    std::map<std::pair<int, int>, std::pair<cv::Mat, cv::Mat>> weights;
    std::uint64_t comparisons = 0;

    cv::Point2d Origin() const
    {
        cv::Point2d origin(tiles[0].position);
        for (const StitchTile& tile : tiles)
            origin = { std::min(origin.x, tile.position.x), std::min(origin.y, tile.position.y) };
        return origin;
    }

    double Shading(double r2) const { return shadingA * r2 + shadingB * r2 * r2; }

    const Registration::Prepared& Full(StitchTile& tile);
    void Trim();
    bool Place(StitchTile& tile, std::optional<cv::Point2d> near, int neighbours, QString* why);
    double Uncovered(const StitchTile& tile) const;
    bool Verify(StitchTile& tile, cv::Point2d guess, int neighbours);
    void EstimateShading();
    const std::pair<cv::Mat, cv::Mat>& WeightsFor(cv::Size size);
};

const Registration::Prepared& Stitcher::Impl::Full(StitchTile& tile)
{
    // The same grey as when it was placed, so it registers exactly as before.
    if (!tile.prepared.Full())
        tile.prepared = Registration::Prepare(GrayOf(tile.rgb));
    tile.lastCompared = ++comparisons;
    return tile.prepared;
}

void Stitcher::Impl::Trim()
{
    std::vector<std::uint64_t> recent;
    for (const StitchTile& tile : tiles)
        if (tile.prepared.Full())
            recent.push_back(tile.lastCompared);
    const size_t keep = size_t(std::max(1, options.preparedPictures));
    std::uint64_t oldestKept = 0;
    if (recent.size() > keep) {
        std::nth_element(recent.begin(), recent.end() - long(keep), recent.end());
        oldestKept = *(recent.end() - long(keep));
    }
    for (StitchTile& tile : tiles)
        if (tile.prepared.Full() && tile.lastCompared < oldestKept)
            Registration::Reduce(tile.prepared);
}

bool Stitcher::Impl::Place(StitchTile& tile, std::optional<cv::Point2d> near, int neighbours, QString* why)
{
    // The most recent pictures first: a scan moves on from the last one, so
    // the search usually ends at the first. Where the frame is expected, the
    // pictures it would share most with go before them. A chance likeness is
    // caught by Verify, against every picture the guess would overlap.
    std::vector<std::pair<double, int>> order;
    for (int i = 0; i < int(tiles.size()); ++i) {
        const double share = near ? Registration::OverlapFraction(tiles[size_t(i)].prepared.Size(),
                                 tile.prepared.Size(), *near - tiles[size_t(i)].position)
                                  : 0.0;
        order.emplace_back(share, i);
    }
    std::stable_sort(order.rbegin(), order.rend());
    for (const auto& [share, i] : order) {
        const Registration::Match coarse
            = Registration::Coarse(tiles[size_t(i)].prepared, tile.prepared, options.minOverlap);
        // A reduced picture's spectrum is made again by the next search that
        // goes that far: a search over every picture would otherwise keep them all.
        if (!tiles[size_t(i)].prepared.Full())
            tiles[size_t(i)].prepared.spectrum.release();
        if (coarse.ok && Verify(tile, tiles[size_t(i)].position + coarse.shift, neighbours))
            return true;
    }
    if (why)
        *why = QCoreApplication::translate("Stitcher", "it overlaps none of the pictures placed before it");
    return false;
}

bool Stitcher::Impl::Verify(StitchTile& tile, cv::Point2d guess, int neighbours)
{
    // Averaging the estimates against every neighbour keeps errors from
    // adding up along a long scan.
    std::vector<std::pair<double, int>> overlapping;
    for (int i = 0; i < int(tiles.size()); ++i) {
        const double share = Registration::OverlapFraction(
            tiles[size_t(i)].prepared.Size(), tile.prepared.Size(), guess - tiles[size_t(i)].position);
        if (share >= options.minOverlap)
            overlapping.emplace_back(share, i);
    }
    std::sort(overlapping.rbegin(), overlapping.rend());
    if (overlapping.size() > size_t(neighbours))
        overlapping.resize(size_t(neighbours));
    std::vector<std::pair<cv::Point2d, double>> estimates;
    // A chance likeness of a small overlap is contradicted by the pictures
    // that the guess would have it share more with.
    double agreeing = 0.0, disagreeing = 0.0;
    // Each neighbour gives an estimate of its own; starting it where the
    // first one ended only spares the refinement most of its steps.
    cv::Point2d start = guess;
    for (const auto& [share, i] : overlapping) {
        StitchTile& neighbour = tiles[size_t(i)];
        const Registration::Prepared& prepared = Full(neighbour);
        Registration::Match match
            = Registration::Refine(prepared, tile.prepared, start - neighbour.position, options.minOverlap);
        if (match.ok && options.minAgreement > 0.0
            && Registration::Agreement(prepared, tile.prepared, match.shift) < options.minAgreement)
            match.ok = false;
        if (match.ok) {
            if (estimates.empty())
                start = neighbour.position + match.shift;
            estimates.emplace_back(neighbour.position + match.shift, match.weight);
            agreeing += share;
        } else {
            disagreeing += share;
        }
    }
    if (estimates.empty() || agreeing <= disagreeing)
        return false;
    auto average = [&estimates] {
        cv::Point2d sum;
        double total = 0.0;
        for (const auto& [at, weight] : estimates) {
            sum += at * weight;
            total += weight;
        }
        return sum / total;
    };
    cv::Point2d position = average();
    const auto far
        = [&](const std::pair<cv::Point2d, double>& e) { return cv::norm(e.first - position) > kOutlier; };
    if (estimates.size() > 2
        && std::count_if(estimates.begin(), estimates.end(), far) < long(estimates.size()) / 2) {
        estimates.erase(std::remove_if(estimates.begin(), estimates.end(), far), estimates.end());
        position = average();
    }
    tile.position = position;
    return true;
}

double Stitcher::Impl::Uncovered(const StitchTile& tile) const
{
    // On a grid over the frame: exact enough to decide whether a frame
    // earns a tile, and cheap beside the registration.
    constexpr int kGrid = 16;
    const cv::Size size = tile.prepared.Size();
    int outside = 0;
    for (int gy = 0; gy < kGrid; ++gy) {
        for (int gx = 0; gx < kGrid; ++gx) {
            const cv::Point2d at = tile.position
                + cv::Point2d(size.width * (gx + 0.5) / kGrid, size.height * (gy + 0.5) / kGrid);
            const bool covered = std::any_of(tiles.begin(), tiles.end(), [&](const StitchTile& placed) {
                const cv::Point2d local = at - placed.position;
                return local.x >= 0 && local.y >= 0 && local.x < placed.rgb.cols && local.y < placed.rgb.rows;
            });
            outside += !covered;
        }
    }
    return double(outside) / (kGrid * kGrid);
}

void Stitcher::Impl::EstimateShading()
{
    shadingKnown = true;
    shadingA = shadingB = 0.0;
    for (StitchTile& tile : tiles)
        tile.gain = 0.0;
    const int n = int(tiles.size());
    if (n < 2 || !options.evenShading)
        return;
    // Unknowns: the gains of pictures 1..n-1 (the first is the reference), then a and b.
    const int unknowns = n - 1 + 2;
    cv::Mat normal = cv::Mat::zeros(unknowns, unknowns, CV_64F);
    cv::Mat rhs = cv::Mat::zeros(unknowns, 1, CV_64F);
    std::vector<double> row(static_cast<size_t>(unknowns), 0.0);
    int equations = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            const StitchTile& a = tiles[i];
            const StitchTile& b = tiles[j];
            const cv::Size sa = a.rgb.size(), sb = b.rgb.size();
            const double x0 = std::max(a.position.x, b.position.x), y0 = std::max(a.position.y, b.position.y);
            const double x1 = std::min(a.position.x + sa.width, b.position.x + sb.width);
            const double y1 = std::min(a.position.y + sa.height, b.position.y + sb.height);
            // Clear of the frames' edges, where the smoothed brightness is off.
            const double margin = 2.0 / kShadingScale;
            if (x1 - x0 < 3 * margin || y1 - y0 < 3 * margin)
                continue;
            const int side = int(std::sqrt(double(kShadingSamples)));
            for (int sy = 0; sy < side; ++sy) {
                for (int sx = 0; sx < side; ++sx) {
                    const cv::Point2d at(x0 + margin + (x1 - x0 - 2 * margin) * (sx + 0.5) / side,
                        y0 + margin + (y1 - y0 - 2 * margin) * (sy + 0.5) / side);
                    const cv::Point2d ua = at - a.position, ub = at - b.position;
                    const double la
                        = Bilinear(a.logSmall, Reduced(ua.x, kShadingScale), Reduced(ua.y, kShadingScale));
                    const double lb
                        = Bilinear(b.logSmall, Reduced(ub.x, kShadingScale), Reduced(ub.y, kShadingScale));
                    // Clipped pixels say nothing about the shading.
                    if (std::min(la, lb) < std::log(12.0) || std::max(la, lb) > std::log(245.0))
                        continue;
                    std::fill(row.begin(), row.end(), 0.0);
                    if (i > 0)
                        row[size_t(i - 1)] += 1.0;
                    row[size_t(j - 1)] -= 1.0;
                    const double ra = Radius2(ua, sa), rb = Radius2(ub, sb);
                    row[size_t(n - 1)] = ra - rb;
                    row[size_t(n)] = ra * ra - rb * rb;
                    const double value = la - lb;
                    for (int r = 0; r < unknowns; ++r) {
                        if (row[size_t(r)] == 0.0)
                            continue;
                        rhs.at<double>(r) += row[size_t(r)] * value;
                        for (int c = 0; c < unknowns; ++c)
                            normal.at<double>(r, c) += row[size_t(r)] * row[size_t(c)];
                    }
                    ++equations;
                }
            }
        }
    }
    if (equations < 3 * unknowns)
        return;
    // A little damping keeps a picture whose overlaps are all clipped at its
    // own exposure instead of an arbitrary one.
    for (int r = 0; r < unknowns; ++r)
        normal.at<double>(r, r) += 1e-3;
    cv::Mat solution;
    if (!cv::solve(normal, rhs, solution, cv::DECOMP_CHOLESKY))
        return;
    for (int i = 1; i < n; ++i)
        tiles[size_t(i)].gain = solution.at<double>(i - 1);
    shadingA = solution.at<double>(n - 1);
    shadingB = solution.at<double>(n);
}

const std::pair<cv::Mat, cv::Mat>& Stitcher::Impl::WeightsFor(cv::Size size)
{
    auto& entry = weights[{ size.width, size.height }];
    if (entry.first.empty()) {
        // A tent: full weight in the middle, none at the edges, so a seam
        // fades over the whole overlap.
        entry.first.create(size, CV_32F);
        entry.second.create(size, CV_32F);
        for (int y = 0; y < size.height; ++y) {
            const double wy = 1.0 - std::abs(2.0 * (y + 0.5) / size.height - 1.0);
            for (int x = 0; x < size.width; ++x) {
                const double wx = 1.0 - std::abs(2.0 * (x + 0.5) / size.width - 1.0);
                const double w = wx * wy;
                entry.first.at<float>(y, x) = float(w);
                entry.second.at<float>(y, x)
                    = float(w * std::exp(-Shading(Radius2({ double(x), double(y) }, size))));
            }
        }
    }
    return entry;
}

Stitcher::Stitcher()
    : Stitcher(Options {})
{
}

Stitcher::Stitcher(const Options& options)
    : m_impl(std::make_unique<Impl>())
{
    m_impl->options = options;
}

Stitcher::~Stitcher() = default;

namespace {

bool UsablePicture(const QImage& picture, QString* why)
{
    if (!picture.isNull() && picture.width() >= 16 && picture.height() >= 16)
        return true;
    if (why)
        *why = QCoreApplication::translate("Stitcher", "the picture is empty or too small");
    return false;
}

// The brightness kept for the shading fit, only for pictures that stay.
void KeepBrightness(StitchTile& tile, const cv::Mat& gray)
{
    cv::Mat brightness;
    gray.convertTo(brightness, CV_32F);
    cv::resize(brightness, tile.logSmall, cv::Size(), kShadingScale, kShadingScale, cv::INTER_AREA);
    cv::GaussianBlur(tile.logSmall, tile.logSmall, cv::Size(), 1.0);
    cv::log(cv::max(tile.logSmall, 1.0f), tile.logSmall);
}

} // namespace

bool Stitcher::Add(const QImage& picture, QString* why)
{
    // No new ground asked for: a picture that fits is always kept.
    return Track(picture, 0.0, std::nullopt, why).found;
}

Stitcher::Tracked Stitcher::Track(
    const QImage& frame, double newGround, std::optional<QPointF> near, QString* why)
{
    const Tracked result = TrackFrame(frame, newGround, near, why);
    m_impl->Trim();
    return result;
}

Stitcher::Tracked Stitcher::TrackFrame(
    const QImage& frame, double newGround, std::optional<QPointF> near, QString* why)
{
    Tracked result;
    if (!UsablePicture(frame, why))
        return result;
    StitchTile tile;
    tile.rgb = RgbOf(frame);
    const cv::Mat gray = GrayOf(tile.rgb);
    tile.prepared = Registration::Prepare(gray);
    if (!m_impl->tiles.empty()) {
        std::optional<cv::Point2d> expected;
        if (near)
            expected = cv::Point2d(near->x(), near->y());
        // Most live frames pass over covered ground and only say where the
        // stage is: one neighbour places them well enough. A frame that is
        // kept is placed against all of them, so errors do not add up.
        const bool mayStay = newGround <= 0.0;
        if (!m_impl->Place(tile, expected, mayStay ? kNeighbours : 1, why))
            return result;
        if (!mayStay) {
            if (m_impl->Uncovered(tile) < newGround) {
                result.found = true;
                result.position = QPointF(tile.position.x, tile.position.y);
                return result;
            }
            if (!m_impl->Verify(tile, tile.position, kNeighbours)) {
                if (why)
                    *why = QCoreApplication::translate(
                        "Stitcher", "the pictures it overlaps disagree about where it lies");
                return result;
            }
        }
    }
    result.found = true;
    result.position = QPointF(tile.position.x, tile.position.y);
    KeepBrightness(tile, gray);
    tile.lastCompared = ++m_impl->comparisons;
    m_impl->tiles.push_back(std::move(tile));
    m_impl->shadingKnown = false;
    m_impl->weights.clear();
    result.added = true;
    return result;
}

int Stitcher::Count() const
{
    return int(m_impl->tiles.size());
}

QSize Stitcher::Size() const
{
    if (m_impl->tiles.empty())
        return {};
    const cv::Point2d origin = m_impl->Origin();
    double right = 0.0, bottom = 0.0;
    for (const StitchTile& tile : m_impl->tiles) {
        right = std::max(right, tile.position.x - origin.x + tile.rgb.cols);
        bottom = std::max(bottom, tile.position.y - origin.y + tile.rgb.rows);
    }
    // A union a hair past a whole pixel does not earn a column of its own.
    return { int(std::ceil(right - 1e-3)), int(std::ceil(bottom - 1e-3)) };
}

QPointF Stitcher::Position(int index) const
{
    if (index < 0 || index >= Count())
        return {};
    const cv::Point2d at = m_impl->tiles[size_t(index)].position - m_impl->Origin();
    return { at.x, at.y };
}

std::size_t Stitcher::HeldBytes() const
{
    std::size_t bytes = 0;
    for (const StitchTile& tile : m_impl->tiles)
        bytes += tile.rgb.total() * tile.rgb.elemSize() + tile.logSmall.total() * tile.logSmall.elemSize()
            + Registration::Bytes(tile.prepared);
    return bytes;
}

QImage Stitcher::Compose()
{
    return Compose(QRect(QPoint(0, 0), Size()));
}

QImage Stitcher::Compose(const QRect& region)
{
    if (region.isEmpty() || m_impl->tiles.empty())
        return {};
    if (!m_impl->shadingKnown) {
        m_impl->EstimateShading();
        m_impl->weights.clear();
    }
    QImage out(region.size(), QImage::Format_RGB888);
    if (out.isNull())
        return {};
    out.fill(Qt::black);
    const cv::Point2d origin = m_impl->Origin();
    for (int top = region.top(); top <= region.bottom(); top += kBand) {
        const cv::Rect band(region.left(), top, region.width(), std::min(kBand, region.bottom() + 1 - top));
        cv::Mat sum = cv::Mat::zeros(band.size(), CV_32FC3);
        cv::Mat total = cv::Mat::zeros(band.size(), CV_32F);
        for (const StitchTile& tile : m_impl->tiles) {
            const cv::Point2d at = tile.position - origin;
            const cv::Rect covered(int(std::floor(at.x)), int(std::floor(at.y)),
                int(std::ceil(at.x + tile.rgb.cols)) - int(std::floor(at.x)),
                int(std::ceil(at.y + tile.rgb.rows)) - int(std::floor(at.y)));
            const cv::Rect part = covered & band;
            if (part.empty())
                continue;
            const auto& [feather, shaded] = m_impl->WeightsFor(tile.rgb.size());
            // Output pixel p shows the picture's pixel p - at.
            const cv::Matx23d map(1, 0, part.x - at.x, 0, 1, part.y - at.y);
            const int flags = cv::INTER_LINEAR | cv::WARP_INVERSE_MAP;
            cv::Mat pixels, w, ws;
            cv::warpAffine(tile.rgb, pixels, map, part.size(), flags, cv::BORDER_REPLICATE);
            cv::warpAffine(feather, w, map, part.size(), flags, cv::BORDER_CONSTANT, cv::Scalar(0));
            cv::warpAffine(shaded, ws, map, part.size(), flags, cv::BORDER_CONSTANT, cv::Scalar(0));
            ws *= std::exp(-tile.gain);
            pixels.convertTo(pixels, CV_32FC3);
            cv::Mat ws3;
            cv::merge(std::vector<cv::Mat> { ws, ws, ws }, ws3);
            const cv::Rect local = part - band.tl();
            sum(local) += pixels.mul(ws3);
            total(local) += w;
        }
        for (int y = 0; y < band.height; ++y) {
            const float* s = sum.ptr<float>(y);
            const float* t = total.ptr<float>(y);
            uchar* line = out.scanLine(band.y - region.top() + y);
            for (int x = 0; x < band.width; ++x) {
                if (t[x] <= 1e-6f)
                    continue;
                for (int c = 0; c < 3; ++c)
                    line[3 * x + c] = cv::saturate_cast<uchar>(s[3 * x + c] / t[x]);
            }
        }
    }
    return out;
}

double Stitcher::CornerShading()
{
    if (!m_impl->shadingKnown) {
        m_impl->EstimateShading();
        m_impl->weights.clear();
    }
    return std::exp(m_impl->Shading(1.0));
}

std::optional<QPointF> Stitcher::PairShift(const QImage& reference, const QImage& moving, double minOverlap)
{
    if (reference.isNull() || moving.isNull())
        return std::nullopt;
    const Registration::Prepared a = Registration::Prepare(GrayOf(RgbOf(reference)));
    const Registration::Prepared b = Registration::Prepare(GrayOf(RgbOf(moving)));
    const Registration::Match coarse = Registration::Coarse(a, b, minOverlap);
    if (!coarse.ok)
        return std::nullopt;
    const Registration::Match fine = Registration::Refine(a, b, coarse.shift, minOverlap);
    if (!fine.ok)
        return std::nullopt;
    return QPointF(fine.shift.x, fine.shift.y);
}
