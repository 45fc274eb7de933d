#include "measure/CGVLLine.h"

#include "MeasureTestSupport.h"

using namespace MeasureTest;

namespace {

struct LineFixture : ElementFixture
{
    CGVLLine* Make(QPoint p0, QPoint p1) { return dynamic_cast<CGVLLine*>(AddLine(mgr, p0, p1)); }
};

} // namespace

TEST_F(LineFixture, DragMakesALineFromTheReleasePointToTheDragStartIfLongEnough)
{
    mgr.OnLButtonDown(1, { 100, 100 }, 2);
    mgr.OnMouseMove(1, { 103, 101 }, 2);
    mgr.OnMouseMove(1, { 200, 180 }, 2);
    CGVLLine* line = Elem<CGVLLine>(1);
    EXPECT_TRUE(line->m_bDown && line->m_bSelected && mgr.IsMouseDown());
    mgr.OnLButtonUp(0, { 200, 180 }, 2);
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 200, 180 }, { 103, 101 } }));
    EXPECT_FALSE(line->m_bDown || line->m_bSelected || mgr.IsMouseDown());
    EXPECT_EQ(line->m_nHit, -1);

    auto count = [&](int tool, std::vector<QPoint> moves) {
        Drag(mgr, tool, { 50, 50 }, moves);
        return mgr.m_arShape.size();
    };
    EXPECT_EQ(count(2, {}), 2u) << "a click";
    EXPECT_EQ(count(2, { { 51, 50 }, { 55, 54 } }), 2u) << "4 pixels both ways";
    EXPECT_EQ(count(2, { { 51, 50 }, { 52, 80 } }), 3u) << "one long side is enough";
    EXPECT_EQ(count(2, { { 51, 50 }, { 59, 50 } }), 4u) << "8 pixels";
    EXPECT_EQ(count(203, { { 51, 50 }, { 59, 50 } }), 4u) << "an 8-pixel arrow";
    EXPECT_EQ(count(203, { { 51, 50 }, { 61, 50 } }), 5u);
    EXPECT_EQ(mgr.m_arShape[4]->GetType(), 12);
    EXPECT_EQ(mgr.m_arShape[4]->m_arCoord[1], QPoint(51, 50)) << "the head is where the drag began";
}

TEST_F(LineFixture, LengthKeepsTheScalesApartAndLabelsByPrecision)
{
    mgr.SetUnit(CalibrationRecord {}); // a fresh installation: mm, 0.2 per pixel
    EditAppearance(mgr, [](auto& a) { a.precision = 1; });
    CGVLLine* line = Make({ 0, 10 }, { 100, 10 });
    EXPECT_EQ(line->LabelText(), "L=20.0mm");
    EditUnit(mgr, [](auto& u) { u.m_dcxPerPixel = 0.1; });
    line->m_arCoord = { { 5, 0 }, { 5, 100 } };
    EXPECT_DOUBLE_EQ(line->GetLength(), 20.0);
    EditUnit(mgr, [](auto& u) { u.m_dcyPerPixel = 0.1; });
    line->m_arCoord = { { 0, 0 }, { 30, 40 } };
    EditUnit(mgr, [](auto& u) { u.m_rtUnit = 0; });
    EditAppearance(mgr, [](auto& a) { a.precision = 3; });
    EXPECT_EQ(line->LabelText(), "L=5.000um");
    EditAppearance(mgr, [](auto& a) { a.precision = 6; });
    EXPECT_EQ(line->LabelText(), "");
}

TEST_F(LineFixture, LabelSitsBesideTheMiddleByTheSlopeInACellOfTheFontSize)
{
    EXPECT_EQ(Make({ 0, 0 }, { 100, 100 })->LabelPos(), QPoint(60, 30));
    EXPECT_EQ(Make({ 0, 100 }, { 100, 0 })->LabelPos(), QPoint(60, 60));
    EXPECT_EQ(Make({ 40, 0 }, { 40, 101 })->LabelPos(), QPoint(50, 30));
    EXPECT_EQ(Make({ 0, 40 }, { 101, 40 })->LabelPos(), QPoint(50, 20));
    EXPECT_EQ(Make({ 0, 100 }, { 100, 95 })->LabelPos(), QPoint(60, 77)) << "slope -0.05";
    EXPECT_EQ(Make({ 0, 100 }, { 100, 90 })->LabelPos(), QPoint(60, 105)) << "slope -0.1";
    mgr.m_arShape.resize(1);

    CGVLLine* line = Make({ 20, 150 }, { 220, 150 });
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    for (const auto& [fontSize, height] : { std::pair { 1, 20 }, { 2, 28 }, { 3, 36 }, { 7, 20 } }) {
        EditAppearance(mgr, [&](auto& a) { a.fontSize = fontSize; });
        const Bits bits = DrawBits(mgr);
        const QPoint at = line->LabelPos();
        EXPECT_EQ(bits.At(at.x(), at.y()), kGray) << fontSize;
        EXPECT_EQ(bits.At(at.x(), at.y() + height - 1), kGray) << fontSize;
        EXPECT_NE(bits.At(at.x(), at.y() + height), kGray) << fontSize;
    }
    EditAppearance(mgr, [](auto& a) {
        a.fontBackground = 1;
        a.precision = 0;
    });
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(20, 150), QPoint(219, 150)))
        << "line without label";
}

TEST_F(LineFixture, SelectedLineIsDottedWithEndBarsAndHandles)
{
    EditAppearance(mgr, [](auto& a) {
        a.color = { 1, 2, 3, 1 };
        a.precision = 0;
    });
    mgr.OnLButtonDown(1, { 200, 100 }, 2);
    mgr.OnMouseMove(1, { 200, 100 }, 2);
    mgr.OnMouseMove(1, { 100, 100 }, 2);
    const Bits bits = DrawBits(mgr);
    EXPECT_EQ(bits.At(112, 100), kRed);
    EXPECT_EQ(bits.At(115, 100), kKeyBits) << "dotted";
    for (int x : { 100, 200 }) {
        // 30 pixels each way, the far end left out, dotted from y = 130 up.
        EXPECT_EQ(bits.At(x, 130), kRed);
        EXPECT_EQ(bits.At(x, 127), kKeyBits);
        EXPECT_EQ(bits.At(x, 74), kRed);
        EXPECT_EQ(bits.At(x, 70), kKeyBits);
        EXPECT_EQ(bits.At(x, 131), kKeyBits);
    }
    EXPECT_EQ(bits.At(95, 100), kGreen) << "handle";
    mgr.OnLButtonUp(0, { 100, 100 }, 2);
    EXPECT_EQ(DrawBits(mgr).Extent(kKeyBits), QRect(QPoint(100, 100), QPoint(199, 100)));

    Make({ 100, 150 }, { 160, 210 })->m_bSelected = true; // bars along (1, -1), 21 pixels each way
    const Bits diagonal = DrawBits(mgr);
    EXPECT_EQ(diagonal.At(79, 171), kRed);
    EXPECT_EQ(diagonal.At(177, 193), kRed);
    EXPECT_EQ(diagonal.At(181, 189), kKeyBits);
}

TEST_F(LineFixture, MoveToolDragsTheBodyOrAHandle)
{
    CGVLLine* lower = Make({ 10, 10 }, { 60, 40 });
    CGVLLine* line = Make({ 100, 100 }, { 200, 150 });
    Drag(mgr, 9, { 150, 120 }, { { 160, 125 }, { 170, 130 } });
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 120, 110 }, { 220, 160 } }));
    EXPECT_EQ(lower->m_arCoord[0], QPoint(10, 10));
    Drag(mgr, 9, { 223, 162 }, { { 250, 180 } }); // the bottom-right end, outside the body
    EXPECT_EQ(line->m_arCoord, (std::vector<QPoint> { { 120, 110 }, { 250, 180 } }));
    EXPECT_TRUE(line->m_bSelected && !line->m_bDown);
    Click(mgr, 9, { 300, 10 });
    EXPECT_FALSE(line->m_bSelected);
    Drag(mgr, 9, { 253, 183 }, { { 123, 112 } }); // dragged too short: dropped
    EXPECT_EQ(mgr.m_arShape.size(), 2u);
}
