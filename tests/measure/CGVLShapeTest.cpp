#include "measure/CGVLShape.h"

#include "MeasureTestSupport.h"
#include "measure/CGVLAnoArrow.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLLine.h"
#include "platform/TickCount.h"

#include <gtest/gtest.h>
#include <stdexcept>

using namespace MeasureTest;

namespace {

struct ShapeFixture : ::testing::Test
{
    CGVLElemMgr mgr;
    CGVLShape shape { &mgr.m_unit, &mgr.m_color, nullptr, &mgr };
};

} // namespace

TEST_F(ShapeFixture, ConstructionStateAndIdentity)
{
    const std::uint32_t before = GetTickCount();
    const CGVLShape fresh(&mgr.m_unit, &mgr.m_color, nullptr, &mgr);
    const std::uint32_t after = GetTickCount();
    EXPECT_EQ(fresh.GetType(), 0);
    EXPECT_EQ(fresh.m_nHit, -1);
    EXPECT_FALSE(fresh.m_bDown);
    EXPECT_FALSE(fresh.m_bSelected);
    EXPECT_EQ(fresh.m_ptRef, QPoint(0, 0));
    EXPECT_EQ(fresh.m_ptDragFrom, QPoint(0, 0));
    // The id is the tick count at construction.
    EXPECT_LE(fresh.GetId() - before, after - before);
    EXPECT_EQ(shape.GetLength(), 0.0);
    EXPECT_EQ(shape.GetArea(), 0.0);
    EXPECT_EQ(shape.GetPerimeter(), 0.0);
}

TEST_F(ShapeFixture, CoordinateAccessKeepsTheArrayBoundsRules)
{
    EXPECT_EQ(shape.AddOneCoord({ 1, 2 }), 1);
    EXPECT_EQ(shape.AddOneCoord({ 3, 4 }), 2);
    ASSERT_NE(shape.GetCoord(1), nullptr);
    EXPECT_EQ(*shape.GetCoord(1), QPoint(3, 4));
    // The pointer is to the stored point itself.
    shape.GetCoord(0)->setX(9);
    EXPECT_EQ(shape.m_arCoord[0], QPoint(9, 2));
    EXPECT_EQ(shape.GetCoord(2), nullptr);
    EXPECT_EQ(shape.GetCoord(100), nullptr);
    EXPECT_THROW(shape.GetCoord(-1), std::out_of_range);

    EXPECT_EQ(shape.SetCoord(1, { 7, 8 }), 1);
    EXPECT_EQ(shape.m_arCoord[1], QPoint(7, 8));
    EXPECT_EQ(shape.SetCoord(-1, { 0, 0 }), -1);
    EXPECT_EQ(shape.SetCoord(3, { 0, 0 }), -1);
    // The count itself passes the check and fails in the array.
    EXPECT_THROW(shape.SetCoord(2, { 0, 0 }), std::out_of_range);
    EXPECT_EQ(shape.CoordCount(), 2);
}

TEST_F(ShapeFixture, HandleBoxReachesSixBeforeAndSixAfterThePoint)
{
    shape.AddOneCoord({ 100, 100 });
    shape.AddOneCoord({ 104, 100 });
    EXPECT_EQ(shape.HitHandle({ 94, 94 }), 0);
    EXPECT_EQ(shape.HitHandle({ 93, 100 }), -1);
    EXPECT_EQ(shape.HitHandle({ 100, 93 }), -1);
    EXPECT_EQ(shape.HitHandle({ 100, 106 }), 0);
    EXPECT_EQ(shape.HitHandle({ 100, 107 }), -1);
    // Both boxes hold (102, 100): the first point wins.
    EXPECT_EQ(shape.HitHandle({ 102, 100 }), 0);
    EXPECT_EQ(shape.HitHandle({ 110, 100 }), 1);
    EXPECT_EQ(shape.HitHandle({ 111, 100 }), -1);
    // The base has no body, so its hit test is the handle test.
    EXPECT_EQ(shape.HitTest({ 110, 100 }), 1);
}

TEST_F(ShapeFixture, BodyHitWinsOverHandles)
{
    CGVLLine line(&mgr.m_unit, &mgr.m_color, nullptr, &mgr);
    line.AddOneCoord({ 10, 10 });
    line.AddOneCoord({ 50, 40 });
    EXPECT_EQ(line.HitTest({ 10, 10 }), CGVLShape::kHitBody); // on the body and in handle 0
    EXPECT_EQ(line.HitTest({ 50, 40 }), 1); // right/bottom edge is outside the body
    EXPECT_EQ(line.HitTest({ 30, 20 }), CGVLShape::kHitBody);
    EXPECT_EQ(line.HitTest({ 58, 40 }), -1);
}

TEST_F(ShapeFixture, DragByMovesOnlyAWholeShapeDrag)
{
    shape.AddOneCoord({ 10, 10 });
    shape.AddOneCoord({ 20, 30 });
    shape.m_ptDragFrom = { 15, 15 };
    shape.m_nHit = 1;
    EXPECT_EQ(shape.DragBy({ 25, 5 }), 1);
    EXPECT_EQ(shape.m_arCoord[0], QPoint(10, 10));
    shape.m_nHit = CGVLShape::kHitBody;
    EXPECT_EQ(shape.DragBy({ 25, 5 }), CGVLShape::kHitBody);
    EXPECT_EQ(shape.m_arCoord[0], QPoint(20, 0));
    EXPECT_EQ(shape.m_arCoord[1], QPoint(30, 20));
    EXPECT_EQ(shape.m_ptDragFrom, QPoint(25, 5));
}

TEST_F(ShapeFixture, UnitAndColourWriteThroughToTheSharedRecords)
{
    CGVLLine line(&mgr.m_unit, &mgr.m_color, nullptr, &mgr);
    line.AddOneCoord({ 0, 0 });
    line.AddOneCoord({ 100, 0 });
    EXPECT_DOUBLE_EQ(line.GetLength(), 20.0);
    shape.SetUnit({ 2, 0.5, 0.5, 1.0, 1.0 });
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 2, 0.5, 0.5, 1.0, 1.0 }));
    EXPECT_DOUBLE_EQ(line.GetLength(), 50.0) << "every element measures with the new record at once";
    shape.SetColor({ 7, 6, 5, 4 });
    EXPECT_EQ(mgr.m_color, (ColorRecord { 7, 6, 5, 4 }));
}

TEST_F(ShapeFixture, ReferencePoint)
{
    EXPECT_TRUE(shape.IsRefPoint({ 0, 0 }));
    shape.SetRefPoint({ -30, 12 });
    EXPECT_TRUE(shape.IsRefPoint({ -30, 12 }));
    EXPECT_FALSE(shape.IsRefPoint({ -30, 11 }));
}

TEST_F(ShapeFixture, ArrowHeadPointsAtTheSecondPoint)
{
    mgr.m_color.m_ctRuler = 2;
    Canvas c(120, 100);
    shape.AddOneCoord({ 0, 0 }); // handles need a point; the arrow does not
    shape.DrawArrow(c.painter, 1, false, { 10, 50 }, { 60, 50 });
    shape.DrawArrow(c.painter, 1, true, { 100, 80 }, { 70, 80 });
    const QImage& image = c.Done();
    const QColor red(255, 0, 0);
    // Barbs end at to - (15, -7) and to - (15, 7) for a head pointing right...
    EXPECT_EQ(image.pixelColor(46, 56), red);
    EXPECT_EQ(image.pixelColor(46, 44), red);
    EXPECT_NE(image.pixelColor(74, 56), red);
    // ... and at to + (15, +-7) for one pointing left; hidden does not hide it.
    EXPECT_EQ(image.pixelColor(84, 86), red);
    EXPECT_EQ(image.pixelColor(84, 74), red);
    EXPECT_NE(image.pixelColor(56, 86), red);
    // A three-pixel stroke.
    EXPECT_EQ(image.pixelColor(30, 49), red);
    EXPECT_EQ(image.pixelColor(30, 51), red);
    EXPECT_NE(image.pixelColor(30, 53), red);
}

TEST_F(ShapeFixture, HelpersDrawNothingWhenHidden)
{
    Canvas c(60, 60);
    shape.AddOneCoord({ 30, 30 });
    shape.DrawLine(c.painter, 1, false, { 0, 0 }, { 50, 50 });
    shape.DrawEllipse(c.painter, 1, false, { 5, 5, 40, 40 });
    shape.DrawArc(c.painter, 1, false, { 5, 5, 40, 40 }, { 40, 20 }, { 20, 0 });
    shape.DrawHandle(c.painter, 1, { 30, 30 });
    const QImage& image = c.Done();
    QImage blank(60, 60, QImage::Format_BGR888);
    blank.fill(QColor(1, 1, 1));
    EXPECT_EQ(image, blank);
}

TEST_F(ShapeFixture, HandleIsACircleOfRadiusFiveInTheAdjustColour)
{
    mgr.m_color.m_ctAdjust = 6;
    Canvas c(40, 40);
    shape.DrawHandle(c.painter, 0, { 20, 20 }); // no points: nothing
    shape.AddOneCoord({ 20, 20 });
    shape.DrawHandle(c.painter, 0, { 20, 20 });
    const QImage& image = c.Done();
    QRect box;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 40; ++x)
            if (image.pixelColor(x, y) != QColor(1, 1, 1)) {
                EXPECT_EQ(image.pixelColor(x, y), QColor(255, 0, 255));
                box |= QRect(x, y, 1, 1);
            }
    EXPECT_EQ(box, QRect(QPoint(15, 15), QPoint(24, 24)));
}
