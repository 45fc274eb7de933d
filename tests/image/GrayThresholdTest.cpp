#include "image/GrayThreshold.h"

#include <gtest/gtest.h>

using GrayThreshold::Histogram;
using GrayThreshold::Level;
using GrayThreshold::Method;

namespace {

Histogram Spikes(std::initializer_list<std::pair<int, std::int64_t>> spikes)
{
    Histogram h {};
    for (const auto& [level, count] : spikes)
        h[std::size_t(level)] = count;
    return h;
}

} // namespace

TEST(GrayThreshold, GrayIsTheMeanOfTheChannelsRoundedAsImageJConverts)
{
    QImage picture(5, 1, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(1, 0, 0)); // 1/3 -> 0
    picture.setPixel(1, 0, qRgb(2, 0, 0)); // 2/3 -> 1
    picture.setPixel(2, 0, qRgb(10, 20, 30)); // exactly 20
    picture.setPixel(3, 0, qRgb(255, 255, 254)); // 254.67 -> 255
    picture.setPixel(4, 0, qRgb(0, 100, 0)); // 33.33 -> 33
    EXPECT_EQ(GrayThreshold::GrayLevels(picture), (std::vector<std::uint8_t> { 0, 1, 20, 255, 33 }));
    EXPECT_TRUE(GrayThreshold::GrayLevels(QImage()).empty());
    const Histogram h = GrayThreshold::HistogramOf({ 3, 3, 7 });
    EXPECT_EQ(h[3], 2);
    EXPECT_EQ(h[7], 1);
}

TEST(GrayThreshold, OtsuSplitsWhereTheClassesDifferMostAndTakesTheTopOfAGap)
{
    // Two spikes: every level of the gap separates them equally well; ImageJ takes the last.
    EXPECT_EQ(Level(Method::Otsu, Spikes({ { 50, 100 }, { 200, 100 } })), 199);
    // 10x100, 100x50, 200x100: after 10 the classes give 100*150*156.7^2 = 3.68e8,
    // after 100 they give 150*100*160^2 = 3.84e8, so the cut is above 100.
    EXPECT_EQ(Level(Method::Otsu, Spikes({ { 10, 100 }, { 100, 50 }, { 200, 100 } })), 199);
    // 10x300, 100x50, 200x100: after 10, 300*150*(166.7-10)^2 = 1.105e9; after 100,
    // 350*100*(200-22.9)^2 = 1.098e9: the cut falls below the middle spike.
    EXPECT_EQ(Level(Method::Otsu, Spikes({ { 10, 300 }, { 100, 50 }, { 200, 100 } })), 99);
}

TEST(GrayThreshold, DefaultIteratesTheMeanOfTheMeansWithTheModeClipped)
{
    // Spikes at 50 and 200: the mean of the two means, 125.
    EXPECT_EQ(Level(Method::Default, Spikes({ { 50, 100 }, { 200, 100 } })), 125);
    // 10x1000, 30x90, 200x100. The mode is clipped to 1.5 x 100: the dark mean is
    // (150*10 + 90*30)/240 = 17.5 and the level round((17.5 + 200)/2) = 109; unclipped it
    // would be (10000 + 2700)/1090 = 11.65, giving 106.
    EXPECT_EQ(Level(Method::Default, Spikes({ { 10, 1000 }, { 30, 90 }, { 200, 100 } })), 109);
    // The ends of the range do not count, and a single level gives the middle.
    EXPECT_EQ(Level(Method::Default, Spikes({ { 0, 5000 }, { 50, 100 }, { 200, 100 }, { 255, 9000 } })), 125);
    EXPECT_EQ(Level(Method::Default, Spikes({ { 77, 100 } })), 128);
}

TEST(GrayThreshold, TriangleCutsNextToThePeakOnTheSideOfTheLongerTail)
{
    // Peak 200 (1000), a few at 10: the line runs from the empty bin 9 to the
    // peak; the empty bin furthest from it is 199, and the level one below.
    EXPECT_EQ(Level(Method::Triangle, Spikes({ { 10, 10 }, { 200, 1000 } })), 198);
    // Mirrored: peak 10, a few at 200. The line runs from 201 (54 mirrored)
    // to the peak; furthest is 11 (244 mirrored), and the level one above it.
    EXPECT_EQ(Level(Method::Triangle, Spikes({ { 10, 1000 }, { 200, 10 } })), 12);
}
