#include "CaptureTestSupport.h"
#include "image/FusedProcess.h"
#include "measure/CGVLElemMgr.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstring>
#include <gtest/gtest.h>

namespace {

const QString kCamera = QStringLiteral("Record Camera");

struct Probe
{
    bool ok = false;
    QString codec;
    int width = 0;
    int height = 0;
    int frames = 0;
    QString rate;
};

// What ffprobe finds in the file, counting the frames it can decode.
Probe ProbeVideo(const QString& file)
{
    Probe p;
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
        { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"),
            QStringLiteral("-select_streams"), QStringLiteral("v:0"), QStringLiteral("-show_entries"),
            QStringLiteral("stream=codec_name,width,height,nb_read_frames,avg_frame_rate"),
            QStringLiteral("-of"), QStringLiteral("default=nw=1"), file });
    if (!ffprobe.waitForFinished(30000) || ffprobe.exitCode() != 0)
        return p;
    for (const QString& line : QString::fromUtf8(ffprobe.readAllStandardOutput()).split('\n')) {
        const QString key = line.section('=', 0, 0);
        const QString value = line.section('=', 1);
        if (key == QLatin1String("codec_name"))
            p.codec = value;
        else if (key == QLatin1String("width"))
            p.width = value.toInt();
        else if (key == QLatin1String("height"))
            p.height = value.toInt();
        else if (key == QLatin1String("nb_read_frames"))
            p.frames = value.toInt();
        else if (key == QLatin1String("avg_frame_rate"))
            p.rate = value;
    }
    p.ok = !p.codec.isEmpty();
    return p;
}

// One decoded frame of the file as top-down RGB.
QByteArray DecodeFrame(const QString& file, int index)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
        { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), file, QStringLiteral("-vf"),
            QStringLiteral("select=eq(n\\,%1)").arg(index), QStringLiteral("-frames:v"), QStringLiteral("1"),
            QStringLiteral("-f"), QStringLiteral("rawvideo"), QStringLiteral("-pix_fmt"),
            QStringLiteral("rgb24"), QStringLiteral("-") });
    ffmpeg.waitForFinished(30000);
    return ffmpeg.readAllStandardOutput();
}

class Recording : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(QStringLiteral("ffprobe")).isEmpty())
            GTEST_SKIP() << "ffprobe is not installed";
        ASSERT_TRUE(dir.isValid());
        GstCaps* caps
            = gst_caps_from_string("video/x-raw, format=(string)YUY2, width=(int)320, height=(int)240, "
                                   "framerate=(fraction)30/1");
        AddSimDevice(kCamera, caps);
        gst_caps_unref(caps);
        graph.SetDeviceName(kCamera);
        ASSERT_EQ(graph.InitGraph(), S_OK);
        graph.EnumFormats();
        graph.BuildPreviewGraph();
        ASSERT_EQ(graph.RunGraph(), S_OK);
        ASSERT_TRUE(WaitFreshFrames(graph));
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

TEST_F(Recording, PlaysWithTheSizeCodecAndFramesOfItsDurationAndShowsTheOverlay)
{
    // A red block 40 rows up from the bottom of the picture.
    const std::size_t stride = 320 * 3;
    shapes.assign(stride * 240, kOverlayKey);
    for (int y = 40; y < 80; ++y)
        for (int x = 100; x < 160; ++x) {
            uchar* p = &shapes[y * stride + 3 * x];
            p[0] = 0;
            p[1] = 0;
            p[2] = 255;
        }
    overlay = shapes.data();

    const QString file = dir.filePath(QStringLiteral("clip.avi"));
    ASSERT_EQ(StartRecording(file), S_OK);
    EXPECT_TRUE(graph.IsRecordGraph());
    QElapsedTimer timer;
    timer.start();
    PumpUntil([] { return false; }, 2000);
    const double seconds = timer.elapsed() / 1000.0;
    StopRecording();
    EXPECT_FALSE(graph.IsRecordGraph());
    EXPECT_TRUE(messages.Texts().isEmpty()) << messages.Texts().join('|').toStdString();

    const Probe p = ProbeVideo(file);
    ASSERT_TRUE(p.ok) << "the file does not play";
    EXPECT_EQ(p.codec, QStringLiteral("mjpeg"));
    EXPECT_EQ(p.width, 320);
    EXPECT_EQ(p.height, 240);
    EXPECT_EQ(p.rate, QStringLiteral("30/1"));
    EXPECT_NEAR(p.frames, seconds * 30, 12) << "frames for " << seconds << " s";

    // The overlay is burnt into the recorded frames, top-down rows 160..199.
    const QByteArray rgb = DecodeFrame(file, 10);
    ASSERT_EQ(rgb.size(), 320 * 240 * 3);
    const auto* px = reinterpret_cast<const uchar*>(rgb.constData()) + (240 - 1 - 60) * stride + 3 * 130;
    EXPECT_GT(px[0], 200);
    EXPECT_LT(px[1], 60);
    EXPECT_LT(px[2], 60);

    // The preview is back.
    EXPECT_TRUE(WaitFreshFrames(graph));
    long size = 0;
    EXPECT_EQ(graph.GetCurrentBuffer(&size, nullptr), S_OK);
}

// The element manager draws the live overlay as the document's worker does;
// its shapes reach the snapshot exactly and the recording visibly.
TEST_F(Recording, ShapesOfTheElementManagerAppearInSnapshotAndRecording)
{
    g_object_set(graph.DeviceElement(), "drift", FALSE, "noise", FALSE, nullptr);
    ASSERT_TRUE(WaitFreshFrames(graph));
    long size = 0;
    graph.GetCurrentBuffer(&size, nullptr);
    std::vector<uchar> base(static_cast<std::size_t>(size));
    ASSERT_EQ(graph.GetCurrentBuffer(&size, base.data()), S_OK);

    CGVLElemMgr mgr;
    mgr.m_color.m_ctRuler = 2; // red strokes
    mgr.CreateShape(9); // element 0 is the calibration ruler, hidden
    mgr.OnLButtonDown(1, { 40, 60 }, 2);
    mgr.OnMouseMove(1, { 160, 60 }, 2);
    mgr.OnMouseMove(1, { 280, 60 }, 2);
    mgr.OnLButtonUp(0, { 280, 60 }, 2);
    ASSERT_EQ(mgr.m_arShape.size(), 2u) << "the ruler and the line";
    shapes.resize(CGVLElemMgr::BitsStride(320) * 240);
    mgr.DrawToBits(shapes.data(), 320, 240);
    overlay = shapes.data();
    ASSERT_EQ(graph.SetOverlay(1, &overlay), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));

    std::vector<uchar> expected = base;
    int covered = 0;
    for (std::size_t i = 0; i < expected.size(); i += 3)
        if (!(shapes[i] == 1 && shapes[i + 1] == 1 && shapes[i + 2] == 1)) {
            std::memcpy(&expected[i], &shapes[i], 3);
            ++covered;
        }
    EXPECT_GT(covered, 200);
    std::vector<uchar> snapshot(expected.size());
    ASSERT_EQ(graph.GetCurrentBuffer(&size, snapshot.data()), S_OK);
    EXPECT_TRUE(snapshot == expected);

    const QString file = dir.filePath(QStringLiteral("shapes.avi"));
    ASSERT_EQ(StartRecording(file), S_OK);
    PumpUntil([] { return false; }, 800);
    StopRecording();
    const QByteArray rgb = DecodeFrame(file, 5);
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
}

TEST_F(Recording, PausedRecordingResumesIntoTheSameFileAndStopsCleanly)
{
    const QString file = dir.filePath(QStringLiteral("paused.avi"));
    ASSERT_EQ(StartRecording(file), S_OK);
    PumpUntil([] { return false; }, 700);
    EXPECT_EQ(graph.PauseGraph(), S_OK);
    PumpUntil([] { return false; }, 500);
    EXPECT_EQ(graph.RunGraph(), S_OK);
    PumpUntil([] { return false; }, 700);
    EXPECT_EQ(graph.PauseGraph(), S_OK);
    // Stopped while paused: the file is still finished.
    StopRecording();
    const Probe p = ProbeVideo(file);
    ASSERT_TRUE(p.ok);
    EXPECT_NEAR(p.frames, 42, 14) << "1.4 s of recording, the pauses left out";
    EXPECT_TRUE(messages.Texts().isEmpty()) << messages.Texts().join('|').toStdString();
}

TEST_F(Recording, PulledCameraKeepsTheFramesSoFarInAPlayableFile)
{
    QString reported;
    graph.SetStreamErrorHandler([&](const QString& m) { reported = m; });
    const QString file = dir.filePath(QStringLiteral("pulled.avi"));
    // The camera has sent some frames for the preview already; it dies 40
    // frames into the recording.
    SetSimCameraFault(kCamera, SimCameraFault { 40, 0, 0 });
    ASSERT_EQ(StartRecording(file), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return !reported.isEmpty(); }, 10000));
    EXPECT_EQ(reported, CXCapGraph::kCameraLostMessage);
    ASSERT_EQ(messages.Requests().size(), 1u);
    EXPECT_EQ(messages.Requests()[0].text, CXCapGraph::kCameraLostMessage);
    EXPECT_EQ(messages.Requests()[0].caption, QStringLiteral("Error!"));
    EXPECT_TRUE(messages.Requests()[0].details.contains(QStringLiteral("No such device")));
    GstState state = GST_STATE_VOID_PENDING;
    gst_element_get_state(graph.Pipeline(), &state, nullptr, GST_SECOND);
    EXPECT_EQ(state, GST_STATE_NULL);

    const Probe p = ProbeVideo(file);
    ASSERT_TRUE(p.ok) << "the partial recording does not play";
    EXPECT_NEAR(p.frames, 40, 6);

    // Plugged in again: the program carries on.
    ClearSimCameraFaults();
    StopRecording();
    EXPECT_TRUE(WaitFreshFrames(graph));
}

TEST_F(Recording, PulledCameraWhilePreviewingIsReportedOnce)
{
    int reports = 0;
    graph.SetStreamErrorHandler([&](const QString&) { ++reports; });
    SetSimCameraFault(kCamera, SimCameraFault { 1, 0, 0 });
    ASSERT_TRUE(PumpUntil([&] { return reports > 0; }));
    PumpUntil([] { return false; }, 300);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(messages.Texts(), QStringList({ CXCapGraph::kCameraLostMessage }));
    // The last frame stays available to a snapshot.
    long size = 0;
    ASSERT_EQ(graph.GetCurrentBuffer(&size, nullptr), S_OK);
    std::vector<uchar> bits(static_cast<std::size_t>(size));
    EXPECT_EQ(graph.GetCurrentBuffer(&size, bits.data()), S_OK);
    ClearSimCameraFaults();
    ASSERT_EQ(graph.RunGraph(), S_OK);
    EXPECT_TRUE(WaitFreshFrames(graph));
}

TEST_F(Recording, CameraThatCannotStartIsReportedAsSuch)
{
    graph.StopGraph();
    SimCameraFault busy;
    busy.busy = true;
    SetSimCameraFault(kCamera, busy);
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
