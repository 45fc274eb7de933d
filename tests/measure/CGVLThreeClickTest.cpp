#include "MeasureTestSupport.h"
#include "measure/CGVLAngle.h"
#include "measure/CGVLCircleT.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

struct ThreeClickFixture : ::testing::Test
{
    ThreeClickFixture()
    {
        mgr.CreateShape(9);
        mgr.m_color = { 1, 2, 3, 1 }; // strokes red, handles green
    }
    template <typename Shape> Shape* Last() { return At<Shape>(mgr, mgr.m_arShape.size() - 1); }
    CGVLElemMgr mgr;
};

// Pixels of the stroke colour on the ring of radius 18..22 around `c`,
// by quarter as seen on the screen, leaving out the two axes.
struct Quarters
{
    int upperRight = 0, upperLeft = 0, lowerLeft = 0, lowerRight = 0;
};
Quarters RingPixels(const Bits& bits, QPoint c)
{
    Quarters q;
    for (int y = c.y() - 23; y <= c.y() + 23; ++y)
        for (int x = c.x() - 23; x <= c.x() + 23; ++x) {
            const int dx = x - c.x(), dy = y - c.y();
            const double r = std::hypot(dx, dy);
            if (r < 18 || r > 22 || std::abs(dx) <= 1 || std::abs(dy) <= 1 || bits.At(x, y) != kRed)
                continue;
            ++(dy < 0 ? (dx > 0 ? q.upperRight : q.upperLeft) : (dx > 0 ? q.lowerRight : q.lowerLeft));
        }
    return q;
}

} // namespace

TEST_F(ThreeClickFixture, AngleIsTheTurnFromTheSecondArmToTheFirst)
{
    auto angle = [&](QPoint first, QPoint vertex, QPoint second) {
        Clicks(mgr, 3, { first, vertex, second });
        const CGVLAngle* a = Last<CGVLAngle>();
        EXPECT_FALSE(a->m_bDown || a->m_bSelected);
        return a->GetAngle();
    };
    EXPECT_DOUBLE_EQ(angle({ 150, 100 }, { 100, 100 }, { 100, 50 }), 270.0) << "right, then up";
    EXPECT_DOUBLE_EQ(angle({ 100, 50 }, { 100, 100 }, { 150, 100 }), 90.0) << "up, then right";
    EXPECT_DOUBLE_EQ(angle({ 50, 100 }, { 100, 100 }, { 150, 100 }), 180.0);
    EXPECT_DOUBLE_EQ(angle({ 150, 100 }, { 100, 100 }, { 200, 100 }), 0.0);
    // Pi is 3.14159 in the direction of an arm: 45 degrees read 45.00004.
    EXPECT_NEAR(angle({ 150, 100 }, { 100, 100 }, { 150, 150 }), 45.000038, 1e-6);
    EXPECT_EQ(mgr.m_arShape.size(), 6u);
    const CGVLAngle* a = Last<CGVLAngle>();
    mgr.m_unit.m_rtUnit = 4;
    mgr.m_nPrecision = 5;
    EXPECT_EQ(a->LabelText(), "A=45.00004 deg") << "degrees whatever the unit";
    EXPECT_EQ(a->LabelPos(), QPoint(133, 116)) << "the centroid";
    mgr.m_nPrecision = 0;
    EXPECT_EQ(a->LabelText(), "");
}

TEST_F(ThreeClickFixture, PlacingAnAngleDrawsARubberBandAndKeepsTakingItsClicks)
{
    mgr.m_nPrecision = 0;
    Click(mgr, 3, { 20, 100 });
    mgr.OnMouseMove(0, { 120, 100 }, 3);
    CGVLAngle* angle = Last<CGVLAngle>();
    EXPECT_TRUE(angle->m_bDown);
    // The band, and the first point's handle: moving selects the angle.
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(15, 95), QPoint(119, 104)));
    Click(mgr, 3, { 120, 100 });
    mgr.OnMouseMove(0, { 120, 30 }, 3);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(15, 31), QPoint(124, 104)));
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "the second click went to the same angle";
    Click(mgr, 3, { 120, 30 });
    EXPECT_EQ(angle->m_arCoord, (std::vector<QPoint> { { 20, 100 }, { 120, 100 }, { 120, 30 } }));
    EXPECT_FALSE(angle->m_bDown);
    Click(mgr, 3, { 200, 200 });
    EXPECT_EQ(mgr.m_arShape.size(), 3u) << "a complete angle takes no more clicks";
    EXPECT_EQ(angle->CoordCount(), 3);
}

TEST_F(ThreeClickFixture, TheArcRunsCounterClockwiseFromTheFirstArmToTheSecond)
{
    mgr.m_nPrecision = 0;
    Clicks(mgr, 3, { { 160, 100 }, { 100, 100 }, { 100, 40 } });
    const Quarters q = RingPixels(DrawBits(mgr), { 100, 100 });
    EXPECT_GT(q.upperRight, 20);
    EXPECT_EQ(q.upperLeft + q.lowerLeft + q.lowerRight, 0);
    mgr.m_nPrecision = 1;
    EXPECT_EQ(Last<CGVLAngle>()->LabelText(), "A=270.0 deg");

    Clicks(mgr, 3, { { 100, 40 }, { 100, 100 }, { 160, 100 } }); // the other order: three quarters
    const Quarters swapped = RingPixels(DrawBits(mgr), { 100, 100 });
    EXPECT_GT(swapped.upperLeft, 20);
    EXPECT_GT(swapped.lowerLeft, 20);
    EXPECT_GT(swapped.lowerRight, 20);
}

TEST(GdiArc, AWideEllipseIsCutWhereTheRaysMeetIt)
{
    QImage image(100, 60, QImage::Format_BGR888);
    image.fill(kKeyBits);
    {
        QPainter dc(&image);
        Gdi::ResetDC(dc);
        // Centre (50, 30), radii 40 and 20: the ray through the box's corner
        // meets the ellipse 45 degrees along it, near (77, 16), not at the
        // corner's own 26.6 degrees, near (85, 21).
        Gdi::Arc(dc, { kRed, 1, Gdi::PenStyle::Solid }, { 10, 10, 90, 50 }, { 90, 10 }, { 50, 0 });
    }
    QRect lit;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 100; ++x)
            if (image.pixelColor(x, y) != kKeyBits)
                lit |= QRect(x, y, 1, 1);
    EXPECT_NEAR(lit.left(), 50, 1);
    EXPECT_NEAR(lit.right(), 77, 2);
    EXPECT_NEAR(lit.bottom(), 16, 1);
    EXPECT_EQ(lit.top(), 10);
}

TEST_F(ThreeClickFixture, CircleThroughThreePointsHasAnIntegerCentreAndRadius)
{
    auto fit = [&](QPoint a, QPoint b, QPoint c) {
        Clicks(mgr, 7, { a, b, c });
        return Last<CGVLCircleT>()->FitCircle();
    };
    using Circle = CGVLCircleT::Circle;
    EXPECT_EQ(fit({ 100, 100 }, { 110, 100 }, { 100, 110 }), (Circle { { 105, 105 }, 7 }));
    CGVLCircleT* circle = Last<CGVLCircleT>();
    mgr.m_unit = { 1, 0.2, 0.4, 0, 0 };
    EXPECT_NEAR(circle->GetRadius(), 7 * 0.3, 1e-12);
    EXPECT_NEAR(circle->GetArea(), 7 * 3.14159 * 0.2 * 7 * 0.4, 1e-12);
    mgr.m_nPrecision = 3;
    EXPECT_EQ(circle->AreaText(), "S=12.315mm2");
    EXPECT_EQ(circle->RadiusText(), "R=2.100mm");
    // One vertical chord passes the collinearity test; the centre's x is rounded.
    EXPECT_EQ(fit({ 100, 100 }, { 100, 120 }, { 120, 110 }), (Circle { { 108, 110 }, 12 }));
    EXPECT_EQ(fit({ 50, 10 }, { 50, 40 }, { 50, 90 }), Circle {}) << "one x";
    EXPECT_EQ(fit({ 0, 0 }, { 10, 10 }, { 30, 30 }), Circle {}) << "one slope";
    EXPECT_EQ(fit({ 100, 100 }, { 100, 100 }, { 150, 100 }), Circle {}) << "two equal points";
    EXPECT_EQ(Last<CGVLCircleT>()->GetArea(), 0.0);
    EXPECT_EQ(fit({ 0, 0 }, { 500, 1 }, { 1000, 0 }).radius, 124999) << "nearly straight";
}

TEST_F(ThreeClickFixture, TriCircleShowsItsPointsWhilePlacedThenTheCircle)
{
    mgr.m_nPrecision = 0;
    Click(mgr, 7, { 100, 100 });
    mgr.OnMouseMove(0, { 200, 150 }, 7);
    mgr.OnMouseMove(0, { 200, 150 }, 3);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(95, 95), QPoint(104, 104)))
        << "a handle, no rubber band";
    Clicks(mgr, 7, { { 140, 100 }, { 100, 140 } });
    EXPECT_EQ(mgr.m_arShape.size(), 2u);
    const Bits bits = DrawBits(mgr); // centre (120, 120), radius 28
    EXPECT_EQ(bits.Extent(kKeyBits), QRect(QPoint(92, 92), QPoint(147, 147)));
    EXPECT_EQ(bits.At(92, 120), kRed);
}

TEST_F(ThreeClickFixture, MoveToolDragsHandlesAndEndsAHalfPlacedShape)
{
    Clicks(mgr, 3, { { 150, 100 }, { 100, 100 }, { 100, 50 } });
    CGVLAngle* angle = Last<CGVLAngle>();
    Drag(mgr, 9, { 101, 52 }, { { 50, 100 } }); // second arm's end, turned to the left
    EXPECT_EQ(angle->m_arCoord[2], QPoint(50, 100));
    EXPECT_DOUBLE_EQ(angle->GetAngle(), 180.0);

    Click(mgr, 7, { 10, 10 });
    CGVLCircleT* half = Last<CGVLCircleT>();
    mgr.OnMouseMove(0, { 12, 12 }, 9); // passing over it with the move tool
    EXPECT_EQ(half->m_arCoord, std::vector<QPoint> { QPoint(10, 10) });
    Click(mgr, 9, { 300, 200 });
    Clicks(mgr, 7, { { 100, 100 }, { 110, 100 }, { 100, 110 } });
    EXPECT_EQ(half->CoordCount(), 1) << "the clicks went to the new circle only";
    EXPECT_EQ(Last<CGVLCircleT>()->CoordCount(), 3);

    Click(mgr, 200, { 10, 10 });
    Click(mgr, 200, { 150, 100 });
    EXPECT_EQ(mgr.m_arShape.size(), 2u);
    EXPECT_EQ(mgr.m_arShape[1]->GetType(), 7);
}
