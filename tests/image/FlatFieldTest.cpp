#include "image/FlatField.h"

#include "image/ImageProcess.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

// A padded 24-bit picture filled by fn(x, row, channel), rows in buffer order.
template <typename Fn> std::vector<uchar> Picture(unsigned width, unsigned height, Fn fn)
{
    const std::size_t stride = DibStride(width);
    std::vector<uchar> bits(stride * height, 0xA5); // padding a value to watch
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            for (unsigned c = 0; c < 3; ++c)
                bits[y * stride + 3 * x + c] = uchar(std::clamp(std::lround(fn(x, y, c)), 0L, 255L));
    return bits;
}

// Light falling off towards the corners (to 60 % there), unevenly in x and
// y, with a lamp's cast: each channel its own strength.
double Shade(unsigned x, unsigned y, unsigned c, unsigned width, unsigned height)
{
    const double dx = (x + 0.5) / width - 0.6;
    const double dy = (y + 0.5) / height - 0.45;
    const double r2 = (dx * dx + dy * dy) / 0.5;
    constexpr std::array<double, 3> kCast { 0.80, 1.0, 0.90 };
    return kCast[c] * (1.0 - 0.4 * std::min(1.0, r2));
}

double Scene(unsigned x, unsigned y, unsigned c)
{
    return 60 + 50 * ((x / 3 + y / 2 + c) % 4);
}

constexpr unsigned kWidth = 37; // rows padded
constexpr unsigned kHeight = 29;

} // namespace

// The shaded scene, corrected with its own blank field, is the scene at each
// channel's mean shading: the shading is gone, level and cast stay.
TEST(FlatField, UndoesKnownShadingKeepingEachChannelsMean)
{
    for (const bool dark : { false, true }) {
        SCOPED_TRACE(dark ? "with a dark frame" : "no dark frame");
        const double offset = dark ? 12 : 0;
        const auto blank = Picture(kWidth, kHeight, [&](unsigned x, unsigned y, unsigned c) {
            return offset + 200 * Shade(x, y, c, kWidth, kHeight);
        });
        const auto darkFrame = Picture(kWidth, kHeight, [&](unsigned, unsigned, unsigned) { return offset; });
        auto shaded = Picture(kWidth, kHeight, [&](unsigned x, unsigned y, unsigned c) {
            return offset + Scene(x, y, c) * Shade(x, y, c, kWidth, kHeight);
        });
        const uchar* blanks[] = { blank.data() };
        const FlatField field
            = FlatField::FromFrames(blanks, dark ? darkFrame.data() : nullptr, kWidth, kHeight);
        ASSERT_FALSE(field.IsNull());
        EXPECT_EQ(field.HasDark(), dark);

        // The mean shading of each channel, as the blank field gives it.
        std::array<double, 3> mean {};
        const std::size_t stride = DibStride(kWidth);
        for (unsigned y = 0; y < kHeight; ++y)
            for (unsigned x = 0; x < kWidth; ++x)
                for (unsigned c = 0; c < 3; ++c)
                    mean[c] += (blank[y * stride + 3 * x + c] - offset) / 200.0 / (kWidth * kHeight);

        ASSERT_TRUE(field.Apply(shaded.data(), kWidth, kHeight));
        double worst = 0;
        for (unsigned y = 0; y < kHeight; ++y) {
            for (unsigned x = 0; x < kWidth; ++x)
                for (unsigned c = 0; c < 3; ++c)
                    worst = std::max(
                        worst, std::abs(shaded[y * stride + 3 * x + c] - Scene(x, y, c) * mean[c]));
            for (std::size_t i = kWidth * 3; i < stride; ++i)
                ASSERT_EQ(shaded[y * stride + i], 0xA5) << "padding of row " << y;
        }
        // The blank field and the scene are each rounded to whole levels.
        EXPECT_LE(worst, 2.0);
    }
}

// Frames averaged: noise of opposite signs cancels, so the gains are those
// of the clean field.
TEST(FlatField, AveragesTheBlankFrames)
{
    const auto clean
        = Picture(kWidth, kHeight, [](unsigned x, unsigned y, unsigned c) { return 100 + x + y + 10 * c; });
    const auto plus = Picture(kWidth, kHeight,
        [](unsigned x, unsigned y, unsigned c) { return 100 + x + y + 10 * c + ((x + y) % 2 ? 6 : -6); });
    const auto minus = Picture(kWidth, kHeight,
        [](unsigned x, unsigned y, unsigned c) { return 100 + x + y + 10 * c - ((x + y) % 2 ? 6 : -6); });
    const uchar* one[] = { clean.data() };
    const uchar* two[] = { plus.data(), minus.data() };
    auto a = Picture(
        kWidth, kHeight, [](unsigned x, unsigned y, unsigned c) { return 90 + 3 * c + x % 5 + y % 7; });
    auto b = a;
    FlatField::FromFrames(one, nullptr, kWidth, kHeight).Apply(a.data(), kWidth, kHeight);
    FlatField::FromFrames(two, nullptr, kWidth, kHeight).Apply(b.data(), kWidth, kHeight);
    EXPECT_EQ(a, b);
}

// What cannot give a correction gives none, and a picture of another size is
// left as it was.
TEST(FlatField, RefusesWhatCannotCorrect)
{
    const auto blank
        = Picture(kWidth, kHeight, [](unsigned, unsigned, unsigned c) { return c == 1 ? 0 : 150; });
    const uchar* blanks[] = { blank.data() };
    EXPECT_TRUE(FlatField::FromFrames(blanks, nullptr, kWidth, kHeight).IsNull()) << "green black everywhere";
    EXPECT_TRUE(FlatField::FromFrames({}, nullptr, kWidth, kHeight).IsNull());
    EXPECT_TRUE(FlatField::FromFrames(blanks, nullptr, 0, kHeight).IsNull());
    const auto lit = Picture(kWidth, kHeight, [](unsigned, unsigned, unsigned) { return 150; });
    const uchar* lits[] = { lit.data() };
    EXPECT_TRUE(FlatField::FromFrames(lits, lit.data(), kWidth, kHeight).IsNull())
        << "dark as bright as the field";

    const FlatField field = FlatField::FromFrames(lits, nullptr, kWidth, kHeight);
    ASSERT_FALSE(field.IsNull());
    auto other = Picture(kWidth + 1, kHeight, [](unsigned x, unsigned, unsigned) { return x; });
    const auto before = other;
    EXPECT_FALSE(field.Apply(other.data(), kWidth + 1, kHeight));
    EXPECT_EQ(other, before);
}

// A pixel black in the blank field (dust, a dead pixel) does not blow up its
// neighbourhood: its gain stops at the largest, the rest stay exact.
TEST(FlatField, DeadPixelOfTheBlankFieldStaysBounded)
{
    auto blank = Picture(
        kWidth, kHeight, [](unsigned x, unsigned y, unsigned) { return x == 3 && y == 4 ? 0 : 128; });
    const uchar* blanks[] = { blank.data() };
    const FlatField field = FlatField::FromFrames(blanks, nullptr, kWidth, kHeight);
    ASSERT_FALSE(field.IsNull());
    auto picture = Picture(kWidth, kHeight, [](unsigned, unsigned, unsigned) { return 10; });
    field.Apply(picture.data(), kWidth, kHeight);
    const std::size_t stride = DibStride(kWidth);
    EXPECT_EQ(picture[4 * stride + 9], 160) << "10 at the largest gain, 16";
    // The others: mean 128 * (1 - 1/n) over 128, so just under 10.
    EXPECT_EQ(picture[0], 10);
}
