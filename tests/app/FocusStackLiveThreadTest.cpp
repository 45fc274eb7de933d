#include "MeasureFrameFixture.h"
#include "app/CLiveFocus.h"
#include "app/CommandTable.h"
#include "capture/CCameraControls.h"
#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"
#include "image/FCObjImage.h"
#include "image/SimDepthScene.h"

#include <QStatusBar>

#include <cmath>
#include <optional>

namespace {

const QString kScope = QStringLiteral("Relief Scope");

// Mean SSIM of the luma over 8 x 8 blocks, a margin left out.
double BlockSsim(const QImage& a, const QImage& b, int margin)
{
    const QImage ga = a.convertToFormat(QImage::Format_Grayscale8);
    const QImage gb = b.convertToFormat(QImage::Format_Grayscale8);
    double sum = 0.0;
    int blocks = 0;
    for (int y0 = margin; y0 + 8 <= ga.height() - margin; y0 += 8)
        for (int x0 = margin; x0 + 8 <= ga.width() - margin; x0 += 8) {
            double mx = 0, my = 0, xx = 0, yy = 0, xy = 0;
            for (int y = y0; y < y0 + 8; ++y)
                for (int x = x0; x < x0 + 8; ++x) {
                    const double p = ga.constScanLine(y)[x], q = gb.constScanLine(y)[x];
                    mx += p;
                    my += q;
                    xx += p * p;
                    yy += q * q;
                    xy += p * q;
                }
            mx /= 64;
            my /= 64;
            const double vx = xx / 64 - mx * mx, vy = yy / 64 - my * my, cxy = xy / 64 - mx * my;
            const double c1 = 6.5025, c2 = 58.5225;
            sum += (2 * mx * my + c1) * (2 * cxy + c2) / ((mx * mx + my * my + c1) * (vx + vy + c2));
            ++blocks;
        }
    return blocks ? sum / blocks : 0.0;
}

std::vector<CMeasureDoc*> Documents(CMainFrame* frame)
{
    std::vector<CMeasureDoc*> out;
    for (CChildFrame* child : frame->GetChildFrames())
        out.push_back(static_cast<CMeasureDoc*>(child->GetActiveDocument()));
    return out;
}

CMeasureDoc* Titled(CMainFrame* frame, const QString& title)
{
    for (CMeasureDoc* doc : Documents(frame))
        if (doc->GetTitle() == title)
            return doc;
    return nullptr;
}

class LiveFocusTest : public MeasureFrameTest
{
protected:
    void SetUp() override
    {
        EnsureGStreamer();
        RemoveAllSimDevices();
        GstCaps* caps = gst_caps_from_string(
            "video/x-raw, format=(string)YUY2, width=(int)320, height=(int)240, framerate=(fraction)30/1");
        AddSimDevice(kScope, caps);
        gst_caps_unref(caps);
    }
    void TearDown() override
    {
        MeasureFrameTest::TearDown();
        RemoveAllSimDevices();
    }
    static int Processed(CMeasureDoc& doc)
    {
        int frames = 0;
        doc.GetGraph().GetStateB(&frames);
        return frames;
    }
    // Sets the camera's Focus control as the device properties dialog does,
    // and waits until the stack has judged a frame taken at that focus.
    static bool TurnFocus(CMeasureDoc& live, int focusUm)
    {
        GstElement* camera = live.GetGraph().DeviceElement();
        std::optional<CameraControl> focus;
        for (const CameraControl& c : CCameraControls(camera, nullptr).Query())
            if (c.name == QLatin1String("Focus"))
                focus = c;
        if (!focus || !CCameraControls(camera, nullptr).Set(*focus, focusUm))
            return false;
        const int after = Processed(live) + 2;
        if (!WaitFor([&] { return Processed(live) >= after; }, 10000))
            return false;
        // A frame offered from now on was drawn at the new focus.
        CLiveFocus& aids = live.LiveFocus();
        const int seen = aids.StackSeen();
        return WaitFor([&] { return aids.StackSeen() >= seen + 2 && !aids.StackBusy(); }, 20000);
    }
};

} // namespace

// A sweep of the focus through the relief, by the camera's Focus control,
// gives a picture sharp everywhere in the live picture's geometry with its
// calibration, and a depth map; Cancel keeps nothing; focus peaking shows a
// sharpness figure.
TEST_F(LiveFocusTest, SweepGivesAllInFocusPictureWithCalibrationAndCancelKeepsNothing)
{
    Start(false);
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr) << messages.join('\n').toStdString();
    ASSERT_TRUE(WaitFor([&] { return HasFrame(*live); }, 30000));
    ASSERT_EQ(live->GetImageSize(), QSize(320, 240));
    g_object_set(live->GetGraph().DeviceElement(), "depth", TRUE, "drift", FALSE, nullptr);
    CalibrationRecord unit = live->GetElemMgr().GetUnit();
    unit.m_rtUnit = 0;
    unit.m_dcxPerPixel = unit.m_dcyPerPixel = 5.0;
    live->GetElemMgr().SetUnit(unit);
    const std::size_t before = Documents(frame).size();

    // Peaking: the sharpness figure comes into the status bar.
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_PEAKING));
    EXPECT_TRUE(live->LiveFocus().IsPeaking());
    EXPECT_TRUE(WaitFor(
        [&] { return frame->statusBar()->currentMessage().startsWith(QStringLiteral("Sharpness: ")); },
        10000));
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_PEAKING));
    EXPECT_FALSE(live->LiveFocus().IsPeaking());

    // Cancel: no document, the live path as before.
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_STACK));
    ASSERT_TRUE(live->LiveFocus().IsStacking());
    ASSERT_TRUE(TurnFocus(*live, 10));
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_STACK_CANCEL));
    EXPECT_FALSE(live->LiveFocus().IsStacking());
    EXPECT_EQ(Documents(frame).size(), before);

    g_object_set(live->GetGraph().DeviceElement(), "focus", 0, nullptr);
    const int settled = Processed(*live) + 2;
    ASSERT_TRUE(WaitFor([&] { return Processed(*live) >= settled; }, 10000));
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_STACK));
    for (int focus = 0; focus <= kSimFocusMaxUm; focus += 5)
        ASSERT_TRUE(TurnFocus(*live, focus)) << focus;
    const int kept = live->LiveFocus().StackKept();
    EXPECT_GE(kept, 5);
    EXPECT_LT(kept, live->LiveFocus().StackSeen()) << "frames that add nothing are let go";
    // Stop works with the camera gone quiet too. (Stopped, the camera posts
    // no frames while the documents open: Qt's event queue is guarded by a
    // lock the thread checker cannot see.)
    live->GetGraph().StopGraph();
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_FOCUS_STACK));
    EXPECT_FALSE(live->LiveFocus().IsStacking());
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();

    CMeasureDoc* fused = Titled(frame, QStringLiteral("Live Stack 1"));
    CMeasureDoc* depth = Titled(frame, QStringLiteral("Live Stack 1 Depth"));
    ASSERT_NE(fused, nullptr);
    ASSERT_NE(depth, nullptr);
    EXPECT_EQ(fused->GetElemMgr().GetUnit(), unit);
    EXPECT_EQ(depth->GetElemMgr().GetUnit(), unit);
    const QImage picture = fused->GetPicture()->ToQImage();
    ASSERT_EQ(picture.size(), QSize(320, 240));
    EXPECT_EQ(depth->GetPicture()->ToQImage().width(), 320);

    // The truth in the first frame's geometry (focus 0, no drift), against
    // the fused picture and against the best single frame there is.
    const SimDepthScene scene(320, 240, SimDepthScene::Options());
    const FrameWarp first = scene.Warp(0, 0);
    const QImage truth = scene.AllInFocus(first);
    const double ssim = BlockSsim(picture, truth, 8);
    double single = 0.0;
    for (int focus = 0; focus <= kSimFocusMaxUm; focus += 10)
        single
            = std::max(single, BlockSsim(scene.Frame(focus, 0), scene.AllInFocus(scene.Warp(focus, 0)), 8));
    std::printf("live stack of %d frames: SSIM %.3f (best single frame %.3f)\n", kept, ssim, single);
    EXPECT_GT(ssim, 0.95);
    EXPECT_LT(1.0 - ssim, 0.6 * (1.0 - single)) << "no closer to the truth than one frame";
}
