#include "image/SimDepthScene.h"

#include "image/FocusStack.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

// Mean absolute difference of all channels where `where` holds.
double MeanDifference(const QImage& a, const QImage& b, const std::function<bool(int, int)>& where)
{
    double sum = 0.0;
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (where(x, y)) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q))
                    + std::abs(qBlue(p) - qBlue(q));
                n += 3;
            }
    return n ? sum / n : 0.0;
}

} // namespace

TEST(SimDepthScene, TheSurfaceAtTheFocusIsSharpAndTheRestBlursWithDistance)
{
    SimDepthScene::Options options;
    options.relief = SimDepthScene::Relief::Steps;
    options.noise = 0.0;
    options.driftX = options.driftY = 0.0;
    options.breathing = 0.0;
    options.blurAtDepth = 4.0;
    const SimDepthScene scene(160, 120, options);
    const std::vector<float> height = scene.HeightMap();
    const QImage truth = scene.AllInFocus();
    // A terrace's height, away from its edges (the blur of neighbours reaches in).
    const float focus = height[std::size_t(60 * 160 + 20)];
    const QImage frame = scene.Frame(focus, 0);
    const auto onTerrace = [&](int x, int y) {
        for (int dy = -6; dy <= 6; ++dy)
            for (int dx = -6; dx <= 6; ++dx) {
                const int u = std::clamp(x + dx, 0, 159);
                const int v = std::clamp(y + dy, 0, 119);
                if (height[std::size_t(v * 160 + u)] != focus)
                    return false;
            }
        return true;
    };
    const auto far = [&](int x, int y) { return std::abs(height[std::size_t(y * 160 + x)] - focus) > 30.0f; };
    EXPECT_LT(MeanDifference(frame, truth, onTerrace), 1.0);
    EXPECT_GT(MeanDifference(frame, truth, far), 5.0);
    // The same frame twice is the same picture.
    EXPECT_EQ(scene.Frame(focus, 0), frame);
    EXPECT_EQ(scene.HeightMap().size(), std::size_t(160 * 120));
}

TEST(SimDepthScene, BreathingAndDriftAreTheWarpTheAlignerFinds)
{
    SimDepthScene::Options options;
    options.noise = 0.0;
    options.blurAtDepth = 0.01; // all sharp: only the geometry changes
    options.breathing = 0.02;
    options.driftX = 0.7;
    options.driftY = -0.4;
    const SimDepthScene scene(192, 144, options);
    const FrameWarp first = scene.Warp(0.0, 0);
    const FrameWarp later = scene.Warp(options.depthUm, 9);
    EXPECT_NEAR(later.scale / first.scale, 1.02 / 1.0 * (1.01 / 1.02) / (0.99 / 1.0), 1e-9);
    EXPECT_DOUBLE_EQ(later.dx, 6.3);
    // The frame is the sharp picture in that geometry.
    const QImage frame = scene.Frame(options.depthUm, 9);
    const QRect inside(8, 8, 176, 128);
    EXPECT_LT(
        MeanDifference(frame, scene.AllInFocus(later), [&](int x, int y) { return inside.contains(x, y); }),
        0.6);
    // Over the first frame: scale s9 / s0, shift t9 - (s9 / s0) t0.
    const FrameWarp found = FocusStack::Align(scene.Frame(0.0, 0), frame);
    const double scale = later.scale / first.scale;
    EXPECT_NEAR(found.scale, scale, 0.1 / 96);
    EXPECT_NEAR(found.dx, later.dx - scale * first.dx, 0.1);
    EXPECT_NEAR(found.dy, later.dy - scale * first.dy, 0.1);
}

TEST(SimDepthScene, AStackOfTheSeriesIsSharpWithTheDepthWithinOneFrame)
{
    // Each relief, a sweep of 12 frames from the lowest point to the highest:
    // the stack's picture against the truth in the first frame's geometry,
    // and its depth against the frame nearest each pixel's height.
    // Particles are the hard case: steep domes, and thin fibres beside
    // ground that is sharp in other frames.
    const struct
    {
        SimDepthScene::Relief relief;
        double depthRight;
    } cases[] = { { SimDepthScene::Relief::Steps, 0.9 }, { SimDepthScene::Relief::Slope, 0.9 },
        { SimDepthScene::Relief::Particles, 0.75 } };
    const int w = 320;
    const int h = 240;
    for (const auto& c : cases) {
        SCOPED_TRACE(int(c.relief));
        SimDepthScene::Options options;
        options.relief = c.relief;
        options.blurAtDepth = 12.0;
        const SimDepthScene scene(w, h, options);
        const int frames = 12;
        const double step = options.depthUm / (frames - 1);
        FocusStack stack;
        for (int i = 0; i < frames; ++i)
            ASSERT_TRUE(stack.Add(scene.Frame(i * step, std::uint64_t(i))));
        const FrameWarp geometry = scene.Warp(0.0, 0);
        const QImage truth = scene.AllInFocus(geometry);
        const std::vector<float> height = scene.HeightMap(geometry);
        const std::vector<bool> textured = scene.Textured(geometry);
        const std::vector<float> depth = stack.DepthIndex();
        const QImage first = scene.Frame(0.0, 0);
        const QRect inside(6, 6, w - 12, h - 12);
        const auto in = [&](int x, int y) { return inside.contains(x, y); };
        EXPECT_LT(MeanDifference(stack.Result(), truth, in), 0.45 * MeanDifference(first, truth, in));
        int counted = 0;
        int right = 0;
        for (int y = inside.top(); y <= inside.bottom(); ++y)
            for (int x = inside.left(); x <= inside.right(); ++x) {
                const std::size_t i = std::size_t(y * w + x);
                if (!textured[i])
                    continue;
                ++counted;
                right += std::abs(depth[i] - height[i] / step) <= 1.0;
            }
        EXPECT_GT(right, c.depthRight * counted) << right << " of " << counted;
    }
}
