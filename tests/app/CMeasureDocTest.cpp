#include "MeasureFrameFixture.h"
#include "TestFiles.h"
#include "app/CommandTable.h"
#include "app/DlgSelectFile.h"
#include "image/FCObjImage.h"
#include "platform/AppPaths.h"
#include "platform/PrivateProfile.h"
#include "ui/CRulerSettingDlg.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include <cmath>

namespace {

// A picture whose every pixel differs from its vertical mirror image.
QString WriteGradient(const QString& path, int width, int height)
{
    FCObjImage picture(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.SetPixelColor(x, y, qRgb(x * 4 % 256, y * 3 % 256, (x + y) % 256));
    EXPECT_TRUE(picture.Save(path));
    return path;
}

} // namespace

TEST_F(MeasureFrameTest, LiveVideoComesUpALineDrawnOnItIsExportedAndCaptureMakesAPicture)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    EXPECT_EQ(ActiveDoc(), live);
    EXPECT_EQ(live->GetTitle(), QStringLiteral("Video"));
    EXPECT_TRUE(live->IsPreviewRunning());
    EXPECT_TRUE(live->IsOverlayWorkerRunning());
    EXPECT_EQ(live->GetImageSize(), live->QueryImageSize());
    EXPECT_FALSE(frame->QueryCommand(ID_FILE_NEW).IsEnabled()) << "one live document at most";
    // The calibration dialog exists, hidden, and the ruler is element 0.
    ASSERT_NE(live->GetCalibrationDialog(), nullptr);
    EXPECT_FALSE(live->GetCalibrationDialog()->isVisible());
    EXPECT_EQ(ShapeTypes(*live), std::vector<int> { 9 });

    // Nothing to export while only the ruler exists: no dialog at all.
    int dialogs = 0;
    const QString csv = home.filePath("out.csv");
    QString target = csv;
    CMeasureDoc::SetExportDialogHandler([&](QWidget*, const QString& proposed) {
        ++dialogs;
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d{14}$")).match(proposed).hasMatch())
            << proposed.toStdString();
        return target;
    });
    EXPECT_TRUE(frame->RouteCommand(ID_MEASURE_EXPORT));
    EXPECT_EQ(dialogs, 0);

    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    EXPECT_EQ(live->GetCurrentTool(), 2);
    EXPECT_TRUE(frame->QueryCommand(ID_MEASURE_LINE).IsChecked());
    Drag(ActiveView()->GetOverlayWnd(), QPoint(200, 300), QPoint(400, 300));
    ASSERT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2 }));
    // With "Snap to Edges" on, the live document snaps to the frame as
    // processed, before the shapes are laid over it; off, it keeps none.
    frame->RouteCommand(ID_MEASURE_SNAP_EDGES);
    EXPECT_TRUE(WaitFor([&] { return live->SnapPicture().size() == live->GetImageSize(); }, 2000));
    frame->RouteCommand(ID_MEASURE_SNAP_EDGES);
    EXPECT_TRUE(live->SnapPicture().isNull());

    // The worker keeps looking at the shapes while the video runs; it draws a
    // new overlay when they change, and says so in the debug output.
    static std::atomic<int> passesLogged { 0 };
    QLoggingCategory::setFilterRules(QStringLiteral("oculix.app.debug=true"));
    const QtMessageHandler previous
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
              if (text == QLatin1String("MakeElemOverlay"))
                  ++passesLogged;
          });
    const unsigned passes = live->OverlayPasses();
    EXPECT_TRUE(WaitFor([&] { return live->OverlayPasses() >= passes + 2; }, 2000));
    const unsigned drawn = live->OverlaysDrawn();
    const int logged = passesLogged;
    live->GetElemMgr().SetCrossLines(true, false);
    EXPECT_TRUE(WaitFor([&] { return live->OverlaysDrawn() > drawn; }, 2000));
    EXPECT_TRUE(WaitFor([&] { return passesLogged > logged; }, 2000));
    live->GetElemMgr().SetCrossLines(false, false);
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules(QString());

    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_EXPORT));
    EXPECT_EQ(dialogs, 1);
    // 200 pixels at the default 0.2 mm per pixel, one decimal.
    EXPECT_EQ(ReadAll(csv), "No.,Type,Result,Unit\n1,Line distance,40.0, mm\n");
    EXPECT_TRUE(messages.isEmpty());

    target = home.filePath("no/such/folder/x.csv");
    frame->RouteCommand(ID_MEASURE_EXPORT);
    ASSERT_EQ(messages.size(), 1) << "a place it cannot write to is reported";
    EXPECT_TRUE(messages.front().contains(QStringLiteral("no/such/folder/x.csv")));

    // Capture makes a picture document to measure on, at 100 % only.
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_CAPTURE));
    ASSERT_EQ(frame->GetChildFrames().size(), 2u);
    CMeasureDoc* picture = ActiveDoc();
    ASSERT_NE(picture, live);
    EXPECT_FALSE(picture->IsLive());
    ASSERT_NE(picture->GetPicture(), nullptr);
    EXPECT_EQ(picture->GetPicture()->ColorBits(), 24);
    EXPECT_EQ(picture->GetImageSize(), live->GetImageSize());
    EXPECT_EQ(picture->GetUnprocessedImage().Width(), picture->GetImageSize().width());

    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_CIRCLE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(300, 300), QPoint(350, 300));
    EXPECT_EQ(ShapeTypes(*picture), (std::vector<int> { 9, 6 }));
    EXPECT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2 })) << "each document has its own shapes";

    // 150 %: the tool goes back to none and no drawing command is offered.
    frame->GetZoomBox()->setCurrentIndex(2);
    ASSERT_TRUE(frame->RouteCommand(ID_ZOOM));
    EXPECT_EQ(picture->GetZoomIndex(), 2);
    EXPECT_EQ(picture->GetCurrentTool(), 0);
    for (int id :
        { ID_MEASURE_LINE, ID_MEASURE_CIRCLE, ID_MEASURE_POINT, ID_MEASURE_MOVE, ID_MEASURE_DELETE_ALL })
        EXPECT_FALSE(frame->QueryCommand(id).IsEnabled()) << id;
    const QSize image = picture->GetImageSize();
    EXPECT_EQ(ActiveView()->GetOverlayWnd()->size(), QSize(image.width() * 3 / 2, image.height() * 3 / 2));
    frame->GetZoomBox()->setCurrentIndex(4);
    ASSERT_TRUE(frame->RouteCommand(ID_ZOOM));
    EXPECT_TRUE(frame->QueryCommand(ID_MEASURE_LINE).IsEnabled());
}

TEST_F(MeasureFrameTest, FullScreenAndPauseAndPausedVideoKeepsItsShapesWhenItRunsAgain)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_TRUE(frame->RouteCommand(ID_VIEW_FULLSCREEN));
    EXPECT_TRUE(live->GetGraph().IsFullScreen());
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_FULLSCREEN));
    EXPECT_FALSE(live->GetGraph().IsFullScreen());

    EXPECT_FALSE(frame->QueryCommand(ID_CAMERA_PREVIEW).IsEnabled());
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_PAUSE));
    EXPECT_FALSE(live->IsPreviewRunning());
    ASSERT_NE(live->GetPicture(), nullptr) << "the frozen frame is shown";
    EXPECT_TRUE(live->GetPicture()->IsValidImage());
    // Paused, the camera commands wait for the video to run again.
    for (int id : { ID_CAMERA_PAUSE, ID_VIEW_FULLSCREEN, ID_VIDEO_DEVICE, ID_VIDEO_RESOLUTION,
             ID_VIDEO_PROPERTIES, ID_VIDEO_ADJUST, ID_PROCESS_PROPERTIES })
        EXPECT_FALSE(frame->QueryCommand(id).IsEnabled()) << id;
    EXPECT_TRUE(frame->QueryCommand(ID_CAMERA_CAPTURE).IsEnabled());

    // While paused drawing is allowed at any zoom.
    live->SetZoomIndex(2);
    EXPECT_TRUE(frame->QueryCommand(ID_MEASURE_RECT).IsEnabled());
    live->SetZoomIndex(4);
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_RECT));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 200), QPoint(220, 280));
    ASSERT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 4 }));

    // Counted before the video runs: under load the worker's first pass may
    // come before the command returns.
    const unsigned drawn = live->OverlaysDrawn();
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_PREVIEW));
    EXPECT_TRUE(live->IsPreviewRunning());
    EXPECT_EQ(live->GetPicture(), nullptr);
    EXPECT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 4 }));
    EXPECT_TRUE(WaitFor([&] { return live->OverlaysDrawn() > drawn; }, 2000));
    // Running at another zoom: no drawing, the overlay would not match.
    live->SetZoomIndex(2);
    EXPECT_FALSE(frame->QueryCommand(ID_MEASURE_RECT).IsEnabled());
    live->SetZoomIndex(4);
    frame->RouteCommand(ID_PROCESS_ENABLE);
    EXPECT_FALSE(live->IsProcessingEnabled());
    EXPECT_FALSE(frame->QueryCommand(ID_MEASURE_RECT).IsEnabled());
}

TEST_F(MeasureFrameTest, FlipMirrorAndGrayRerunFromTheUnprocessedPicture)
{
    const QString path = WriteGradient(home.filePath("g.bmp"), 36, 21);
    Start(false, { path });
    CMeasureDoc* doc = ActiveDoc();
    ASSERT_NE(doc, nullptr);
    EXPECT_FALSE(doc->IsLive());
    EXPECT_EQ(doc->GetTitle(), QStringLiteral("g.bmp"));
    FCObjImage original;
    ASSERT_TRUE(original.Load(path));
    const FCObjImage& shown = *doc->GetPicture();
    // Every shown pixel is the original's at (x, y) mapped by `from`.
    const auto showsOriginal = [&](auto from) {
        for (int y = 0; y < 21; ++y)
            for (int x = 0; x < 36; ++x)
                if (shown.GetPixelColor(x, y) != original.GetPixelColor(from(x, y).x(), from(x, y).y()))
                    return ::testing::AssertionFailure() << "differs at " << x << "," << y;
        return ::testing::AssertionSuccess();
    };

    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_FLIP));
    EXPECT_TRUE(frame->QueryCommand(ID_PROCESS_FLIP).IsChecked());
    EXPECT_TRUE(showsOriginal([](int x, int y) { return QPoint(x, 20 - y); }));
    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_MIRROR));
    EXPECT_TRUE(showsOriginal([](int x, int y) { return QPoint(35 - x, 20 - y); }));
    // Off again: exactly the picture that was opened, nothing accumulated.
    frame->RouteCommand(ID_PROCESS_FLIP);
    frame->RouteCommand(ID_PROCESS_MIRROR);
    EXPECT_TRUE(showsOriginal([](int x, int y) { return QPoint(x, y); }));

    frame->RouteCommand(ID_PROCESS_GRAY);
    const QRgb gray = shown.GetPixelColor(10, 10);
    EXPECT_EQ(qRed(gray), qGreen(gray));
    EXPECT_EQ(qGreen(gray), qBlue(gray));
    EXPECT_TRUE(frame->QueryCommand(ID_PROCESS_GRAY).IsChecked());

    // Binary: the slider at 255 sends level 0, which turns everything white.
    frame->RouteCommand(ID_PROCESS_GRAY);
    doc->SetBinary(true, 255);
    EXPECT_EQ(doc->GetSwitches().binaryLevel, 0);
    EXPECT_EQ(shown.GetPixelColor(3, 3), qRgb(255, 255, 255));
    doc->SetBinary(false, 0);
    EXPECT_EQ(shown.GetPixelColor(3, 3), original.GetPixelColor(3, 3));
}

// A picture view: centred at the stored zoom, one cross line at a time, and
// the calibration dialog shown and hidden together with the ruler.
TEST_F(MeasureFrameTest, PictureViewZoomCrossLinesAndCalibrationDialog)
{
    QDir().mkpath(home.filePath("data"));
    WritePrivateProfileString("Video", "CurSel", "7", SettingsFile());
    Start(false, { WriteGradient(home.filePath("s.bmp"), 300, 200) });
    CMeasureDoc* doc = ActiveDoc();
    CMeasureView* view = ActiveView();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(doc->GetZoomIndex(), 7);
    const QSize client = view->viewport()->size();
    EXPECT_EQ(view->GetOverlayWnd()->geometry(),
        QRect(QPoint((client.width() - 150) / 2, (client.height() - 100) / 2), QSize(150, 100)));
    EXPECT_EQ(CMeasureView::DisplayedSize(QSize(1280, 1024), 9), QSize(320, 256));
    EXPECT_EQ(CMeasureView::DisplayedSize(QSize(1280, 1024), 6), QSize(853, 682));
    EXPECT_EQ(CMeasureView::DisplayedSize(QSize(1280, 1024), 12), QSize(0, 0));
    EXPECT_EQ(CMeasureView::DisplayedSize(QSize(1280, 1024), 0), QSize(3200, 2560));

    CGVLElemMgr& mgr = doc->GetElemMgr();
    frame->RouteCommand(ID_VIEW_DASHED_CROSSLINE);
    frame->RouteCommand(ID_VIEW_CROSSLINE);
    EXPECT_TRUE(frame->QueryCommand(ID_VIEW_CROSSLINE).IsChecked());
    EXPECT_FALSE(frame->QueryCommand(ID_VIEW_DASHED_CROSSLINE).IsChecked());
    EXPECT_TRUE(mgr.IsCrossSolid());
    EXPECT_FALSE(mgr.IsCrossDashed());
    frame->RouteCommand(ID_VIEW_CROSSLINE);
    EXPECT_FALSE(mgr.IsCrossSolid());
    EXPECT_FALSE(mgr.IsCrossDashed());

    CRulerSettingDlg* dialog = doc->GetCalibrationDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(mgr.IsRulerShown());
    doc->SetZoomIndex(4);
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    ASSERT_EQ(doc->GetCurrentTool(), 2);

    // "Snap to Edges", off at first, is kept in the user settings; with it on
    // a line's ends land on the picture's edges (red falls from 252 to 0
    // between pixels 63 and 64, and 127 and 128).
    EXPECT_FALSE(frame->QueryCommand(ID_MEASURE_SNAP_EDGES).IsChecked());
    EXPECT_TRUE(doc->SnapPicture().isNull());
    frame->RouteCommand(ID_MEASURE_SNAP_EDGES);
    EXPECT_TRUE(frame->QueryCommand(ID_MEASURE_SNAP_EDGES).IsChecked());
    EXPECT_TRUE(
        QSettings(UserSettingsFilePath(), QSettings::IniFormat).value("Measure/SnapToEdges").toBool());
    Drag(view->GetOverlayWnd(), QPoint(66, 150), QPoint(126, 150));
    frame->RouteCommand(ID_MEASURE_SNAP_EDGES);
    EXPECT_FALSE(CMeasureDoc::SnapToEdges());
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    const CGVLShape& line = *mgr.m_arShape[1];
    EXPECT_TRUE(line.IsSnapped());
    EXPECT_NEAR(line.ExactCoord(0).x(), 127.5, 0.1);
    EXPECT_NEAR(line.ExactCoord(1).x(), 63.5, 0.1);
    mgr.DeleteAll();

    frame->RouteCommand(ID_MEASURE_CALIBRATION);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(mgr.IsRulerShown());
    EXPECT_EQ(doc->GetCurrentTool(), 0);
    frame->RouteCommand(ID_MEASURE_CALIBRATION);
    EXPECT_FALSE(dialog->isVisible());
}

// Without a camera the first document is an empty one: its tools work at
// 100 % all the same, and the calibration dialog, shown and closed with OK
// at once, keeps the calibration in its unit (mm here, as by default).
TEST_F(MeasureFrameTest, EmptyDocumentMeasuresAndImmediateCalibrationOkChangesNothing)
{
    QDir().mkpath(home.filePath("data"));
    // 0.2 mm over the ruler's 50 pixels.
    for (const char* key : { "m_unit.m_dcxPerPixel", "m_unit.m_dcyPerPixel" })
        WritePrivateProfileString("Measure", key, "0.004", SettingsFile());
    Start(false);
    CMeasureDoc* doc = ActiveDoc();
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->GetPicture(), nullptr);
    EXPECT_TRUE(frame->QueryCommand(ID_MEASURE_LINE).IsEnabled());
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    const auto enabled = [this](int id) { return frame->QueryCommand(id).IsEnabled(); };
    EXPECT_FALSE(enabled(ID_EDIT_UNDO) || enabled(ID_EDIT_REDO));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 100), QPoint(200, 100));
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 2 }));
    // The drawn line, "Delete all", and both undone and redone by command.
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_DELETE_ALL));
    EXPECT_EQ(ShapeTypes(*doc), std::vector<int> { 9 });
    EXPECT_TRUE(enabled(ID_EDIT_UNDO) && !enabled(ID_EDIT_REDO));
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_UNDO));
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 2 }));
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_UNDO));
    EXPECT_EQ(ShapeTypes(*doc), std::vector<int> { 9 });
    EXPECT_TRUE(!enabled(ID_EDIT_UNDO) && enabled(ID_EDIT_REDO));
    ASSERT_TRUE(frame->RouteCommand(ID_EDIT_REDO));
    EXPECT_EQ(ShapeTypes(*doc), (std::vector<int> { 9, 2 }));
    EXPECT_TRUE(enabled(ID_EDIT_UNDO) && enabled(ID_EDIT_REDO));
    doc->SetZoomIndex(2);
    EXPECT_FALSE(frame->QueryCommand(ID_MEASURE_LINE).IsEnabled());
    doc->SetZoomIndex(4);

    // The settings keep single precision.
    CGVLElemMgr& mgr = doc->GetElemMgr();
    const auto isMillimetreCalibration = [&mgr] {
        const CalibrationRecord& u = mgr.m_unit;
        return u.m_rtUnit == 1 && std::abs(u.m_dcxPerPixel - 0.004) < 1e-8
            && std::abs(u.m_dcyPerPixel - 0.004) < 1e-8 && std::abs(u.m_dcxReal - 0.2) < 1e-7
            && std::abs(u.m_dcyReal - 0.2) < 1e-7;
    };
    EXPECT_TRUE(isMillimetreCalibration());
    frame->RouteCommand(ID_MEASURE_CALIBRATION);
    CRulerSettingDlg* dialog = doc->GetCalibrationDialog();
    ASSERT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->UnitLabel(), "mm");
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("ok")), Qt::LeftButton);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(isMillimetreCalibration());
    EXPECT_TRUE(enabled(ID_EDIT_REDO)) << "an OK that changed nothing is no step";
}

// A picture that cannot be read is reported, not opened. "&Open..." previews
// what is highlighted, read as the document will read it, opens the choice
// and starts there the next time.
TEST_F(MeasureFrameTest, UnreadablePicturesAreReportedAndOpenDialogPreviewsAndOpens)
{
    const QString bad = home.filePath("bad.jpg");
    ASSERT_TRUE(WriteAll(bad, "not a picture"));
    Start(false, { bad });
    EXPECT_TRUE(frame->GetChildFrames().empty());
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.front().contains(QStringLiteral("bad.jpg")));
    const QString picture = WriteGradient(home.filePath("wide.bmp"), 300, 200);

    QStringList firstFilters;
    QString startedAt;
    auto answer = [&](bool open) {
        QTimer::singleShot(0, [&, open] {
            auto* dialog = qobject_cast<DlgSelectFile*>(QApplication::activeModalWidget());
            if (!dialog) {
                ADD_FAILURE() << "no picture open dialog";
                if (QWidget* other = QApplication::activeModalWidget())
                    other->close();
                return;
            }
            // Whatever fails below, the dialog must not stay open.
            const auto close = qScopeGuard([dialog] {
                if (dialog->isVisible())
                    dialog->reject();
            });
            firstFilters = dialog->nameFilters();
            startedAt = dialog->selectedFiles().value(0);
            if (!open) {
                dialog->reject();
                return;
            }
            emit dialog->currentChanged(bad);
            EXPECT_EQ(dialog->PreviewPicture()->text(), "No preview");
            EXPECT_FALSE(dialog->PreviewCaption()->text().isEmpty()) << "the reason";
            // Typing the name previews it as well as clicking it does.
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(name, nullptr);
            dialog->setDirectory(home.path());
            name->clear();
            QTest::keyClicks(name, QStringLiteral("wide.bmp"));
            EXPECT_EQ(dialog->PreviewCaption()->text(), "300 x 200, 24 bits");
            const QPixmap shown = dialog->PreviewPicture()->pixmap();
            EXPECT_EQ(shown.width(), dialog->PreviewPicture()->contentsRect().width());
            EXPECT_NEAR(shown.height(), shown.width() * 2 / 3, 1) << "the picture's proportions";
            static_cast<QDialog*>(dialog)->accept(); // checks the choice as OK does
        });
    };

    answer(true);
    frame->RouteCommand(ID_FILE_OPEN);
    ASSERT_EQ(frame->GetChildFrames().size(), 1u);
    EXPECT_EQ(ActiveDoc()->GetImageSize(), QSize(300, 200));
    EXPECT_EQ(firstFilters.value(0), "Image File (*.bmp, *.jpg) (*.bmp *.jpg *.jpeg)");
    for (const char* extension : { "*.png", "*.tif", "*.tga", "*.gif", "*.pcx" })
        EXPECT_EQ(firstFilters.filter(QString::fromLatin1(extension)).size(), 2) << extension; // own, "All"

    answer(false);
    frame->RouteCommand(ID_FILE_OPEN);
    EXPECT_EQ(startedAt, picture);
    EXPECT_EQ(frame->GetChildFrames().size(), 1u) << "cancel opens nothing";
}

// A picture a tool computed opens as a picture document of its own, titled
// by the tool: the camera stays with the live document (and no camera is
// taken when there is none), the picture is the document's to measure and
// save, and an unusable picture is told and leaves nothing open.
TEST_F(MeasureFrameTest, AToolsPictureOpensAsAPictureDocument)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    QImage computed(200, 150, QImage::Format_ARGB32);
    for (int y = 0; y < computed.height(); ++y)
        for (int x = 0; x < computed.width(); ++x)
            computed.setPixel(x, y, qRgb(x, y, (x * y) % 256));

    auto* doc = qobject_cast<CMeasureDoc*>(app->OpenPictureDocument(computed, QStringLiteral("Stack 1")));
    ASSERT_NE(doc, nullptr);
    ASSERT_EQ(frame->GetChildFrames().size(), 2u);
    EXPECT_EQ(ActiveDoc(), doc);
    EXPECT_EQ(doc->GetTitle(), QStringLiteral("Stack 1"));
    EXPECT_TRUE(doc->GetPathName().isEmpty());
    EXPECT_TRUE(app->GetRecentFiles().isEmpty()) << "no file, no recent-file entry";
    EXPECT_FALSE(doc->IsLive());
    EXPECT_EQ(CMeasureDoc::GetLiveDocument(), live);
    EXPECT_TRUE(live->IsPreviewRunning());
    EXPECT_EQ(doc->GetImageSize(), computed.size());
    ASSERT_NE(doc->GetPicture(), nullptr);
    EXPECT_EQ(doc->GetPicture()->ColorBits(), 24);
    EXPECT_EQ(doc->GetUnprocessedImage().ToQImage(), doc->GetPicture()->ToQImage());
    EXPECT_EQ(ShapeTypes(*doc), std::vector<int> { 9 }) << "the view gave it its ruler";
    EXPECT_TRUE(doc->CanDraw());

    // Saved as it came: every pixel of the tool's picture.
    const QString saved = home.filePath("stack.png");
    ASSERT_TRUE(doc->SaveImage(saved, {}, {}));
    FCObjImage back;
    ASSERT_TRUE(back.Load(saved));
    ASSERT_EQ(QSize(back.Width(), back.Height()), computed.size());
    int differing = 0;
    for (int y = 0; y < computed.height(); ++y)
        for (int x = 0; x < computed.width(); ++x)
            differing += back.GetPixelColor(x, y) != computed.pixel(x, y);
    EXPECT_EQ(differing, 0);

    // It takes no number of the new documents: the live one had 1.
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_CAPTURE));
    EXPECT_EQ(ActiveDoc()->GetTitle(), QStringLiteral("Measure2"));

    EXPECT_EQ(app->OpenPictureDocument(QImage(), QStringLiteral("Stack 2")), nullptr);
    EXPECT_EQ(frame->GetChildFrames().size(), 3u);
    EXPECT_EQ(messages, QStringList { QStringLiteral("Cannot open the picture Stack 2:\nNo picture") });

    // With the live document closed the camera is free, and still not taken.
    CChildFrame* child = FrameOf(live);
    child->close();
    delete child;
    ASSERT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
    auto* second = qobject_cast<CMeasureDoc*>(app->OpenPictureDocument(computed, QStringLiteral("Stack 3")));
    ASSERT_NE(second, nullptr);
    EXPECT_FALSE(second->HasCamera());
    EXPECT_FALSE(second->IsLive());
    EXPECT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
    EXPECT_EQ(CMeasureDoc::RunningOverlayWorkers(), 0);
}

// "White Balance" on a still picture makes the drawn rectangle gray through
// the picture's RGB offsets, and "Rgb" takes them off again, leaving the
// picture as it was opened.
TEST_F(MeasureFrameTest, WhiteBalanceOnAStillPictureAndRgbTakesItOff)
{
    FCObjImage tinted(120, 90, 24);
    for (int y = 0; y < 90; ++y)
        for (int x = 0; x < 120; ++x)
            tinted.SetPixelColor(x, y, x < 60 ? qRgb(190, 170, 150) : qRgb(95, 85, 75));
    const QString path = home.filePath("tinted.bmp");
    ASSERT_TRUE(tinted.Save(path));
    Start(false, { path });
    CMeasureDoc* doc = ActiveDoc();
    ASSERT_NE(doc, nullptr);
    const FCObjImage& shown = *doc->GetPicture();

    // Without a rectangle the user is told to draw one; nothing changes.
    ASSERT_TRUE(frame->QueryCommand(ID_VIDEO_WHITE_BALANCE).IsEnabled());
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_WHITE_BALANCE));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages[0].contains("Draw a rectangle")) << messages[0].toStdString();
    EXPECT_EQ(shown.GetPixelColor(5, 5), qRgb(190, 170, 150));
    EXPECT_FALSE(frame->QueryCommand(ID_PROCESS_RGB).IsEnabled());

    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_RECT));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(5, 5), QPoint(30, 30));
    messages.clear();
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_WHITE_BALANCE));
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    const QRgb balanced = shown.GetPixelColor(5, 5);
    EXPECT_EQ(balanced, qRgb(190, 190, 190));
    // The offsets hold over the whole picture, as the live picture's do.
    EXPECT_EQ(shown.GetPixelColor(100, 5), qRgb(95, 105, 115));
    EXPECT_TRUE(frame->QueryCommand(ID_PROCESS_RGB).IsChecked());
    // A second time over the same rectangle changes nothing.
    ASSERT_TRUE(frame->RouteCommand(ID_VIDEO_WHITE_BALANCE));
    EXPECT_EQ(shown.GetPixelColor(5, 5), balanced);

    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_RGB));
    EXPECT_EQ(shown.GetPixelColor(5, 5), qRgb(190, 170, 150));
    EXPECT_EQ(shown.GetPixelColor(100, 5), qRgb(95, 85, 75));
    EXPECT_FALSE(frame->QueryCommand(ID_PROCESS_RGB).IsEnabled());
}
