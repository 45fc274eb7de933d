#include "measure/CGVLScale.h"

#include "MeasureTestSupport.h"

using namespace MeasureTest;

namespace {

struct ScaleFixture : ::testing::Test
{
    ScaleFixture()
    {
        mgr.CreateShape(ShapeType::Ruler); // element 0, not shown
        scale = dynamic_cast<CGVLScale*>(mgr.CreateShape(ShapeType::Scale));
        EditAppearance(mgr, [](auto& a) { a.color.m_ctRuler = 3; });
    }
    // The stroke colour at (x, y)?
    static bool On(const Bits& bits, int x, int y) { return bits.At(x, y) == kGreen; }
    CGVLElemMgr mgr;
    CGVLScale* scale = nullptr;
};

} // namespace

TEST_F(ScaleFixture, IsACentredReticleThatTakesNoInputAndTicksEveryFivePixelsLongerAtEveryFifthAndTenth)
{
    ASSERT_NE(scale, nullptr);
    EXPECT_EQ(scale->GetType(), 10);
    EXPECT_EQ(scale->m_nWidth, 640);
    EXPECT_EQ(scale->m_nHeight, 480);
    EXPECT_EQ(scale->TickCount(), 160);
    EXPECT_EQ(scale->OnLButtonDown(1, { 320, 240 }, 9), -1);
    EXPECT_EQ(scale->OnMouseMove(1, { 320, 240 }, 9), -1);
    const Bits bits = DrawBits(mgr, 640, 480);
    EXPECT_TRUE(On(bits, 0, 240) && On(bits, 639, 240) && On(bits, 320, 0) && On(bits, 320, 479)) << "axes";
    // Just above the horizontal axis every tick shows; 9 above only every
    // fifth; 14 above only every tenth; 15 above none.
    for (const int x : { 315, 325, 340, 345, 370, 445 })
        EXPECT_TRUE(On(bits, x, 237)) << x;
    EXPECT_FALSE(On(bits, 343, 237));
    EXPECT_TRUE(On(bits, 345, 231) && On(bits, 295, 231) && On(bits, 370, 231));
    EXPECT_FALSE(On(bits, 340, 231));
    EXPECT_TRUE(On(bits, 370, 226) && On(bits, 270, 226));
    EXPECT_FALSE(On(bits, 345, 226));
    EXPECT_FALSE(On(bits, 370, 225 - 1));
    EXPECT_TRUE(On(bits, 370, 254) && !On(bits, 370, 255)) << "15 below, the end excluded";
    // Beside the vertical axis likewise.
    for (const int y : { 235, 245, 220, 215, 190, 140 })
        EXPECT_TRUE(On(bits, 323, y)) << y;
    EXPECT_FALSE(On(bits, 323, 223));
    EXPECT_TRUE(On(bits, 329, 215) && !On(bits, 329, 220));
    EXPECT_TRUE(On(bits, 334, 190) && !On(bits, 334, 215));

    EXPECT_EQ(mgr.DeleteShape(scale), 1) << "the scale answers its type minus 9";
    mgr.DeleteAll();
    EXPECT_EQ(mgr.m_arShape.size(), 1u) << "only the ruler survives deleting all";
}

TEST_F(ScaleFixture, TickCountComesFromTheWidthAndStepsAreTruncated)
{
    scale->m_nWidth = 100; // n = 25 on both axes, though the height is 480
    scale->m_nStepX = 55;
    const Bits bits = DrawBits(mgr, 640, 480);
    EXPECT_TRUE(On(bits, 55, 237)) << "i = 1: 5.5 truncated";
    EXPECT_TRUE(On(bits, 61, 237)) << "i = 2: 11";
    EXPECT_FALSE(On(bits, 60, 237) || On(bits, 56, 237));
    EXPECT_TRUE(On(bits, 53, 240 - 125)) << "i = 25 on the vertical axis";
    EXPECT_FALSE(On(bits, 53, 240 - 130)) << "no i = 26";

    mgr.SetHidden(true);
    EXPECT_EQ(DrawBits(mgr, 640, 480).Extent(kKeyBits), QRect());
}
