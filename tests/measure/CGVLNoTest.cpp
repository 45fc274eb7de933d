#include "measure/CGVLNo.h"

#include "MeasureTestSupport.h"

#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

struct MarkerFixture : ::testing::Test
{
    MarkerFixture() { Add(mgr, 9, { 300, 230 })->m_dwId = 1; }
    CGVLNo* Marker(std::size_t index) { return dynamic_cast<CGVLNo*>(mgr.m_arShape.at(index).get()); }
    std::vector<int> Numbers()
    {
        std::vector<int> numbers;
        for (std::size_t i = 1; i < mgr.m_arShape.size(); ++i)
            numbers.push_back(Marker(i)->GetNumber());
        return numbers;
    }
    CGVLElemMgr mgr;
};

} // namespace

TEST_F(MarkerFixture, NumberedAsMadeAndNotRenumberedOnDelete)
{
    for (int x : { 50, 100, 150 })
        Click(mgr, 202, { x, 50 });
    EXPECT_EQ(Numbers(), (std::vector<int> { 1, 2, 3 }));
    EXPECT_FALSE(Marker(3)->m_bSelected);
    for (std::size_t i = 1; i < 4; ++i)
        mgr.m_arShape[i]->m_dwId = std::uint32_t(1000 + i); // a user's clicks are milliseconds apart
    EXPECT_EQ(mgr.DeleteById(1002), 2);
    Click(mgr, 202, { 200, 50 });
    EXPECT_EQ(Numbers(), (std::vector<int> { 1, 3, 3 })) << "two markers carry 3";
    Click(mgr, 200, { 52, 48 });
    EXPECT_EQ(Numbers(), (std::vector<int> { 3, 3 }));
    EXPECT_EQ(mgr.m_nCount, 2);
    Drag(mgr, 9, { 157, 50 }, { { 120, 90 } });
    EXPECT_EQ(Marker(1)->m_arCoord[0], QPoint(150, 50)) << "only its centre's handle box takes it";
    Drag(mgr, 9, { 156, 44 }, { { 120, 90 } });
    EXPECT_EQ(Marker(1)->m_arCoord[0], QPoint(120, 90));
}

TEST_F(MarkerFixture, CircleIsSizedByTheNumbersCell)
{
    mgr.m_nFontBackground = 2;
    Click(mgr, 202, { 100, 100 });
    mgr.m_nCount = 999;
    Click(mgr, 202, { 200, 100 });
    // One digit: the cell height, 28 at Medium, is the radius.
    EXPECT_EQ(Marker(1)->CircleRect(), (GdiRect { 77, 77, 123, 123 }));
    const QSize thousand = Gdi::TextExtent(Gdi::MakeFont(28, 10, 400), "1000");
    ASSERT_GT(thousand.width(), thousand.height());
    EXPECT_EQ(Marker(2)->CircleRect().right - Marker(2)->CircleRect().left, 2 * thousand.width() - 10);

    const Bits bits = DrawBits(mgr);
    const QSize one = Gdi::TextExtent(Gdi::MakeFont(28, 10, 400), "1");
    EXPECT_EQ(bits.At(100 - one.width() / 2, 100 - one.height() / 2), kGray) << "number centred";
    EXPECT_EQ(bits.At(99 - one.width() / 2, 100 - one.height() / 2), kKeyBits);
    EXPECT_EQ(bits.At(77, 100), kGreen);
    EXPECT_EQ(bits.At(122, 100), kGreen);
    EXPECT_EQ(bits.At(123, 100), kKeyBits);
}
