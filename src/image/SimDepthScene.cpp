#include "image/SimDepthScene.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

// Texture at several scales: the relief needs detail at every focus for
// sharpness to be told, as a stained specimen has.
cv::Mat Texture(cv::Size size, cv::RNG& rng, cv::Scalar tint)
{
    cv::Mat sum = cv::Mat::zeros(size, CV_32F);
    for (double sigma : { 1.0, 2.5, 6.0 }) {
        cv::Mat noise(size, CV_32F);
        rng.fill(noise, cv::RNG::NORMAL, 0.0, 1.0);
        cv::GaussianBlur(noise, noise, cv::Size(), sigma);
        cv::Scalar mean;
        cv::Scalar spread;
        cv::meanStdDev(noise, mean, spread);
        sum += noise * (1.0 / std::max(spread[0], 1e-6));
    }
    cv::Mat rgb;
    cv::Mat channels[3];
    for (int c = 0; c < 3; ++c)
        channels[c] = sum * (tint[c] * 0.12) + tint[c];
    cv::merge(channels, 3, rgb);
    return rgb;
}

// The affine map from a scene point to the frame pixel showing it.
cv::Matx23d ToFrame(const FrameWarp& warp, cv::Size size)
{
    const double cx = (size.width - 1) / 2.0;
    const double cy = (size.height - 1) / 2.0;
    return { warp.scale, 0.0, cx - warp.scale * cx + warp.dx, 0.0, warp.scale,
        cy - warp.scale * cy + warp.dy };
}

cv::Mat Warped(const cv::Mat& scene, const FrameWarp& warp, int interpolation = cv::INTER_LINEAR)
{
    // warpAffine inverts the forward map: each frame pixel samples the scene point it shows.
    const cv::Matx23d forward = ToFrame(warp, scene.size());
    cv::Mat out;
    cv::warpAffine(scene, out, cv::Mat(forward), scene.size(), interpolation, cv::BORDER_REFLECT);
    return out;
}

QImage ToQImage(const cv::Mat& rgb32)
{
    QImage image(rgb32.cols, rgb32.rows, QImage::Format_RGB888);
    cv::Mat out(image.height(), image.width(), CV_8UC3, image.bits(), std::size_t(image.bytesPerLine()));
    rgb32.convertTo(out, CV_8UC3);
    return image;
}

constexpr std::uint64_t kNoiseWindows = 4001;

} // namespace

struct SimDepthScene::State
{
    Options options;
    cv::Size size;
    cv::Mat height; // CV_32F, micrometres
    cv::Mat sharp; // CV_32FC3
    // The sharp picture blurred by each spread of `sigmas`, CV_8UC3.
    std::vector<double> sigmas;
    std::vector<cv::Mat> blurred;
    // Sensor noise, one row of a frame's values and kNoiseWindows places more.
    cv::Mat noise;
    // The last focus's picture before warp and noise: a live camera asks for
    // the same focus frame after frame, and the mix is most of a frame's cost.
    std::mutex cacheMutex;
    double cachedFocus = -1e300;
    cv::Mat cached;
};

SimDepthScene::SimDepthScene(int width, int height, const Options& options)
    : m(std::make_unique<State>())
{
    m->options = options;
    if (m->options.blurAtDepth <= 0.0)
        m->options.blurAtDepth = width / 120.0;
    m->size = cv::Size(width, height);
    cv::RNG rng(options.seed);
    const double depth = options.depthUm;
    cv::Mat h(m->size, CV_32F);
    cv::Mat material = cv::Mat::zeros(m->size, CV_8U);
    switch (options.relief) {
    case Relief::Steps: {
        // A 4 x 3 grid of terraces, each at its own height, with a raised
        // disc on some.
        std::vector<int> order(12);
        for (int i = 0; i < 12; ++i)
            order[std::size_t(i)] = i;
        for (int i = 11; i > 0; --i)
            std::swap(order[std::size_t(i)], order[std::size_t(rng.uniform(0, i + 1))]);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int cell = std::min(3, x * 4 / width) + 4 * std::min(2, y * 3 / height);
                h.at<float>(y, x) = float(depth * order[std::size_t(cell)] / 11.0);
            }
        break;
    }
    case Relief::Slope:
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                h.at<float>(y, x) = float(depth
                    * (0.08 + 0.62 * x / width + 0.22 * y / height
                        + 0.08 * std::sin(6.2831853 * 1.5 * y / height)));
        break;
    case Relief::Particles: {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                h.at<float>(y, x) = float(depth * 0.25 * x / width);
        // Fibres: long cylinders across the field, at mid height.
        for (int f = 0; f < 3; ++f) {
            const cv::Point a(rng.uniform(0, width), 0);
            const cv::Point b(rng.uniform(0, width), height - 1);
            const int radius = std::max(2, width / 60);
            cv::Mat mask = cv::Mat::zeros(m->size, CV_8U);
            cv::line(mask, a, b, cv::Scalar(255), 2 * radius);
            cv::Mat distance;
            cv::distanceTransform(mask, distance, cv::DIST_L2, 3);
            const float top = float(depth * (0.35 + 0.15 * f));
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    if (mask.at<uchar>(y, x)) {
                        const float d = std::min(distance.at<float>(y, x) / radius, 1.0f);
                        const float z = top - float(depth * 0.08) * (1.0f - std::sqrt(d * (2.0f - d)));
                        if (z > h.at<float>(y, x)) {
                            h.at<float>(y, x) = z;
                            material.at<uchar>(y, x) = 1;
                        }
                    }
        }
        // Particles: domes of several sizes, the biggest the highest.
        for (int p = 0; p < 14; ++p) {
            const int radius = int(std::max(3.0, width * rng.uniform(0.02, 0.07)));
            const cv::Point c(rng.uniform(radius, width - radius), rng.uniform(radius, height - radius));
            const float top = float(depth * std::min(1.0, 0.45 + 0.55 * radius / (width * 0.07)));
            for (int y = std::max(0, c.y - radius); y < std::min(height, c.y + radius); ++y)
                for (int x = std::max(0, c.x - radius); x < std::min(width, c.x + radius); ++x) {
                    const double d2
                        = (double(x - c.x) * (x - c.x) + double(y - c.y) * (y - c.y)) / (radius * radius);
                    if (d2 >= 1.0)
                        continue;
                    const float z = top - float(depth * 0.2 * d2);
                    if (z > h.at<float>(y, x)) {
                        h.at<float>(y, x) = z;
                        material.at<uchar>(y, x) = 2;
                    }
                }
        }
        break;
    }
    }
    m->height = h;

    const cv::Mat ground = Texture(m->size, rng, cv::Scalar(170, 150, 120));
    const cv::Mat fibre = Texture(m->size, rng, cv::Scalar(90, 120, 170));
    const cv::Mat particle = Texture(m->size, rng, cv::Scalar(120, 70, 130));
    m->sharp = ground.clone();
    fibre.copyTo(m->sharp, material == 1);
    particle.copyTo(m->sharp, material == 2);

    const double most = m->options.blurAtDepth * 1.05;
    for (double s = 0.0; s <= most + 1e-9; s = std::max(s + 0.5, s * 1.2))
        m->sigmas.push_back(s);
    if (m->sigmas.back() < most)
        m->sigmas.push_back(most);
    // Kept in 8 bits: a frame is 8 bits anyway, and a large frame needs a
    // dozen or more of these.
    for (double s : m->sigmas) {
        cv::Mat b;
        if (s < 0.3)
            b = m->sharp;
        else
            cv::GaussianBlur(m->sharp, b, cv::Size(), s, s, cv::BORDER_REFLECT);
        cv::Mat b8;
        b.convertTo(b8, CV_8UC3);
        m->blurred.push_back(b8);
    }
    if (m->options.noise > 0.0) {
        m->noise.create(1, int(m->size.area()) * 3 + int(kNoiseWindows) * 3 * 61, CV_32F);
        cv::RNG noiseRng(options.seed * 7919u + 1u);
        noiseRng.fill(m->noise, cv::RNG::NORMAL, 0.0, m->options.noise);
    }
}

SimDepthScene::~SimDepthScene() = default;

int SimDepthScene::Width() const
{
    return m->size.width;
}

int SimDepthScene::Height() const
{
    return m->size.height;
}

const SimDepthScene::Options& SimDepthScene::GetOptions() const
{
    return m->options;
}

FrameWarp SimDepthScene::Warp(double focusUm, std::uint64_t frame) const
{
    const Options& o = m->options;
    return { o.driftX * double(frame), o.driftY * double(frame),
        1.0 + o.breathing * (focusUm / std::max(o.depthUm, 1e-9) - 0.5) };
}

cv::Mat SimDepthScene::Focused(double focusUm) const
{
    {
        std::lock_guard lock(m->cacheMutex);
        if (focusUm == m->cachedFocus)
            return m->cached;
    }
    // Each pixel mixes the two nearest precomputed blurs: a thin lens's
    // blur grows linearly with the distance from the focus.
    const double perUm = m->options.blurAtDepth / std::max(m->options.depthUm, 1e-9);
    cv::Mat scene(m->size, CV_32FC3);
    const std::vector<double>& sigmas = m->sigmas;
    cv::parallel_for_(cv::Range(0, m->size.height), [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            const float* h = m->height.ptr<float>(y);
            cv::Vec3f* out = scene.ptr<cv::Vec3f>(y);
            for (int x = 0; x < m->size.width; ++x) {
                const double s = std::min(std::abs(h[x] - focusUm) * perUm, sigmas.back());
                const std::size_t i
                    = std::size_t(std::upper_bound(sigmas.begin(), sigmas.end(), s) - sigmas.begin() - 1);
                const std::size_t j = std::min(i + 1, sigmas.size() - 1);
                const float t = j == i ? 0.0f : float((s - sigmas[i]) / (sigmas[j] - sigmas[i]));
                const cv::Vec3b& a = m->blurred[i].at<cv::Vec3b>(y, x);
                const cv::Vec3b& b = m->blurred[j].at<cv::Vec3b>(y, x);
                out[x] = cv::Vec3f(a[0] + t * float(b[0] - a[0]), a[1] + t * float(b[1] - a[1]),
                    a[2] + t * float(b[2] - a[2]));
            }
        }
    });
    std::lock_guard lock(m->cacheMutex);
    m->cachedFocus = focusUm;
    m->cached = scene;
    return scene;
}

QImage SimDepthScene::Frame(double focusUm, std::uint64_t frame) const
{
    cv::Mat warped = Warped(Focused(focusUm), Warp(focusUm, frame));
    if (!m->noise.empty()) {
        // A window into the noise drawn once, at a place of its own per
        // frame: drawing a frame's worth of normal numbers costs more than
        // all the rest of a frame.
        const int values = int(warped.total()) * 3;
        const int start = int((frame * 7919u + m->options.seed) % kNoiseWindows) * 3 * 61;
        cv::Mat flat = warped.reshape(1, 1);
        flat += m->noise.colRange(start, start + values);
    }
    return ToQImage(warped);
}

QImage SimDepthScene::AllInFocus(const FrameWarp& warp) const
{
    return ToQImage(Warped(m->sharp, warp));
}

std::vector<float> SimDepthScene::HeightMap(const FrameWarp& warp) const
{
    const cv::Mat h = Warped(m->height, warp, cv::INTER_NEAREST);
    std::vector<float> values(std::size_t(h.total()));
    h.copyTo(cv::Mat(h.size(), CV_32F, values.data()));
    return values;
}

std::vector<bool> SimDepthScene::Textured(const FrameWarp& warp) const
{
    cv::Mat gray;
    cv::cvtColor(Warped(m->sharp, warp), gray, cv::COLOR_RGB2GRAY);
    cv::Mat laplacian;
    cv::Laplacian(gray, laplacian, CV_32F, 1);
    cv::Mat energy = laplacian.mul(laplacian);
    cv::GaussianBlur(energy, energy, cv::Size(), 3.0);
    const double threshold = cv::mean(energy)[0] * 0.25;
    std::vector<bool> textured(std::size_t(gray.total()));
    for (int y = 0; y < gray.rows; ++y)
        for (int x = 0; x < gray.cols; ++x)
            textured[std::size_t(y) * std::size_t(gray.cols) + std::size_t(x)]
                = energy.at<float>(y, x) > threshold;
    return textured;
}
