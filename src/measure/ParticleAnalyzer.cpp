#include "measure/ParticleAnalyzer.h"

#include "image/BinaryWatershed.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLShape.h"
#include "measure/ShapeKinds.h"
#include "platform/NumberText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <opencv2/imgproc.hpp>

namespace {

struct Labels
{
    const std::int32_t* data;
    int width;
    int height;
    bool Is(int x, int y, std::int32_t label) const
    {
        return x >= 0 && y >= 0 && x < width && y < height && data[std::size_t(y) * width + x] == label;
    }
};

// Follows the pixel edges around a particle from the top-left corner of its
// first pixel, keeping it on the right; a diagonal neighbour is turned to, so
// the outline is that of the 8-connected particle. Only corners are kept.
// The first two corners found are the ends of the top row's first run.
std::vector<QPoint> TraceOutline(const Labels& labels, std::int32_t label, QPoint start)
{
    // Right, down, left, up: turning right is the next one.
    constexpr int kDx[4] = { 1, 0, -1, 0 };
    constexpr int kDy[4] = { 0, 1, 0, -1 };
    // The pixels left and right of the edge leaving a corner in each direction.
    constexpr int kLeftX[4] = { 0, 0, -1, -1 };
    constexpr int kLeftY[4] = { -1, 0, 0, -1 };
    constexpr int kRightX[4] = { 0, -1, -1, 0 };
    constexpr int kRightY[4] = { 0, 0, -1, -1 };
    std::vector<QPoint> corners;
    QPoint at = start;
    int dir = 0;
    do {
        at += QPoint(kDx[dir], kDy[dir]);
        int next = dir;
        if (labels.Is(at.x() + kLeftX[dir], at.y() + kLeftY[dir], label))
            next = (dir + 3) % 4;
        else if (!labels.Is(at.x() + kRightX[dir], at.y() + kRightY[dir], label))
            next = (dir + 1) % 4;
        if (next != dir)
            corners.push_back(at);
        dir = next;
    } while (at != start || dir != 0);
    // ImageJ's list starts after the top row's right end, where its tracer
    // begins; the corners cut along a staircase depend on where it starts.
    if (corners.size() > 2)
        std::rotate(corners.begin(), corners.begin() + 1, corners.end());
    return corners;
}

// Edge lengths with each pair of edges meeting at a corner cut by the
// diagonal, except where a one-pixel step follows a corner already cut.
double TracedPerimeter(const std::vector<QPoint>& p, double w, double h)
{
    const std::size_t n = p.size();
    if (n < 4)
        return 0.0;
    long sumDx = 0;
    long sumDy = 0;
    int corners = 0;
    int dx1 = p[0].x() - p[n - 1].x();
    int dy1 = p[0].y() - p[n - 1].y();
    int side1 = std::abs(dx1) + std::abs(dy1);
    bool cut = false;
    for (std::size_t i = 0; i < n; ++i) {
        const QPoint& next = p[(i + 1) % n];
        const int dx2 = next.x() - p[i].x();
        const int dy2 = next.y() - p[i].y();
        sumDx += std::abs(dx1);
        sumDy += std::abs(dy1);
        if (side1 > 1 || !cut) {
            cut = true;
            ++corners;
        } else {
            cut = false;
        }
        dx1 = dx2;
        dy1 = dy2;
        side1 = std::abs(dx2) + std::abs(dy2);
    }
    return double(sumDx) * w + double(sumDy) * h - corners * ((w + h) - std::sqrt(w * w + h * h));
}

// Marks the pixels whose centres lie inside the outline and sums them up.
struct Filled
{
    qint64 pixels = 0;
    double sumX = 0.0;
    double sumY = 0.0;
};

Filled FillOutline(
    const std::vector<QPoint>& outline, const QRect& bounds, std::vector<std::uint8_t>& covered, int width)
{
    Filled filled;
    std::vector<std::vector<int>> crossings(std::size_t(bounds.height()));
    const std::size_t n = outline.size();
    for (std::size_t i = 0; i < n; ++i) {
        const QPoint& a = outline[i];
        const QPoint& b = outline[(i + 1) % n];
        if (a.x() != b.x())
            continue;
        for (int y = std::min(a.y(), b.y()); y < std::max(a.y(), b.y()); ++y)
            crossings[std::size_t(y - bounds.top())].push_back(a.x());
    }
    for (int row = 0; row < bounds.height(); ++row) {
        std::vector<int>& xs = crossings[std::size_t(row)];
        std::sort(xs.begin(), xs.end());
        const int y = bounds.top() + row;
        for (std::size_t i = 0; i + 1 < xs.size(); i += 2) {
            for (int x = xs[i]; x < xs[i + 1]; ++x) {
                covered[std::size_t(y) * width + x] = 1;
                ++filled.pixels;
                filled.sumX += x;
                filled.sumY += y;
            }
        }
    }
    return filled;
}

} // namespace

ParticleResult AnalyzeParticles(
    const QImage& picture, const ParticleOptions& options, const CalibrationRecord* unit)
{
    ParticleResult result;
    const std::vector<std::uint8_t> gray = GrayThreshold::GrayLevels(picture);
    if (gray.empty())
        return result;
    const int width = picture.width();
    const int height = picture.height();
    if (options.method) {
        const int level = GrayThreshold::Level(*options.method, GrayThreshold::HistogramOf(gray));
        result.low = options.dark ? 0 : level + 1;
        result.high = options.dark ? level : 255;
    } else {
        result.low = std::clamp(options.low, 0, 255);
        result.high = std::clamp(options.high, 0, 255);
    }
    std::vector<std::uint8_t> mask(gray.size());
    for (std::size_t i = 0; i < gray.size(); ++i)
        mask[i] = gray[i] >= result.low && gray[i] <= result.high ? 255 : 0;
    if (options.watershed)
        SplitTouchingParticles(mask, width, height);

    cv::Mat binary(height, width, CV_8U, mask.data());
    cv::Mat labelMat, stats, centroids;
    const int count = cv::connectedComponentsWithStats(binary, labelMat, stats, centroids, 8, CV_32S);
    const Labels labels { labelMat.ptr<std::int32_t>(), width, height };
    const double w = unit ? unit->m_dcxPerPixel : 1.0;
    const double h = unit ? unit->m_dcyPerPixel : 1.0;

    // OpenCV numbers components by blocks of two rows; ImageJ lists them in
    // the order a row-by-row scan first meets them. With holes included, a
    // particle inside another's hole belongs to that one.
    std::vector<std::size_t> first(std::size_t(count), mask.size());
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (const std::int32_t label = labels.data[i]; label > 0 && first[std::size_t(label)] == mask.size())
            first[std::size_t(label)] = i;
    std::vector<int> order;
    for (int label = 1; label < count; ++label)
        order.push_back(label);
    std::sort(order.begin(), order.end(),
        [&first](int a, int b) { return first[std::size_t(a)] < first[std::size_t(b)]; });
    std::vector<std::uint8_t> covered;
    if (options.includeHoles)
        covered.assign(mask.size(), 0);
    for (const int label : order) {
        const QRect bounds(stats.at<int>(label, cv::CC_STAT_LEFT), stats.at<int>(label, cv::CC_STAT_TOP),
            stats.at<int>(label, cv::CC_STAT_WIDTH), stats.at<int>(label, cv::CC_STAT_HEIGHT));
        const std::size_t at = first[std::size_t(label)];
        const QPoint start(int(at % std::size_t(width)), int(at / std::size_t(width)));
        if (options.includeHoles && covered[at])
            continue;
        Particle particle;
        particle.outline = TraceOutline(labels, label, start);
        particle.bounds = bounds;
        double cx = centroids.at<double>(label, 0);
        double cy = centroids.at<double>(label, 1);
        particle.pixels = stats.at<int>(label, cv::CC_STAT_AREA);
        if (options.includeHoles) {
            const Filled filled = FillOutline(particle.outline, bounds, covered, width);
            particle.pixels = filled.pixels;
            cx = filled.sumX / double(filled.pixels);
            cy = filled.sumY / double(filled.pixels);
        }
        if (options.excludeEdges
            && (bounds.left() == 0 || bounds.top() == 0 || bounds.right() == width - 1
                || bounds.bottom() == height - 1))
            continue;
        if (double(particle.pixels) < options.minArea || double(particle.pixels) > options.maxArea)
            continue;
        particle.area = double(particle.pixels) * w * h;
        particle.perimeter = TracedPerimeter(particle.outline, w, h);
        particle.diameter = std::sqrt(4.0 * particle.area / std::numbers::pi);
        particle.circularity = particle.perimeter > 0.0
            ? std::min(
                1.0, 4.0 * std::numbers::pi * particle.area / (particle.perimeter * particle.perimeter))
            : 0.0;
        if (particle.circularity < options.minCircularity || particle.circularity > options.maxCircularity)
            continue;
        particle.x = (cx + 0.5) * w;
        particle.y = (cy + 0.5) * h;
        result.particles.push_back(std::move(particle));
    }
    return result;
}

std::size_t AddOutlineShapes(CGVLElemMgr& mgr, const std::vector<Particle>& particles)
{
    const ShapeKind* polygonKind = FindShapeKind(int(ShapeType::Polygon));
    std::vector<std::unique_ptr<CGVLShape>> outlines;
    outlines.reserve(particles.size());
    for (const Particle& particle : particles) {
        std::unique_ptr<CGVLShape> polygon = polygonKind->factory.make(mgr);
        if (polygon->TakeStoredPoints(particle.outline))
            outlines.push_back(std::move(polygon));
    }
    const std::size_t added = outlines.size();
    // All at once: thousands of outlines cost one change and one repaint.
    mgr.AppendShapes(std::move(outlines));
    return added;
}

QByteArray ParticleCsv(const std::vector<Particle>& particles, const QString& unit, int precision)
{
    QByteArray csv = "No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit\n";
    const auto number = [precision](double value) { return NumberText::FormatC("%.*f", precision, value); };
    int no = 0;
    for (const Particle& p : particles) {
        const QStringList fields { QString::number(++no), number(p.area), number(p.perimeter),
            number(p.diameter), number(p.circularity), number(p.x), number(p.y), unit };
        csv += fields.join(QLatin1Char(',')).toUtf8() + '\n';
    }
    return csv;
}

ParticleSummary Summarize(const std::vector<Particle>& particles, double pictureArea)
{
    ParticleSummary summary;
    summary.count = particles.size();
    if (particles.empty())
        return summary;
    for (const Particle& p : particles)
        summary.totalArea += p.area;
    summary.meanArea = summary.totalArea / double(particles.size());
    if (particles.size() > 1) {
        double squares = 0.0;
        for (const Particle& p : particles)
            squares += (p.area - summary.meanArea) * (p.area - summary.meanArea);
        summary.areaDeviation = std::sqrt(squares / double(particles.size() - 1));
    }
    summary.areaFraction = pictureArea > 0.0 ? summary.totalArea / pictureArea : 0.0;
    return summary;
}

AreaHistogram HistogramOfAreas(const std::vector<Particle>& particles, int classes)
{
    AreaHistogram histogram;
    if (particles.empty() || classes < 1)
        return histogram;
    const auto [low, high] = std::minmax_element(particles.begin(), particles.end(),
        [](const Particle& a, const Particle& b) { return a.area < b.area; });
    histogram.from = low->area;
    // All of one size: one class holds them.
    histogram.classWidth = high->area > low->area ? (high->area - low->area) / classes : 1.0;
    histogram.counts.assign(std::size_t(classes), 0);
    for (const Particle& p : particles) {
        const int c = int((p.area - histogram.from) / histogram.classWidth);
        ++histogram.counts[std::size_t(std::clamp(c, 0, classes - 1))];
    }
    return histogram;
}
