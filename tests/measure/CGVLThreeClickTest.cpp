#include "MeasureTestSupport.h"
#include "measure/CGVLAngle.h"
#include "measure/CGVLCircleT.h"

#include <array>
#include <cmath>

using namespace MeasureTest;

using ThreeClickTest = MeasureFixture;

namespace {

// Stroke pixels on the ring of radius 18..22 around `c`, axes left out, by
// screen quarter: upper right, upper left, lower left, lower right.
std::array<int, 4> RingQuarters(const Bits& bits, QPoint c)
{
    std::array<int, 4> q {};
    for (int dy = -23; dy <= 23; ++dy)
        for (int dx = -23; dx <= 23; ++dx) {
            const double r = std::hypot(dx, dy);
            if (r >= 18 && r <= 22 && std::abs(dx) > 1 && std::abs(dy) > 1
                && bits.At(c.x() + dx, c.y() + dy) == kRed)
                ++q[dy < 0 ? (dx > 0 ? 0 : 1) : (dx > 0 ? 3 : 2)];
        }
    return q;
}

} // namespace

TEST_F(ThreeClickTest, AngleIsTheTurnFromTheSecondArmToTheFirst)
{
    auto angle = [&](QPoint first, QPoint vertex, QPoint second) {
        Clicks(mgr, 3, { first, vertex, second });
        EXPECT_FALSE(Last<CGVLAngle>(mgr)->m_bDown || Last<CGVLAngle>(mgr)->m_bSelected);
        return Last<CGVLAngle>(mgr)->GetAngle();
    };
    EXPECT_DOUBLE_EQ(angle({ 150, 100 }, { 100, 100 }, { 100, 50 }), 270.0) << "right, then up";
    EXPECT_DOUBLE_EQ(angle({ 100, 50 }, { 100, 100 }, { 150, 100 }), 90.0);
    EXPECT_DOUBLE_EQ(angle({ 50, 100 }, { 100, 100 }, { 150, 100 }), 180.0);
    EXPECT_DOUBLE_EQ(angle({ 150, 100 }, { 100, 100 }, { 200, 100 }), 0.0);
    // Pi is 3.14159 in the direction of an arm: 45 degrees read 45.00004.
    EXPECT_NEAR(angle({ 150, 100 }, { 100, 100 }, { 150, 150 }), 45.000038, 1e-6);
    EditUnit(mgr, [](auto& u) { u.m_rtUnit = 4; });
    EditAppearance(mgr, [](auto& a) { a.precision = 5; });
    EXPECT_EQ(Last<CGVLAngle>(mgr)->LabelText(), "A=45.00004 deg") << "degrees whatever the unit";
    EXPECT_EQ(Last<CGVLAngle>(mgr)->LabelPos(), QPoint(133, 116)) << "the centroid";
}

TEST_F(ThreeClickTest, PlacingAnAngleDrawsARubberBandThenAnArcCounterClockwise)
{
    EditAppearance(mgr, [](auto& a) { a.precision = 0; });
    Click(mgr, 3, { 20, 100 });
    mgr.OnMouseMove(0, { 120, 100 }, 3);
    CGVLAngle* angle = Last<CGVLAngle>(mgr);
    // The band, and the first point's handle: moving selects the angle.
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(15, 95), QPoint(119, 104)));
    Click(mgr, 3, { 120, 100 });
    mgr.OnMouseMove(0, { 120, 30 }, 3);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(15, 31), QPoint(124, 104)));
    Click(mgr, 3, { 120, 30 });
    EXPECT_EQ(angle->m_arCoord, (std::vector<QPoint> { { 20, 100 }, { 120, 100 }, { 120, 30 } }));
    Click(mgr, 3, { 200, 200 });
    EXPECT_EQ(mgr.m_arShape.size(), 3u) << "a complete angle takes no more clicks";
    EXPECT_EQ(angle->CoordCount(), 3);

    // The arc runs counter-clockwise from the first arm to the second.
    mgr.DeleteAll();
    Clicks(mgr, 3, { { 160, 100 }, { 100, 100 }, { 100, 40 } });
    const std::array<int, 4> q = RingQuarters(DrawBits(mgr), { 100, 100 });
    EXPECT_GT(q[0], 20);
    EXPECT_EQ(q[1] + q[2] + q[3], 0);
    EditAppearance(mgr, [](auto& a) { a.precision = 1; });
    EXPECT_EQ(Last<CGVLAngle>(mgr)->LabelText(), "A=270.0 deg");
    Clicks(mgr, 3, { { 100, 40 }, { 100, 100 }, { 160, 100 } }); // three quarters
    const std::array<int, 4> swapped = RingQuarters(DrawBits(mgr), { 100, 100 });
    EXPECT_GT(std::min({ swapped[1], swapped[2], swapped[3] }), 20);
}

TEST_F(ThreeClickTest, CircleThroughThreePointsHasAnIntegerCentreAndRadius)
{
    auto fit = [&](QPoint a, QPoint b, QPoint c) {
        Clicks(mgr, 7, { a, b, c });
        return Last<CGVLCircleT>(mgr)->FitCircle();
    };
    using Circle = CGVLCircleT::Circle;
    EXPECT_EQ(fit({ 100, 100 }, { 110, 100 }, { 100, 110 }), (Circle { { 105, 105 }, 7 }));
    mgr.SetUnit({ 1, 0.2, 0.4, 0, 0 });
    EditAppearance(mgr, [](auto& a) { a.precision = 3; });
    EXPECT_EQ(Last<CGVLCircleT>(mgr)->AreaText(), "S=12.315mm2"); // 7 * 3.14159 * 0.2 * 7 * 0.4
    EXPECT_EQ(Last<CGVLCircleT>(mgr)->RadiusText(), "R=2.100mm");
    // One vertical chord passes the collinearity test; the centre's x is rounded.
    EXPECT_EQ(fit({ 100, 100 }, { 100, 120 }, { 120, 110 }), (Circle { { 108, 110 }, 12 }));
    EXPECT_EQ(fit({ 50, 10 }, { 50, 40 }, { 50, 90 }), Circle {}) << "one x";
    EXPECT_EQ(fit({ 0, 0 }, { 10, 10 }, { 30, 30 }), Circle {}) << "one slope";
    EXPECT_EQ(fit({ 100, 100 }, { 100, 100 }, { 150, 100 }), Circle {}) << "two equal points";
    EXPECT_EQ(Last<CGVLCircleT>(mgr)->GetArea(), 0.0);
    EXPECT_EQ(fit({ 0, 0 }, { 500, 1 }, { 1000, 0 }).radius, 124999) << "nearly straight";

    // Its points show while it is placed, then the circle.
    mgr.DeleteAll();
    EditAppearance(mgr, [](auto& a) { a.precision = 0; });
    Click(mgr, 7, { 100, 100 });
    mgr.OnMouseMove(0, { 200, 150 }, 7);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(95, 95), QPoint(104, 104))) << "no rubber band";
    Clicks(mgr, 7, { { 140, 100 }, { 100, 140 } });
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    // Centre (120, 120), radius 28.
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(92, 92), QPoint(147, 147)));
}

TEST_F(ThreeClickTest, MoveToolDragsHandlesAndEndsAHalfPlacedShape)
{
    Clicks(mgr, 3, { { 150, 100 }, { 100, 100 }, { 100, 50 } });
    CGVLAngle* angle = Last<CGVLAngle>(mgr);
    Drag(mgr, 9, { 101, 52 }, { { 50, 100 } }); // the second arm's end
    EXPECT_DOUBLE_EQ(angle->GetAngle(), 180.0);

    Click(mgr, 7, { 10, 10 });
    CGVLCircleT* half = Last<CGVLCircleT>(mgr);
    mgr.OnMouseMove(0, { 12, 12 }, 9); // passing over it with the move tool
    Click(mgr, 9, { 300, 200 });
    Clicks(mgr, 7, { { 100, 100 }, { 110, 100 }, { 100, 110 } });
    EXPECT_EQ(half->m_arCoord, std::vector<QPoint> { QPoint(10, 10) }) << "the clicks went to the new circle";
    EXPECT_EQ(Last<CGVLCircleT>(mgr)->CoordCount(), 3);

    Click(mgr, 200, { 10, 10 });
    Click(mgr, 200, { 150, 100 });
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    EXPECT_EQ(mgr.m_arShape[1]->GetType(), 7);
}
