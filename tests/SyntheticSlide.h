#pragma once

// A specimen defined everywhere by a formula, so that a view of it at any
// sub-pixel position is exact: the ground truth for registration tests.
#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdint>

class SyntheticSlide
{
public:
    explicit SyntheticSlide(unsigned seed)
        : m_seed(seed)
    {
    }

    // Brightness 0..1 at a point of the specimen: particles of 2 to 5 pixels
    // scattered without any repeat, on a background that varies slowly.
    double At(double x, double y) const
    {
        double sum = 0.45 + 0.12 * std::sin(x / 97.0 + m_seed) * std::cos(y / 131.0);
        const int cx = int(std::floor(x / kCell)), cy = int(std::floor(y / kCell));
        for (int j = cy - 2; j <= cy + 2; ++j) {
            for (int i = cx - 2; i <= cx + 2; ++i) {
                std::uint64_t h = Hash(i, j);
                for (int k = 0; k < 2; ++k) {
                    const double px = (i + Unit(h)) * kCell, py = (j + Unit(h)) * kCell;
                    const double radius = 2.0 + 3.0 * Unit(h);
                    const double amplitude = Unit(h) - 0.45;
                    const double d2 = (x - px) * (x - px) + (y - py) * (y - py);
                    if (d2 < 9.0 * radius * radius)
                        sum += amplitude * std::exp(-d2 / (2.0 * radius * radius));
                }
            }
        }
        return std::clamp(sum, 0.02, 0.98);
    }

    // The view with its top-left at (x, y), darkened towards the corners to
    // `corner` of the centre's brightness, exposed `gain` times brighter.
    QImage View(double x, double y, int width, int height, double corner = 1.0, double gain = 1.0) const
    {
        QImage view(width, height, QImage::Format_RGB888);
        for (int row = 0; row < height; ++row) {
            uchar* line = view.scanLine(row);
            for (int col = 0; col < width; ++col) {
                // Round about the centre, as a lens darkens.
                const double dx = col + 0.5 - 0.5 * width, dy = row + 0.5 - 0.5 * height;
                const double r2 = (dx * dx + dy * dy) / (0.25 * (width * width + height * height));
                const double shade = gain * (1.0 - (1.0 - corner) * r2);
                const double v = std::clamp(255.0 * shade * At(x + col, y + row), 0.0, 255.0);
                line[3 * col] = uchar(std::lround(v));
                line[3 * col + 1] = uchar(std::lround(v * 0.9));
                line[3 * col + 2] = uchar(std::lround(v * 0.8));
            }
        }
        return view;
    }

private:
    static constexpr double kCell = 16.0;

    std::uint64_t Hash(int i, int j) const
    {
        return (std::uint64_t(std::uint32_t(i)) << 32 | std::uint32_t(j))
            ^ (std::uint64_t(m_seed) * 0x9E3779B97F4A7C15ull);
    }
    // The next number 0..1 from a splitmix64 state.
    static double Unit(std::uint64_t& state)
    {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return double((z ^ (z >> 31)) >> 11) / double(1ull << 53);
    }

    unsigned m_seed;
};

// The mean gray level of an area of a picture.
inline double MeanGray(const QImage& picture, const QRect& area)
{
    double sum = 0.0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            sum += qGray(picture.pixel(x, y));
    return sum / (area.width() * area.height());
}
