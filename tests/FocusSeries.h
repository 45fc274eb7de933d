#pragma once

// Focus series with a known answer, for the stacking tests.
#include "image/FocusStack.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

// A texture of plane waves, known everywhere: its Gaussian blur of any width
// is exact (each wave keeps its phase and loses amplitude), and so is its
// picture under any shift and scale.
class WaveTexture
{
public:
    explicit WaveTexture(unsigned seed)
    {
        std::mt19937 rng(seed);
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        for (int i = 0; i < 24; ++i) {
            const double angle = 6.2831853 * unit(rng);
            const double frequency = 0.1 + 0.7 * unit(rng);
            m_waves.push_back({ frequency * std::cos(angle), frequency * std::sin(angle),
                6.2831853 * unit(rng), 12.0 * unit(rng) + 3.0 });
        }
    }

    // Brightness at (x, y), blurred by a Gaussian of width sigma.
    double At(double x, double y, double sigma = 0.0) const
    {
        double v = 128.0;
        for (const Wave& w : m_waves) {
            const double f2 = w.fx * w.fx + w.fy * w.fy;
            v += w.amplitude * std::exp(-0.5 * sigma * sigma * f2) * std::cos(w.fx * x + w.fy * y + w.phase);
        }
        return v;
    }

private:
    struct Wave
    {
        double fx, fy, phase, amplitude;
    };
    std::vector<Wave> m_waves;
};

// A frame whose pixel q shows the first frame's point p (q = scale (p - c) +
// c + shift), blurred by sigma(p); tinted so the colour channels differ.
inline QImage Render(const WaveTexture& texture, QSize size, const FrameWarp& warp,
    const std::function<double(double, double)>& sigma)
{
    QImage image(size, QImage::Format_RGB888);
    const double cx = (size.width() - 1) / 2.0;
    const double cy = (size.height() - 1) / 2.0;
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            const double px = (x - cx - warp.dx) / warp.scale + cx;
            const double py = (y - cy - warp.dy) / warp.scale + cy;
            const double v = texture.At(px, py, sigma(px, py));
            row[3 * x] = uchar(std::clamp(int(std::lround(v)), 0, 255));
            row[3 * x + 1] = uchar(std::clamp(int(std::lround(0.8 * v + 20)), 0, 255));
            row[3 * x + 2] = uchar(std::clamp(int(std::lround(0.6 * v + 40)), 0, 255));
        }
    }
    return image;
}
