#include "MeasureTestSupport.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLPolygon.h"
#include "measure/CGVLRect.h"

using namespace MeasureTest;

using AreaShapeTest = MeasureFixture;
using Points = std::vector<QPoint>;

TEST_F(AreaShapeTest, CircleFollowsTheDragFromItsCentreAndNeedsARadiusOfSix)
{
    Drag(mgr, 6, { 100, 100 }, { { 101, 100 }, { 104, 104 } });
    EXPECT_EQ(mgr.m_arShape.size(), 1u) << "radius 5.66 reads 5";
    Drag(mgr, 6, { 10, 200 }, { { 11, 200 }, { 16, 200 } });
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "radius 6";
    Drag(mgr, 6, { 100, 100 }, { { 101, 100 }, { 130, 140 } });
    CGVLCircle* circle = Last<CGVLCircle>(mgr);
    EXPECT_EQ(circle->m_arCoord, (Points { { 100, 100 }, { 130, 140 } }));
    EXPECT_FALSE(circle->m_bDown || circle->m_bSelected);
    mgr.SetUnit({ 0, 0.1, 0.3, 0, 0 });
    EXPECT_DOUBLE_EQ(circle->GetRadius(), 50 * 0.2);
    EXPECT_DOUBLE_EQ(circle->GetPerimeter(), 50 * 6.28318 * 0.1) << "the x scale alone";
    EXPECT_DOUBLE_EQ(circle->GetArea(), 50 * 3.14159 * 50 * 0.1 * 0.3);

    EditAppearance(mgr, [](auto& a) { a.precision = 0; });
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(4, 50), QPoint(149, 205)));
    EditAppearance(mgr, [](auto& a) {
        a.precision = 1;
        a.fontBackground = 2;
    });
    const Bits bits = DrawBits(mgr);
    EXPECT_EQ(bits.At(100, 80), kGray) << "area label";
    EXPECT_EQ(bits.At(100, 52), kGray) << "radius label";
    EXPECT_EQ(bits.At(99, 80), kKeyBits);
    mgr.SetUnit({ 1, 0.2, 0.2, 0, 0 });
    circle->m_arCoord[1] = { 103, 104 };
    EXPECT_EQ(circle->RadiusText(), "R=1.0mm");
    EXPECT_EQ(circle->AreaText(), "S=3.1mm2");
}

TEST_F(AreaShapeTest, RectangleNeedsTenPixelsOnOneSideAndKeepsItsAxesWhenACornerIsDragged)
{
    Click(mgr, 4, { 50, 50 });
    Drag(mgr, 4, { 50, 50 }, { { 51, 51 }, { 59, 59 } });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
    Drag(mgr, 4, { 50, 50 }, { { 51, 51 }, { 59, 100 } });
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "9 by 50";
    Drag(mgr, 4, { 50, 50 }, { { 51, 51 }, { 150, 120 } });
    CGVLRect* rect = Last<CGVLRect>(mgr);
    EXPECT_EQ(rect->m_arCoord, (Points { { 50, 50 }, { 150, 50 }, { 50, 120 }, { 150, 120 } }));
    mgr.SetUnit({ 0, 0.1, 0.2, 0, 0 });
    EXPECT_DOUBLE_EQ(rect->GetPerimeter(), 2 * (100 * 0.1 + 70 * 0.2));
    EditAppearance(mgr, [](auto& a) { a.precision = 3; });
    EXPECT_EQ(rect->AreaText(), "S=140.000um2");

    // Corner drags keep the opposite corner and the axes.
    auto drag = [&](QPoint from, QPoint to) {
        Drag(mgr, 9, from, { to });
        return rect->m_arCoord;
    };
    EXPECT_EQ(
        drag({ 150, 120 }, { 200, 200 }), (Points { { 50, 50 }, { 200, 50 }, { 50, 200 }, { 200, 200 } }));
    EXPECT_EQ(
        drag({ 200, 50 }, { 180, 30 }), (Points { { 50, 30 }, { 180, 30 }, { 50, 200 }, { 180, 200 } }));
    EXPECT_EQ(
        drag({ 50, 200 }, { 70, 220 }), (Points { { 70, 30 }, { 180, 30 }, { 70, 220 }, { 180, 220 } }));
    EXPECT_EQ(
        drag({ 70, 30 }, { 250, 260 }), (Points { { 250, 260 }, { 180, 260 }, { 250, 220 }, { 180, 220 } }))
        << "point 0 past the opposite corner";
}

TEST_F(AreaShapeTest, RectangleIsDottedWhileSelectedAndItsLabelRisesWithTheFont)
{
    EditAppearance(mgr, [](auto& a) { a.precision = 0; });
    mgr.OnLButtonDown(1, { 50, 50 }, 4);
    mgr.OnMouseMove(1, { 51, 51 }, 4);
    mgr.OnMouseMove(1, { 150, 120 }, 4);
    const Bits selected = DrawBits(mgr);
    EXPECT_EQ(selected.At(52, 50), kRed);
    EXPECT_EQ(selected.At(60, 50), kKeyBits) << "dotted";
    EXPECT_EQ(selected.At(45, 50), kGreen) << "handle";
    mgr.OnLButtonUp(0, { 150, 120 }, 4);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(50, 50), QPoint(150, 120)));
    EditAppearance(mgr, [](auto& a) {
        a.precision = 1;
        a.fontBackground = 2;
    });
    // A size outside the list rises by its stored value, in Small letters.
    for (QPoint& p : Last<CGVLRect>(mgr)->m_arCoord)
        p += QPoint(0, 100);
    for (const auto& [size, rise] : { std::pair { 1, 20 }, { 2, 30 }, { 3, 40 }, { 7, 80 } }) {
        EditAppearance(mgr, [&](auto& a) { a.fontSize = size; });
        const Bits bits = DrawBits(mgr);
        EXPECT_EQ(bits.At(50, 150 - rise), kGray) << size;
        EXPECT_EQ(bits.At(50, 150 - rise - 1), kKeyBits) << size;
    }
    const Bits small = DrawBits(mgr);
    EXPECT_TRUE(small.At(50, 70 + 19) == kGray && small.At(50, 70 + 20) == kKeyBits) << "the Small cell";
}

TEST_F(AreaShapeTest, PolygonAreaByTheShoelaceWhicheverWayItWasDrawnAndALabelOnceClosed)
{
    mgr.SetUnit({ 1, 1.0, 1.0, 0, 0 });
    for (const Points& triangle : { Points { { 100, 100 }, { 110, 100 }, { 100, 110 } },
             Points { { 100, 110 }, { 110, 100 }, { 100, 100 } } }) {
        Clicks(mgr, 5, triangle);
        RightClick(mgr, 5, { 300, 300 });
        EXPECT_EQ(Last<CGVLPolygon>(mgr)->m_arCoord, triangle);
        EXPECT_DOUBLE_EQ(Last<CGVLPolygon>(mgr)->GetArea(), 50.0);
    }
    Clicks(mgr, 5, { { 10, 10 }, { 60, 10 }, { 60, 40 }, { 10, 40 }, { 35, 20 } }); // notched
    RightClick(mgr, 5, { 0, 0 });
    mgr.SetUnit({ 1, 0.5, 0.2, 0, 0 });
    EXPECT_DOUBLE_EQ(Last<CGVLPolygon>(mgr)->GetArea(), (1500 - 375) * 0.1);
    Clicks(mgr, 5, { { 10, 10 }, { 60, 10 } });
    RightClick(mgr, 5, { 0, 0 });
    EXPECT_EQ(mgr.m_arShape.size(), 4u) << "two vertices are dropped";

    // Open, it draws a rubber band and no label.
    mgr.DeleteAll();
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    Clicks(mgr, 5, { { 50, 100 }, { 150, 100 }, { 150, 150 } });
    mgr.OnMouseMove(0, { 50, 200 }, 5);
    const Bits open = DrawBits(mgr);
    EXPECT_EQ(open.Extent(kKeyBits), QRect(QPoint(50, 100), QPoint(150, 199)));
    EXPECT_EQ(open.At(100, 175), kRed) << "band from the last vertex";
    RightClick(mgr, 5, { 50, 200 });
    const Bits closed = DrawBits(mgr);
    EXPECT_EQ(closed.At(100, 175), kKeyBits);
    EXPECT_EQ(closed.At(100, 125), kRed) << "closing edge";
    EXPECT_EQ(closed.At(50, 70), kGray) << "label";
}

TEST_F(AreaShapeTest, OnlyTheLastOpenPolygonTakesVertices)
{
    Clicks(mgr, 5, { { 10, 10 }, { 60, 10 } });
    CGVLPolygon* first = Last<CGVLPolygon>(mgr);
    Click(mgr, 9, { 200, 200 });
    mgr.OnMouseMove(0, { 61, 11 }, 9);
    Click(mgr, 5, { 60, 40 });
    EXPECT_EQ(first->m_arCoord, (Points { { 10, 10 }, { 60, 10 }, { 60, 40 } }))
        << "the move tool changes nothing";
    Drag(mgr, 2, { 100, 100 }, { { 101, 101 }, { 150, 150 } });
    Clicks(mgr, 5, { { 200, 10 }, { 250, 10 }, { 250, 50 } });
    EXPECT_EQ(mgr.m_arShape.size(), 4u) << "a new polygon after another element";
    EXPECT_EQ(first->CoordCount(), 3);
    RightClick(mgr, 5, { 0, 0 });
    EXPECT_TRUE(first->IsClosed() && Last<CGVLPolygon>(mgr)->IsClosed());
    Drag(mgr, 9, { 61, 41 }, { { 80, 60 } }); // a vertex of a closed polygon
    EXPECT_EQ(first->m_arCoord[2], QPoint(80, 60));
    Click(mgr, 5, { 300, 300 });
    EXPECT_EQ(mgr.m_arShape.size(), 5u) << "a closed polygon starts a new one";
    RightClick(mgr, 5, { 0, 0 }); // and drops it again

    Clicks(mgr, 5, { { 100, 100 }, { 200, 100 }, { 200, 200 } });
    EXPECT_EQ(Last<CGVLPolygon>(mgr)->HitVertex({ 100, 100 }), -1) << "vertex hits need four vertices";
    Click(mgr, 5, { 100, 200 });
    EXPECT_EQ(Last<CGVLPolygon>(mgr)->HitVertex({ 110, 90 }), 1);
    EXPECT_EQ(Last<CGVLPolygon>(mgr)->HitVertex({ 111, 100 }), -1);
}
