#include "measure/CGVLLine.h"

#include "MeasureTestSupport.h"
#include "measure/CGVLAnoArrow.h"
#include "measure/CGVLElemMgr.h"

#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

struct LineFixture : ::testing::Test
{
    LineFixture() { AddRuler(mgr); }

    CGVLLine* LineAt(std::size_t index) { return dynamic_cast<CGVLLine*>(mgr.m_arShape.at(index).get()); }

    // A line with the given end points, made by hand (point 0 first).
    CGVLLine* MakeLine(QPoint p0, QPoint p1)
    {
        auto* line = dynamic_cast<CGVLLine*>(mgr.CreateShape(2));
        line->AddOneCoord(p0);
        line->AddOneCoord(p1);
        return line;
    }

    CGVLElemMgr mgr;
};

} // namespace

TEST_F(LineFixture, DragMakesALineFromTheReleasePointToTheDragStart)
{
    mgr.OnLButtonDown(1, { 100, 100 }, 2);
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    CGVLLine* line = LineAt(1);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(mgr.m_bMouseDown, 1);
    EXPECT_TRUE(line->m_bDown);
    EXPECT_TRUE(line->m_bSelected);

    mgr.OnMouseMove(1, { 103, 101 }, 2);
    ASSERT_EQ(line->CoordCount(), 2);
    EXPECT_EQ(line->m_arCoord[0], QPoint(103, 101));
    EXPECT_EQ(line->m_arCoord[1], QPoint(103, 101));
    mgr.OnMouseMove(1, { 150, 120 }, 2);
    mgr.OnMouseMove(1, { 200, 180 }, 2);
    EXPECT_TRUE(line->m_bSelected);
    mgr.OnLButtonUp(0, { 200, 180 }, 2);

    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    EXPECT_EQ(line->m_arCoord[0], QPoint(200, 180)) << "point 0 followed the mouse";
    EXPECT_EQ(line->m_arCoord[1], QPoint(103, 101)) << "point 1 stayed at the first move";
    EXPECT_FALSE(line->m_bDown);
    EXPECT_FALSE(line->m_bSelected);
    EXPECT_EQ(line->m_nHit, -1);
    EXPECT_EQ(mgr.m_bMouseDown, 0);
    EXPECT_EQ(line->GetType(), 2);
}

TEST_F(LineFixture, TooShortLinesAndArrowsAreDropped)
{
    Click(mgr, 2, { 50, 50 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u) << "a click makes no line";
    Drag(mgr, 2, { 50, 50 }, { { 51, 50 }, { 55, 54 } });
    EXPECT_EQ(mgr.m_arShape.size(), 1u) << "4 pixels both ways is too short";
    Drag(mgr, 2, { 50, 50 }, { { 51, 50 }, { 52, 80 } });
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "one long side is enough";
    Drag(mgr, 2, { 50, 50 }, { { 51, 50 }, { 59, 50 } });
    EXPECT_EQ(mgr.m_arShape.size(), 3u) << "an 8-pixel line is kept";

    Click(mgr, 203, { 50, 50 });
    Drag(mgr, 203, { 50, 50 }, { { 51, 50 }, { 59, 50 } });
    EXPECT_EQ(mgr.m_arShape.size(), 3u) << "an 8-pixel arrow is dropped";
    Drag(mgr, 203, { 50, 50 }, { { 51, 50 }, { 61, 50 } });
    ASSERT_EQ(mgr.m_arShape.size(), 4u);
    EXPECT_EQ(mgr.m_arShape[3]->GetType(), 12);
    EXPECT_EQ(mgr.m_arShape[3]->m_arCoord[1], QPoint(51, 50)) << "the head is where the drag began";
}

TEST_F(LineFixture, LengthKeepsTheXAndYScalesApart)
{
    mgr.m_unit = CalibrationRecord {}; // a fresh installation: mm, 0.2 per pixel
    mgr.m_nPrecision = 1;
    Drag(mgr, 2, { 0, 10 }, { { 1, 10 }, { 100, 10 } });
    ASSERT_EQ(mgr.m_arShape.size(), 2u);
    CGVLLine* line = LineAt(1);
    EXPECT_EQ(line->LabelText(), "L=19.8mm");
    line->m_arCoord = { { 0, 10 }, { 100, 10 } };
    EXPECT_EQ(line->LabelText(), "L=20.0mm");

    mgr.m_unit.m_dcxPerPixel = 0.1;
    line->m_arCoord = { { 5, 0 }, { 5, 100 } };
    EXPECT_DOUBLE_EQ(line->GetLength(), 20.0);
    mgr.m_unit.m_dcyPerPixel = 0.1;
    line->m_arCoord = { { 0, 0 }, { 30, 40 } };
    EXPECT_DOUBLE_EQ(line->GetLength(), 5.0);

    mgr.m_unit.m_rtUnit = 0;
    mgr.m_nPrecision = 3;
    EXPECT_EQ(line->LabelText(), "L=5.000um") << "the unit is a label only";
    mgr.m_nPrecision = 6;
    EXPECT_EQ(line->LabelText(), "");
}

TEST_F(LineFixture, LabelSitsBesideTheMiddleByTheSlope)
{
    EXPECT_EQ(MakeLine({ 0, 0 }, { 100, 100 })->LabelPos(), QPoint(60, 30));
    EXPECT_EQ(MakeLine({ 0, 100 }, { 100, 0 })->LabelPos(), QPoint(60, 60));
    EXPECT_EQ(MakeLine({ 40, 0 }, { 40, 101 })->LabelPos(), QPoint(50, 30));
    EXPECT_EQ(MakeLine({ 0, 40 }, { 101, 40 })->LabelPos(), QPoint(50, 20));
    EXPECT_EQ(MakeLine({ 0, 100 }, { 100, 95 })->LabelPos(), QPoint(60, 77)) << "slope -0.05 stays above";
    EXPECT_EQ(MakeLine({ 0, 100 }, { 100, 90 })->LabelPos(), QPoint(60, 105)) << "slope -0.1 goes below";
}

TEST_F(LineFixture, LabelCellFollowsFontSizeAndBackground)
{
    CGVLLine* line = MakeLine({ 20, 100 }, { 220, 100 });
    mgr.m_nFontBackground = 2;
    mgr.m_color.m_ctText = 7;
    for (const auto& [fontSize, height] : { std::pair { 1, 20 }, { 2, 28 }, { 3, 36 }, { 7, 20 } }) {
        mgr.m_nFontSize = fontSize;
        const Bits bits = DrawBits(mgr, 320, 200);
        // The gray cell starts at the label position; its height is the font's.
        const QPoint at = line->LabelPos();
        EXPECT_EQ(bits.At(at.x(), at.y()), kGray) << fontSize;
        EXPECT_EQ(bits.At(at.x(), at.y() + height - 1), kGray) << fontSize;
        EXPECT_NE(bits.At(at.x(), at.y() + height), kGray) << fontSize;
        EXPECT_EQ(bits.At(at.x() - 1, at.y()), kKeyBits) << fontSize;
        bool yellowText = false;
        for (int x = at.x(); x < at.x() + 60; ++x)
            for (int y = at.y(); y < at.y() + height; ++y)
                yellowText |= bits.At(x, y) == QColor(255, 255, 0);
        EXPECT_TRUE(yellowText) << fontSize;
    }
    // Transparent labels leave the key colour around the glyphs.
    mgr.m_nFontBackground = 1;
    const Bits bits = DrawBits(mgr, 320, 200);
    EXPECT_EQ(bits.At(line->LabelPos().x(), line->LabelPos().y()), kKeyBits);
}

TEST_F(LineFixture, WithoutAPrecisionTheLineIsDrawnButNotItsLabel)
{
    mgr.m_color.m_ctRuler = 2;
    MakeLine({ 20, 100 }, { 220, 100 });
    mgr.m_nPrecision = 0;
    const Bits bits = DrawBits(mgr, 320, 200);
    EXPECT_EQ(bits.Extent(kKeyBits), QRect(QPoint(20, 100), QPoint(219, 100)));
    EXPECT_EQ(bits.At(20, 100), QColor(255, 0, 0));
}

TEST_F(LineFixture, SelectedLineIsDottedWithEndBarsAndHandles)
{
    mgr.m_color = { 1, 2, 3, 1 };
    mgr.m_nPrecision = 0; // no label to get in the way
    mgr.OnLButtonDown(1, { 200, 100 }, 2);
    mgr.OnMouseMove(1, { 200, 100 }, 2);
    mgr.OnMouseMove(1, { 100, 100 }, 2); // still down: selected
    const Bits bits = DrawBits(mgr, 320, 200);
    const QColor red(255, 0, 0);
    const QColor green(0, 255, 0);
    // The line runs from point 0 (100, 100) towards (200, 100), dotted.
    EXPECT_EQ(bits.At(100, 100), red);
    EXPECT_EQ(bits.At(112, 100), red);
    EXPECT_EQ(bits.At(115, 100), kKeyBits);
    // End bars through both ends, 30 pixels each way (the far end left out),
    // dotted from y = 130 up.
    for (int x : { 100, 200 }) {
        EXPECT_EQ(bits.At(x, 131), kKeyBits) << x;
        EXPECT_EQ(bits.At(x, 130), red) << x;
        EXPECT_EQ(bits.At(x, 127), kKeyBits) << x;
        EXPECT_EQ(bits.At(x, 74), red) << x;
        EXPECT_EQ(bits.At(x, 70), kKeyBits) << x;
    }
    // Handles: circles of radius 5 in the adjust colour.
    EXPECT_EQ(bits.At(95, 100), green);
    EXPECT_EQ(bits.At(204, 100), green);

    mgr.OnLButtonUp(0, { 100, 100 }, 2);
    const Bits after = DrawBits(mgr, 320, 200);
    EXPECT_EQ(after.Extent(kKeyBits), QRect(QPoint(100, 100), QPoint(199, 100)))
        << "solid, no bars, no handles";
}

TEST_F(LineFixture, EndBarsArePerpendicular)
{
    mgr.m_nPrecision = 0;
    CGVLLine* line = MakeLine({ 100, 100 }, { 160, 160 });
    line->m_bSelected = true;
    const Bits bits = DrawBits(mgr, 320, 240);
    // Unit normal (0.707, 0.707) * 30 -> 21 pixels each way along (1, -1).
    EXPECT_NE(bits.At(79, 121), kKeyBits);
    EXPECT_NE(bits.At(139, 181), kKeyBits);
    EXPECT_NE(bits.At(177, 143), kKeyBits);
    EXPECT_EQ(bits.At(181, 139), kKeyBits) << "the far end is left out";
    EXPECT_EQ(bits.At(79, 79), kKeyBits);
}

TEST_F(LineFixture, MoveToolDragsTheBodyOrAHandle)
{
    CGVLLine* lower = MakeLine({ 10, 10 }, { 60, 40 });
    CGVLLine* line = MakeLine({ 100, 100 }, { 200, 150 });
    // Inside the bounding box: the whole line moves.
    Drag(mgr, 9, { 150, 120 }, { { 160, 125 }, { 170, 130 } });
    EXPECT_EQ(line->m_arCoord[0], QPoint(120, 110));
    EXPECT_EQ(line->m_arCoord[1], QPoint(220, 160));
    EXPECT_EQ(lower->m_arCoord[0], QPoint(10, 10)) << "the press stopped at the top element";
    // On the bottom-right end, outside the box: only that end follows.
    Drag(mgr, 9, { 223, 162 }, { { 240, 170 }, { 250, 180 } });
    EXPECT_EQ(line->m_arCoord[0], QPoint(120, 110));
    EXPECT_EQ(line->m_arCoord[1], QPoint(250, 180));
    EXPECT_FALSE(line->m_bDown);
    EXPECT_TRUE(line->m_bSelected) << "a move leaves the element selected";
    // A press on nothing deselects.
    Click(mgr, 9, { 300, 10 });
    EXPECT_FALSE(line->m_bSelected);
}

TEST_F(LineFixture, DraggingAHandleShortDropsTheLine)
{
    MakeLine({ 100, 100 }, { 200, 150 });
    Drag(mgr, 9, { 203, 153 }, { { 150, 120 }, { 103, 102 } });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
}
