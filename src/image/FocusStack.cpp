#include "image/FocusStack.h"

#include "image/FrameAligner.h"

#include <QCoreApplication>

#include <algorithm>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

// The window of the focus measure, full-resolution pixels.
constexpr double kFocusWindowSigma = 4.0;
// The smallest pyramid level is at least this wide and high.
constexpr int kTopSide = 16;
constexpr double kPyramidScale = 8.0;

// An 8-bit RGB copy of the picture and a matrix over it.
struct Rgb
{
    QImage image;
    cv::Mat mat;
};

Rgb ToRgb(const QImage& picture)
{
    Rgb rgb { picture.convertToFormat(QImage::Format_RGB888), {} };
    rgb.mat = cv::Mat(rgb.image.height(), rgb.image.width(), CV_8UC3, rgb.image.bits(),
        std::size_t(rgb.image.bytesPerLine()));
    return rgb;
}

cv::Mat Gray(const cv::Mat& rgb)
{
    cv::Mat gray;
    cv::cvtColor(rgb, gray, cv::COLOR_RGB2GRAY);
    return gray;
}

int Levels(cv::Size size)
{
    int levels = 1;
    while ((size.width >> levels) >= kTopSide && (size.height >> levels) >= kTopSide && levels < 8)
        ++levels;
    return levels;
}

// Runs the work on bands of rows on all cores. A band taken out of a whole
// matrix keeps its neighbours' rows for the filters' borders, so a filter
// band by band gives the same pixels as over the whole; most of OpenCV's
// filters and element-wise operations use a single core by themselves.
template <typename Work> void InBands(int rows, const Work& work)
{
    cv::parallel_for_(
        cv::Range(0, rows),
        [&](const cv::Range& band) {
            if (!band.empty())
                work(band);
        },
        std::max(1, 2 * cv::getNumThreads()));
}

// pyrDown and pyrUp on both cores. They mirror their input at its ends
// rather than read the rows beyond, so each band works on its rows and a few
// either side, starting on an even row, and keeps the rows of its own.
void PyrDownInBands(const cv::Mat& source, cv::Mat& result)
{
    result.create((source.rows + 1) / 2, (source.cols + 1) / 2, source.type());
    InBands(result.rows, [&](const cv::Range& rows) {
        const cv::Range wide(std::max(0, 2 * rows.start - 4), std::min(source.rows, 2 * rows.end + 4));
        cv::Mat band;
        cv::pyrDown(source.rowRange(wide), band);
        const int first = rows.start - wide.start / 2;
        band.rowRange(first, first + rows.size()).copyTo(result.rowRange(rows));
    });
}

void PyrUpInBands(const cv::Mat& source, cv::Mat& result, cv::Size size)
{
    result.create(size, source.type());
    InBands((size.height + 1) / 2, [&](const cv::Range& pairs) {
        // Result rows 2i and 2i + 1 come from source rows i - 1 to i + 1.
        const cv::Range wide(std::max(0, pairs.start - 2), std::min(source.rows, pairs.end + 2));
        const int height = wide.end == source.rows ? size.height - 2 * wide.start : 2 * wide.size();
        cv::Mat band;
        cv::pyrUp(source.rowRange(wide), band, cv::Size(size.width, height));
        const cv::Range rows(2 * pairs.start, std::min(size.height, 2 * pairs.end));
        band.rowRange(rows.start - 2 * wide.start, rows.end - 2 * wide.start).copyTo(result.rowRange(rows));
    });
}

// In 16-bit fixed point, kPyramidScale steps to a level: half the memory
// traffic of floating point, which the pyramid of a large frame is bound by.
std::vector<cv::Mat> LaplacianPyramid(const cv::Mat& rgb8, int levels)
{
    std::vector<cv::Mat> pyramid { std::size_t(levels) };
    cv::Mat current(rgb8.size(), CV_16SC3);
    InBands(rgb8.rows, [&](const cv::Range& rows) {
        rgb8.rowRange(rows).convertTo(current.rowRange(rows), CV_16SC3, kPyramidScale);
    });
    for (int l = 0; l < levels - 1; ++l) {
        cv::Mat down;
        cv::Mat up;
        PyrDownInBands(current, down);
        PyrUpInBands(down, up, current.size());
        cv::Mat& level = pyramid[std::size_t(l)];
        level.create(current.size(), CV_16SC3);
        InBands(current.rows, [&](const cv::Range& rows) {
            cv::subtract(current.rowRange(rows), up.rowRange(rows), level.rowRange(rows));
        });
        current = down;
    }
    pyramid.back() = current;
    return pyramid;
}

// Local energy of the Laplacian: high where the picture is in focus. The
// window makes one decision per neighbourhood rather than per pixel, so the
// choice does not follow noise.
cv::Mat FocusMeasure(const cv::Mat& gray8)
{
    cv::Mat energy(gray8.size(), CV_32F);
    InBands(gray8.rows, [&](const cv::Range& rows) {
        cv::Mat laplacian;
        cv::Laplacian(gray8.rowRange(rows), laplacian, CV_32F, 1);
        cv::multiply(laplacian, laplacian, energy.rowRange(rows));
    });
    cv::Mat focus(gray8.size(), CV_32F);
    InBands(gray8.rows, [&](const cv::Range& rows) {
        cv::GaussianBlur(energy.rowRange(rows), focus.rowRange(rows), cv::Size(), kFocusWindowSigma);
    });
    return focus;
}

// fused += weight * (frame - fused), per level, the weight one channel.
void Blend(cv::Mat& fused, const cv::Mat& frame, const cv::Mat& weight)
{
    cv::parallel_for_(cv::Range(0, fused.rows), [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            short* f = fused.ptr<short>(y);
            const short* n = frame.ptr<short>(y);
            const float* w = weight.ptr<float>(y);
            for (int x = 0; x < fused.cols; ++x) {
                const float k = w[x];
                if (k <= 0.0f)
                    continue;
                // The finest level's weights are all 0 or 1, and the
                // frame's value is then taken exactly.
                if (k >= 1.0f) {
                    std::copy_n(n + 3 * x, 3, f + 3 * x);
                    continue;
                }
                for (int c = 3 * x; c < 3 * x + 3; ++c)
                    f[c] = short(std::lround(f[c] + k * float(n[c] - f[c])));
            }
        }
    });
}

// The first frame's pixels that the warped frame covers.
cv::Rect Covered(const FrameWarp& warp, cv::Size size)
{
    const double cx = (size.width - 1) / 2.0;
    const double cy = (size.height - 1) / 2.0;
    // Inverse of the warp at the frame's first and last pixel centres.
    const double x0 = std::ceil((0.0 - cx - warp.dx) / warp.scale + cx);
    const double x1 = std::floor((size.width - 1 - cx - warp.dx) / warp.scale + cx);
    const double y0 = std::ceil((0.0 - cy - warp.dy) / warp.scale + cy);
    const double y1 = std::floor((size.height - 1 - cy - warp.dy) / warp.scale + cy);
    const cv::Rect all(0, 0, size.width, size.height);
    if (x1 < x0 || y1 < y0)
        return {};
    const auto clampTo = [](double v, int hi) { return int(std::clamp(v, 0.0, double(hi))); };
    return cv::Rect(cv::Point(clampTo(x0, size.width), clampTo(y0, size.height)),
               cv::Point(clampTo(x1 + 1, size.width), clampTo(y1 + 1, size.height)))
        & all;
}

} // namespace

struct FocusStack::State
{
    cv::Size size;
    int levels = 0;
    std::unique_ptr<FrameAligner> aligner;
    // The last frame's warp over the one before, where the next search starts.
    FrameWarp step;
    std::vector<cv::Mat> fused;
    cv::Mat best;
    cv::Mat index;
    std::vector<FrameWarp> warps;
    QString error;
};

FocusStack::FocusStack()
    : m(std::make_unique<State>())
{
}

FocusStack::~FocusStack() = default;

int FocusStack::Count() const
{
    return int(m->warps.size());
}

QString FocusStack::ErrorString() const
{
    return m->error;
}

const std::vector<FrameWarp>& FocusStack::Warps() const
{
    return m->warps;
}

bool FocusStack::Add(const QImage& frame)
{
    if (frame.isNull()) {
        m->error = QCoreApplication::translate("FocusStack", "The picture is empty.");
        return false;
    }
    if (Count() > 0 && (frame.width() != m->size.width || frame.height() != m->size.height)) {
        m->error = QCoreApplication::translate(
            "FocusStack", "The picture is %1 x %2 pixels, the first of the series %3 x %4.")
                       .arg(frame.width())
                       .arg(frame.height())
                       .arg(m->size.width)
                       .arg(m->size.height);
        return false;
    }
    if (Count() >= 65535) {
        m->error = QCoreApplication::translate("FocusStack", "The series is full.");
        return false;
    }
    m->error.clear();
    const Rgb rgb = ToRgb(frame);
    const cv::Mat gray = Gray(rgb.mat);
    if (Count() == 0) {
        m->size = rgb.mat.size();
        m->levels = Levels(m->size);
        m->aligner = std::make_unique<FrameAligner>(gray);
        m->fused = LaplacianPyramid(rgb.mat, m->levels);
        m->best = FocusMeasure(gray);
        m->index = cv::Mat::zeros(m->size, CV_16U);
        m->warps.push_back({});
        return true;
    }

    // Over the previous frame, then over the first: scales multiply, and
    // the previous warp's shift is scaled by the step's.
    m->step = m->aligner->AlignAndAdvance(gray, m->step);
    const FrameWarp& last = m->warps.back();
    const FrameWarp warp { m->step.scale * last.dx + m->step.dx, m->step.scale * last.dy + m->step.dy,
        m->step.scale * last.scale };
    const double cx = (m->size.width - 1) / 2.0;
    const double cy = (m->size.height - 1) / 2.0;
    const cv::Matx23d map(
        warp.scale, 0.0, cx - warp.scale * cx + warp.dx, 0.0, warp.scale, cy - warp.scale * cy + warp.dy);
    cv::Mat warped;
    cv::warpAffine(rgb.mat, warped, cv::Mat(map), m->size, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
        cv::BORDER_REPLICATE);
    const cv::Mat focus = FocusMeasure(Gray(warped));

    // Where this frame is sharper than every earlier one, cleaned of lone
    // pixels, and only where the frame has pixels of its own.
    cv::Mat sharper(m->size, CV_8U);
    InBands(m->size.height, [&](const cv::Range& rows) {
        cv::compare(focus.rowRange(rows), m->best.rowRange(rows), sharper.rowRange(rows), cv::CMP_GT);
    });
    const cv::Rect covered = Covered(warp, m->size);
    cv::Mat chosen(m->size, CV_8U);
    cv::Mat weight(m->size, CV_32F);
    InBands(m->size.height, [&](const cv::Range& rows) {
        // The median replicates the rows at its input's ends: given the
        // band with the two rows either side, its own rows come out as over
        // the whole picture.
        const cv::Range wide(std::max(0, rows.start - 2), std::min(m->size.height, rows.end + 2));
        cv::Mat median;
        cv::medianBlur(sharper.rowRange(wide), median, 5);
        cv::Mat band = chosen.rowRange(rows);
        median.rowRange(rows.start - wide.start, rows.end - wide.start).copyTo(band);
        for (int y = rows.start; y < rows.end; ++y)
            if (y < covered.y || y >= covered.y + covered.height)
                chosen.row(y).setTo(0);
            else {
                chosen.row(y).colRange(0, covered.x).setTo(0);
                chosen.row(y).colRange(covered.x + covered.width, m->size.width).setTo(0);
            }
        focus.rowRange(rows).copyTo(m->best.rowRange(rows), band);
        m->index.rowRange(rows).setTo(Count(), band);
        // Each level blends with the choice smoothed to its own scale, so a
        // depth step is a soft seam at coarse scales and a sharp one at fine
        // scales: no ringing, and nothing is added to flat regions' noise.
        band.convertTo(weight.rowRange(rows), CV_32F, 1.0 / 255.0);
    });
    const std::vector<cv::Mat> pyramid = LaplacianPyramid(warped, m->levels);
    for (int l = 0; l < m->levels; ++l) {
        if (l > 0) {
            cv::Mat finer = weight;
            PyrDownInBands(finer, weight);
        }
        Blend(m->fused[std::size_t(l)], pyramid[std::size_t(l)], weight);
    }
    m->warps.push_back(warp);
    return true;
}

QImage FocusStack::Result() const
{
    if (Count() == 0)
        return {};
    cv::Mat current = m->fused.back();
    for (int l = m->levels - 2; l >= 0; --l) {
        cv::Mat up;
        PyrUpInBands(current, up, m->fused[std::size_t(l)].size());
        cv::add(up, m->fused[std::size_t(l)], current);
    }
    QImage result(m->size.width, m->size.height, QImage::Format_RGB888);
    cv::Mat out(result.height(), result.width(), CV_8UC3, result.bits(), std::size_t(result.bytesPerLine()));
    current.convertTo(out, CV_8UC3, 1.0 / kPyramidScale);
    return result;
}

std::vector<float> FocusStack::DepthIndex() const
{
    if (Count() == 0)
        return {};
    cv::Mat median;
    cv::medianBlur(m->index, median, 5);
    cv::Mat depth;
    median.convertTo(depth, CV_32F);
    cv::GaussianBlur(depth, depth, cv::Size(), 2.0);
    std::vector<float> values(std::size_t(depth.total()));
    depth.copyTo(cv::Mat(depth.size(), CV_32F, values.data()));
    return values;
}

QImage FocusStack::DepthPicture() const
{
    if (Count() == 0)
        return {};
    const std::vector<float> depth = DepthIndex();
    QImage picture(m->size.width, m->size.height, QImage::Format_Grayscale8);
    const float k = Count() > 1 ? 255.0f / float(Count() - 1) : 0.0f;
    for (int y = 0; y < picture.height(); ++y) {
        uchar* row = picture.scanLine(y);
        const float* d = depth.data() + std::size_t(y) * std::size_t(picture.width());
        for (int x = 0; x < picture.width(); ++x)
            row[x] = uchar(std::clamp(int(std::lround(d[x] * k)), 0, 255));
    }
    return picture;
}

FrameWarp FocusStack::Align(const QImage& reference, const QImage& frame)
{
    if (reference.isNull() || frame.size() != reference.size())
        return {};
    const FrameAligner aligner(Gray(ToRgb(reference).mat));
    return aligner.Align(Gray(ToRgb(frame).mat), {});
}
