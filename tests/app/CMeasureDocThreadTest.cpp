#include "MeasureFrameFixture.h"
#include "app/CommandTable.h"
#include "platform/PrivateProfile.h"
#include "platform/SettingsKeys.h"

// The overlay worker draws while the user edits shapes; closing the live
// document stops it, releases the camera and writes the settings.
TEST_F(MeasureFrameTest, ClosingTheLiveDocumentEndsTheWorkerAndWritesItsSettings)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_TRUE(live->IsOverlayWorkerRunning());
    EXPECT_EQ(CMeasureDoc::RunningOverlayWorkers(), 1);

    // Shapes come and go while the worker renders them into the overlay.
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    QWidget* wnd = ActiveView()->GetOverlayWnd();
    for (int i = 0; i < 12; ++i) {
        Drag(wnd, QPoint(100 + i * 20, 100), QPoint(100 + i * 20, 400));
        QCoreApplication::processEvents();
        if (i % 4 == 3)
            frame->RouteCommand(ID_MEASURE_DELETE_ALL);
    }
    frame->RouteCommand(ID_MEASURE_LINE);
    Drag(wnd, QPoint(10, 500), QPoint(60, 500));
    const unsigned passes = live->OverlayPasses();
    ASSERT_TRUE(WaitFor([&] { return live->OverlayPasses() >= passes + 3; }, 30000));

    // Undo and redo swap the whole list while the worker draws it: a fixed
    // number of steps, then the worker must draw on.
    const unsigned before = live->OverlayPasses();
    for (int step = 0; step < 8; ++step) {
        frame->RouteCommand(step < 4 ? ID_EDIT_UNDO : ID_EDIT_REDO);
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(WaitFor([&] { return live->OverlayPasses() >= before + 3; }, 30000));
    while (frame->QueryCommand(ID_EDIT_REDO).IsEnabled())
        frame->RouteCommand(ID_EDIT_REDO);
    EXPECT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2 })) << "redone to the last line";

    frame->RouteCommand(ID_PROCESS_FLIP);
    frame->GetZoomBox()->setCurrentIndex(7);
    frame->RouteCommand(ID_ZOOM);
    const QString device = live->GetGraph().DeviceName();
    ASSERT_FALSE(device.isEmpty());
    {
        CGVLElemMgr& mgr = live->GetElemMgr();
        const auto lock = mgr.Lock();
        CalibrationRecord unit = mgr.GetUnit();
        unit.m_dcxPerPixel = 0.123;
        mgr.SetUnit(unit);
        CGVLElemMgr::Appearance look = mgr.GetAppearance();
        look.precision = 3;
        mgr.SetAppearance(look);
    }

    CChildFrame* child = FrameOf(live);
    ASSERT_NE(child, nullptr);
    child->close();
    delete child;
    EXPECT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
    EXPECT_EQ(CMeasureDoc::RunningOverlayWorkers(), 0);
    EXPECT_TRUE(frame->QueryCommand(ID_FILE_NEW).IsEnabled());

    const QString ini = SettingsFile();
    EXPECT_EQ(SettingsKeys::ReadString(SettingsKeys::VideoDevice, ini), device);
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::VideoCurSel, ini), 7);
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::VideoDisplayMode, ini), 2);
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::ProcessFlip, ini), 1);
    EXPECT_EQ(GetPrivateProfileString("Measure", "m_unit.m_dcxPerPixel", "", ini), QStringLiteral("0.12"));
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::MeasurePrecision, ini), 3);

    // A new preview takes the camera again, with the settings just written.
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_NEW));
    CMeasureDoc* again = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->GetZoomIndex(), 7);
    EXPECT_TRUE(again->IsFlipped());
    EXPECT_EQ(CMeasureDoc::RunningOverlayWorkers(), 1);
    // Leaving the program the orderly way ends that worker too.
    app->ExitInstance(0);
    EXPECT_EQ(CMeasureDoc::RunningOverlayWorkers(), 0);
    EXPECT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
}
