#include "image/FusedProcess.h"

#include "RandomPicture.h"
#include "capture/CCamProcess.h"
#include "capture/YuvFrameRows.h"
#include "image/ImageProcess.h"

#include <QImage>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

// The chain as a picture document runs it, one operation after the other.
std::vector<uchar> StillChain(std::vector<uchar> bits, unsigned w, unsigned h, const ProcessSwitches& s)
{
    if (s.flip)
        FlipVertical(bits.data(), w, h);
    if (s.mirror)
        MirrorHorizontal(bits.data(), w, h);
    if (s.gray)
        Gray(bits.data(), w, h);
    if (s.negative)
        Negative(bits.data(), w, h);
    if (s.binary)
        Binary(bits.data(), w, h, s.binaryLevel);
    if (s.emboss)
        Emboss(bits.data(), w, h);
    if (s.sharpen)
        Sharpen(bits.data(), w, h);
    if (s.rgb)
        ColorOffset(bits.data(), w, h, s.red, s.green, s.blue);
    return bits;
}

// The fused pass over a picture stored bottom-up with padded rows.
std::vector<uchar> Fused(const std::vector<uchar>& picture, unsigned w, unsigned h, const ProcessSwitches& s,
    const uchar* overlay = nullptr)
{
    std::vector<uchar> out(picture.size(), 0xEE);
    const auto stride = std::ptrdiff_t(DibStride(w));
    FusedProcess(picture.data(), stride, out.data(), stride, w, h, s, overlay);
    return out;
}

ProcessSwitches FromMask(unsigned mask)
{
    ProcessSwitches s;
    s.flip = mask & 1;
    s.mirror = mask & 2;
    s.gray = mask & 4;
    s.negative = mask & 8;
    s.binary = mask & 16;
    s.binaryLevel = 90;
    s.emboss = mask & 32;
    s.sharpen = mask & 64;
    s.rgb = mask & 128;
    s.red = 25;
    s.green = -30;
    s.blue = 300;
    return s;
}

} // namespace

// Sizes around the band height (32 rows) and with every row padding.
TEST(FusedProcess, EqualsTheStillChainForEverySwitchCombination)
{
    const unsigned sizes[][2]
        = { { 1, 1 }, { 2, 2 }, { 3, 5 }, { 5, 3 }, { 7, 31 }, { 6, 32 }, { 9, 33 }, { 13, 65 }, { 4, 66 } };
    for (const auto& size : sizes) {
        const unsigned w = size[0];
        const unsigned h = size[1];
        const std::vector<uchar> picture = RandomPicture(w, h, w * 100 + h);
        for (unsigned mask = 0; mask < 256; ++mask) {
            const ProcessSwitches s = FromMask(mask);
            ASSERT_TRUE(Fused(picture, w, h, s) == StillChain(picture, w, h, s))
                << w << "x" << h << " switches " << mask;
        }
    }

    // Gray then binary collapses into one comparison: every level, including
    // those that make the picture all black or all white.
    const std::vector<uchar> picture = RandomPicture(29, 21, 5);
    for (int level = -3; level <= 260; ++level)
        for (unsigned mask : { 4u | 16u, 4u | 8u | 16u }) {
            ProcessSwitches s = FromMask(mask);
            s.binaryLevel = level;
            ASSERT_TRUE(Fused(picture, 29, 21, s) == StillChain(picture, 29, 21, s)) << level << " " << mask;
        }
}

TEST(FusedProcess, ReadsAndWritesRowsInAnyOrderAndStride)
{
    const unsigned w = 37;
    const unsigned h = 70;
    const std::size_t stride = DibStride(w);
    const std::vector<uchar> picture = RandomPicture(w, h, 7);
    const ProcessSwitches s = FromMask(0xFF);
    const std::vector<uchar> expected = StillChain(picture, w, h, s);

    // The picture held top-down with wider rows, read and written bottom-up.
    const std::size_t wide = stride + 20;
    std::vector<uchar> topDown(wide * h, 0);
    for (unsigned y = 0; y < h; ++y)
        std::memcpy(&topDown[(h - 1 - y) * wide], &picture[y * stride], stride);
    std::vector<uchar> outTopDown(wide * h, 0x55);
    const auto step = std::ptrdiff_t(wide);
    FusedProcess(
        topDown.data() + (h - 1) * wide, -step, outTopDown.data() + (h - 1) * wide, -step, w, h, s, nullptr);
    for (unsigned y = 0; y < h; ++y) {
        ASSERT_EQ(std::memcmp(&outTopDown[(h - 1 - y) * wide], &expected[y * stride], stride), 0)
            << "row " << y;
        // Bytes past the padded row are not the picture's and stay untouched.
        EXPECT_EQ(outTopDown[(h - 1 - y) * wide + stride], 0x55);
    }
}

TEST(FusedProcess, OverlayPixelsOtherThanTheKeyReplaceTheResult)
{
    const unsigned w = 45;
    const unsigned h = 40;
    const std::size_t stride = DibStride(w);
    const std::vector<uchar> picture = RandomPicture(w, h, 3);
    std::vector<uchar> overlay(stride * h, kOverlayKey);
    std::mt19937 rng(11);
    for (int i = 0; i < 300; ++i) {
        const std::size_t p = (rng() % h) * stride + 3 * (rng() % w);
        overlay[p] = uchar(rng());
        overlay[p + 1] = uchar(rng() % 3); // often 0, 1 or 2 next to the key bytes
        overlay[p + 2] = uchar(rng() % 2);
    }
    // No operation (rows go straight to the target), a flip, and a band chain.
    for (unsigned mask : { 0u, 1u, 4u | 32u }) {
        const ProcessSwitches s = FromMask(mask);
        std::vector<uchar> expected = StillChain(picture, w, h, s);
        for (unsigned y = 0; y < h; ++y)
            for (unsigned x = 0; x < w; ++x) {
                const uchar* o = &overlay[y * stride + 3 * x];
                if (!(o[0] == 1 && o[1] == 1 && o[2] == 1))
                    std::memcpy(&expected[y * stride + 3 * x], o, 3);
            }
        EXPECT_TRUE(Fused(picture, w, h, s, overlay.data()) == expected) << mask;
    }

    // The live element keeping the frame under the overlay (for snapping)
    // gives the same frame, and keeps it processed without the overlay.
    const ProcessSwitches s = FromMask(4 | 32);
    std::vector<uchar> expected = StillChain(picture, w, h, s);
    const std::vector<uchar> under = expected;
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x) {
            const uchar* o = &overlay[y * stride + 3 * x];
            if (!(o[0] == 1 && o[1] == 1 && o[2] == 1))
                std::memcpy(&expected[y * stride + 3 * x], o, 3);
        }
    CCamProcess process;
    process.SetOverlaySize(w, h);
    uchar* published = overlay.data();
    process.SetOverlay(1, &published);
    process.SetGray(1);
    process.SetEmboss(1);
    process.KeepCleanFrames(true);
    std::vector<uchar> out(picture.size(), 0xEE);
    process.ProcessFrame(picture.data(), std::ptrdiff_t(stride), out.data(), std::ptrdiff_t(stride), w, h);
    EXPECT_TRUE(out == expected);
    const QImage clean = process.CleanFrame();
    ASSERT_EQ(clean.size(), QSize(int(w), int(h)));
    int differing = 0;
    for (unsigned y = 0; y < h; ++y)
        differing += std::memcmp(clean.constScanLine(int(h - 1 - y)), &under[y * stride], 3 * w) != 0;
    EXPECT_EQ(differing, 0) << "rows kept top-down, without the overlay";
    process.KeepCleanFrames(false);
    EXPECT_TRUE(process.CleanFrame().isNull());
}

// A camera's YUV frame, top row first, read bottom-up as BGR through the
// matrix and range its caps name.
TEST(FusedProcess, YuvFramesGiveTheColoursOfTheirMatrix)
{
    using Rows = YuvFrameRows;
    struct Case
    {
        Rows::Matrix matrix;
        bool full;
        uchar y, u, v;
        int blue, green, red;
    } const cases[] = {
        { Rows::Matrix::Bt601, false, 235, 128, 128, 255, 255, 255 },
        { Rows::Matrix::Bt601, false, 16, 128, 128, 0, 0, 0 },
        { Rows::Matrix::Bt601, false, 81, 90, 240, 0, 0, 255 },
        { Rows::Matrix::Bt709, false, 63, 102, 240, 0, 0, 255 },
        { Rows::Matrix::Bt601, true, 76, 85, 255, 0, 0, 255 },
        { Rows::Matrix::Bt601, true, 29, 255, 107, 255, 0, 0 },
    };
    const auto near = [](const uchar* px, const Case& c) {
        return std::abs(px[0] - c.blue) <= 3 && std::abs(px[1] - c.green) <= 3
            && std::abs(px[2] - c.red) <= 3;
    };
    for (const Case& c : cases) {
        // Two YUY2 pixels on the top row, black below; 2 pixels pad to 8 bytes.
        const uchar yuy2[] = { c.y, c.u, c.y, c.v, 16, 128, 16, 128 };
        const Rows::Plane planes[3] = { { yuy2, 4 }, {}, {} };
        std::vector<uchar> row(8, 0xEE);
        Rows(Rows::Layout::Yuy2, planes, 2, 2, c.matrix, c.full).Read(1, row.data());
        EXPECT_TRUE(near(&row[0], c) && near(&row[3], c)) << int(c.y) << " " << int(c.u) << " " << int(c.v);
        EXPECT_EQ(row[6] | row[7], 0);

        // I420: 2 x 4 pixels; the top two rows share this colour's chroma,
        // the bottom two are black.
        const uchar k = c.full ? 0 : 16;
        const uchar luma[] = { c.y, c.y, c.y, c.y, k, k, k, k };
        const uchar u[] = { c.u, 128 };
        const uchar v[] = { c.v, 128 };
        const Rows::Plane i420[3] = { { luma, 2 }, { u, 1 }, { v, 1 } };
        const Rows frame(Rows::Layout::I420, i420, 2, 4, c.matrix, c.full);
        frame.Read(2, row.data());
        EXPECT_TRUE(near(&row[0], c)) << "I420 " << int(c.y);
        frame.Read(1, row.data());
        EXPECT_LE(row[0] + row[1] + row[2], 9) << "I420 " << int(c.y);
    }
}

TEST(FusedProcess, BadInputLeavesTheTargetAlone)
{
    std::vector<uchar> src(12, 9), dst(12, 7);
    FusedProcess(nullptr, 12, dst.data(), 12, 3, 1, ProcessSwitches(), nullptr);
    FusedProcess(src.data(), 12, dst.data(), 12, 0, 1, ProcessSwitches(), nullptr);
    FusedProcess(src.data(), 12, dst.data(), 12, 3, 0, ProcessSwitches(), nullptr);
    EXPECT_EQ(dst, std::vector<uchar>(12, 7));
}
