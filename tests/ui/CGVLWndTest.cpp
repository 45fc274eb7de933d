#include "ui/CGVLWnd.h"

#include "FakeMeasureDocument.h"
#include "measure/CGVLAnoText.h"
#include "measure/MeasureTestSupport.h"
#include "measure/WindowCalls.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QImage>
#include <QPaintEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

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

} // namespace

TEST(CGVLWnd, DisplayedSizeFollowsTheZoomTableAndFallsBackToFullSize)
{
    const QSize picture(1280, 1024);
    for (const auto& [zoom, size] : { std::pair { 0, QSize(3200, 2560) }, { 4, picture },
             { 6, QSize(853, 682) }, { 9, QSize(320, 256) }, { 12, picture }, { -1, picture } })
        EXPECT_EQ(CGVLWnd::DisplayedSize(picture, zoom), size) << zoom;
    EXPECT_EQ(CGVLWnd::DisplayedSize(QSize(7, 5), 2), QSize(10, 7)) << "truncated";
}

TEST_F(WndFixture, MouseReachesTheManagerWithTheDocumentsToolAndDoubleClicksTheVideoOnlyWhileLive)
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
    EXPECT_FALSE(doc.mgr.IsMouseDown());

    // As the system delivers one: press, release, double click, release.
    const auto doubleClick = [&](QPoint p) {
        QTest::mouseClick(Wnd(), Qt::LeftButton, {}, p);
        QTest::mouseDClick(Wnd(), Qt::LeftButton, {}, p);
        QTest::mouseRelease(Wnd(), Qt::LeftButton, {}, p);
    };
    doc.tool = 1; // every press makes a point
    const std::size_t before = doc.mgr.m_arShape.size();
    doubleClick({ 50, 300 });
    EXPECT_EQ(doc.mgr.m_arShape.size(), before + 1) << "the second press of a double click is not a press";
    EXPECT_EQ(doc.videoDoubleClicks, 0);
    doc.live = true;
    doubleClick({ 80, 300 });
    EXPECT_EQ(doc.videoDoubleClicks, 1);
    EXPECT_EQ(doc.mgr.m_arShape.size(), before + 2);
}

// Each finished gesture is one undo step, a press or click that changed
// nothing is none, and the text's dialog (run inside the press) and a
// polygon's closing right click count too.
TEST_F(WndFixture, FinishedGesturesAreUndoStepsAndClicksThatChangeNothingAreNot)
{
    const auto gesture = [&](int tool, std::vector<QPoint> points) {
        doc.tool = tool;
        Press(points.front());
        for (std::size_t i = 1; i < points.size(); ++i)
            Move(points[i]);
        Release(points.back());
    };
    const auto types = [&] {
        std::vector<int> t;
        for (const auto& shape : doc.mgr.m_arShape)
            t.push_back(shape->GetType());
        return t;
    };
    doc.mgr.SetTextInput([](QObject*, QStringList& lines) {
        lines = QStringList { "note" };
        return true;
    });
    gesture(2, { { 100, 100 }, { 104, 101 }, { 200, 100 } });
    gesture(9, { { 300, 300 } }); // the move tool on empty ground
    gesture(2, { { 50, 50 } }); // a line of one point is discarded
    gesture(9, { { 150, 100 }, { 150, 120 } });
    const std::vector<QPoint> moved { { 200, 120 }, { 104, 121 } };
    EXPECT_EQ(doc.mgr.m_arShape[1]->m_arCoord, moved);
    gesture(CGVLShape::kToolText, { { 400, 50 } });
    for (QPoint p : { QPoint(10, 300), QPoint(90, 300), QPoint(50, 380) })
        gesture(5, { p });
    Press({ 50, 380 }, Qt::RightButton);
    gesture(200, { { 150, 120 } });
    EXPECT_EQ(types(), (std::vector<int> { 9, 14, 5 }));

    // The deletion, the closing, three vertices, the text, the move, the line.
    const std::vector<std::vector<int>> back { { 9, 2, 14, 5 }, { 9, 2, 14, 5 }, { 9, 2, 14, 5 },
        { 9, 2, 14, 5 }, { 9, 2, 14 }, { 9, 2 }, { 9, 2 }, { 9 } };
    for (const auto& expected : back) {
        ASSERT_TRUE(doc.history.Undo());
        EXPECT_EQ(types(), expected);
    }
    EXPECT_FALSE(doc.history.CanUndo());
    ASSERT_TRUE(doc.history.Redo());
    EXPECT_EQ(doc.mgr.m_arShape[1]->m_arCoord, (std::vector<QPoint> { { 200, 100 }, { 104, 101 } }));
    ASSERT_TRUE(doc.history.Redo());
    EXPECT_EQ(doc.mgr.m_arShape[1]->m_arCoord, moved) << "the drag, undone and redone as one step";
    EXPECT_EQ(doc.mgr.m_arShape[1]->m_hWnd, Wnd());
    // A new edit drops what could have been redone.
    gesture(1, { { 500, 400 } });
    EXPECT_FALSE(doc.history.CanRedo());
    EXPECT_EQ(types(), (std::vector<int> { 9, 2, 1 }));

    // Only the newest steps are kept.
    CShapeHistory brief(doc.mgr, 2);
    for (int x : { 100, 200, 300 }) {
        gesture(1, { { x, 450 } });
        brief.Commit();
    }
    EXPECT_TRUE(brief.Undo() && brief.Undo());
    EXPECT_FALSE(brief.Undo());
    EXPECT_EQ(types(), (std::vector<int> { 9, 2, 1, 1 }));
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

TEST_F(WndFixture, PaintsThePictureAtTheZoomWithTheElementsOverOrGrayWhenThereIsNothingToShow)
{
    doc.SetPicture(400, 300, kPictureRed);
    for (int y = 0; y < 300; ++y) // a blue right half: scaled, not cropped
        for (int x = 300; x < 400; ++x)
            doc.picture.SetPixelColor(x, y, qRgb(0, 0, 255));
    EditAppearance(doc.mgr, [](auto& a) { a.color = ColorRecord { 4, 3, 3, 4 }; });
    AddLine(doc.mgr, { 20, 100 }, { 120, 100 });
    doc.zoom = 7;
    QImage shot = Wnd()->grab().toImage();
    EXPECT_FALSE(Wnd()->IsGrayPainted());
    EXPECT_EQ(Pixel(shot, 10, 10), kPictureRed);
    EXPECT_EQ(Pixel(shot, 199, 149), QColor(0, 0, 255)) << "200 x 150 at 50 %";
    EXPECT_EQ(Pixel(shot, 148, 10), kPictureRed);
    EXPECT_EQ(Pixel(shot, 200, 10), kGray);
    EXPECT_EQ(Pixel(shot, 10, 150), kGray);
    EXPECT_EQ(Pixel(shot, 60, 100), kGreen) << "the line in window pixels, over the picture";
    EXPECT_EQ(Pixel(shot, 70, 50), kPictureRed) << "the ruler is hidden";

    doc.mgr.SetRulerShown(true);
    doc.zoom = 12;
    shot = Wnd()->grab().toImage();
    EXPECT_EQ(Pixel(shot, 299, 299), kPictureRed) << "an unknown zoom paints at 100 %";
    EXPECT_EQ(Pixel(shot, 399, 299), QColor(0, 0, 255));
    EXPECT_EQ(Pixel(shot, 70, 50), kGreen) << "the ruler's arm";

    // Gray when there is nothing to show.
    doc.hasPicture = false;
    const auto gray = [&] {
        const QImage image = Wnd()->grab().toImage();
        return Wnd()->IsGrayPainted() && Pixel(image, 60, 100) == kGray && Pixel(image, 5, 5) == kGray;
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

// The engine's repaint requests reach the window as its own repaints, of the
// area asked for, also when another thread (the overlay worker) asked.
TEST_F(WndFixture, RepaintsWhatTheEngineAsksForFromAnyThread)
{
    struct PaintSpy : QObject
    {
        QRegion painted;
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::Paint)
                painted += static_cast<QPaintEvent*>(event)->region();
            return false;
        }
    } spy;
    Wnd()->installEventFilter(&spy);
    const auto paintedAfter = [&](bool otherThread, const std::function<void()>& ask) {
        QTest::qWait(50);
        spy.painted = QRegion();
        if (otherThread)
            std::thread(ask).join();
        else
            ask();
        QElapsedTimer timer;
        timer.start();
        while (spy.painted.isEmpty() && timer.elapsed() < 5000)
            QTest::qWait(10);
        return spy.painted.boundingRect();
    };
    const QRect area(10, 20, 30, 40);
    EXPECT_EQ(paintedAfter(false, [&] { InvalidateWindow(Wnd(), area); }), area);
    EXPECT_EQ(paintedAfter(true, [&] { InvalidateWindow(Wnd(), area); }), area);
    EXPECT_EQ(paintedAfter(true, [&] { InvalidateWindow(Wnd()); }), Wnd()->rect());
}

// Attached, a text press asks for the text with the dialog over the window;
// detached, nothing asks and the press is cancelled.
TEST_F(WndFixture, AttachedTextPressesAskWithTheDialogAndDetachedOnesAreCancelled)
{
    ASSERT_EQ(doc.mgr.GetWindow(), Wnd());
    // The dialog is gone once the press returns: what it was is kept here.
    struct Shown
    {
        QString title;
        QWidget* parent = nullptr;
    };
    std::optional<Shown> shown;
    // Types the text into whatever dialog shows.
    const auto answer = [&](const QString& text) {
        QTimer::singleShot(0, [&, text] {
            QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            shown = Shown { dialog->windowTitle(), dialog->parentWidget() };
            if (auto* edit = dialog->findChild<QPlainTextEdit*>()) {
                QTest::keyClicks(edit, text);
                QTest::keyClick(edit, Qt::Key_Return);
            }
            if (dialog && dialog->isVisible())
                dialog->reject();
        });
    };
    doc.tool = CGVLShape::kToolText;
    answer(QStringLiteral("note"));
    Press({ 200, 100 });
    Release({ 200, 100 });
    ASSERT_TRUE(shown) << "the dialog showed";
    EXPECT_EQ(shown->title, "Input Text");
    EXPECT_EQ(shown->parent, Wnd());
    ASSERT_EQ(doc.mgr.m_arShape.size(), 2u);
    ASSERT_EQ(doc.mgr.m_arShape[1]->GetType(), 14);
    EXPECT_EQ(static_cast<CGVLAnoText&>(*doc.mgr.m_arShape[1]).m_arText, QStringList { "note" });

    Wnd()->DetachFromManager();
    EXPECT_EQ(doc.mgr.GetWindow(), nullptr);
    shown.reset();
    answer(QStringLiteral("late"));
    doc.mgr.OnLButtonDown(1, { 300, 100 }, CGVLShape::kToolText);
    QTest::qWait(20);
    EXPECT_FALSE(shown) << "no dialog without a window";
    EXPECT_EQ(doc.mgr.m_arShape.size(), 2u) << "the press is cancelled";
}
