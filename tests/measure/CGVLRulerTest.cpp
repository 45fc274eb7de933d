#include "measure/CGVLRuler.h"

#include "MeasureTestSupport.h"

using namespace MeasureTest;

namespace {

struct RulerFixture : ::testing::Test
{
    RulerFixture()
    {
        mgr.SetWindow(&window, nullptr);
        ruler = dynamic_cast<CGVLRuler*>(mgr.CreateShape(ShapeType::Ruler));
        mgr.SetRulerShown(true);
        mgr.SetUnit(CalibrationRecord { 1, 0.2, 0.2, 2.0, 3.0 });
    }
    QPoint P0() const { return ruler->m_arCoord[0]; }
    QPoint P1() const { return ruler->m_arCoord[1]; }

    WindowSpy window;
    CGVLElemMgr mgr;
    CGVLRuler* ruler = nullptr;
};

} // namespace

TEST_F(RulerFixture, HitTestTakesTheBodyFirstAndAnswersZeroForAMiss)
{
    ASSERT_NE(ruler, nullptr);
    EXPECT_EQ(ruler->GetArms(), std::make_pair(QPoint(50, 100), QPoint(100, 50))) << "P1, P0 as constructed";
    // Body (45, 45) to (96, 96), right and bottom outside, wins over the arm
    // ends' squares: (95, 50) and (50, 95) lie in those too.
    for (const auto& [p, hit] :
        { std::pair { QPoint(45, 45), 1 }, { { 95, 95 }, 1 }, { { 95, 50 }, 1 }, { { 50, 95 }, 1 },
            { { 96, 50 }, 2 }, { { 104, 54 }, 2 }, { { 105, 50 }, 0 }, { { 100, 55 }, 0 }, { { 50, 96 }, 3 },
            { { 54, 104 }, 3 }, { { 50, 105 }, 0 }, { { 44, 60 }, 0 }, { { 300, 300 }, 0 } })
        EXPECT_EQ(ruler->HitTest(p), hit) << p.x() << "," << p.y();
}

TEST_F(RulerFixture, ArmDragsSetThePixelScaleAndStopOnePixelPastTheCorner)
{
    Drag(mgr, 9, { 100, 50 }, { { 180, 57 }, { 250, 60 } });
    EXPECT_EQ(P0(), QPoint(250, 50)) << "the arm only changes its length";
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 1, 2.0 / 200, 3.0 / 50, 2.0, 3.0 })) << "the rest stays";
    Drag(mgr, 0, { 52, 103 }, { { 40, 350 } });
    EXPECT_EQ(P1(), QPoint(50, 350));
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 1, 2.0 / 200, 3.0 / 300, 2.0, 3.0 }));
    EXPECT_EQ(ruler->m_nRulerHit, 0) << "released";
    EXPECT_EQ(window.calibrationEvents, 3) << "one message per move that changed the scale";

    Drag(mgr, 9, { 250, 50 }, { { -20, 50 } });
    Drag(mgr, 9, { 50, 350 }, { { 50, 10 } });
    EXPECT_EQ(ruler->GetArms(), std::make_pair(QPoint(50, 51), QPoint(51, 50)));
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 1, 2.0, 3.0, 2.0, 3.0 }))
        << "one pixel, never a division by zero";
}

TEST_F(RulerFixture, MovingTheWholeRulerKeepsTheCalibrationAndOnlyNoneAndMoveDrag)
{
    const CalibrationRecord before = mgr.m_unit;
    Drag(mgr, 9, { 60, 60 }, { { 70, 65 }, { 160, 110 } });
    EXPECT_EQ(ruler->GetArms(), std::make_pair(QPoint(150, 150), QPoint(200, 100)));
    EXPECT_EQ(mgr.m_unit, before);
    EXPECT_EQ(window.calibrationEvents, 2) << "the dialog still follows the ruler's position";

    // Presses of creating tools never reach the elements; a press taken with
    // tool 200 does not let a later move with another tool drag.
    Drag(mgr, 2, { 200, 100 }, { { 202, 102 }, { 300, 100 } });
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "the press made a line instead";
    mgr.OnLButtonDown(1, { 200, 100 }, 200);
    EXPECT_EQ(ruler->m_nRulerHit, 2);
    mgr.OnMouseMove(1, { 300, 100 }, 200);
    mgr.OnLButtonUp(0, { 300, 100 }, 200);
    EXPECT_EQ(P0(), QPoint(200, 100));
    EXPECT_EQ(mgr.m_arShape.front().get(), ruler) << "the delete tool does not remove the ruler";
}

TEST_F(RulerFixture, PressesGoOnToTheElementsBelowAndAHiddenRulerTakesNone)
{
    // Nothing lies below element 0 in a real manager; a spy put there shows
    // that the ruler lets the press through after taking it.
    auto spy = std::make_unique<TestShape>(mgr, 2, QPoint(0, 0));
    TestShape* below = spy.get();
    mgr.m_arShape.insert(mgr.m_arShape.begin(), std::move(spy));
    mgr.OnLButtonDown(1, { 60, 60 }, 9);
    EXPECT_EQ(ruler->m_nRulerHit, 1);
    EXPECT_EQ(below->lastPoint, QPoint(60, 60));
    EXPECT_TRUE(mgr.IsMouseDown());
    mgr.OnLButtonUp(0, { 60, 60 }, 9);
    mgr.m_arShape.erase(mgr.m_arShape.begin());

    mgr.SetRulerShown(false);
    const CalibrationRecord before = mgr.m_unit;
    Drag(mgr, 9, { 100, 50 }, { { 200, 50 } });
    EXPECT_EQ(P0(), QPoint(100, 50));
    EXPECT_EQ(mgr.m_unit, before) << "no calibration from a ruler the user cannot see";
}

TEST_F(RulerFixture, IsNeverDeletedNorEmptiedAndLabelsAtTheManagersPrecision)
{
    AddLine(mgr, { 10, 200 }, { 90, 200 });
    ruler->ClearCoords();
    EXPECT_EQ(ruler->CoordCount(), 2);
    EXPECT_EQ(mgr.DeleteById(ruler->GetId()), 0);
    mgr.DeleteAll();
    ASSERT_EQ(mgr.m_arShape.size(), 1u);
    EXPECT_EQ(mgr.m_arShape.front().get(), ruler);

    EditAppearance(mgr, [](auto& a) { a.precision = 3; });
    EXPECT_EQ(ruler->XLabel(), "2.000 mm");
    EXPECT_EQ(ruler->YLabel(), "3.000 mm");
    EditUnit(mgr, [](auto& u) { u.m_rtUnit = 4; });
    EditAppearance(mgr, [](auto& a) { a.precision = 1; });
    EXPECT_EQ(ruler->YLabel(), "3.0 inch");
    EXPECT_EQ(ruler->XLabelPos(), QPoint(110, 45));
    EXPECT_EQ(ruler->YLabelPos(), QPoint(50, 105));
    EditAppearance(mgr, [](auto& a) { a.precision = 6; });
    EXPECT_EQ(ruler->XLabel(), "");
}

TEST_F(RulerFixture, DrawsTheArmsWithTicksAndLabelsInTheSmallFontWhateverTheSize)
{
    EditAppearance(mgr, [](auto& a) {
        a.color = ColorRecord { 4, 3, 3, 2 }; // green strokes, red text
        a.precision = 6; // arms alone
    });
    Bits arms = DrawBits(mgr);
    EXPECT_EQ(arms.Extent(kKeyBits), QRect(QPoint(45, 45), QPoint(100, 100)));
    // Each arm starts 5 before the corner; a tick crosses each end.
    for (const QPoint p :
        { QPoint(45, 50), QPoint(99, 50), QPoint(100, 45), QPoint(100, 54), QPoint(50, 45), QPoint(54, 100) })
        EXPECT_EQ(arms.At(p.x(), p.y()), kGreen) << p.x() << "," << p.y();
    EXPECT_EQ(arms.At(70, 70), kKeyBits);

    EditAppearance(mgr, [](auto& a) {
        a.precision = 2;
        a.fontSize = 1;
    });
    const Bits small = DrawBits(mgr);
    EditAppearance(mgr, [](auto& a) { a.fontSize = 3; });
    EXPECT_EQ(small.data, DrawBits(mgr).data) << "the ruler's labels ignore the font size";
    const QRect all = small.Extent(kKeyBits);
    EXPECT_GT(all.right(), 140) << "the label right of P0";
    EXPECT_LE(all.bottom(), 105 + 20) << "20 pixels high under P1";
    EXPECT_GT(all.bottom(), 110);
    mgr.SetHidden(true);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect()) << "hidden";
}
