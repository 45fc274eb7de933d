#include "MeasureFrameFixture.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "app/CHistogramDock.h"
#include "app/CommandTable.h"
#include "capture/CVideoWidget.h"
#include "capture/CameraModels.h"
#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"
#include "platform/PrivateProfile.h"
#include "ui/CHistogramPanel.h"

#include <QDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

// The live camera as the user meets it in the program: the model found at
// start-up, its dialogs, and cameras plugged in and pulled out.

namespace {

const QString kN130 = QStringLiteral("KMZ-N130 USB2.0 Camera");
// Small frames, in YUY2 first and also as JPEG, as the N130 streams them.
const char* const kN130Caps = "video/x-raw, format=(string)YUY2, width=(int)320, height=(int)240, "
                              "framerate=(fraction)30/1; "
                              "image/jpeg, width=(int)320, height=(int)240, framerate=(fraction)30/1";

void PlugIn(const QString& name, bool again = false)
{
    EnsureGStreamer();
    GstCaps* caps = gst_caps_from_string(kN130Caps);
    again ? ReplugSimDevice(name, caps) : AddSimDevice(name, caps);
    gst_caps_unref(caps);
}

int ProcessedFrames(CMeasureDoc& doc)
{
    int frames = 0;
    doc.GetGraph().GetStateB(&frames);
    return frames;
}

bool FreshFrames(CMeasureDoc& doc)
{
    const int start = ProcessedFrames(doc);
    return WaitFor([&] { return ProcessedFrames(doc) >= start + 5; }, 10000);
}

class LiveCamera : public MeasureFrameTest
{
protected:
    void SetUp() override
    {
        EnsureGStreamer();
        RemoveAllSimDevices();
        SetMjpgCamera(false);
    }
    void TearDown() override
    {
        MeasureFrameTest::TearDown();
        RemoveAllSimDevices();
        ClearSimCameraFaults();
        SetMjpgCamera(false);
    }
};

} // namespace

// The N130 is found by the start-up scan; it streams MJPG, so the preview
// asks it for JPEG frames at its model's size from the settings. Pulled out
// while recording, the file so far plays and the last frame stays to measure
// on; plugged back in, the preview runs again, and so after a pull during the
// preview.
TEST_F(LiveCamera, KnownModelStreamsMjpgAndSurvivesBeingPulledWhileRecordingAndPreviewing)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    PlugIn(kN130);
    QDir().mkpath(home.filePath("data"));
    WritePrivateProfileString("Camera130H", "Width", "320", SettingsFile());
    WritePrivateProfileString("Camera130H", "Height", "240", SettingsFile());
    Start(false);
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    ASSERT_TRUE(FreshFrames(*live));
    EXPECT_EQ(GetAttachedCameraModel().m_model, 0);
    EXPECT_TRUE(GetAttachedCameraModel().m_bMjpg);
    EXPECT_TRUE(IsMjpgCamera());
    CXCapGraph& graph = live->GetGraph();
    GstElement* decoder = gst_bin_get_by_name(GST_BIN(graph.Pipeline()), "Decoder");
    EXPECT_NE(decoder, nullptr) << "the preview took the YUY2 mode";
    if (decoder)
        gst_object_unref(decoder);
    EXPECT_EQ(live->GetImageSize(), QSize(320, 240));

    // "&Adjust" is the camera's dialog, like "Video &Properties"; the
    // processing element's is the processing bar's.
    QString opened;
    for (int id : { ID_VIDEO_ADJUST, ID_VIDEO_PROPERTIES, ID_PROCESS_PROPERTIES }) {
        QTimer::singleShot(0, [&opened] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                opened += QString::fromLatin1(dialog->metaObject()->className()) + QLatin1Char(' ');
                dialog->reject();
            }
        });
        ASSERT_TRUE(frame->RouteCommand(id));
    }
    EXPECT_EQ(opened, QStringLiteral("CDevicePropertiesDlg CDevicePropertiesDlg CProcessPropertiesDlg "));

    // Recording (as the record dialog switches over) when the camera goes.
    const QString avi = home.filePath("pulled.avi");
    graph.StopGraph();
    graph.DestroyGraph();
    graph.SetRecordFileName(avi);
    graph.BuildRecordGraph();
    ASSERT_EQ(graph.RunGraph(), 0);
    ASSERT_TRUE(FreshFrames(*live));
    ASSERT_TRUE(FreshFrames(*live));
    ASSERT_TRUE(PullSimDevice(kN130));
    ASSERT_TRUE(WaitFor([&] { return live->IsCameraLost() && !live->IsPreviewRunning(); }, 10000));
    EXPECT_EQ(messages, QStringList { CXCapGraph::kCameraLostMessage }) << "said once";
    const auto probe = ProbeVideo(avi);
    ASSERT_FALSE(probe.isEmpty()) << "the recording so far does not play";
    EXPECT_GE(probe.value(QStringLiteral("nb_read_frames")).toInt(), 8);

    // The document stays to draw on, and says why the video waits.
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(20, 40), QPoint(200, 40));
    EXPECT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2 }));
    messages.clear();
    frame->RouteCommand(ID_CAMERA_PREVIEW);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.front().contains(QStringLiteral("not connected"))) << messages.front().toStdString();

    // Back in: the preview, the overlay worker and the shapes.
    messages.clear();
    PlugIn(kN130, true);
    ASSERT_TRUE(WaitFor([&] { return live->IsPreviewRunning(); }, 10000));
    EXPECT_FALSE(live->IsCameraLost());
    EXPECT_FALSE(graph.IsRecordGraph());
    ASSERT_TRUE(FreshFrames(*live));
    const unsigned passes = live->OverlayPasses();
    EXPECT_TRUE(WaitFor([&] { return live->OverlayPasses() >= passes + 2; }, 5000));
    EXPECT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2 }));

    // Pulled while previewing: the last frame stays to measure on.
    ASSERT_TRUE(PullSimDevice(kN130));
    ASSERT_TRUE(WaitFor([&] { return live->IsCameraLost() && !live->IsPreviewRunning(); }, 10000));
    EXPECT_EQ(messages, QStringList { CXCapGraph::kCameraLostMessage });
    ASSERT_NE(live->GetPicture(), nullptr);
    EXPECT_EQ(live->GetPicture()->Width(), 320);
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_CAPTURE));
    ASSERT_NE(ActiveDoc(), live);
    EXPECT_EQ(ActiveDoc()->GetImageSize(), QSize(320, 240));
    PlugIn(kN130, true);
    ASSERT_TRUE(WaitFor([&] { return live->IsPreviewRunning(); }, 10000));
    EXPECT_TRUE(FreshFrames(*live));
    EXPECT_EQ(messages.size(), 1);
}

// Started without a camera, the program has no live document; a camera
// plugged in then is announced and "&New Preview" shows it.
TEST_F(LiveCamera, CameraPluggedInWithoutALiveDocumentOpensWithNewPreview)
{
    if (!QDir(QStringLiteral("/dev")).entryList({ QStringLiteral("video*") }, QDir::System).isEmpty())
        GTEST_SKIP() << "a camera is attached";
    Start(false);
    EXPECT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
    EXPECT_EQ(GetAttachedCameraModel().m_model, -1);
    EXPECT_FALSE(IsMjpgCamera());
    messages.clear();

    PlugIn(QStringLiteral("Bench Camera"));
    ASSERT_TRUE(
        WaitFor([&] { return frame->statusBar()->currentMessage().contains("Bench Camera"); }, 10000));
    ASSERT_TRUE(frame->QueryCommand(ID_FILE_NEW).IsEnabled());
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_NEW));
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    EXPECT_EQ(live->GetGraph().DeviceName(), QStringLiteral("Bench Camera"));
    EXPECT_TRUE(FreshFrames(*live));
    EXPECT_FALSE(IsMjpgCamera()) << "not a known model";
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

// Started without a camera, the empty document says how to connect one and
// offers the simulated camera, which then takes its place as the live
// document; a document opened for a picture says nothing of cameras.
TEST_F(LiveCamera, FirstStartWithoutACameraOffersTheSimulatedOne)
{
    if (!QDir(QStringLiteral("/dev")).entryList({ QStringLiteral("video*") }, QDir::System).isEmpty())
        GTEST_SKIP() << "a camera is attached";
    Start(false);
    ASSERT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
    messages.clear(); // the start says it found no camera, as it always has
    CMeasureView* empty = ActiveView();
    ASSERT_NE(empty, nullptr);
    auto* use = empty->findChild<QPushButton*>(QStringLiteral("UseSimulatedCamera"));
    ASSERT_NE(use, nullptr);
    ASSERT_TRUE(WaitFor([&] { return use->isVisible(); }, 5000));

    use->click();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    EXPECT_EQ(live->GetGraph().DeviceName(), DemoCameraName());
    EXPECT_TRUE(FreshFrames(*live));
    ASSERT_TRUE(WaitFor([&] { return frame->GetChildFrames().size() == 1; }, 5000)) << "the empty one closes";
    EXPECT_EQ(ActiveDoc(), live);
    EXPECT_EQ(ActiveView()->findChild<QPushButton*>(QStringLiteral("UseSimulatedCamera")), nullptr);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

// A rectangle dragged over the slide's beige background, then "White
// Balance": the whole rectangle is measured and the camera's own gains make
// it gray, without a word to the user.
TEST_F(LiveCamera, WhiteBalanceFromADraggedRectangleSetsTheCamerasGains)
{
    PlugIn(QStringLiteral("Plain Camera"));
    Start(false);
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    ASSERT_TRUE(FreshFrames(*live));
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_RECT));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(10, 150), QPoint(70, 200));
    messages.clear();
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_WHITE_BALANCE));
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    int blue = 0;
    g_object_get(live->GetGraph().DeviceElement(), "blue-balance", &blue, nullptr);
    EXPECT_GT(blue, 100) << "the lamp is short of blue";
}

// "Flash clipped" in the histogram flashes the live picture's clipped pixels
// while the histogram shows, and stops when it is hidden.
TEST_F(LiveCamera, FlashClippedFollowsTheHistogramsSwitchAndVisibility)
{
    PlugIn(QStringLiteral("Plain Camera"));
    Start(false);
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    CVideoWidget* video = live->GetGraph().VideoWidget();
    ASSERT_NE(video, nullptr);
    auto* dock = frame->findChild<CHistogramDock*>();
    ASSERT_NE(dock, nullptr);
    ASSERT_TRUE(frame->RouteCommand(ID_VIEW_HISTOGRAM));
    ASSERT_TRUE(WaitFor([&] { return dock->isVisible(); }, 5000));
    EXPECT_FALSE(video->ClippingShown());
    dock->Panel()->SetFlashClipping(true);
    EXPECT_TRUE(video->ClippingShown());
    ASSERT_TRUE(frame->RouteCommand(ID_VIEW_HISTOGRAM));
    ASSERT_TRUE(WaitFor([&] { return !dock->isVisible(); }, 5000));
    EXPECT_FALSE(video->ClippingShown());
}
