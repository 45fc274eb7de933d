#include "image/FocusStack.h"

#include "FocusSeries.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

// Mean absolute difference of the red channel over the rectangle.
double MeanDifference(const QImage& a, const QImage& b, const QRect& area)
{
    double sum = 0.0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            sum += std::abs(qRed(a.pixel(x, y)) - qRed(b.pixel(x, y)));
    return sum / (area.width() * area.height());
}

const QSize kSize(192, 144);

} // namespace

TEST(FocusStack, AlignmentRecoversPlantedShiftAndScaleToATenthOfAPixel)
{
    // Small and large shifts (the large ones beyond the gradient's reach),
    // breathing both ways, and a frame out of focus against a sharp first.
    const WaveTexture texture(3);
    const QImage first = Render(texture, kSize, {}, [](double, double) { return 0.0; });
    const struct
    {
        FrameWarp warp;
        double sigma;
    } cases[] = { { { 0.3, -0.45, 1.0 }, 0.0 }, { { 3.3, -2.7, 1.012 }, 0.0 }, { { -17.6, 9.2, 0.99 }, 0.0 },
        { { 1.7, 2.2, 1.006 }, 1.5 } };
    for (const auto& c : cases) {
        SCOPED_TRACE(
            testing::Message() << "planted " << c.warp.dx << ", " << c.warp.dy << " x" << c.warp.scale);
        const QImage frame = Render(texture, kSize, c.warp, [&](double, double) { return c.sigma; });
        const FrameWarp found = FocusStack::Align(first, frame);
        EXPECT_NEAR(found.dx, c.warp.dx, 0.1);
        EXPECT_NEAR(found.dy, c.warp.dy, 0.1);
        // At the corners, the farthest from the centre.
        EXPECT_NEAR((found.scale - c.warp.scale) * kSize.width() / 2, 0.0, 0.1);
    }
    // Nothing to align on: the identity, not a guess.
    QImage flat(kSize, QImage::Format_RGB888);
    flat.fill(Qt::gray);
    const FrameWarp none = FocusStack::Align(flat, flat);
    EXPECT_EQ(none.dx, 0.0);
    EXPECT_EQ(none.dy, 0.0);
    EXPECT_EQ(none.scale, 1.0);
}

TEST(FocusStack, EachRegionComesFromTheFrameSharpThereInTheFirstFramesGeometry)
{
    // Four frames, each sharp in one vertical band and blurred elsewhere,
    // drifting and breathing; the fused picture must be the sharp texture
    // in the first frame's place, and the depth each band's frame.
    const WaveTexture texture(7);
    const int bands = 4;
    const double bandWidth = double(kSize.width()) / bands;
    const FrameWarp warps[] = { {}, { 1.4, -0.8, 1.004 }, { 2.9, -1.3, 1.008 }, { 4.1, -2.2, 1.012 } };
    FocusStack stack;
    for (int i = 0; i < bands; ++i) {
        const QImage frame = Render(texture, kSize, warps[i],
            [&](double x, double) { return int(std::floor(x / bandWidth)) == i ? 0.0 : 3.0; });
        ASSERT_TRUE(stack.Add(frame)) << stack.ErrorString().toStdString();
    }
    ASSERT_EQ(stack.Count(), bands);
    const QImage truth = Render(texture, kSize, {}, [](double, double) { return 0.0; });
    const QImage blurred = Render(texture, kSize, {}, [](double, double) { return 3.0; });
    const QImage fused = stack.Result();
    ASSERT_EQ(fused.size(), kSize);
    const std::vector<float> depth = stack.DepthIndex();
    ASSERT_EQ(depth.size(), std::size_t(kSize.width() * kSize.height()));
    const QImage depthPicture = stack.DepthPicture();
    ASSERT_EQ(depthPicture.size(), kSize);
    for (int i = 0; i < bands; ++i) {
        SCOPED_TRACE(testing::Message() << "band " << i);
        EXPECT_NEAR(stack.Warps()[std::size_t(i)].dx, warps[i].dx, 0.1);
        // The band's inside, clear of the seams and of the uncovered margin.
        const QRect inside(int(i * bandWidth) + 8, 12, int(bandWidth) - 16, kSize.height() - 24);
        EXPECT_GT(MeanDifference(blurred, truth, inside), 4.0) << "the blur must be visible";
        EXPECT_LT(MeanDifference(fused, truth, inside), 1.5);
        const int x = inside.center().x();
        const int y = inside.center().y();
        EXPECT_NEAR(depth[std::size_t(y * kSize.width() + x)], i, 0.25);
        EXPECT_EQ(qGray(depthPicture.pixel(x, y)), i * 255 / (bands - 1));
    }
    // No ringing at the depth steps: within 6 pixels of each, where the
    // blurred texture is off by about 16, the fused one is off by under 4.
    for (int i = 1; i < bands; ++i) {
        const QRect seam(int(i * bandWidth) - 6, 12, 12, kSize.height() - 24);
        EXPECT_GT(MeanDifference(blurred, truth, seam), 12.0);
        EXPECT_LT(MeanDifference(fused, truth, seam), 4.0) << "seam " << i;
    }
}

TEST(FocusStack, RefusesWhatDoesNotFitAndKeepsTheSeries)
{
    FocusStack stack;
    EXPECT_TRUE(stack.Result().isNull());
    EXPECT_TRUE(stack.DepthIndex().empty());
    EXPECT_FALSE(stack.Add(QImage()));
    EXPECT_EQ(stack.Count(), 0);
    const WaveTexture texture(5);
    const QImage first = Render(texture, kSize, {}, [](double, double) { return 0.0; });
    ASSERT_TRUE(stack.Add(first));
    EXPECT_FALSE(stack.Add(first.scaled(kSize / 2)));
    EXPECT_TRUE(stack.ErrorString().contains(QStringLiteral("96 x 72")));
    EXPECT_EQ(stack.Count(), 1);
    // One frame, or the same frame again, gives it back; any format is taken.
    ASSERT_TRUE(stack.Add(first.convertToFormat(QImage::Format_ARGB32)));
    EXPECT_TRUE(stack.ErrorString().isEmpty());
    EXPECT_LT(MeanDifference(stack.Result(), first, QRect(QPoint(0, 0), kSize)), 0.5);
}
