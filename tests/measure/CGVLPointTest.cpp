#include "measure/CGVLPoint.h"

#include "MeasureTestSupport.h"
#include "measure/CGVLNo.h"

using namespace MeasureTest;

TEST_F(ElementFixture, PointIsPlacedDraggedAndDeletedWithinItsHandleBox)
{
    mgr.SetUnit({ 1, 0.37, 0.11, 1.0, 1.0 });
    Drag(mgr, 1, { 5, 7 }, { { 6, 7 }, { 100, 100 } });
    Click(mgr, 1, { 200, 100 });
    CGVLPoint* point = Elem<CGVLPoint>(1);
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

TEST_F(ElementFixture, PointMarkIsARingWithTwoCrossesAndALabelAbove)
{
    EditAppearance(mgr, [](auto& a) { a.color = { 2, 4, 3, 1 }; }); // coord red, adjust green
    Click(mgr, 1, { 100, 100 });
    Bits bits = DrawBits(mgr);
    for (const auto& [p, c] : { std::pair { QPoint(100, 100), kRed }, { { 102, 100 }, kRed },
             { { 100, 98 }, kRed }, { { 103, 100 }, kGreen }, { { 94, 100 }, kGreen },
             { { 106, 100 }, kGreen }, { { 100, 106 }, kGreen }, { { 107, 100 }, kKeyBits },
             { { 100, 107 }, kKeyBits }, { { 97, 97 }, kKeyBits } })
        EXPECT_EQ(bits.At(p.x(), p.y()), c) << p.x() << "," << p.y();
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    bits = DrawBits(mgr);
    EXPECT_EQ(bits.At(100, 80), kGray);
    EXPECT_TRUE(bits.At(99, 80) == kKeyBits && bits.At(100, 79) == kKeyBits);
}

TEST_F(ElementFixture, MarkersAreNumberedAsMadeAndNotRenumberedOnDelete)
{
    mgr.m_arShape[0]->m_dwId = 1;
    const auto numbers = [&] {
        std::vector<int> n;
        for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i)
            n.push_back(Elem<CGVLNo>(i)->GetNumber());
        return n;
    };
    for (int x : { 50, 100, 150 })
        Click(mgr, 202, { x, 50 });
    EXPECT_EQ(numbers(), (std::vector<int> { 1, 2, 3 }));
    EXPECT_FALSE(Elem(3)->m_bSelected);
    for (std::size_t i = 1; i < 4; ++i)
        mgr.m_arShape[i]->m_dwId = std::uint32_t(1000 + i); // a user's clicks are milliseconds apart
    EXPECT_EQ(mgr.DeleteById(1002), 2);
    Click(mgr, 202, { 200, 50 });
    EXPECT_EQ(numbers(), (std::vector<int> { 1, 3, 3 })) << "two markers carry 3";
    Click(mgr, 200, { 52, 48 });
    EXPECT_EQ(numbers(), (std::vector<int> { 3, 3 }));
    EXPECT_EQ(mgr.GetCount(), 2);
    Drag(mgr, 9, { 157, 50 }, { { 120, 90 } });
    EXPECT_EQ(Elem(1)->m_arCoord[0], QPoint(150, 50)) << "only its centre's handle box takes it";
    Drag(mgr, 9, { 156, 44 }, { { 120, 90 } });
    EXPECT_EQ(Elem(1)->m_arCoord[0], QPoint(120, 90));
}

TEST_F(ElementFixture, MarkerCircleIsSizedByTheNumbersCell)
{
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    Click(mgr, 202, { 100, 100 });
    mgr.SetCount(999);
    Click(mgr, 202, { 200, 100 });
    // One digit: the cell height, 28 at Medium, is the radius.
    EXPECT_EQ(Elem<CGVLNo>(1)->CircleRect(), (GdiRect { 77, 77, 123, 123 }));
    const QFont font = Gdi::MakeFont(28, 10, 400);
    const QSize thousand = Gdi::TextExtent(font, "1000");
    ASSERT_GT(thousand.width(), thousand.height());
    const GdiRect wide = Elem<CGVLNo>(2)->CircleRect();
    EXPECT_EQ(wide.right - wide.left, 2 * thousand.width() - 10);

    const Bits bits = DrawBits(mgr);
    const QSize one = Gdi::TextExtent(font, "1");
    EXPECT_EQ(bits.At(100 - one.width() / 2, 100 - one.height() / 2), kGray) << "number centred";
    EXPECT_EQ(bits.At(99 - one.width() / 2, 100 - one.height() / 2), kKeyBits);
    EXPECT_TRUE(bits.At(77, 100) == kGreen && bits.At(122, 100) == kGreen && bits.At(123, 100) == kKeyBits);
}
