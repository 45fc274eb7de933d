#include "measure/CGVLWnd.h"

#include "FakeMeasureDocument.h"
#include "MeasureTestSupport.h"

#include <QDir>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

const QColor kPictureRed(200, 30, 30);

struct WndFixture : ::testing::Test
{
    WndFixture()
    {
        view.view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view.view));
    }
    CGVLWnd* Wnd() { return view.wnd; }
    void Press(QPoint p, Qt::MouseButton button = Qt::LeftButton) { QTest::mousePress(Wnd(), button, {}, p); }
    void Release(QPoint p) { QTest::mouseRelease(Wnd(), Qt::LeftButton, {}, p); }
    void Move(QPoint p) { QTest::mouseMove(Wnd(), p); }

    FakeMeasureDocument doc;
    FakeView view { doc };
};

QColor Pixel(const QImage& image, int x, int y)
{
    return QColor(image.pixel(x, y));
}

// Saved when OCULIX_SCREENSHOT_DIR names a folder, to be looked at.
void SaveShot(const QImage& image, const char* name)
{
    const QString dir = qEnvironmentVariable("OCULIX_SCREENSHOT_DIR");
    if (!dir.isEmpty())
        image.save(QDir(dir).filePath(QString::fromLatin1(name)));
}

} // namespace

TEST(CGVLWnd, DisplayedSizeFollowsTheZoomTableAndFallsBackToFullSize)
{
    const QSize picture(1280, 1024);
    const QSize expected[] = { { 3200, 2560 }, { 2560, 2048 }, { 1920, 1536 }, { 1600, 1280 }, { 1280, 1024 },
        { 960, 768 }, { 853, 682 }, { 640, 512 }, { 426, 341 }, { 320, 256 } };
    for (int zoom = 0; zoom < 10; ++zoom)
        EXPECT_EQ(CGVLWnd::DisplayedSize(picture, zoom), expected[zoom]) << zoom;
    EXPECT_EQ(CGVLWnd::DisplayedSize(picture, 12), picture);
    EXPECT_EQ(CGVLWnd::DisplayedSize(picture, -1), picture);
    EXPECT_EQ(CGVLWnd::DisplayedSize(QSize(7, 5), 2), QSize(10, 7)) << "truncated";
}

TEST_F(WndFixture, MouseReachesTheManagerWithTheDocumentsTool)
{
    doc.tool = 2;
    Press({ 100, 100 });
    Move({ 104, 101 });
    Move({ 200, 180 });
    Release({ 200, 180 });
    ASSERT_EQ(doc.mgr.m_arShape.size(), 2u);
    CGVLShape* line = doc.mgr.m_arShape[1].get();
    EXPECT_EQ(line->GetType(), 2);
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 200, 180 }, { 104, 101 } }));

    doc.tool = 9;
    Press({ 150, 140 });
    Move({ 160, 150 });
    Release({ 160, 150 });
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 210, 190 }, { 114, 111 } })) << "dragged whole";

    TestShape* spy = Add(doc.mgr, 2, { 5, 5 });
    std::vector<std::string> log;
    spy->log = &log;
    spy->name = "spy";
    doc.tool = 0;
    Press({ 20, 30 });
    EXPECT_EQ(spy->lastTool, 0);
    EXPECT_EQ(spy->lastPoint, QPoint(20, 30));
    Press({ 20, 30 }, Qt::RightButton);
    Release({ 20, 30 });
    EXPECT_EQ(log, (std::vector<std::string> { "spy:down", "spy:right", "spy:up" }));
    EXPECT_EQ(doc.mgr.m_bMouseDown, 0);
}

TEST_F(WndFixture, DoubleClickGoesToTheVideoOnlyWhileLive)
{
    // As the system delivers one: press, release, double click, release.
    const auto doubleClick = [&](QPoint p) {
        QTest::mouseClick(Wnd(), Qt::LeftButton, {}, p);
        QTest::mouseDClick(Wnd(), Qt::LeftButton, {}, p);
        QTest::mouseRelease(Wnd(), Qt::LeftButton, {}, p);
    };
    doc.tool = 1; // every press makes a point
    doubleClick({ 50, 300 });
    EXPECT_EQ(doc.mgr.m_arShape.size(), 2u) << "the second press of a double click is not a press";
    EXPECT_EQ(doc.videoDoubleClicks, 0);
    doc.live = true;
    doubleClick({ 80, 300 });
    EXPECT_EQ(doc.videoDoubleClicks, 1);
    EXPECT_EQ(doc.mgr.m_arShape.size(), 3u);
}

TEST_F(WndFixture, CursorFollowsTheToolWhileNotLive)
{
    // Each move goes somewhere new: a move to where the mouse already is
    // delivers no event.
    int step = 0;
    const auto cursorAfterMove = [&](int tool) {
        doc.tool = tool;
        ++step;
        Move({ 300 + step, 300 });
        return Wnd()->cursor();
    };
    const QCursor draw = cursorAfterMove(2);
    EXPECT_EQ(draw.shape(), Qt::BitmapCursor);
    EXPECT_EQ(draw.pixmap().toImage(), Wnd()->DrawCursor().pixmap().toImage());
    EXPECT_EQ(draw.hotSpot(), QPoint(15, 15));
    EXPECT_FALSE(Wnd()->DrawCursor().pixmap().isNull()) << "the drawn image, not a fallback";
    EXPECT_EQ(cursorAfterMove(8).pixmap().toImage(), Wnd()->DrawCursor().pixmap().toImage());
    EXPECT_EQ(cursorAfterMove(9).pixmap().toImage(), Wnd()->MoveCursor().pixmap().toImage());
    EXPECT_NE(Wnd()->MoveCursor().pixmap().toImage(), Wnd()->DrawCursor().pixmap().toImage());
    EXPECT_EQ(cursorAfterMove(200).shape(), Qt::ArrowCursor);
    doc.live = true;
    cursorAfterMove(2);
    EXPECT_FALSE(Wnd()->testAttribute(Qt::WA_SetCursor)) << "live video keeps the default cursor";
}

TEST_F(WndFixture, PaintsThePictureAtTheZoomWithTheElementsOver)
{
    doc.SetPicture(400, 300, kPictureRed);
    doc.mgr.m_color = ColorRecord { 4, 3, 3, 4 };
    AddLine(doc.mgr, { 20, 100 }, { 120, 100 });
    doc.zoom = 7;
    QImage shot = Wnd()->grab().toImage();
    EXPECT_FALSE(Wnd()->IsGrayPainted());
    EXPECT_EQ(Pixel(shot, 10, 10), kPictureRed);
    EXPECT_EQ(Pixel(shot, 199, 149), kPictureRed) << "200 x 150 at 50 %";
    EXPECT_EQ(Pixel(shot, 200, 10), kGray);
    EXPECT_EQ(Pixel(shot, 10, 150), kGray);
    EXPECT_EQ(Pixel(shot, 60, 100), kGreen) << "the line in window pixels, over the picture";
    EXPECT_EQ(Pixel(shot, 70, 50), kPictureRed) << "the ruler is hidden";

    doc.mgr.m_bShowRuler = 1;
    doc.zoom = 12;
    shot = Wnd()->grab().toImage();
    EXPECT_EQ(Pixel(shot, 399, 299), kPictureRed) << "an unknown zoom paints at 100 %";
    EXPECT_EQ(Pixel(shot, 70, 50), kGreen) << "the ruler's arm";
}

TEST_F(WndFixture, PaintsGrayWhenThereIsNothingToShow)
{
    AddLine(doc.mgr, { 20, 100 }, { 120, 100 });
    const auto gray = [&] {
        const QImage shot = Wnd()->grab().toImage();
        return Wnd()->IsGrayPainted() && Pixel(shot, 60, 100) == kGray && Pixel(shot, 5, 5) == kGray;
    };
    EXPECT_TRUE(gray()) << "no picture";
    doc.SetPicture(400, 300, kPictureRed);
    EXPECT_FALSE(gray());
    doc.displayMode = 1;
    EXPECT_FALSE(gray()) << "mode 1, not live";
    doc.live = true;
    EXPECT_TRUE(gray()) << "mode 1, live";
    doc.displayMode = 2;
    EXPECT_FALSE(gray()) << "mode 2 paints a paused frame of the live document";
    doc.displayMode = 0;
    EXPECT_TRUE(gray());
}

// Looked at by eye: run with OCULIX_SCREENSHOT_DIR set under xvfb-run.
TEST(CGVLWndScreenshot, PictureWithRulerAndShapesAtFullAndHalfSize)
{
    FakeMeasureDocument doc;
    doc.picture.Create(640, 480, 24);
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            // A stained specimen on a pale field, with a grid.
            const int shade
                = 200 - int(60.0 * std::exp(-(std::pow(x - 300.0, 2) + std::pow(y - 220.0, 2)) / 12000));
            const bool grid = x % 64 == 0 || y % 64 == 0;
            doc.picture.SetPixelColor(x, y, grid ? qRgb(120, 120, 150) : qRgb(shade + 30, shade, shade + 40));
        }
    }
    doc.hasPicture = true;
    doc.imageSize = QSize(640, 480);
    FakeView view(doc, QSize(640, 480));
    CGVLElemMgr& mgr = doc.mgr;
    mgr.m_bShowRuler = 1;
    mgr.m_color = ColorRecord { 4, 2, 3, 4 };
    mgr.m_unit = CalibrationRecord { 0, 0.52, 0.52, 50.0, 50.0 };
    mgr.m_nFontSize = 1;
    doc.Ruler()->SetArms({ 40, 180 }, { 200, 80 });
    AddLine(mgr, { 420, 300 }, { 260, 380 });
    AddLine(mgr, { 560, 60 }, { 460, 150 }, 12);
    for (const QPoint p : { QPoint(330, 120), QPoint(380, 160), QPoint(300, 200) })
        Click(mgr, 202, p);
    Click(mgr, 1, { 520, 420 });
    mgr.m_bCrossDashed = 1;
    view.view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view.view));

    const QImage full = view.wnd->grab().toImage();
    SaveShot(full, "overlay-100.png");
    EXPECT_EQ(Pixel(full, 100, 80), QColor(255, 0, 0)) << "the ruler's horizontal arm in red";
    EXPECT_EQ(Pixel(full, 340, 340), QColor(255, 0, 0)) << "the line";

    doc.zoom = 7;
    const QImage half = view.wnd->grab().toImage();
    SaveShot(half, "overlay-50.png");
    EXPECT_EQ(Pixel(half, 20, 230), Pixel(full, 40, 460)) << "the picture at half size";
    EXPECT_EQ(Pixel(half, 400, 400), kGray) << "beside the half-size picture";
    EXPECT_EQ(Pixel(half, 100, 80), QColor(255, 0, 0)) << "shapes stay in window pixels";
}
