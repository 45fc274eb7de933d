#include "CaptureTestSupport.h"
#include "capture/CCamProcess.h"
#include "capture/CSimScene.h"
#include "capture/CamProcessElement.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

// Slide pixel of a point given in slide micrometres.
QPoint SlidePixel(const CSimScene& scene, double xUm, double yUm)
{
    const double umpp = CSimScene::MicrometresPerPixel(scene.Width());
    return QPoint(int(std::lround(xUm / umpp)), int(std::lround(yUm / umpp)));
}

int Red(const QImage& image, QPoint p)
{
    return qRed(image.pixel(p));
}

// Width in pixels of the dark run through (x, y) along the row.
int DarkRun(const QImage& image, QPoint centre, int threshold)
{
    int left = centre.x();
    while (left > 0 && Red(image, QPoint(left - 1, centre.y())) < threshold)
        --left;
    int right = centre.x();
    while (right + 1 < image.width() && Red(image, QPoint(right + 1, centre.y())) < threshold)
        ++right;
    return right - left + 1;
}

} // namespace

TEST(SimScene, MicrometerTicksSitEveryTenMicrometresWithLongerOnesAtFiftyAndHundred)
{
    for (unsigned width : { 640u, 1280u, 1600u }) {
        CSimScene scene(width, width * 3 / 4);
        const QImage& slide = scene.Slide();
        SCOPED_TRACE(width);
        for (int d = 0; d <= 100; ++d) {
            const double x = 500.0 + 10.0 * d;
            // Every tick reaches 30 um above the baseline at y = 620 um.
            EXPECT_LT(Red(slide, SlidePixel(scene, x, 590)), 110) << "tick " << d;
            if (d < 100) {
                EXPECT_GT(Red(slide, SlidePixel(scene, x + 5, 590)), 150) << "gap after " << d;
            }
            // 55 um up only the 50 um ticks, 85 um up only the 100 um ticks.
            EXPECT_EQ(Red(slide, SlidePixel(scene, x, 565)) < 110, d % 5 == 0) << "tick " << d;
            EXPECT_EQ(Red(slide, SlidePixel(scene, x, 535)) < 110, d % 10 == 0) << "tick " << d;
        }
    }
}

TEST(SimScene, TestObjectsHaveTheirDocumentedSizes)
{
    CSimScene scene(1280, 1024);
    const QImage& slide = scene.Slide();
    const double umpp = CSimScene::MicrometresPerPixel(1280);
    ASSERT_DOUBLE_EQ(umpp, 1.25);
    const double diameters[] = { 20, 50, 100, 150, 250 };
    const double centres[] = { 430, 560, 740, 980, 1300 };
    for (int i = 0; i < 5; ++i) {
        const int run = DarkRun(slide, SlidePixel(scene, centres[i], 880), 190);
        EXPECT_NEAR(run * umpp, diameters[i], 2.5 * umpp) << "particle " << diameters[i];
    }
    EXPECT_NEAR(DarkRun(slide, SlidePixel(scene, 650, 1180), 190) * umpp, 200, 2.5 * umpp);
    // The triangle's base is 200 um; 5 um above it the width is 200 - 2*5/tan(60).
    const double baseY = 1180 + 200 * std::sqrt(3.0) / 4;
    EXPECT_NEAR(DarkRun(slide, SlidePixel(scene, 1150, baseY - 5), 190) * umpp, 200 - 10 / std::sqrt(3.0),
        2.5 * umpp);
}

TEST(SimScene, FramesAreDeterministicDriftSlowlyAndFollowTheControls)
{
    CSimScene a(640, 480);
    CSimScene b(640, 480);
    std::vector<uchar> fa(640 * 2 * 480), fb(640 * 2 * 480);
    a.RenderYuy2(42, fa.data(), 640 * 2);
    b.RenderYuy2(42, fb.data(), 640 * 2);
    EXPECT_EQ(fa, fb);
    b.RenderYuy2(43, fb.data(), 640 * 2);
    EXPECT_NE(fa, fb);

    // Slow: a few pixels between neighbouring frames, clearly moved over seconds.
    const QPoint p0 = a.Offset(0);
    const QPoint p1 = a.Offset(1);
    const QPoint p300 = a.Offset(300);
    EXPECT_LE(std::abs(p1.x() - p0.x()) + std::abs(p1.y() - p0.y()), 4);
    EXPECT_GT(std::abs(p300.x() - p0.x()) + std::abs(p300.y() - p0.y()), 10);
    EXPECT_EQ(p300.x() % 2, 0);

    // Still and clean: every frame alike.
    CSimScene::Controls c;
    c.drift = false;
    c.noise = false;
    a.SetControls(c);
    a.RenderYuy2(1, fa.data(), 640 * 2);
    a.RenderYuy2(500, fb.data(), 640 * 2);
    EXPECT_EQ(fa, fb);

    // Brightness lifts the corner, and so does switching vignetting off.
    auto cornerLuma = [&] {
        a.SetControls(c);
        a.RenderYuy2(0, fa.data(), 640 * 2);
        double sum = 0;
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                sum += fa[std::size_t(y) * 640 * 2 + std::size_t(x) * 2];
        return sum / 64;
    };
    const double plainCorner = cornerLuma();
    c.brightness = 30;
    EXPECT_GT(cornerLuma(), plainCorner + 15);
    c.brightness = 0;
    c.vignetting = false;
    EXPECT_GT(cornerLuma(), plainCorner + 20) << "corners are darkened by about a quarter";
}

namespace {

struct SourcePipeline
{
    GstElement* pipeline = nullptr;
    GstElement* source = nullptr;
    GstElement* sink = nullptr;

    explicit SourcePipeline(const char* description)
    {
        EnsureGStreamer();
        GError* error = nullptr;
        pipeline = gst_parse_launch(description, &error);
        EXPECT_EQ(error, nullptr) << (error ? error->message : "");
        g_clear_error(&error);
        source = gst_bin_get_by_name(GST_BIN(pipeline), "src");
        sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
    }
    ~SourcePipeline()
    {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        if (source)
            gst_object_unref(source);
        if (sink)
            gst_object_unref(sink);
        gst_object_unref(pipeline);
    }
    int Frames() const
    {
        int frames = 0;
        g_object_get(source, "frames", &frames, nullptr);
        return frames;
    }
};

} // namespace

TEST(SimCameraSource, LateFramesAreAllProcessedNotDroppedForQuality)
{
    SimCameraScope scope;
    SetSimCameraFault(QStringLiteral("Slow"), SimCameraFault { 0, 2, 80 });
    auto state = std::make_shared<CCamProcess>();
    // Only the processing element is under test: the converter keeps every
    // frame; the sink reports lateness upstream, as display sinks do.
    SourcePipeline p("oculixsimcamsrc name=src camera-name=Slow ! video/x-raw,width=160,height=120 ! "
                     "videoconvert qos=false ! capsfilter name=before caps=video/x-raw,format=BGR ! "
                     "appsink name=sink sync=true qos=true max-lateness=5000000 drop=true max-buffers=1");
    GstElement* before = gst_bin_get_by_name(GST_BIN(p.pipeline), "before");
    GstElement* process = CreateCamProcessElement(state, "process");
    gst_element_unlink(before, p.sink);
    gst_bin_add(GST_BIN(p.pipeline), process);
    ASSERT_TRUE(gst_element_link_many(before, process, p.sink, nullptr));
    gst_object_unref(before);
    gboolean qos = TRUE;
    g_object_get(process, "qos", &qos, nullptr);
    EXPECT_FALSE(qos);

    gst_element_set_state(p.pipeline, GST_STATE_PLAYING);
    EXPECT_TRUE(PumpUntil([&] { return p.Frames() >= 16; }, 8000));
    gst_element_set_state(p.pipeline, GST_STATE_NULL);
    int processed = 0;
    state->GetStateB(&processed);
    // Stopping may catch one frame between the camera and the element.
    EXPECT_GE(processed, p.Frames() - 1) << "every frame the camera delivered was processed";
}

// A pipeline that stops reading for a while (an encoder falling behind) finds
// the camera's next frame stamped at the clock's time, the frames in between
// dropped, as a real camera's driver drops them: were they stamped one after
// another instead, a recording would play back shorter than it took.
TEST(SimCameraSource, ReadLateItDropsFramesAndKeepsToTheClock)
{
    SimCameraScope scope;
    SourcePipeline p("oculixsimcamsrc name=src ! video/x-raw,width=64,height=48,framerate=30/1 ! "
                     "appsink name=sink sync=false max-buffers=1 drop=false");
    gst_element_set_state(p.pipeline, GST_STATE_PLAYING);
    GstClock* clock = nullptr;
    ASSERT_TRUE(
        PumpUntil([&] { return (clock = gst_pipeline_get_clock(GST_PIPELINE(p.pipeline))) != nullptr; }));
    const auto runningTime
        = [&] { return gst_clock_get_time(clock) - gst_element_get_base_time(p.pipeline); };
    // Nothing is read for 600 ms: the camera waits on the full sink.
    ASSERT_TRUE(PumpUntil([&] { return runningTime() > 600 * GST_MSECOND; }));
    const GstClockTime resumed = runningTime();
    gst_object_unref(clock);
    GstClockTime last = 0;
    for (int i = 0; i < 4; ++i) {
        GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(p.sink));
        ASSERT_NE(sample, nullptr);
        last = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
        gst_sample_unref(sample);
    }
    // The frames held while nothing was read are older; the ones after not.
    EXPECT_GE(last + 100 * GST_MSECOND, resumed) << last / GST_MSECOND << " ms";
}
