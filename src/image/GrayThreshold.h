#pragma once

#include <QImage>

#include <array>
#include <cstdint>
#include <vector>

// Gray levels and automatic thresholds as ImageJ computes them, so a
// threshold chosen here selects the same pixels there.
namespace GrayThreshold {

// Pixels per gray level.
using Histogram = std::array<std::int64_t, 256>;

enum class Method {
    Otsu, // the largest between-class variance
    Default, // ImageJ's "Default": the iterative intermeans with the mode clipped
    Triangle, // the point furthest from the line from the peak to the far end
};

// One gray byte per pixel, rows packed: (R + G + B) / 3 rounded to the
// nearest level, ImageJ's default conversion of colour to 8 bits. Empty for a
// null picture.
std::vector<std::uint8_t> GrayLevels(const QImage& picture);

Histogram HistogramOf(const std::vector<std::uint8_t>& gray);

// The level t that splits the histogram into 0..t and t+1..255.
int Level(Method method, const Histogram& histogram);

} // namespace GrayThreshold
