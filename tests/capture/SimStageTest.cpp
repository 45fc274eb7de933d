#include "capture/SimStage.h"

#include "CaptureTestSupport.h"
#include "SyntheticSlide.h"
#include "capture/CCameraControls.h"
#include "capture/CXCapGraph.h"
#include "capture/SimCameraSource.h"
#include "image/SimDepthScene.h"
#include "image/Stitcher.h"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>

namespace {

SimStage::Options Small()
{
    SimStage::Options options;
    options.frame = QSize(320, 240);
    options.cornerShading = 1.0;
    return options;
}

} // namespace

TEST(SimStage, FrameIsTheSlideAtItsTruePlace)
{
    SimStage stage(Small());
    EXPECT_EQ(stage.Slide().size(), QSize(1280, 960));
    EXPECT_DOUBLE_EQ(stage.MicrometresPerPixel(), 5.0);

    stage.MoveTo(QPointF(200, 150));
    const SimStage::Frame whole = stage.Capture();
    EXPECT_EQ(whole.truth, QPointF(200, 150));
    EXPECT_EQ(whole.picture, stage.Slide().copy(200, 150, 320, 240));

    // Half a pixel on: between its neighbours.
    stage.MoveBy(QPointF(0.5, 0));
    const SimStage::Frame half = stage.Capture();
    const QImage right = stage.Slide().copy(201, 150, 320, 240);
    const QRect middle(20, 20, 280, 200);
    const double between = MeanGray(half.picture, middle);
    EXPECT_NEAR(between, 0.5 * (MeanGray(whole.picture, middle) + MeanGray(right, middle)), 0.3);

    // The stage stops where the slide ends; the truth says where.
    stage.MoveTo(QPointF(5000, -40));
    const SimStage::Frame edge = stage.Capture();
    EXPECT_LE(edge.truth.x() + 320, 1280);
    EXPECT_GE(edge.truth.y(), 0);
    ASSERT_EQ(stage.Taken().size(), 3u);
    EXPECT_EQ(stage.Taken()[2], edge.truth);
}

TEST(SimStage, JitterMovesTheTruthAndTheLensDarkensTheCorners)
{
    SimStage::Options options = Small();
    options.jitter = 0.5;
    options.cornerShading = 0.65;
    SimStage stage(options);
    stage.MoveTo(QPointF(300, 200));
    double spread = 0.0;
    for (int i = 0; i < 8; ++i) {
        const SimStage::Frame frame = stage.Capture();
        spread += std::hypot(frame.truth.x() - 300, frame.truth.y() - 200);
        EXPECT_EQ(stage.Taken().back(), frame.truth);
    }
    EXPECT_GT(spread / 8, 0.2);
    EXPECT_LT(spread / 8, 1.5);

    // Corners against the centre, each against the slide under it.
    stage.MoveTo(QPointF(300, 200));
    const SimStage::Frame frame = stage.Capture();
    const QImage slide
        = stage.Slide().copy(int(std::lround(frame.truth.x())), int(std::lround(frame.truth.y())), 320, 240);
    const QRect centre(150, 110, 20, 20);
    const QRect corner(0, 0, 6, 6);
    const double ratio = (MeanGray(frame.picture, corner) / MeanGray(slide, corner))
        / (MeanGray(frame.picture, centre) / MeanGray(slide, centre));
    EXPECT_NEAR(ratio, 0.66, 0.03);
}

TEST(SimStage, ScriptedScanStitchesToTheTruthAndTrackingRecovers)
{
    SimStage::Options options = Small();
    options.jitter = 0.3;
    options.cornerShading = 0.65;
    options.noise = 2.0;
    options.jpegQuality = 90;
    SimStage stage(options);
    Stitcher stitcher;
    std::vector<QPointF> placed;
    int index = 0;
    for (const QPointF& at : stage.Serpentine(3, 2, 0.6)) {
        stage.MoveTo(at);
        const SimStage::Frame frame = stage.Capture();
        QString why;
        ASSERT_TRUE(stitcher.Add(frame.picture, &why)) << index << ": " << why.toStdString();
        placed.push_back(frame.truth);
        ++index;
        if (index == 3) {
            // Too far at once: the frame is skipped, the mosaic stays as it was.
            stage.MoveBy(QPointF(0, 500));
            EXPECT_FALSE(stitcher.Add(stage.Capture().picture));
        }
    }
    ASSERT_EQ(stitcher.Count(), 6);
    double squares = 0.0;
    for (int i = 0; i < 6; ++i) {
        const QPointF error = (stitcher.Position(i) - stitcher.Position(0)) - (placed[i] - placed[0]);
        EXPECT_LT(std::hypot(error.x(), error.y()), 0.3) << i;
        squares += error.x() * error.x() + error.y() * error.y();
    }
    EXPECT_LT(std::sqrt(squares / 6), 0.15);
}

namespace {

// The grabber's frame (bottom-up BGR, rows padded) as a picture.
QImage Grabbed(CXCapGraph& graph)
{
    const std::vector<uchar> bits = Snapshot(graph);
    const QSize size = ProcessedSize(graph);
    QImage picture(size, QImage::Format_RGB888);
    const std::size_t stride = bits.size() / std::size_t(size.height());
    for (int y = 0; y < size.height(); ++y) {
        const uchar* row = bits.data() + std::size_t(size.height() - 1 - y) * stride;
        uchar* line = picture.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            line[3 * x] = row[3 * x + 2];
            line[3 * x + 1] = row[3 * x + 1];
            line[3 * x + 2] = row[3 * x];
        }
    }
    return picture;
}

} // namespace

// The live camera shows the stage when asked, and moving it moves the view
// over the slide by that much; other cameras, and the camera without its
// stage, are left alone.
TEST(SimStage, LiveCameraShowsTheStageAndMovesWithIt)
{
    SimCameraScope scope;
    AddCapsCamera(QStringLiteral("Stage"), kSmallCameraCaps);
    CXCapGraph graph;
    ASSERT_TRUE(StartPreview(graph, QStringLiteral("Stage")));
    GstElement* camera = graph.DeviceElement();
    EXPECT_FALSE(MoveSimStage(camera, QPointF(32, 0))) << "no stage unless asked for";
    EXPECT_FALSE(MoveSimStage(nullptr, QPointF(32, 0)));

    g_object_set(camera, "stage", TRUE, nullptr);
    ASSERT_TRUE(WaitFreshFrames(graph));
    double x = 0.0, y = 0.0;
    g_object_get(camera, "stage-x", &x, "stage-y", &y, nullptr);
    EXPECT_GT(x, 100.0) << "it starts in the middle of the slide";
    const QImage before = Grabbed(graph);

    ASSERT_TRUE(MoveSimStage(camera, QPointF(48, -20)));
    ASSERT_TRUE(WaitFreshFrames(graph));
    const QImage after = Grabbed(graph);
    double x2 = 0.0, y2 = 0.0;
    g_object_get(camera, "stage-x", &x2, "stage-y", &y2, nullptr);
    EXPECT_NEAR(x2 - x, 48.0, 1.0);
    EXPECT_NEAR(y2 - y, -20.0, 1.0);
    // The view moved with the stage (the jitter is a fraction of a pixel).
    const std::optional<QPointF> shift = Stitcher::PairShift(before, after);
    ASSERT_TRUE(shift.has_value());
    EXPECT_NEAR(shift->x(), 48.0, 1.5);
    EXPECT_NEAR(shift->y(), -20.0, 1.5);
    graph.StopGraph();
}

namespace {

// Mean squared difference of horizontal neighbours' green over the pixels
// whose height lies in [low, high): high where those pixels are in focus.
double Sharpness(const QImage& frame, const std::vector<float>& height, float low, float high)
{
    double sum = 0.0;
    int n = 0;
    for (int y = 4; y < frame.height() - 4; ++y)
        for (int x = 4; x < frame.width() - 4; ++x) {
            // A margin around the region: the blur reaches over its border.
            bool inside = true;
            for (int d : { -4, 4 })
                for (const std::size_t i : { std::size_t(y) * std::size_t(frame.width()) + std::size_t(x + d),
                         std::size_t(y + d) * std::size_t(frame.width()) + std::size_t(x) })
                    inside = inside && height[i] >= low && height[i] < high;
            if (!inside)
                continue;
            const int g = qGreen(frame.pixel(x, y)) - qGreen(frame.pixel(x + 1, y));
            sum += double(g) * g;
            ++n;
        }
    return n > 200 ? sum / n : -1.0;
}

} // namespace

// The relief is sharp where the focus is: the device properties' Focus
// control and the Page Up / Page Down steps move which part of it that is.
TEST(SimStage, FocusControlMovesWhatIsSharp)
{
    SimCameraScope scope;
    AddCapsCamera(QStringLiteral("Relief"), kSmallCameraCaps);
    CXCapGraph graph;
    ASSERT_TRUE(StartPreview(graph, QStringLiteral("Relief")));
    GstElement* camera = graph.DeviceElement();
    EXPECT_FALSE(FocusSimCamera(camera, 2)) << "no focus knob without the relief";
    EXPECT_FALSE(FocusSimCamera(nullptr, 2));
    const auto focusControl = [&]() -> std::optional<CameraControl> {
        for (const CameraControl& c : CCameraControls(camera, nullptr).Query())
            if (c.name == QLatin1String("Focus"))
                return c;
        return std::nullopt;
    };
    EXPECT_FALSE(focusControl()) << "the flat slide has nothing to focus on";

    g_object_set(camera, "depth", TRUE, "drift", FALSE, nullptr);
    const std::optional<CameraControl> focus = focusControl();
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->maximum, kSimFocusMaxUm);

    const SimDepthScene truth(320, 240, SimDepthScene::Options());
    const float depth = float(truth.GetOptions().depthUm);
    const auto sharpAt = [&](int focusUm) {
        EXPECT_TRUE(CCameraControls(camera, nullptr).Set(*focus, focusUm));
        EXPECT_TRUE(WaitFreshFrames(graph));
        const QImage frame = Grabbed(graph);
        const std::vector<float> height = truth.HeightMap(truth.Warp(focusUm, 0));
        return std::pair(Sharpness(frame, height, 0.0f, 0.2f * depth),
            Sharpness(frame, height, 0.7f * depth, depth + 1.0f));
    };
    const auto [lowAtBottom, highAtBottom] = sharpAt(0);
    const auto [lowAtTop, highAtTop] = sharpAt(kSimFocusMaxUm);
    ASSERT_GT(lowAtBottom, 0.0);
    ASSERT_GT(highAtTop, 0.0);
    EXPECT_GT(lowAtBottom, 2.0 * lowAtTop) << "the ground is sharp with the focus on it";
    EXPECT_GT(highAtTop, 2.0 * highAtBottom) << "the particles' tops are sharp with the focus on them";

    // Page Up / Page Down: a step of the knob, stopping at its ends.
    EXPECT_TRUE(FocusSimCamera(camera, 2));
    int at = 0;
    g_object_get(camera, "focus", &at, nullptr);
    EXPECT_EQ(at, kSimFocusMaxUm);
    EXPECT_TRUE(FocusSimCamera(camera, -2));
    g_object_get(camera, "focus", &at, nullptr);
    EXPECT_EQ(at, kSimFocusMaxUm - 2);
    graph.StopGraph();
}
