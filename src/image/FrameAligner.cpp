#include "image/FrameAligner.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace {

// The finest level used is at most this wide or high.
constexpr int kFinestSide = 800;
// The coarsest level is at least this wide and high.
constexpr int kCoarsestSide = 48;
// The search reaches this share of the coarsest level's width and height.
constexpr double kSearchShare = 0.2;
// A best match below this correlation is no evidence of a shift.
constexpr double kSearchTrust = 0.3;
// Pixels this close to either picture's edge are left out: the smoothing
// made them up from mirrored pixels, which the other picture does not share.
constexpr int kMargin = 4;

void Gradients(const cv::Mat& level, cv::Mat& gx, cv::Mat& gy)
{
    cv::Sobel(level, gx, CV_32F, 1, 0, 3, 1.0 / 8.0);
    cv::Sobel(level, gy, CV_32F, 0, 1, 3, 1.0 / 8.0);
}

// The affine map from a level's reference pixel to the frame's pixel there
// (the warp in that level's units; k full pixels to a level pixel).
cv::Matx23d LevelMap(const FrameWarp& warp, const cv::Point2d& centre, double k)
{
    const double cx = centre.x / k;
    const double cy = centre.y / k;
    return { warp.scale, 0.0, cx - warp.scale * cx + warp.dx / k, 0.0, warp.scale,
        cy - warp.scale * cy + warp.dy / k };
}

} // namespace

FrameAligner::FrameAligner(const cv::Mat& reference)
    : m_size(reference.size())
    , m_centre((reference.cols - 1) / 2.0, (reference.rows - 1) / 2.0)
{
    while ((reference.cols >> m_skip) > kFinestSide || (reference.rows >> m_skip) > kFinestSide)
        ++m_skip;
    SetReference(Pyramid(reference));
}

void FrameAligner::SetReference(std::vector<cv::Mat> pyramid)
{
    m_reference = std::move(pyramid);
    m_gradX.resize(m_reference.size());
    m_gradY.resize(m_reference.size());
    for (std::size_t l = 0; l < m_reference.size(); ++l)
        Gradients(m_reference[l], m_gradX[l], m_gradY[l]);
}

FrameWarp FrameAligner::AlignAndAdvance(const cv::Mat& frame, const FrameWarp& start)
{
    if (frame.size() != m_size || m_reference.empty())
        return start;
    std::vector<cv::Mat> moving = Pyramid(frame);
    const FrameWarp warp = AlignPyramid(moving, start);
    SetReference(std::move(moving));
    return warp;
}

std::vector<cv::Mat> FrameAligner::Pyramid(const cv::Mat& gray) const
{
    cv::Mat level;
    gray.convertTo(level, CV_32F);
    for (int i = 0; i < m_skip; ++i)
        cv::pyrDown(level, level);
    std::vector<cv::Mat> pyramid;
    // Noise and fine texture that only one frame holds in focus would pull
    // the finest level; a light blur leaves the shared structure.
    cv::Mat smooth;
    cv::GaussianBlur(level, smooth, cv::Size(5, 5), 1.0);
    pyramid.push_back(smooth);
    while (pyramid.back().cols / 2 >= kCoarsestSide && pyramid.back().rows / 2 >= kCoarsestSide) {
        cv::Mat next;
        cv::pyrDown(pyramid.back(), next);
        pyramid.push_back(next);
    }
    return pyramid;
}

FrameWarp FrameAligner::Align(const cv::Mat& frame, const FrameWarp& start) const
{
    if (frame.size() != m_size || m_reference.empty())
        return start;
    return AlignPyramid(Pyramid(frame), start);
}

FrameWarp FrameAligner::AlignPyramid(const std::vector<cv::Mat>& moving, const FrameWarp& start) const
{
    FrameWarp warp = start;
    cv::Mat warped;
    {
        // Shifts beyond the gradient's reach: the frame's middle searched for
        // over the reference at the coarsest level, to a whole level pixel.
        const std::size_t l = moving.size() - 1;
        const cv::Mat& ref = m_reference[l];
        const double k = double(1 << (m_skip + int(l)));
        cv::warpAffine(moving[l], warped, cv::Mat(LevelMap(warp, m_centre, k)), ref.size(),
            cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REFLECT);
        const cv::Point margin(int(ref.cols * kSearchShare), int(ref.rows * kSearchShare));
        const cv::Mat middle
            = warped(cv::Rect(margin, cv::Size(ref.cols - 2 * margin.x, ref.rows - 2 * margin.y)));
        cv::Mat score;
        cv::matchTemplate(ref, middle, score, cv::TM_CCOEFF_NORMED);
        double best = 0.0;
        cv::Point at;
        cv::minMaxLoc(score, nullptr, &best, nullptr, &at);
        // The warped frame at p shows the reference at p + (at - margin).
        if (best > kSearchTrust) {
            warp.dx -= warp.scale * (at.x - margin.x) * k;
            warp.dy -= warp.scale * (at.y - margin.y) * k;
        }
    }
    cv::Mat gx;
    cv::Mat gy;
    for (int l = int(moving.size()) - 1; l >= 0; --l) {
        const cv::Mat& ref = m_reference[std::size_t(l)];
        const double k = double(1 << (m_skip + l));
        const cv::Point2d c(m_centre.x / k, m_centre.y / k);
        const int iterations = l == 0 ? 8 : 12;
        for (int it = 0; it < iterations; ++it) {
            const cv::Matx23d map = LevelMap(warp, m_centre, k);
            cv::warpAffine(moving[std::size_t(l)], warped, cv::Mat(map), ref.size(),
                cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
            Gradients(warped, gx, gy);
            const int w = moving[std::size_t(l)].cols;
            const int h = moving[std::size_t(l)].rows;
            cv::Matx33d hessian = cv::Matx33d::zeros();
            cv::Vec3d gradient(0, 0, 0);
            for (int y = kMargin; y < ref.rows - kMargin; ++y) {
                const float* r = ref.ptr<float>(y);
                const float* m = warped.ptr<float>(y);
                const float* rx = m_gradX[std::size_t(l)].ptr<float>(y);
                const float* ry = m_gradY[std::size_t(l)].ptr<float>(y);
                const float* mx = gx.ptr<float>(y);
                const float* my = gy.ptr<float>(y);
                const double sy = map(1, 1) * y + map(1, 2);
                if (sy < kMargin || sy > h - 1 - kMargin)
                    continue;
                // Accumulated per row in single sums, then added: a megapixel
                // of products in one double keeps its precision either way.
                double a[9] = {};
                for (int x = kMargin; x < ref.cols - kMargin; ++x) {
                    const double sx = map(0, 0) * x + map(0, 2);
                    if (sx < kMargin || sx > w - 1 - kMargin)
                        continue;
                    const double jx = 0.5 * (rx[x] + mx[x]);
                    const double jy = 0.5 * (ry[x] + my[x]);
                    const double js = jx * (x - c.x) + jy * (y - c.y);
                    const double e = double(m[x]) - r[x];
                    a[0] += jx * jx;
                    a[1] += jx * jy;
                    a[2] += jx * js;
                    a[3] += jy * jy;
                    a[4] += jy * js;
                    a[5] += js * js;
                    a[6] += jx * e;
                    a[7] += jy * e;
                    a[8] += js * e;
                }
                hessian(0, 0) += a[0];
                hessian(0, 1) += a[1];
                hessian(0, 2) += a[2];
                hessian(1, 1) += a[3];
                hessian(1, 2) += a[4];
                hessian(2, 2) += a[5];
                gradient += cv::Vec3d(a[6], a[7], a[8]);
            }
            hessian(1, 0) = hessian(0, 1);
            hessian(2, 0) = hessian(0, 2);
            hessian(2, 1) = hessian(1, 2);
            cv::Vec3d step;
            if (!cv::solve(hessian, -gradient, step, cv::DECOMP_CHOLESKY) || !std::isfinite(step[0])
                || !std::isfinite(step[1]) || !std::isfinite(step[2]))
                return start;
            warp.dx += step[0] * k;
            warp.dy += step[1] * k;
            warp.scale += step[2];
            const double moved = std::hypot(step[0], step[1]) + std::abs(step[2]) * ref.cols;
            if (moved < 0.005)
                break;
        }
    }
    return warp;
}
