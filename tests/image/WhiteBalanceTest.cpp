#include "image/WhiteBalance.h"

#include "image/ImageProcess.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr unsigned kCardWidth = 41;
constexpr unsigned kCardHeight = 30;

// A gray card under a warm lamp in the top half (picture coordinates), a
// saturated blue below, and noise on everything.
std::vector<uchar> CardScene()
{
    const std::size_t stride = DibStride(kCardWidth);
    std::vector<uchar> bits(stride * kCardHeight, 0);
    for (unsigned y = 0; y < kCardHeight; ++y) { // buffer rows, bottom-up
        const bool card = y >= kCardHeight / 2;
        for (unsigned x = 0; x < kCardWidth; ++x) {
            const int noise = int((x * 7 + y * 13) % 9) - 4;
            uchar* p = &bits[y * stride + 3 * x];
            p[0] = uchar((card ? 120 : 220) + noise); // blue
            p[1] = uchar((card ? 150 : 40) + noise);
            p[2] = uchar((card ? 175 : 30) + noise); // red
        }
    }
    return bits;
}

} // namespace

// One region over the card: afterwards the card's channels agree within 1 %
// and its brightness stays; the region is counted from the top.
TEST(WhiteBalance, RegionOverGrayCardTurnsItNeutral)
{
    auto bits = CardScene();
    const QRect region(5, 2, 30, 10);
    const auto means = RegionMeans(bits.data(), kCardWidth, kCardHeight, region);
    ASSERT_TRUE(means);
    EXPECT_NEAR(means->red, 175, 1.0) << "the card is the top half";
    const auto gains = GainsToGray(*means);
    ASSERT_TRUE(gains);
    ApplyGains(bits.data(), kCardWidth, kCardHeight, *gains);

    const auto after
        = RegionMeans(bits.data(), kCardWidth, kCardHeight, QRect(0, 0, kCardWidth, kCardHeight / 2));
    ASSERT_TRUE(after);
    const double gray = (after->blue + after->green + after->red) / 3;
    EXPECT_NEAR(gray, (120 + 150 + 175) / 3.0, 1.0);
    for (double v : { after->blue, after->green, after->red })
        EXPECT_LE(std::abs(v - gray) / gray, 0.01) << v << " against " << gray;
}

// A region partly outside is clipped; wholly outside, or black in a channel,
// gives nothing to work with.
TEST(WhiteBalance, RegionsThatCannotBalance)
{
    const auto bits = CardScene();
    const auto clipped = RegionMeans(bits.data(), kCardWidth, kCardHeight, QRect(-10, -10, 20, 20));
    const auto inside = RegionMeans(bits.data(), kCardWidth, kCardHeight, QRect(0, 0, 10, 10));
    ASSERT_TRUE(clipped && inside);
    EXPECT_DOUBLE_EQ(clipped->green, inside->green);
    EXPECT_FALSE(RegionMeans(bits.data(), kCardWidth, kCardHeight, QRect(kCardWidth, 0, 5, 5)));
    EXPECT_FALSE(RegionMeans(nullptr, kCardWidth, kCardHeight, QRect(0, 0, 5, 5)));
    EXPECT_FALSE(GainsToGray({ 100, 0, 80 }));
}

// Gains stop at 255 and leave the row padding alone.
TEST(WhiteBalance, GainsSaturateAndKeepPadding)
{
    const std::size_t stride = DibStride(kCardWidth);
    std::vector<uchar> bits(stride * 2, 0x5A);
    for (unsigned x = 0; x < kCardWidth * 3; ++x)
        bits[x] = bits[stride + x] = 200;
    ApplyGains(bits.data(), kCardWidth, 2, { 0.5, 1.0, 2.0 });
    EXPECT_EQ(bits[0], 100);
    EXPECT_EQ(bits[1], 200);
    EXPECT_EQ(bits[2], 255);
    for (std::size_t row : { 0, 1 })
        for (std::size_t i = kCardWidth * 3; i < stride; ++i)
            EXPECT_EQ(bits[row * stride + i], 0x5A) << row;
}

// Offsets measured under offsets already set replace them; a cast beyond the
// largest offset is corrected as far as it goes and says so.
TEST(WhiteBalance, OffsetsToGrayReplaceTheCurrentOnes)
{
    const ChannelOffsets none = OffsetsToGray({ 120, 150, 175 }, {}, 63);
    EXPECT_EQ(none.blue, 55);
    EXPECT_EQ(none.green, 25);
    EXPECT_EQ(none.red, 0);
    EXPECT_TRUE(none.reached);
    // The same card seen with those offsets on, and with others on.
    const ChannelOffsets again = OffsetsToGray({ 175, 175, 175 }, none, 63);
    EXPECT_EQ(again.blue, 55);
    EXPECT_EQ(again.green, 25);
    EXPECT_EQ(again.red, 0);
    const ChannelOffsets other = OffsetsToGray({ 130, 160, 185 }, { 10, 10, 10, true }, 63);
    EXPECT_EQ(other.blue, 55);
    EXPECT_EQ(other.red, 0);
    const ChannelOffsets far = OffsetsToGray({ 50, 150, 200 }, {}, 63);
    EXPECT_EQ(far.blue, 63);
    EXPECT_EQ(far.green, 50);
    EXPECT_FALSE(far.reached);
}
