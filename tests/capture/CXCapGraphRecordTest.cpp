#include "CaptureTestSupport.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "image/FusedProcess.h"
#include "measure/CGVLElemMgr.h"

#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

#include <cstring>
#include <gtest/gtest.h>

namespace {

const QString kRecordCamera = QStringLiteral("Record Camera");

// One decoded frame of the file as top-down RGB.
QByteArray DecodeFrame(const QString& file, int index)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
        QStringList { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), file,
            QStringLiteral("-vf"), QStringLiteral("select=eq(n\\,%1)").arg(index) }
            << QStringLiteral("-frames:v 1 -f rawvideo -pix_fmt rgb24 -").split(' '));
    ffmpeg.waitForFinished(30000);
    return ffmpeg.readAllStandardOutput();
}

class Recording : public ::testing::Test
{
protected:
    void SetUp() override
    {
        REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
        ASSERT_TRUE(dir.isValid());
        AddCapsCamera(kRecordCamera, kSmallCameraCaps);
        ASSERT_TRUE(StartPreview(graph, kRecordCamera));
    }

    // The switch-over of the record dialog's Start; the run's result.
    int StartRecording(const QString& file)
    {
        graph.StopGraph();
        graph.DestroyGraph();
        graph.SetRecordFileName(file);
        graph.BuildRecordGraph();
        graph.SetProcessEnable(0);
        const int hr = graph.RunGraph();
        graph.SetOverlay(1, &overlay);
        graph.SetProcessEnable(1);
        return hr;
    }

    // And of its Stop.
    void StopRecording()
    {
        graph.StopGraph();
        graph.DestroyGraph();
        graph.BuildPreviewGraph();
        graph.RunGraph();
    }

    SimCameraScope cameras;
    MessageCollector messages;
    QTemporaryDir dir;
    // Declared before the graph: frames may read it until the graph is gone.
    std::vector<uchar> shapes;
    uchar* overlay = nullptr;
    CXCapGraph graph;
};

} // namespace

// The element manager draws the live overlay as the document's worker does;
// its shapes reach the snapshot exactly and are burnt into the recording,
// which plays with the camera's size, the codec and the frames of its length.
TEST_F(Recording, PlaysWithSizeCodecAndFramesOfItsDurationAndCarriesTheShapes)
{
    g_object_set(graph.DeviceElement(), "drift", FALSE, "noise", FALSE, nullptr);
    ASSERT_TRUE(WaitFreshFrames(graph));
    const std::vector<uchar> base = Snapshot(graph);

    CGVLElemMgr mgr;
    mgr.SetAppearance({ .color = { 4, 2, 3, 4 } }); // red strokes
    mgr.CreateShape(ShapeType::Ruler); // element 0 is the calibration ruler, hidden
    mgr.OnLButtonDown(1, { 40, 60 }, 2);
    mgr.OnMouseMove(1, { 160, 60 }, 2);
    mgr.OnMouseMove(1, { 280, 60 }, 2);
    mgr.OnLButtonUp(0, { 280, 60 }, 2);
    ASSERT_EQ(mgr.m_arShape.size(), 2u) << "the ruler and the line";
    shapes.resize(DibStride(320) * 240);
    mgr.DrawToBits(shapes.data(), 320, 240);
    overlay = shapes.data();
    ASSERT_EQ(graph.SetOverlay(1, &overlay), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    std::vector<uchar> expected = base;
    EXPECT_GT(BlendOverlay(expected, shapes), 200);
    EXPECT_TRUE(Snapshot(graph) == expected);

    const QString file = dir.filePath(QStringLiteral("clip.avi"));
    CameraFrameLog log(graph.DeviceElement());
    ASSERT_TRUE(log.IsAttached());
    ASSERT_EQ(StartRecording(file), S_OK);
    EXPECT_TRUE(graph.IsRecordGraph());
    ASSERT_TRUE(WaitFreshFrames(graph, 45, 20000));
    StopRecording();
    EXPECT_FALSE(graph.IsRecordGraph());
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);

    const auto p = ProbeVideo(file);
    ASSERT_FALSE(p.isEmpty()) << "the file does not play";
    EXPECT_EQ(p.value(QStringLiteral("codec_name")), QStringLiteral("mjpeg"));
    EXPECT_EQ(p.value(QStringLiteral("width")), QStringLiteral("320"));
    EXPECT_EQ(p.value(QStringLiteral("height")), QStringLiteral("240"));
    EXPECT_EQ(p.value(QStringLiteral("avg_frame_rate")), QStringLiteral("30/1"));
    // The file lasts as long as the stream it recorded, however fast this
    // machine kept up with the camera.
    const auto runs = log.Runs();
    ASSERT_GE(runs.size(), 1u);
    EXPECT_GE(runs[0].size(), 45u);
    EXPECT_NEAR(p.value(QStringLiteral("nb_read_frames")).toInt(), RecordedFrames(runs[0]), 1);

    const QByteArray rgb = DecodeFrame(file, 10);
    ASSERT_EQ(rgb.size(), 320 * 240 * 3);
    // Along the line (row 60 from the top) the picture turns red; a row
    // above it, on bare slide, keeps its grey.
    auto redness = [&](int row) {
        const auto* line = reinterpret_cast<const uchar*>(rgb.constData()) + row * 320 * 3;
        double sum = 0;
        for (int x = 80; x < 240; ++x)
            sum += line[3 * x] - line[3 * x + 1];
        return sum / 160;
    };
    EXPECT_GT(redness(60), 60);
    EXPECT_LT(redness(20), 20);

    // The preview is back.
    EXPECT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(Snapshot(graph).size(), 320u * 240 * 3);
}

// A pause stops the pipeline's clock: the camera sends nothing while paused,
// and its timestamps, and with them the file's time (a fixed frame rate),
// go on from where the pause began instead of leaving a hole.
TEST_F(Recording, PausedRecordingResumesIntoTheSameFileAndStopsCleanly)
{
    const QString file = dir.filePath(QStringLiteral("paused.avi"));
    CameraFrameLog log(graph.DeviceElement());
    ASSERT_TRUE(log.IsAttached());
    ASSERT_EQ(StartRecording(file), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph, 15, 10000));
    EXPECT_EQ(graph.PauseGraph(), S_OK);
    Pump(2500);
    EXPECT_EQ(graph.RunGraph(), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph, 15, 10000));
    EXPECT_EQ(graph.PauseGraph(), S_OK);
    // Stopped while paused: the file is still finished.
    StopRecording();
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);

    const auto runs = log.Runs();
    ASSERT_GE(runs.size(), 1u);
    ExpectPauseLeftOut(runs[0]);
    const auto p = ProbeVideo(file);
    ASSERT_FALSE(p.isEmpty());
    EXPECT_NEAR(p.value(QStringLiteral("nb_read_frames")).toInt(), RecordedFrames(runs[0]), 1)
        << runs[0].size() << " frames sent";
}

// A camera pulled out while recording is reported once, with the driver's
// words behind the message, and the frames so far stay in a playable file;
// a camera held by another program cannot start. (The program's own answer
// to a pull, in preview too, is tested with the live document.)
TEST_F(Recording, PulledCameraKeepsAPlayableFileAndABusyOneCannotStart)
{
    int reports = 0;
    graph.SetStreamErrorHandler([&](const QString& m) {
        ++reports;
        EXPECT_EQ(m, CXCapGraph::kCameraLostMessage);
    });
    const QString file = dir.filePath(QStringLiteral("pulled.avi"));
    // The camera has sent some frames for the preview already; it dies 40
    // frames into the recording.
    SetSimCameraFault(kRecordCamera, SimCameraFault { 40, 0, 0 });
    ASSERT_EQ(StartRecording(file), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return reports > 0; }, 10000));
    Pump(300);
    EXPECT_EQ(reports, 1);
    ASSERT_EQ(messages.Requests().size(), 1u);
    EXPECT_EQ(messages.Requests()[0].text, CXCapGraph::kCameraLostMessage);
    EXPECT_TRUE(messages.Requests()[0].details.contains(QStringLiteral("No such device")));
    GstState state = GST_STATE_VOID_PENDING;
    gst_element_get_state(graph.Pipeline(), &state, nullptr, GST_SECOND);
    EXPECT_EQ(state, GST_STATE_NULL);
    const auto p = ProbeVideo(file);
    ASSERT_FALSE(p.isEmpty()) << "the partial recording does not play";
    EXPECT_NEAR(p.value(QStringLiteral("nb_read_frames")).toInt(), 40, 6);
    ClearSimCameraFaults();
    StopRecording();
    EXPECT_TRUE(WaitFreshFrames(graph));

    messages.Clear();
    graph.SetStreamErrorHandler({});
    graph.StopGraph();
    SimCameraFault busy;
    busy.busy = true;
    SetSimCameraFault(kRecordCamera, busy);
    EXPECT_EQ(graph.RunGraph(), E_FAIL);
    ASSERT_TRUE(PumpUntil([&] { return !messages.Texts().isEmpty(); }));
    EXPECT_EQ(messages.Texts(), QStringList({ CXCapGraph::kCameraStartMessage }));
    EXPECT_TRUE(messages.Requests()[0].details.contains(QStringLiteral("busy")));
    ClearSimCameraFaults();
    ASSERT_EQ(graph.RunGraph(), S_OK);
    EXPECT_TRUE(WaitFreshFrames(graph));
}

TEST_F(Recording, UnwritablePathAndFullDiskAreReported)
{
    StartRecording(dir.filePath(QStringLiteral("no/such/folder/clip.avi")));
    ASSERT_FALSE(messages.Texts().isEmpty());
    EXPECT_EQ(messages.Texts().front(), QStringLiteral("m_pFileSink->SetFileName failed"));
    StopRecording();
    messages.Clear();

    if (!QFile::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no /dev/full to stand for a full disk";
    QString reported;
    graph.SetStreamErrorHandler([&](const QString& m) { reported = m; });
    ASSERT_EQ(StartRecording(QStringLiteral("/dev/full")), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return !reported.isEmpty(); }, 10000));
    EXPECT_EQ(reported, CXCapGraph::kRecordWriteMessage);
    EXPECT_EQ(messages.Texts(), QStringList({ CXCapGraph::kRecordWriteMessage }));
    StopRecording();
    EXPECT_TRUE(WaitFreshFrames(graph)) << "the preview carries on";
}
