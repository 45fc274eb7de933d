#include "image/FusedProcess.h"

#include "image/ImageProcess.h"

#include <algorithm>
#include <cstring>
#include <vector>

// The picture is worked in bands of rows small enough to stay in the cache:
// each band is copied once from the source, every operation of the chain runs
// on the band through the same functions that process still pictures, and the
// band goes once to the destination. Emboss reads the next row and sharpen the
// rows on both sides, so a band carries up to one extra row above and two
// below; those rows are worked but not written, and the operations give each
// written row exactly the bytes they give it in the whole picture.

namespace {

constexpr unsigned kBandRows = 32;

std::size_t Stride(unsigned width)
{
    return ((std::size_t(width) * 24 + 31) / 32) * 4;
}

// Copies the padded row, letting each overlay pixel that is not the key
// replace the picture's.
void BlendRowTo(const uchar* row, const uchar* overlay, uchar* dst, unsigned width, std::size_t stride)
{
    constexpr unsigned kBlock = 16;
    unsigned x = 0;
    for (; x + kBlock <= width; x += kBlock) {
        const uchar* o = overlay + 3 * std::size_t(x);
        const uchar* p = row + 3 * std::size_t(x);
        uchar* d = dst + 3 * std::size_t(x);
        // Shapes are thin: most blocks are all key and copy straight through.
        unsigned differs = 0;
        for (unsigned k = 0; k < 3 * kBlock; ++k)
            differs |= unsigned(o[k] ^ kOverlayKey);
        if (differs == 0) {
            std::memcpy(d, p, 3 * kBlock);
            continue;
        }
        for (unsigned k = 0; k < kBlock; ++k) {
            const uchar* op = o + 3 * k;
            const bool key = op[0] == kOverlayKey && op[1] == kOverlayKey && op[2] == kOverlayKey;
            const uchar* s = key ? p + 3 * k : op;
            d[3 * k] = s[0];
            d[3 * k + 1] = s[1];
            d[3 * k + 2] = s[2];
        }
    }
    for (; x < width; ++x) {
        const uchar* op = overlay + 3 * std::size_t(x);
        const bool key = op[0] == kOverlayKey && op[1] == kOverlayKey && op[2] == kOverlayKey;
        const uchar* s = key ? row + 3 * std::size_t(x) : op;
        std::memcpy(dst + 3 * std::size_t(x), s, 3);
    }
    const std::size_t pixels = std::size_t(width) * 3;
    std::memcpy(dst + pixels, row + pixels, stride - pixels);
}

} // namespace

void FusedProcess(const uchar* src, std::ptrdiff_t srcStep, uchar* dst, std::ptrdiff_t dstStep,
    unsigned width, unsigned height, const ProcessSwitches& s, const uchar* overlay)
{
    if (!src || !dst || width == 0 || height == 0)
        return;
    const std::size_t stride = Stride(width);
    const unsigned above = s.sharpen ? 1 : 0;
    const unsigned below = (s.emboss ? 1 : 0) + (s.sharpen ? 1 : 0);

    thread_local std::vector<uchar> scratch;
    scratch.resize(stride * (kBandRows + above + below));

    for (unsigned y0 = 0; y0 < height; y0 += kBandRows) {
        const unsigned y1 = std::min(height, y0 + kBandRows);
        const unsigned a0 = y0 >= above ? y0 - above : 0;
        const unsigned a1 = std::min(height, y1 + below);
        const unsigned n = a1 - a0;
        uchar* band = scratch.data();

        for (unsigned j = a0; j < a1; ++j) {
            const unsigned from = s.flip ? height - 1 - j : j;
            std::memcpy(band + (j - a0) * stride, src + std::ptrdiff_t(from) * srcStep, stride);
        }
        if (s.mirror)
            MirrorHorizontal(band, width, n);
        if (s.gray)
            Gray(band, width, n);
        if (s.negative)
            Negative(band, width, n);
        if (s.binary)
            Binary(band, width, n, s.binaryLevel);
        if (s.emboss)
            // Exact for every band row but the last, which is exact only as
            // the picture's last row; sharpen and the output stop short of it.
            Emboss(band, width, n);
        if (s.sharpen) {
            const unsigned e1 = std::min(height, y1 + 1);
            Sharpen(band, width, e1 - a0);
        }
        uchar* first = band + (y0 - a0) * stride;
        if (s.rgb)
            ColorOffset(first, width, y1 - y0, s.red, s.green, s.blue);

        for (unsigned y = y0; y < y1; ++y) {
            const uchar* row = band + (y - a0) * stride;
            uchar* out = dst + std::ptrdiff_t(y) * dstStep;
            if (overlay)
                BlendRowTo(row, overlay + y * stride, out, width, stride);
            else
                std::memcpy(out, row, stride);
        }
    }
}
