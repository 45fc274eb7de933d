#include "MeasureTestSupport.h"
#include "measure/CGVLLine.h"

#include <QImage>
#include <QPainter>

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

TEST_F(ShapeFixture, CoordinateAccessKeepsTheArrayBoundsRules)
{
    EXPECT_EQ(shape.AddOneCoord({ 1, 2 }), 1);
    EXPECT_EQ(shape.AddOneCoord({ 3, 4 }), 2);
    shape.GetCoord(0)->setX(9); // the stored point itself
    EXPECT_EQ(shape.m_arCoord[0], QPoint(9, 2));
    EXPECT_EQ(shape.GetCoord(2), nullptr);
    EXPECT_THROW(shape.GetCoord(-1), std::out_of_range);
    EXPECT_EQ(shape.SetCoord(1, { 7, 8 }), 1);
    EXPECT_EQ(shape.m_arCoord[1], QPoint(7, 8));
    EXPECT_EQ(shape.SetCoord(-1, {}), -1);
    EXPECT_EQ(shape.SetCoord(3, {}), -1);
    EXPECT_THROW(shape.SetCoord(2, {}), std::out_of_range) << "the count passes the check, then fails";
}

TEST_F(ShapeFixture, HandleBoxesAndBodyPrecedence)
{
    shape.AddOneCoord({ 100, 100 });
    shape.AddOneCoord({ 104, 100 });
    EXPECT_EQ(shape.HitTest({ 94, 94 }), 0);
    EXPECT_EQ(shape.HitTest({ 93, 100 }), -1);
    EXPECT_EQ(shape.HitTest({ 100, 107 }), -1) << "7 below is outside";
    EXPECT_EQ(shape.HitTest({ 102, 100 }), 0) << "the first box that holds it wins";
    EXPECT_EQ(shape.HitTest({ 110, 100 }), 1);

    CGVLShape* line = AddLine(mgr, { 10, 10 }, { 50, 40 });
    EXPECT_EQ(line->HitTest({ 10, 10 }), CGVLShape::kHitBody) << "body before handle";
    EXPECT_EQ(line->HitTest({ 50, 40 }), 1);
    EXPECT_EQ(line->HitTest({ 58, 40 }), -1);
}

TEST_F(ShapeFixture, SetUnitWritesThroughToEveryElement)
{
    CGVLShape* line = AddLine(mgr, { 0, 0 }, { 100, 0 });
    EXPECT_DOUBLE_EQ(line->GetLength(), 20.0);
    shape.SetUnit({ 2, 0.5, 0.5, 1.0, 1.0 });
    EXPECT_EQ(mgr.m_unit, (CalibrationRecord { 2, 0.5, 0.5, 1.0, 1.0 }));
    EXPECT_DOUBLE_EQ(line->GetLength(), 50.0);
    shape.SetColor({ 7, 6, 5, 4 });
    EXPECT_EQ(mgr.m_color, (ColorRecord { 7, 6, 5, 4 }));
}

TEST_F(ShapeFixture, ArrowHeadBarbsAtTheSecondPoint)
{
    EditAppearance(mgr, [](auto& a) { a.color.m_ctRuler = 2; });
    QImage image(120, 100, QImage::Format_BGR888);
    image.fill(kKeyBits);
    {
        QPainter dc(&image);
        Gdi::ResetDC(dc);
        shape.DrawArrow(dc, 1, false, { 10, 50 }, { 60, 50 }); // hidden does not hide it
        shape.DrawArrow(dc, 0, true, { 100, 80 }, { 70, 80 });
    }
    // Barbs end at to - (15, +-7) pointing right, to + (15, +-7) pointing left.
    for (const QPoint p : { QPoint(46, 56), QPoint(46, 44), QPoint(84, 86), QPoint(84, 74), QPoint(30, 51) })
        EXPECT_EQ(image.pixelColor(p), kRed) << p.x() << "," << p.y();
    for (const QPoint p : { QPoint(74, 56), QPoint(56, 86), QPoint(30, 53) })
        EXPECT_EQ(image.pixelColor(p), kKeyBits) << p.x() << "," << p.y();
}
