#include "MeasureTestSupport.h"
#include "measure/CGVLNo.h"

#include <QDate>

#include <functional>
#include <gtest/gtest.h>
#include <utility>

using namespace MeasureTest;

namespace {

using Log = std::vector<std::string>;

struct MgrFixture : ::testing::Test
{
    TestShape* Spy(int type, const std::string& name)
    {
        TestShape* spy = Add(mgr, type);
        spy->name = name;
        spy->log = &log;
        return spy;
    }
    CGVLElemMgr mgr;
    Log log;
};

} // namespace

TEST(ElemMgr, DefaultsAndFactory)
{
    CGVLElemMgr mgr;
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 0, 0.2, 0.2, 10.0, 10.0 }));
    EXPECT_EQ(mgr.m_color, (ColorRecord { 4, 3, 3, 4 }));
    EXPECT_TRUE(mgr.GetAppearance().precision == 2 && mgr.GetAppearance().fontSize == 2);
    for (int type : { 1, 2, 11, 12 }) {
        CGVLShape* shape = mgr.CreateShape(type);
        ASSERT_NE(shape, nullptr) << type;
        EXPECT_TRUE(shape->GetType() == type && shape->m_pMgr == &mgr && shape->m_pUnit == &mgr.m_unit
            && shape->m_pColor == &mgr.m_color);
    }
    EXPECT_EQ(mgr.CreateShape(8), nullptr);
    EXPECT_EQ(mgr.m_arShape.size(), 4u);
}

// Callers leave the repaint to the setters: each change of what is drawn
// repaints the whole window once. None of them tells the calibration dialog,
// which follows the ruler and would otherwise be told of its own changes.
TEST(ElemMgr, SettersOfWhatIsDrawnRepaintTheWholeWindowOnce)
{
    WindowSpy window;
    CGVLElemMgr mgr;
    mgr.SetWindow(&window, nullptr);
    const std::pair<const char*, std::function<void()>> drawn[] {
        { "calibration",
            [&] {
                mgr.SetUnit({ 2, 0.5, 0.5, 1.0, 1.0 });
            } },
        { "appearance", [&] { mgr.SetAppearance({ .precision = 3 }); } },
        { "cross lines", [&] { mgr.SetCrossLines(false, true); } },
        { "ruler shown", [&] { mgr.SetRulerShown(true); } },
        { "hidden", [&] { mgr.SetHidden(true); } },
    };
    for (const auto& [what, set] : drawn) {
        window.wholeRequests = 0;
        set();
        EXPECT_EQ(window.wholeRequests, 1) << what;
    }
    EXPECT_TRUE(window.requested.isEmpty());
    EXPECT_EQ(window.calibrationEvents, 0);
}

TEST_F(MgrFixture, PressesGoTopDownUntilTakenOtherEventsReachEveryone)
{
    TestShape* bottom = Spy(2, "bottom");
    TestShape* top = Spy(2, "top");
    bottom->m_bSelected = true;
    mgr.OnLButtonDown(1, { 5, 5 }, 0);
    EXPECT_FALSE(bottom->m_bSelected) << "everything is deselected first";
    top->answer = 3;
    mgr.OnLButtonDown(1, { 5, 5 }, 9);
    EXPECT_TRUE(mgr.IsMouseDown());
    mgr.OnMouseMove(1, { 6, 6 }, 9);
    mgr.OnLButtonUp(0, { 6, 6 }, 9);
    EXPECT_FALSE(mgr.IsMouseDown());
    top->log = bottom->log = nullptr; // pressed again, out of the log
    mgr.OnLButtonDown(1, { 6, 6 }, 9);
    top->log = bottom->log = &log;
    ASSERT_TRUE(mgr.IsMouseDown());
    mgr.OnRButtonDown(2, { 6, 6 }, 9);
    EXPECT_FALSE(mgr.IsMouseDown());
    EXPECT_EQ(log,
        (Log { "top:down", "bottom:down", "top:down", "top:move", "bottom:move", "top:up", "bottom:up",
            "top:right", "bottom:right" }));
}

TEST_F(MgrFixture, IgnoringContinuingAndPressLastToolsAndTheScrollOrigin)
{
    TestShape* circle = Spy(7, "circle");
    TestShape* angle = Spy(3, "angle");
    TestShape* last = Spy(3, "idle angle");
    for (int tool : { 201, 204 })
        mgr.OnLButtonDown(1, { 5, 5 }, tool);
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(mgr.IsMouseDown());
    // Three-click shapes being placed take the next click of their tool.
    circle->m_bDown = angle->m_bDown = true;
    mgr.OnLButtonDown(1, { 40, 50 }, 3);
    mgr.OnLButtonDown(1, { 40, 50 }, 7);
    EXPECT_EQ(log, (Log { "angle:down", "circle:down" }));
    // Tool 8 hands the press to the last element, with the scroll origin.
    mgr.SetOrigin({ -10, -20 });
    mgr.SetOrigin({ -10, -20 });
    EXPECT_EQ(last->updates, 1) << "only a change is broadcast";
    mgr.OnLButtonDown(1, { 5, 5 }, 8);
    EXPECT_EQ(log.back(), "idle angle:down");
    EXPECT_TRUE(last->IsRefPoint({ -10, -20 }) && circle->IsRefPoint({ -10, -20 }));
    EXPECT_TRUE(mgr.IsMouseDown());
    EXPECT_EQ(mgr.m_arShape.size(), 3u);
}

TEST_F(MgrFixture, DeleteToolRemovesEveryElementUnderThePressAndDeleteByIdRefusesRulerAndScale)
{
    Add(mgr, 9, { 100, 100 });
    AddLine(mgr, { 50, 50 }, { 150, 150 });
    CGVLShape* elsewhere = AddLine(mgr, { 200, 10 }, { 300, 20 });
    AddLine(mgr, { 90, 140 }, { 160, 60 });
    Click(mgr, 200, { 105, 101 });
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    EXPECT_EQ(mgr.m_arShape[0]->GetType(), 9);
    EXPECT_EQ(mgr.m_arShape[1].get(), elsewhere);

    // Deleting by id refuses the ruler and the scale.
    mgr.m_arShape.clear();
    mgr.DeleteAll(); // with nothing at all
    Add(mgr, 9)->m_dwId = 1;
    Add(mgr, 10)->m_dwId = 2;
    CGVLShape* older = AddLine(mgr, { 10, 10 }, { 60, 60 });
    CGVLShape* newer = AddLine(mgr, { 100, 100 }, { 160, 160 });
    older->m_dwId = newer->m_dwId = 3; // made within one millisecond
    EXPECT_EQ(mgr.DeleteById(4), -1);
    EXPECT_EQ(mgr.DeleteById(1), 0);
    EXPECT_EQ(mgr.DeleteById(2), 1);
    EXPECT_EQ(mgr.m_arShape.size(), 4u);
    Click(mgr, 200, { 120, 120 });
    ASSERT_EQ(mgr.m_arShape.size(), 3u);
    EXPECT_EQ(mgr.m_arShape[2].get(), older) << "the element that asked is the one that left";
    EXPECT_EQ(mgr.FindById(3), 2);
    EXPECT_EQ(mgr.DeleteById(3), 2);
    EXPECT_EQ(mgr.FindById(3), -1);

    Click(mgr, 202, { 50, 50 });
    mgr.DeleteAll();
    ASSERT_EQ(mgr.m_arShape.size(), 1u);
    EXPECT_EQ(mgr.GetCount(), 0);
    Click(mgr, 202, { 50, 50 });
    EXPECT_EQ(dynamic_cast<CGVLNo*>(mgr.m_arShape[1].get())->GetNumber(), 1);
}

TEST_F(MgrFixture, DrawToBitsFillsWithKeyOneBottomUpWithPaddedRows)
{
    std::vector<uchar> small(16 * 3, 0xAB); // width 5: 15 bytes of pixels, 1 of padding
    ASSERT_EQ(DibStride(5), 16u);
    mgr.DrawToBits(small.data(), 5, 3);
    EXPECT_EQ(small, std::vector<uchar>(16 * 3, 1));

    EditAppearance(mgr, [](auto& a) {
        a.color.m_ctRuler = 2;
        a.precision = 0;
    });
    Add(mgr, 9, { 2, 15 });
    AddLine(mgr, { 10, 0 }, { 30, 0 });
    Bits bits = DrawBits(mgr, 40, 20);
    const uchar* topRow = &bits.data[19 * bits.stride]; // the picture's top row is last
    EXPECT_EQ(std::vector<uchar>(topRow + 30, topRow + 33), (std::vector<uchar> { 0x00, 0x00, 0xFF }));
    EXPECT_EQ(bits.Extent(kKeyBits), QRect(QPoint(10, 0), QPoint(29, 0))) << "element 0 hidden";
    mgr.SetRulerShown(true);
    EXPECT_EQ(DrawBits(mgr, 40, 20).At(7, 15), kRed);
    mgr.SetHidden(true);
    EXPECT_TRUE(DrawBits(mgr, 40, 20).Extent(kKeyBits).isEmpty());
    std::vector<uchar> untouched(8, 0xAB);
    mgr.DrawToBits(untouched.data(), 0, 2);
    mgr.DrawToBits(untouched.data(), 2, -1);
    mgr.DrawToBits(nullptr, 2, 2);
    EXPECT_EQ(untouched, std::vector<uchar>(8, 0xAB));
}

TEST_F(MgrFixture, CrossLinesLeaveAGapOfFourAroundTheCentreDot)
{
    mgr.SetCrossLines(true, false);
    const Bits bits = DrawBits(mgr, 101, 81); // centre (50, 40)
    int lit = 0;
    for (int y = 0; y < 81; ++y)
        for (int x = 0; x < 101; ++x)
            lit += bits.At(x, y) != kKeyBits;
    // Dot, up 36..1, down 44..80, left 46..1, right 54..100.
    EXPECT_EQ(lit, 1 + 36 + 37 + 46 + 47);
    EXPECT_EQ(bits.At(50, 40), kGreen);
    EXPECT_EQ(bits.At(50, 36), kGreen);
    mgr.SetCrossLines(true, true);
    EXPECT_EQ(DrawBits(mgr, 101, 81).data, bits.data) << "solid wins";

    mgr.SetCrossLines(false, true);
    const Bits dashed = DrawBits(mgr, 201, 81); // 18 on, 6 off from the centre, gray gaps
    for (const auto& [x, c] : { std::pair { 104, kGreen }, { 121, kGreen }, { 122, kGray }, { 127, kGray },
             { 128, kGreen }, { 96, kGreen }, { 79, kGreen }, { 78, kGray } })
        EXPECT_EQ(dashed.At(x, 40), c) << x;
    Bits image(201, 81); // transparent labels: transparent gaps in a saved picture
    mgr.DrawToImage(image.data.data(), 201, 81, true, true, 0, false, false, QString());
    EXPECT_EQ(image.At(121, 40), kGreen);
    EXPECT_EQ(image.At(122, 40), kKeyImage);
}

TEST_F(MgrFixture, DrawToImageKeysOnBlackAndHonoursItsFlags)
{
    Add(mgr, 9, { 2, 2 });
    EditAppearance(mgr, [](auto& a) {
        a.color.m_ctRuler = 2;
        a.precision = 0;
    });
    AddLine(mgr, { 20, 50 }, { 120, 50 });
    Bits bits(200, 100);
    auto draw = [&](bool elements, bool ruler) {
        mgr.DrawToImage(bits.data.data(), 200, 100, elements, ruler, 0, false, false, QString());
        return std::pair { bits.At(7, 2), bits.At(60, 50) };
    };
    EXPECT_EQ(draw(true, true), std::pair(kRed, kRed));
    EXPECT_EQ(bits.At(60, 60), kKeyImage);
    EXPECT_EQ(draw(false, true), std::pair(kRed, kKeyImage));
    EXPECT_EQ(draw(true, false), std::pair(kKeyImage, kRed));
    EditAppearance(mgr, [](auto& a) { a.color.m_ctRuler = 0; }); // black strokes vanish in the burn-in
    draw(true, true);
    EXPECT_EQ(bits.data, std::vector<uchar>(bits.data.size(), 0));
}

TEST_F(MgrFixture, DrawToImageStampsDateAndTitle)
{
    EditAppearance(mgr, [](auto& a) { a.color.m_ctText = 7; });
    const QColor yellow(255, 255, 0);
    Bits bits(400, 300);
    mgr.DrawToImage(bits.data.data(), 400, 300, true, true, 0, true, true, "Sample 7");
    const QFont stamp = Gdi::MakeFont(12, 7, 100);
    const QDate today = QDate::currentDate();
    const QString date = QString("%1-%2-%3").arg(today.year()).arg(today.month()).arg(today.day());
    QRect dateInk;
    QRect titleInk;
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 400; ++x)
            if (bits.At(x, y) != kKeyImage) {
                ASSERT_EQ(bits.At(x, y), yellow);
                (y >= 260 ? dateInk : titleInk) |= QRect(x, y, 1, 1);
            }
    const QRect dateCell(QPoint(300, 260), Gdi::TextExtent(stamp, date));
    const QRect titleCell(QPoint(300, 240), Gdi::TextExtent(stamp, "Sample 7"));
    EXPECT_TRUE(dateCell.contains(dateInk) && dateInk.width() > dateCell.width() / 2);
    EXPECT_TRUE(titleCell.contains(titleInk) && titleInk.width() > titleCell.width() / 2);
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    mgr.DrawToImage(bits.data.data(), 400, 300, true, true, 0, true, false, QString());
    EXPECT_EQ(bits.Extent(kKeyImage), dateCell) << "a gray cell";
}
