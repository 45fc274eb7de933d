#include "CaptureTestSupport.h"
#include "capture/CSimScene.h"
#include "capture/CVideoWidget.h"
#include "capture/CameraModels.h"
#include "image/FusedProcess.h"
#include "image/ImageProcess.h"

#include <QScreen>
#include <QWidget>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

namespace {

const QString kSmall = QStringLiteral("Small Camera");

class CaptureGraph : public ::testing::Test
{
protected:
    void StartSmallPreview()
    {
        AddCapsCamera(kSmall, kSmallCameraCaps);
        ASSERT_TRUE(StartPreview(graph, kSmall, true));
    }

    SimCameraScope cameras;
    MessageCollector messages;
    // Declared before the graph: frames may read it until the graph is gone.
    std::vector<uchar> overlayBits;
    CXCapGraph graph;
};

} // namespace

TEST_F(CaptureGraph, DemoPreviewGivesBottomUpSnapshotsAndRebuildsAtANewSize)
{
    ASSERT_TRUE(StartPreview(graph, DemoCameraName(), true));
    EXPECT_EQ(graph.DeviceName(), DemoCameraName());
    EXPECT_EQ(VideoSize(graph), QSize(1280, 1024));
    const std::vector<uchar> bits = Snapshot(graph);
    ASSERT_EQ(bits.size(), 1280u * 1024 * 3);

    // Compared with the scene drawn top-down: the buffer's first row is the
    // picture's bottom row.
    CSimScene scene(1280, 1024);
    CSimScene::Controls still;
    still.drift = false;
    still.noise = false;
    scene.SetControls(still);
    const QImage expected = scene.RenderRgb(0);
    double upright = 0;
    double flipped = 0;
    for (int y = 0; y < 1024; y += 7) {
        const uchar* row = bits.data() + std::size_t(1023 - y) * 1280 * 3;
        const uchar* wrong = bits.data() + std::size_t(y) * 1280 * 3;
        const uchar* want = expected.constScanLine(y);
        for (int x = 0; x < 1280; x += 5) {
            // BGR in the buffer, RGB in the image.
            upright += std::abs(row[3 * x + 2] - want[3 * x]) + std::abs(row[3 * x] - want[3 * x + 2]);
            flipped += std::abs(wrong[3 * x + 2] - want[3 * x]) + std::abs(wrong[3 * x] - want[3 * x + 2]);
        }
    }
    const double samples = (1024 / 7 + 1) * (1280 / 5) * 2.0;
    EXPECT_LT(upright / samples, 6.0);
    EXPECT_GT(flipped / samples, 15.0);

    ASSERT_EQ(graph.ChangeResolution(640, 480), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(VideoSize(graph), QSize(640, 480));
    EXPECT_EQ(Snapshot(graph).size(), 640u * 480 * 3);
    EXPECT_EQ(ProcessedSize(graph), QSize(640, 480));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(CaptureGraph, SwitchesAndOverlayChangeTheSnapshotExactlyAsTheStillOperations)
{
    StartSmallPreview();
    const std::vector<uchar> base = Snapshot(graph);
    ASSERT_EQ(base.size(), 320u * 240 * 3);

    struct Case
    {
        const char* name;
        std::function<void(int)> set;
        std::function<void(uchar*)> still;
    };
    const unsigned w = 320, h = 240;
    const std::vector<Case> cases = {
        { "flip", [&](int on) { graph.SetFlipVertical(on); }, [&](uchar* b) { FlipVertical(b, w, h); } },
        { "mirror", [&](int on) { graph.SetFlipHorizontal(on); },
            [&](uchar* b) { MirrorHorizontal(b, w, h); } },
        { "gray", [&](int on) { graph.SetGray(on); }, [&](uchar* b) { Gray(b, w, h); } },
        { "negative", [&](int on) { graph.SetNegative(on); }, [&](uchar* b) { Negative(b, w, h); } },
        { "binary", [&](int on) { graph.SetBinary(on, 140); }, [&](uchar* b) { Binary(b, w, h, 140); } },
        { "emboss", [&](int on) { graph.SetEmboss(on); }, [&](uchar* b) { Emboss(b, w, h); } },
        { "sharpen", [&](int on) { graph.SetSharpen(on); }, [&](uchar* b) { Sharpen(b, w, h); } },
        { "rgb", [&](int on) { graph.SetRgbGain(on, 40, 0, 63); },
            [&](uchar* b) { ColorOffset(b, w, h, 40, 0, 63); } },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.set(1);
        ASSERT_TRUE(WaitFreshFrames(graph));
        std::vector<uchar> expected = base;
        c.still(expected.data());
        EXPECT_TRUE(Snapshot(graph) == expected);
        c.set(0);
    }

    // All at once, in the still-picture order.
    for (const Case& c : cases)
        c.set(1);
    ASSERT_TRUE(WaitFreshFrames(graph));
    std::vector<uchar> expected = base;
    for (const Case& c : cases)
        c.still(expected.data());
    EXPECT_TRUE(Snapshot(graph) == expected);

    // Processing off passes the camera's picture untouched.
    graph.SetProcessEnable(0);
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_TRUE(Snapshot(graph) == base);

    // The overlay goes on after the processing: a red block and a black one
    // (black is a colour here, only the key is clear).
    for (const Case& c : cases)
        c.set(0);
    graph.SetProcessEnable(1);
    overlayBits.assign(base.size(), kOverlayKey);
    for (int y = 10; y < 20; ++y)
        for (int x = 30; x < 60; ++x) {
            uchar* p = overlayBits.data() + y * 320 * 3 + 3 * x;
            p[0] = p[1] = 0;
            p[2] = x < 45 ? 255 : 0;
        }
    uchar* current = overlayBits.data();
    ASSERT_EQ(graph.SetOverlay(1, &current), S_OK);
    graph.SetGray(1);
    ASSERT_TRUE(WaitFreshFrames(graph));
    expected = base;
    Gray(expected.data(), w, h);
    BlendOverlay(expected, overlayBits);
    EXPECT_TRUE(Snapshot(graph) == expected);
    ASSERT_EQ(graph.SetOverlay(0, &current), S_OK);
    graph.SetGray(0);
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_TRUE(Snapshot(graph) == base);
}

TEST_F(CaptureGraph, CallsAnswerForEveryStateOfTheGraphAndSwitchesSurviveRebuilds)
{
    // No graph: everything fails quietly.
    EXPECT_EQ(graph.RunGraph(), E_FAIL);
    EXPECT_EQ(graph.PauseGraph(), E_FAIL);
    EXPECT_EQ(graph.StopGraph(), E_FAIL);
    EXPECT_EQ(graph.ShowVideoWindow(1), E_POINTER);
    unsigned w = 0;
    EXPECT_EQ(graph.GetVideoSize(&w, nullptr), E_POINTER);
    EXPECT_EQ(graph.ChangeResolution(640, 480), E_POINTER);
    EXPECT_EQ(graph.ShowDeviceProperties(), E_FAIL);
    EXPECT_EQ(graph.ShowProcessProperties(), E_FAIL);
    EXPECT_EQ(graph.ToggleFullScreen(nullptr), E_FAIL);
    EXPECT_EQ(graph.SetGray(1), E_FAIL);
    int on = -1;
    EXPECT_EQ(graph.GetGray(&on), E_FAIL);
    uchar* none = nullptr;
    EXPECT_EQ(graph.SetOverlay(1, &none), E_FAIL);
    long size = 0;
    EXPECT_EQ(graph.GetCurrentBuffer(&size, nullptr), E_POINTER) << "no grabber yet";
    graph.DestroyGraph();
    graph.ReleaseAll();
    EXPECT_TRUE(messages.Texts().isEmpty());

    // Names are kept to 255 characters.
    const QString longName(300, QLatin1Char('x'));
    graph.SetDeviceName(longName);
    QString out;
    graph.GetDeviceName(&out);
    EXPECT_EQ(out.size(), 255);
    graph.GetDeviceName(nullptr);
    graph.SetRecordFileName(longName);
    EXPECT_EQ(graph.RecordFileName().size(), 255);

    AddCapsCamera(kSmall, kSmallCameraCaps);
    ASSERT_TRUE(BindCamera(graph, kSmall));
    graph.BuildPreviewGraph();
    ASSERT_EQ(graph.GetCurrentBuffer(&size, nullptr), S_OK);
    std::vector<uchar> bits(static_cast<std::size_t>(size));
    EXPECT_EQ(graph.GetCurrentBuffer(&size, bits.data()), E_FAIL) << "no frame before the start";
    ASSERT_EQ(graph.RunGraph(), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    long small = size - 1;
    EXPECT_EQ(graph.GetCurrentBuffer(&small, bits.data()), E_INVALIDARG);
    EXPECT_EQ(graph.GetCurrentBuffer(&size, bits.data()), S_OK);

    // The switches outlive the element, but need one to be read.
    EXPECT_EQ(graph.SetGray(1), S_OK);
    EXPECT_EQ(graph.SetBinary(1, 77), S_OK);
    graph.StopGraph();
    graph.DestroyGraph();
    EXPECT_FALSE(graph.HasProcess());
    EXPECT_EQ(graph.GetGray(&on), E_FAIL);
    graph.BuildPreviewGraph();
    int level = 0;
    EXPECT_EQ(graph.GetGray(&on), S_OK);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(graph.GetBinary(&on, &level), S_OK);
    EXPECT_EQ(level, 77);
    EXPECT_EQ(ProcessedSize(graph), QSize(320, 240));

    // Building over a running graph starts clean.
    ASSERT_EQ(graph.RunGraph(), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    graph.BuildPreviewGraph();
    ASSERT_EQ(graph.RunGraph(), S_OK);
    EXPECT_TRUE(WaitFreshFrames(graph));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(CaptureGraph, FormatsAreListedAndAMissingSizeFallsBack)
{
    // The demo camera: the fastest of each size's rates, MJPG after the
    // sizes it always had, then the 5-megapixel and 4K ones.
    ASSERT_TRUE(BindCamera(graph, DemoCameraName()));
    const auto& f = graph.Formats();
    ASSERT_EQ(f.size(), 6u);
    EXPECT_EQ(f[0].fourcc, "YUY2");
    EXPECT_EQ(f[0].width, 640u);
    EXPECT_EQ(f[0].fpsNum, 30);
    EXPECT_EQ(f[1].width, 1280u);
    EXPECT_EQ(f[1].height, 1024u);
    EXPECT_EQ(f[2].width, 1600u);
    EXPECT_EQ(f[2].fpsNum, 15);
    EXPECT_EQ(f[3].fourcc, "MJPG");
    EXPECT_EQ(f[3].height, 1024u);
    EXPECT_EQ(f[4].width, 2592u);
    EXPECT_EQ(f[4].fpsNum, 15);
    EXPECT_EQ(f[5].width, 3840u);
    EXPECT_EQ(f[5].height, 2160u);
    EXPECT_EQ(f[5].fpsNum, 30);

    // An index outside the list is a caller's mistake: nothing is built.
    graph.SetSelectedFormat(6);
    EXPECT_DEBUG_DEATH(graph.BuildPreviewGraph(), "format index outside the list");
    EXPECT_FALSE(graph.HasProcess());
    graph.SetSelectedFormat(0);

    // No usable format: nothing is built and nothing said.
    AddCapsCamera(QStringLiteral("H264 Camera"), "video/x-h264, width=(int)640, height=(int)480");
    ASSERT_TRUE(BindCamera(graph, QStringLiteral("H264 Camera")));
    EXPECT_TRUE(graph.Formats().empty());
    graph.BuildPreviewGraph();
    EXPECT_FALSE(graph.HasProcess());
    long size = 0;
    EXPECT_EQ(graph.GetCurrentBuffer(&size, nullptr), E_POINTER);
    graph.DestroyGraph();

    AddCapsCamera(QStringLiteral("Fallback Camera"),
        "video/x-raw, format=(string)YUY2, width=(int)640, height=(int)480, framerate=(fraction)30/1; "
        "video/x-raw, format=(string)YUY2, width=(int)1280, height=(int)960, framerate=(fraction)15/1");
    graph.SetDeviceName(QStringLiteral("Fallback Camera"));
    ASSERT_EQ(graph.InitGraph(), S_OK);
    EXPECT_EQ(VideoSize(graph), QSize(1280, 1024)) << "an unknown model starts there";
    graph.EnumFormats();
    graph.BuildPreviewGraph();
    EXPECT_EQ(VideoSize(graph), QSize(1280, 960));
    // Neither size: the camera keeps its last format and that size wins.
    ASSERT_EQ(graph.ChangeResolution(1600, 1200), S_OK);
    EXPECT_EQ(VideoSize(graph), QSize(1280, 960));
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(ProcessedSize(graph), QSize(1280, 960));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(CaptureGraph, MjpgCameraFlagPicksOnlyMjpgModes)
{
    AddCapsCamera(QStringLiteral("Mixed Camera"),
        "image/jpeg, width=(int)640, height=(int)480, framerate=(fraction)30/1; "
        "video/x-raw, format=(string)YUY2, width=(int)1280, height=(int)1024, framerate=(fraction)30/1");
    ASSERT_TRUE(BindCamera(graph, QStringLiteral("Mixed Camera")));
    graph.SetSelectedFormat(1);
    graph.BuildPreviewGraph();
    EXPECT_EQ(VideoSize(graph).width(), 1280) << "the selected YUY2 mode matches";
    SetMjpgCamera(true);
    graph.DestroyGraph();
    graph.BuildPreviewGraph();
    SetMjpgCamera(false);
    EXPECT_EQ(VideoSize(graph).width(), 1280) << "the YUY2 mode does not match, the last format stays";
    graph.DestroyGraph();

    // The demo camera's MJPG mode decodes and runs.
    ASSERT_TRUE(BindCamera(graph, DemoCameraName()));
    SetMjpgCamera(true);
    graph.BuildPreviewGraph();
    SetMjpgCamera(false);
    ASSERT_EQ(graph.RunGraph(), S_OK);
    EXPECT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(ProcessedSize(graph), QSize(1280, 1024));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(CaptureGraph, VideoWidgetShowsFramesAndLetsTheMouseThrough)
{
    QWidget owner;
    owner.resize(400, 300);
    owner.show();
    StartSmallPreview();
    ASSERT_EQ(graph.SetParentWnd(&owner, 0, 0, 320, 240), S_OK);
    CVideoWidget* video = graph.VideoWidget();
    ASSERT_NE(video, nullptr);
    EXPECT_EQ(video->parentWidget(), &owner);
    EXPECT_EQ(video->geometry(), QRect(0, 0, 320, 240));
    EXPECT_TRUE(video->testAttribute(Qt::WA_TransparentForMouseEvents));
    ASSERT_TRUE(PumpUntil([&] { return video->FramesShown() >= 3; }));
    EXPECT_EQ(video->CurrentFrame().size(), QSize(320, 240));

    // The widget shows the top of the picture at its top.
    const std::vector<uchar> bits = Snapshot(graph);
    const QImage shown = video->CurrentFrame().convertToFormat(QImage::Format_RGB888);
    const uchar* widgetBottom = shown.constScanLine(239);
    int diff = 0;
    for (int x = 0; x < 320; ++x)
        diff += std::abs(bits[3 * x + 2] - widgetBottom[3 * x]);
    EXPECT_LT(diff / 320, 4);

    EXPECT_EQ(graph.ShowVideoWindow(0), S_OK);
    EXPECT_FALSE(video->isVisible());
    EXPECT_EQ(graph.ShowVideoWindow(1), S_OK);
    EXPECT_TRUE(video->isVisible());

    // Full screen and back: the saved size at (0, 0) in the owner.
    graph.SetParentWnd(&owner, 0, 0, 300, 200);
    ASSERT_EQ(graph.ToggleFullScreen(nullptr), S_OK);
    EXPECT_TRUE(graph.IsFullScreen());
    EXPECT_NE(video->parentWidget(), &owner);
    const QSize screen = video->window()->screen()->geometry().size();
    const QRect full = video->geometry();
    // 320 x 240 into the screen with the aspect kept.
    EXPECT_NEAR(double(full.width()) / full.height(), 320.0 / 240.0, 0.02);
    EXPECT_TRUE(full.width() == screen.width() || full.height() == screen.height());
    ASSERT_EQ(graph.ToggleFullScreen(nullptr), S_OK);
    EXPECT_FALSE(graph.IsFullScreen());
    EXPECT_EQ(video->parentWidget(), &owner);
    EXPECT_EQ(video->geometry(), QRect(0, 0, 300, 200));
    graph.ReleaseAll();
}

TEST(CaptureMessages, NoCameraAndNoWindowAreReported)
{
    if (HasRealCamera())
        GTEST_SKIP() << "a camera is attached";
    SimCameraScope cameras(false);
    MessageCollector messages;
    CXCapGraph graph;
    graph.EnumDevices();
    EXPECT_EQ(graph.DeviceCount(), 0);
    EXPECT_EQ(graph.InitGraph(), E_FAIL);
    EXPECT_EQ(graph.SetParentWnd(nullptr, 0, 0, 10, 10), E_FAIL);
    EXPECT_EQ(messages.Texts(),
        QStringList({ QStringLiteral("Sorry, you have no video capture hardware.\r\n\r\n"
                                     "Video capture will not function properly."),
            QStringLiteral("Try to find capture device failed."),
            QStringLiteral("Could not get video window interface") }));
    ASSERT_EQ(messages.Requests().size(), 3u);
    for (std::size_t i : { 1u, 2u }) {
        EXPECT_EQ(messages.Requests()[i].caption, QStringLiteral("Error!"));
        EXPECT_EQ(messages.Requests()[i].flags, unsigned(MB_OK | MB_TASKMODAL | MB_SETFOREGROUND))
            << "no icon";
    }
}

namespace {

// Hides an element factory from the registry while it lives, as if its
// plugin were missing.
class HiddenFactory
{
public:
    explicit HiddenFactory(const char* name)
    {
        EnsureGStreamer();
        m_feature = gst_registry_lookup_feature(gst_registry_get(), name);
        if (m_feature)
            gst_registry_remove_feature(gst_registry_get(), m_feature);
    }
    ~HiddenFactory()
    {
        // The registry takes the lookup's reference back over.
        if (m_feature)
            gst_registry_add_feature(gst_registry_get(), m_feature);
    }
    HiddenFactory(const HiddenFactory&) = delete;
    HiddenFactory& operator=(const HiddenFactory&) = delete;

private:
    GstPluginFeature* m_feature = nullptr;
};

} // namespace

TEST(CaptureMessages, MissingPartsOfThePipelineAreNamed)
{
    SimCameraScope cameras;
    struct Case
    {
        const char* factory;
        bool record;
        const char* message;
    };
    const Case cases[] = {
        { "tee", false, "Could not create smart tee" },
        { "capsfilter", false, "Could not create SampleGrabber (is qedit.dll registered?)" },
        { "oculixcamprocess", false, "Could not create CamProcess (is OCULIXPro.dll registered?)" },
        { "appsink", false, "Unable to make a VM7 renderer" },
        { "oculixcamprocess", true, "Could not create CamProcess (is CamProcess.dll registered?)" },
        { "tee", true, "Could not create smart tee" },
        { "jpegenc", true, "Could not create compressor " },
        { "avimux", true, "Could not create AVI Mux Filter (is qcap.dll registered?)" },
        { "filesink", true, "Unable to make a FileWriter" },
        { "appsink", true, "Unable to make a VM7 renderer" },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        MessageCollector messages;
        CXCapGraph graph;
        ASSERT_TRUE(BindCamera(graph, DemoCameraName()));
        graph.SetRecordFileName(QDir::temp().filePath(QStringLiteral("oculix-missing-part.avi")));
        {
            HiddenFactory hidden(c.factory);
            if (c.record)
                graph.BuildRecordGraph();
            else
                graph.BuildPreviewGraph();
        }
        ASSERT_FALSE(messages.Texts().isEmpty());
        EXPECT_EQ(messages.Texts().front(), QString::fromUtf8(c.message));
        EXPECT_EQ(messages.Requests().front().caption, QStringLiteral("Error!"));
        // A half-built graph is cleared by the next teardown.
        graph.DestroyGraph();
        graph.BuildPreviewGraph();
        EXPECT_TRUE(graph.HasProcess());
    }
    QFile::remove(QDir::temp().filePath(QStringLiteral("oculix-missing-part.avi")));
}
