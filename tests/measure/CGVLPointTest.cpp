#include "measure/CGVLPoint.h"

#include "MeasureTestSupport.h"

#include <gtest/gtest.h>

using namespace MeasureTest;

TEST(CGVLPoint, PlacedDraggedAndDeletedWithinItsHandleBox)
{
    CGVLElemMgr mgr;
    Add(mgr, 9, { 300, 230 }); // element 0 is the ruler's place
    mgr.m_unit = { 1, 0.37, 0.11, 1.0, 1.0 };
    Drag(mgr, 1, { 5, 7 }, { { 6, 7 }, { 100, 100 } });
    Click(mgr, 1, { 200, 100 });
    auto* point = dynamic_cast<CGVLPoint*>(mgr.m_arShape.at(1).get());
    EXPECT_EQ(point->m_arCoord, std::vector<QPoint> { QPoint(100, 100) }) << "follows while down";
    EXPECT_EQ(point->LabelText(), "(100, 100)") << "raw pixels, never calibrated";
    Drag(mgr, 9, { 107, 100 }, { { 150, 150 } });
    EXPECT_EQ(point->m_arCoord[0], QPoint(100, 100));
    Drag(mgr, 9, { 106, 94 }, { { 150, 150 } });
    EXPECT_EQ(point->m_arCoord[0], QPoint(150, 150));
    Click(mgr, 200, { 180, 100 });
    EXPECT_EQ(mgr.m_arShape.size(), 3u);
    Click(mgr, 200, { 196, 104 });
    EXPECT_EQ(mgr.m_arShape.size(), 2u);
}

TEST(CGVLPoint, MarkIsARingWithTwoCrossesAndALabelAbove)
{
    CGVLElemMgr mgr;
    Add(mgr, 9, { 300, 230 });
    mgr.m_color = { 2, 4, 3, 1 }; // coord red, adjust green
    Click(mgr, 1, { 100, 100 });
    Bits bits = DrawBits(mgr);
    for (const QPoint p : { QPoint(100, 100), QPoint(102, 100), QPoint(100, 98) })
        EXPECT_EQ(bits.At(p.x(), p.y()), kRed);
    for (const QPoint p : { QPoint(103, 100), QPoint(94, 100), QPoint(106, 100), QPoint(100, 106) })
        EXPECT_EQ(bits.At(p.x(), p.y()), kGreen);
    for (const QPoint p : { QPoint(107, 100), QPoint(100, 107), QPoint(97, 97) })
        EXPECT_EQ(bits.At(p.x(), p.y()), kKeyBits);
    mgr.m_nFontBackground = 2;
    bits = DrawBits(mgr);
    EXPECT_EQ(bits.At(100, 80), kGray);
    EXPECT_EQ(bits.At(99, 80), kKeyBits);
    EXPECT_EQ(bits.At(100, 79), kKeyBits);
}
