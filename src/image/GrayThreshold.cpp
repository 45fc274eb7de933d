#include "image/GrayThreshold.h"

#include <algorithm>
#include <cmath>

namespace GrayThreshold {

namespace {

int Otsu(const Histogram& h)
{
    double total = 0.0;
    double sumAll = 0.0;
    for (int i = 0; i < 256; ++i) {
        total += double(h[i]);
        sumAll += double(i) * double(h[i]);
    }
    double below = 0.0;
    double sumBelow = 0.0;
    double best = 0.0;
    int level = 0;
    for (int k = 0; k < 256; ++k) {
        below += double(h[k]);
        sumBelow += double(k) * double(h[k]);
        const double above = total - below;
        const double spread = below * above;
        const double num = total * sumBelow - sumAll * below;
        const double variance = spread > 0.0 ? num * num / spread : 0.0;
        // On a tie the higher level wins, as ImageJ picks: a gap between two
        // populations puts the threshold at its top.
        if (variance >= best) {
            best = variance;
            level = k;
        }
    }
    return level;
}

// The intermeans iteration: raise the level until it passes the mean of the
// two classes' means. The ends of the range are ignored, as erased areas are.
int IterativeIntermeans(Histogram h)
{
    h[0] = 0;
    h[255] = 0;
    int min = 0;
    while (h[min] == 0 && min < 255)
        ++min;
    int max = 255;
    while (h[max] == 0 && max > 0)
        --max;
    if (min >= max)
        return 128;
    int moving = min;
    double result = 0.0;
    do {
        double sumLow = 0.0, countLow = 0.0, sumHigh = 0.0, countHigh = 0.0;
        for (int i = min; i <= moving; ++i) {
            sumLow += double(i) * double(h[i]);
            countLow += double(h[i]);
        }
        for (int i = moving + 1; i <= max; ++i) {
            sumHigh += double(i) * double(h[i]);
            countHigh += double(h[i]);
        }
        result = (sumLow / countLow + sumHigh / countHigh) / 2.0;
        ++moving;
    } while (moving + 1 <= result && moving < max - 1);
    return int(std::floor(result + 0.5));
}

// A mode that towers over the rest (a large even background) would drag the
// means; it counts as half again the second highest.
int DefaultLevel(Histogram h)
{
    const int mode = int(std::max_element(h.begin(), h.end()) - h.begin());
    std::int64_t second = 0;
    for (int i = 0; i < 256; ++i)
        if (i != mode)
            second = std::max(second, h[i]);
    if (h[mode] > 2 * second && second != 0)
        h[mode] = std::int64_t(double(second) * 1.5);
    return IterativeIntermeans(h);
}

int Triangle(Histogram h)
{
    int low = 0;
    while (low < 255 && h[low] == 0)
        ++low;
    // The line runs from the empty bin next to the data, not from its first count.
    if (low > 0)
        --low;
    int high = 255;
    while (high > 0 && h[high] == 0)
        --high;
    if (high < 255)
        ++high;
    int peak = int(std::max_element(h.begin(), h.end()) - h.begin());
    // The longer tail is the one the line is drawn along: mirror the
    // histogram when it lies above the peak.
    const bool mirrored = peak - low < high - peak;
    if (mirrored) {
        std::reverse(h.begin(), h.end());
        low = 255 - high;
        peak = 255 - peak;
    }
    if (low == peak)
        return low;
    double nx = double(h[peak]);
    double ny = double(low - peak);
    const double norm = std::hypot(nx, ny);
    nx /= norm;
    ny /= norm;
    const double d = nx * low + ny * double(h[low]);
    int split = low;
    double furthest = 0.0;
    for (int i = low + 1; i <= peak; ++i) {
        const double distance = nx * i + ny * double(h[i]) - d;
        if (distance > furthest) {
            split = i;
            furthest = distance;
        }
    }
    --split;
    return mirrored ? 255 - split : split;
}

} // namespace

std::vector<std::uint8_t> GrayLevels(const QImage& picture)
{
    if (picture.isNull())
        return {};
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    const int w = rgb.width();
    const int h = rgb.height();
    std::vector<std::uint8_t> gray(std::size_t(w) * std::size_t(h));
    for (int y = 0; y < h; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        std::uint8_t* out = gray.data() + std::size_t(y) * std::size_t(w);
        for (int x = 0; x < w; ++x) {
            const int sum = qRed(row[x]) + qGreen(row[x]) + qBlue(row[x]);
            // sum / 3 rounded half up; a sum is never 1.5 off a multiple of 3.
            out[x] = std::uint8_t((sum + 1) / 3);
        }
    }
    return gray;
}

Histogram HistogramOf(const std::vector<std::uint8_t>& gray)
{
    Histogram h {};
    for (const std::uint8_t level : gray)
        ++h[level];
    return h;
}

int Level(Method method, const Histogram& histogram)
{
    switch (method) {
    case Method::Otsu:
        return Otsu(histogram);
    case Method::Default:
        return DefaultLevel(histogram);
    case Method::Triangle:
        return Triangle(histogram);
    }
    return 0;
}

} // namespace GrayThreshold
