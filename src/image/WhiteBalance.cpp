#include "image/WhiteBalance.h"

#include "image/ImageProcess.h"

#include <algorithm>
#include <cmath>

std::optional<ChannelMeans> RegionMeans(
    const uchar* bits, unsigned width, unsigned height, const QRect& region)
{
    const QRect inside = region.normalized().intersected(QRect(0, 0, int(width), int(height)));
    if (!bits || inside.isEmpty())
        return std::nullopt;
    const std::size_t stride = DibStride(width);
    std::uint64_t sum[3] = { 0, 0, 0 };
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const uchar* row = bits + std::size_t(int(height) - 1 - y) * stride + std::size_t(inside.left()) * 3;
        for (int x = 0; x < inside.width(); ++x)
            for (int c = 0; c < 3; ++c)
                sum[c] += row[3 * x + c];
    }
    const double pixels = double(inside.width()) * inside.height();
    return ChannelMeans { sum[0] / pixels, sum[1] / pixels, sum[2] / pixels };
}

std::optional<ChannelGains> GainsToGray(const ChannelMeans& m)
{
    if (m.blue <= 0 || m.green <= 0 || m.red <= 0)
        return std::nullopt;
    const double gray = (m.blue + m.green + m.red) / 3;
    return ChannelGains { gray / m.blue, gray / m.green, gray / m.red };
}

ChannelOffsets OffsetsToGray(const ChannelMeans& m, const ChannelOffsets& current, int maxOffset)
{
    // The offsets already in the means come off first: they are replaced,
    // not added to.
    const double raw[3] = { m.blue - current.blue, m.green - current.green, m.red - current.red };
    const double top = std::max({ raw[0], raw[1], raw[2] });
    ChannelOffsets out;
    int* offset[3] = { &out.blue, &out.green, &out.red };
    for (int c = 0; c < 3; ++c) {
        const long wanted = std::lround(top - raw[c]);
        *offset[c] = int(std::clamp<long>(wanted, 0, maxOffset));
        out.reached = out.reached && wanted <= maxOffset;
    }
    return out;
}

void ApplyGains(uchar* bits, unsigned width, unsigned height, const ChannelGains& gains)
{
    if (!bits)
        return;
    uchar map[3][256];
    const double gain[3] = { gains.blue, gains.green, gains.red };
    for (int c = 0; c < 3; ++c)
        for (int v = 0; v < 256; ++v)
            map[c][v] = uchar(std::clamp<long>(std::lround(v * gain[c]), 0, 255));
    const std::size_t stride = DibStride(width);
    for (unsigned y = 0; y < height; ++y) {
        uchar* p = bits + y * stride;
        for (unsigned x = 0; x < width; ++x, p += 3) {
            p[0] = map[0][p[0]];
            p[1] = map[1][p[1]];
            p[2] = map[2][p[2]];
        }
    }
}
