#include "image/FusedProcess.h"

#include "image/ImageProcess.h"
#include "image/ProcessOperations.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

// The picture is worked in bands of rows small enough to stay in the cache:
// each band is copied once from the source, every switched-on operation runs
// on it through its band kernel, and the band goes once to the destination.
// An operation that reads rows around the one it writes needs those rows
// exact from the operations before it, so a band carries the extra rows that
// the later operations read; each operation works its band's rows plus the
// extra rows it and the operations after it read, and those rows are worked
// but not written.

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

// After an operation that makes gray every pixel is (v, v, v), so the
// operations that map gray values after it act on v alone. Run on a ramp of
// the 256 gray pixels they give a table; a threshold among them makes it a
// step from one value to another, applied to every byte by one comparison.
struct GrayStep
{
    int cut = 256; // values at or above it become high
    uchar low = 0;
    uchar high = 0;
};

// One switched-on operation of the sweep and the rows it works beyond those
// the band writes: as many as it and the operations after it read.
struct Stage
{
    const ProcessOperation* op = nullptr;
    unsigned above = 0;
    unsigned below = 0;
};

struct Plan
{
    std::array<Stage, kProcessOpCount> stages;
    unsigned count = 0;
    bool reversed = false; // rows are read from the other end
    // Stages [stepFirst, stepEnd) are one gray step; empty when none.
    unsigned stepFirst = 0;
    unsigned stepEnd = 0;
    GrayStep step;
};

// The step of the stages [first, end); false when their table is not one.
bool GrayTailStep(const Stage* first, const Stage* end, const ProcessSwitches& s, GrayStep& step)
{
    uchar ramp[256 * 3];
    for (int v = 0; v < 256; ++v)
        ramp[3 * v] = ramp[3 * v + 1] = ramp[3 * v + 2] = uchar(v);
    for (const Stage* stage = first; stage != end; ++stage)
        stage->op->still(ramp, 256, 1, s);
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

Plan MakePlan(const ProcessSwitches& s)
{
    Plan plan;
    for (const ProcessOperation& op : kProcessOperations) {
        if (!(s.*op.on))
            continue;
        Q_ASSERT(op.reversesRows || op.band);
        if (op.reversesRows)
            plan.reversed = true;
        else
            plan.stages[plan.count++] = { &op, op.rowsAbove, op.rowsBelow };
    }
    for (unsigned i = plan.count; i-- > 1;) {
        plan.stages[i - 1].above += plan.stages[i].above;
        plan.stages[i - 1].below += plan.stages[i].below;
    }
    for (unsigned i = 0; i < plan.count; ++i) {
        if (!plan.stages[i].op->makesGray)
            continue;
        unsigned end = i + 1;
        while (end < plan.count && plan.stages[end].op->mapsGray)
            ++end;
        if (end > i + 1 && GrayTailStep(&plan.stages[i + 1], &plan.stages[end], s, plan.step)) {
            plan.stepFirst = i + 1;
            plan.stepEnd = end;
        }
        break;
    }
    return plan;
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
    const Plan plan = MakePlan(s);
    const auto from = [&](unsigned y) { return plan.reversed ? height - 1 - y : y; };

    // With no operation but the flip, rows go straight to the target: the
    // usual live preview costs one pass over the frame, not two.
    if (plan.count == 0) {
        for (unsigned y = 0; y < height; ++y) {
            uchar* out = dst + std::ptrdiff_t(y) * dstStep;
            rows.Read(from(y), out);
            if (overlay)
                BlendRow(overlay + y * stride, out, width);
        }
        return;
    }

    const unsigned above = plan.stages[0].above;
    const unsigned below = plan.stages[0].below;
    thread_local std::vector<uchar> scratch;
    scratch.resize(stride * (kBandRows + above + below));

    for (unsigned y0 = 0; y0 < height; y0 += kBandRows) {
        const unsigned y1 = std::min(height, y0 + kBandRows);
        const unsigned a0 = y0 >= above ? y0 - above : 0;
        const unsigned a1 = std::min(height, y1 + below);
        uchar* band = scratch.data();

        for (unsigned j = a0; j < a1; ++j)
            rows.Read(from(j), band + (j - a0) * stride);
        for (unsigned i = 0; i < plan.count; ++i) {
            const Stage& stage = plan.stages[i];
            // The rows written and those this stage and the later ones read.
            const unsigned r0 = y0 >= stage.above ? y0 - stage.above : 0;
            const unsigned r1 = std::min(height, y1 + stage.below);
            uchar* first = band + (r0 - a0) * stride;
            if (i == plan.stepFirst && plan.stepEnd > i) {
                ApplyStep(first, width, r1 - r0, stride, plan.step);
                i = plan.stepEnd - 1;
            } else {
                stage.op->band(first, width, r1 - r0, s);
            }
        }

        for (unsigned y = y0; y < y1; ++y) {
            const uchar* row = band + (y - a0) * stride;
            uchar* out = dst + std::ptrdiff_t(y) * dstStep;
            std::memcpy(out, row, stride);
            if (overlay)
                BlendRow(overlay + y * stride, out, width);
        }
    }
}
