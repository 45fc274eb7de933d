#include "capture/LiveMosaic.h"

#include "MeasureFrameFixture.h"
#include "app/CMosaicDock.h"
#include "app/CommandTable.h"
#include "capture/GstInit.h"
#include "ui/CMosaicPanel.h"

#include <gst/gst.h>

namespace {

class LiveMosaicTest : public MeasureFrameTest
{
protected:
    void TearDown() override
    {
        MeasureFrameTest::TearDown();
        RemoveAllSimDevices();
    }

    // A small simulated camera with its stage, at rest at `start`.
    void StartOnStage(QPointF start)
    {
        EnsureGStreamer();
        RemoveAllSimDevices();
        GstCaps* caps = gst_caps_from_string(
            "video/x-raw, format=(string)YUY2, width=(int)320, height=(int)256, framerate=(fraction)30/1");
        AddSimDevice(QStringLiteral("Stage Camera"), caps);
        gst_caps_unref(caps);
        Start(false);
        live = CMeasureDoc::GetLiveDocument();
        ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
        ASSERT_TRUE(WaitFor([&] { return HasFrame(*live); }, 30000));
        camera = live->GetGraph().DeviceElement();
        ASSERT_NE(camera, nullptr);
        g_object_set(camera, "stage", TRUE, nullptr);
        MoveStage(start);
        // Frames at the old place may still be on their way.
        const int moved = Delivered();
        ASSERT_TRUE(WaitFor([&] { return Delivered() >= moved + 3; }, 30000));
        ASSERT_EQ(Stage(), start);
        dock = frame->GetMosaicDock();
        ASSERT_NE(dock, nullptr);
    }
    QPointF Stage() const
    {
        double x = 0.0, y = 0.0;
        g_object_get(camera, "stage-x", &x, "stage-y", &y, nullptr);
        return { x, y };
    }
    int Delivered() const
    {
        int frames = 0;
        g_object_get(camera, "frames", &frames, nullptr);
        return frames;
    }
    void MoveStage(QPointF to) { g_object_set(camera, "stage-x", to.x(), "stage-y", to.y(), nullptr); }
    LiveMosaic::Status Status() const { return dock->Mosaic()->State(); }
    // The mosaic follows the stage to `offset` from where it started, give
    // or take the stage's jitter.
    bool Follows(QPointF offset)
    {
        return WaitFor(
            [&] {
                const LiveMosaic::Status s = Status();
                return s.tracked > 0 && !s.lost && std::abs(s.field.x() - offset.x()) < 1.0
                    && std::abs(s.field.y() - offset.y()) < 1.0;
            },
            20000);
    }

    CMeasureDoc* live = nullptr;
    GstElement* camera = nullptr;
    CMosaicDock* dock = nullptr;
};

} // namespace

// Video > Mosaic while the stage moves along a path: the mosaic follows the
// stage; a jump off the covered ground is lost, with the hint, until the
// stage comes back. Mosaic again opens it as a picture in the live
// document's calibration, large enough for every field.
TEST_F(LiveMosaicTest, FollowsTheStageRecoversAfterLosingItAndOpensCalibrated)
{
    const QPointF start(100, 100);
    StartOnStage(start);
    const QSize field = live->GetImageSize();
    const CalibrationRecord unit { 0, 0.25, 0.25, 100.0, 100.0 };
    live->GetElemMgr().SetUnit(unit);
    EXPECT_TRUE(frame->QueryCommand(ID_VIDEO_MOSAIC).IsEnabled());
    EXPECT_FALSE(frame->QueryCommand(ID_VIDEO_MOSAIC).IsChecked());

    frame->RouteCommand(ID_VIDEO_MOSAIC);
    ASSERT_TRUE(dock->Running());
    EXPECT_TRUE(dock->isVisible());
    EXPECT_TRUE(frame->QueryCommand(ID_VIDEO_MOSAIC).IsChecked());
    ASSERT_TRUE(Follows({ 0, 0 }));

    const double w = field.width(), h = field.height();
    const QPointF path[]
        = { { 0.2 * w, 0.02 * h }, { 0.4 * w, 0.05 * h }, { 0.4 * w, 0.3 * h }, { 0.2 * w, 0.45 * h } };
    for (const QPointF& offset : path) {
        MoveStage(start + offset);
        ASSERT_TRUE(Follows(offset)) << "to " << offset.x() << ", " << offset.y() << ": at "
                                     << Status().field.x() << ", " << Status().field.y() << " lost "
                                     << Status().lost << " tracked " << Status().tracked << " skipped "
                                     << Status().skipped << " tiles " << Status().tiles;
    }
    const int tiles = Status().tiles;
    EXPECT_GE(tiles, 2);

    // Fields away.
    MoveStage(QPointF(2.4 * w, 1.6 * h));
    ASSERT_TRUE(WaitFor([&] { return Status().lost; }, 20000));
    EXPECT_TRUE(WaitFor([&] { return dock->Panel()->Lost(); }, 5000));
    EXPECT_TRUE(dock->Panel()->Text().startsWith(QStringLiteral("Lost")))
        << dock->Panel()->Text().toStdString();
    EXPECT_EQ(Status().tiles, tiles);
    MoveStage(start + QPointF(0.2 * w, 0.1 * h));
    ASSERT_TRUE(Follows({ 0.2 * w, 0.1 * h }));
    EXPECT_TRUE(WaitFor([&] { return !dock->Panel()->Lost(); }, 5000));

    const std::size_t open = frame->GetChildFrames().size();
    frame->RouteCommand(ID_VIDEO_MOSAIC);
    EXPECT_FALSE(dock->Running());
    EXPECT_FALSE(dock->isVisible());
    ASSERT_EQ(frame->GetChildFrames().size(), open + 1);
    CMeasureDoc* mosaic = ActiveDoc();
    ASSERT_NE(mosaic, nullptr);
    EXPECT_FALSE(mosaic->IsLive());
    EXPECT_TRUE(mosaic->GetTitle().startsWith(QStringLiteral("Live Mosaic 1")))
        << mosaic->GetTitle().toStdString();
    EXPECT_EQ(mosaic->GetElemMgr().GetUnit(), unit);
    // Every field it passed over, give or take a pixel of jitter each way.
    EXPECT_NEAR(mosaic->GetImageSize().width(), 0.4 * w + w, 2.0);
    EXPECT_NEAR(mosaic->GetImageSize().height(), 0.45 * h + h, 2.0);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

// Cancel throws the mosaic away and opens nothing; without a running preview
// there is nothing to start on.
TEST_F(LiveMosaicTest, CancelOpensNothing)
{
    StartOnStage(QPointF(50, 50));
    const std::size_t open = frame->GetChildFrames().size();
    ASSERT_TRUE(dock->Start(live));
    EXPECT_FALSE(dock->Start(live)) << "one at a time";
    ASSERT_TRUE(WaitFor([&] { return Status().tracked > 0; }, 20000));
    dock->Cancel();
    EXPECT_FALSE(dock->Running());
    EXPECT_FALSE(dock->isVisible());
    EXPECT_EQ(frame->GetChildFrames().size(), open);

    frame->RouteCommand(ID_CAMERA_PAUSE);
    ASSERT_FALSE(live->IsPreviewRunning());
    EXPECT_FALSE(frame->QueryCommand(ID_VIDEO_MOSAIC).IsEnabled());
    EXPECT_FALSE(dock->Start(live));
}

// A drag with the right button over the live picture moves the stage so the
// specimen follows the mouse, at the zoom shown; a left drag draws as ever.
// Without the stage, a right drag moves nothing.
TEST_F(LiveMosaicTest, RightDragMovesTheStageWhileItIsShown)
{
    const QPointF start(200, 200);
    StartOnStage(start);
    CMeasureView* view = ActiveView();
    ASSERT_NE(view, nullptr);
    QWidget* wnd = view->GetOverlayWnd();
    const double scale = double(wnd->width()) / live->GetImageSize().width();
    const auto rightDrag = [wnd](QPoint from, QPoint to) {
        const auto send = [wnd](QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
            QMouseEvent event(type, QPointF(at), QPointF(wnd->mapToGlobal(at)), button, held, Qt::NoModifier);
            QApplication::sendEvent(wnd, &event);
        };
        send(QEvent::MouseButtonPress, from, Qt::RightButton, Qt::RightButton);
        send(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::RightButton);
        send(QEvent::MouseMove, to, Qt::NoButton, Qt::RightButton);
        send(QEvent::MouseButtonRelease, to, Qt::RightButton, Qt::NoButton);
    };
    rightDrag({ 100, 100 }, { 160, 120 });
    EXPECT_NEAR(Stage().x(), start.x() - 60 / scale, 1e-6);
    EXPECT_NEAR(Stage().y(), start.y() - 20 / scale, 1e-6);

    const QPointF moved = Stage();
    const std::size_t shapes = ShapeTypes(*live).size();
    frame->RouteCommand(ID_MEASURE_LINE);
    Drag(wnd, { 50, 50 }, { 120, 90 });
    EXPECT_EQ(Stage(), moved);
    EXPECT_EQ(ShapeTypes(*live).size(), shapes + 1);

    g_object_set(camera, "stage", FALSE, nullptr);
    rightDrag({ 100, 100 }, { 10, 10 });
    EXPECT_EQ(Stage(), moved);
}
