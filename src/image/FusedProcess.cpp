#include "image/FusedProcess.h"

#include "image/ImageProcess.h"

#include <algorithm>
#include <cstdint>
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

constexpr unsigned kBandRows = 16;

// Lets each overlay pixel that is not the key replace the row's.
void BlendRow(const uchar* overlay, uchar* dst, unsigned width)
{
    // Shapes are thin: most of the overlay is key, found eight bytes at a time.
    constexpr std::uint64_t kKeys = 0x0101010101010101ull * kOverlayKey;
    constexpr unsigned kBlock = 16; // pixels, 48 bytes, six words
    unsigned x = 0;
    for (; x + kBlock <= width; x += kBlock) {
        const uchar* o = overlay + 3 * std::size_t(x);
        std::uint64_t differs = 0;
        for (unsigned k = 0; k < 6; ++k) {
            std::uint64_t word;
            std::memcpy(&word, o + 8 * k, 8);
            differs |= word ^ kKeys;
        }
        if (differs == 0)
            continue;
        for (unsigned k = 0; k < kBlock; ++k) {
            const uchar* op = o + 3 * k;
            if (!(op[0] == kOverlayKey && op[1] == kOverlayKey && op[2] == kOverlayKey))
                std::memcpy(dst + 3 * (std::size_t(x) + k), op, 3);
        }
    }
    for (; x < width; ++x) {
        const uchar* op = overlay + 3 * std::size_t(x);
        if (!(op[0] == kOverlayKey && op[1] == kOverlayKey && op[2] == kOverlayKey))
            std::memcpy(dst + 3 * std::size_t(x), op, 3);
    }
}

// After gray every pixel is (v, v, v), so a negative and a binary that follow
// act on v alone. Run on a ramp of the 256 gray pixels they give a table; a
// binary makes it a step from one value to another, applied to every byte by
// one comparison. Returns false when the table is not such a step.
struct GrayStep
{
    int cut = 256; // values at or above it become high
    uchar low = 0;
    uchar high = 0;
};

bool GrayTailStep(const ProcessSwitches& s, GrayStep& step)
{
    uchar ramp[256 * 3];
    for (int v = 0; v < 256; ++v)
        ramp[3 * v] = ramp[3 * v + 1] = ramp[3 * v + 2] = uchar(v);
    if (s.negative)
        Negative(ramp, 256, 1);
    if (s.binary)
        Binary(ramp, 256, 1, s.binaryLevel);
    step.low = ramp[0];
    step.high = ramp[3 * 255];
    step.cut = 256;
    for (int v = 0; v < 256; ++v) {
        const uchar out = ramp[3 * v];
        if (ramp[3 * v + 1] != out || ramp[3 * v + 2] != out)
            return false;
        if (step.cut == 256 && out != step.low)
            step.cut = v;
        if (out != (v < step.cut ? step.low : step.high))
            return false;
    }
    return true;
}

void ApplyStep(uchar* bits, unsigned width, unsigned rows, std::size_t stride, const GrayStep& step)
{
    const std::size_t bytes = std::size_t(width) * 3;
    const uchar low = step.low;
    const uchar high = step.high;
    for (unsigned y = 0; y < rows; ++y) {
        uchar* p = bits + y * stride;
        if (step.cut >= 256 || step.cut <= 0) {
            std::memset(p, step.cut <= 0 ? high : low, bytes);
            continue;
        }
        const auto cut = uchar(step.cut);
        // Fixed-length blocks the compiler turns into vector compares.
        std::size_t i = 0;
        for (; i + 64 <= bytes; i += 64)
            for (unsigned k = 0; k < 64; ++k)
                p[i + k] = p[i + k] >= cut ? high : low;
        for (; i < bytes; ++i)
            p[i] = p[i] >= cut ? high : low;
    }
}

} // namespace

PaddedRows::PaddedRows(const uchar* bits, std::ptrdiff_t step, unsigned width)
    : m_bits(bits)
    , m_step(step)
    , m_stride(DibStride(width))
{
}

void PaddedRows::Read(unsigned y, uchar* out) const
{
    std::memcpy(out, m_bits + std::ptrdiff_t(y) * m_step, m_stride);
}

void FusedProcess(const uchar* src, std::ptrdiff_t srcStep, uchar* dst, std::ptrdiff_t dstStep,
    unsigned width, unsigned height, const ProcessSwitches& s, const uchar* overlay)
{
    if (!src || width == 0)
        return;
    FusedProcess(PaddedRows(src, srcStep, width), dst, dstStep, width, height, s, overlay);
}

void FusedProcess(const FrameRows& rows, uchar* dst, std::ptrdiff_t dstStep, unsigned width, unsigned height,
    const ProcessSwitches& s, const uchar* overlay)
{
    if (!dst || width == 0 || height == 0)
        return;
    const std::size_t stride = DibStride(width);
    const auto from = [&](unsigned y) { return s.flip ? height - 1 - y : y; };

    // With no operation but the flip, rows go straight to the target: the
    // usual live preview costs one pass over the frame, not two.
    if (!(s.mirror || s.gray || s.negative || s.binary || s.emboss || s.sharpen || s.rgb)) {
        for (unsigned y = 0; y < height; ++y) {
            uchar* out = dst + std::ptrdiff_t(y) * dstStep;
            rows.Read(from(y), out);
            if (overlay)
                BlendRow(overlay + y * stride, out, width);
        }
        return;
    }

    const unsigned above = s.sharpen ? 1 : 0;
    const unsigned below = (s.emboss ? 1 : 0) + (s.sharpen ? 1 : 0);

    GrayStep step;
    const bool useStep = s.gray && s.binary && GrayTailStep(s, step);

    thread_local std::vector<uchar> scratch;
    scratch.resize(stride * (kBandRows + above + below));

    for (unsigned y0 = 0; y0 < height; y0 += kBandRows) {
        const unsigned y1 = std::min(height, y0 + kBandRows);
        const unsigned a0 = y0 >= above ? y0 - above : 0;
        const unsigned a1 = std::min(height, y1 + below);
        const unsigned n = a1 - a0;
        uchar* band = scratch.data();

        for (unsigned j = a0; j < a1; ++j)
            rows.Read(from(j), band + (j - a0) * stride);
        if (s.mirror)
            MirrorHorizontal(band, width, n);
        if (s.gray)
            Gray(band, width, n);
        if (useStep) {
            ApplyStep(band, width, n, stride, step);
        } else {
            if (s.negative)
                Negative(band, width, n);
            if (s.binary)
                Binary(band, width, n, s.binaryLevel);
        }
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
            std::memcpy(out, row, stride);
            if (overlay)
                BlendRow(overlay + y * stride, out, width);
        }
    }
}
