#include "image/BurnIn.h"

#include "image/FCObjImage.h"
#include "image/ImageProcess.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

// A 24-bit bottom-up overlay, all black (transparent).
struct Overlay
{
    Overlay(int w, int h)
        : height(h)
        , stride(DibStride(w))
        , bits(std::size_t(stride) * h, 0)
    {
    }
    // (x, y) in picture coordinates, top row 0.
    void Set(int x, int y, uchar b, uchar g, uchar r)
    {
        uchar* p = bits.data() + std::size_t(height - 1 - y) * stride + 3 * x;
        p[0] = b, p[1] = g, p[2] = r;
    }
    int height, stride;
    std::vector<uchar> bits;
};

FCObjImage Filled(int w, int h, int depth, uchar byte)
{
    FCObjImage picture(w, h, depth);
    std::fill(picture.GetMemStart(), picture.GetMemStart() + std::size_t(picture.GetPitch()) * h, byte);
    return picture;
}

} // namespace

TEST(BurnIn, EveryDepthTakesItsShareOfTheColourAndBlackStaysTransparent)
{
    Overlay overlay(5, 3);
    overlay.Set(1, 0, 0x10, 0x20, 0x30);
    overlay.Set(4, 2, 0xFF, 0x00, 0x01);
    overlay.Set(2, 1, 0, 0, 0); // black shape: invisible
    // 32 bits: red * 65536 + green * 256 + blue, top byte 0; 16: green * 256 + blue; 8: the blue byte.
    const struct
    {
        int depth, x, y;
        quint32 want;
    } cases[] = { { 24, 1, 0, 0x302010 }, { 24, 4, 2, 0x0100FF }, { 24, 2, 1, 0x777777 },
        { 24, 0, 0, 0x777777 }, { 32, 1, 0, 0x00302010 }, { 32, 2, 1, 0x77777777 }, { 16, 1, 0, 0x2010 },
        { 16, 4, 2, 0x00FF }, { 16, 0, 0, 0x7777 }, { 8, 1, 0, 0x10 }, { 8, 2, 1, 0x77 } };
    for (const auto& c : cases) {
        FCObjImage picture = Filled(5, 3, c.depth, 0x77);
        BurnInOverlay(picture, overlay.bits.data(), 5, 3);
        EXPECT_EQ(picture.GetPixelData(c.x, c.y), c.want) << c.depth << " bits at " << c.x << "," << c.y;
    }
}

TEST(BurnIn, NarrowDepthsOrInTheBlueByteWithItsSpills)
{
    Overlay overlay(9, 2);
    overlay.Set(0, 0, 0x01, 0, 0);
    overlay.Set(3, 0, 0x03, 0, 0); // bit 4 plus a spill into bit 5
    overlay.Set(8, 1, 0x00, 0x40, 0); // not black, blue 0: clears the bit

    FCObjImage p1 = Filled(9, 2, 1, 0x00);
    BurnInOverlay(p1, overlay.bits.data(), 9, 2);
    EXPECT_EQ(*p1.GetBits(0, 0), 0x80 | 0x10 | 0x20);
    p1 = Filled(9, 2, 1, 0xFF);
    BurnInOverlay(p1, overlay.bits.data(), 9, 2);
    EXPECT_EQ(*p1.GetBits(0, 0), 0xFF);
    EXPECT_EQ(*p1.GetBits(8, 1), 0x7F) << "first pixel of the second byte cleared";

    Overlay four(4, 1);
    four.Set(0, 0, 0x05, 0, 0); // even: blue << 4
    four.Set(3, 0, 0x1A, 0, 0); // odd: low nibble, and 0x10 spills into the high one
    FCObjImage p4 = Filled(4, 1, 4, 0xCD);
    BurnInOverlay(p4, four.bits.data(), 4, 1);
    EXPECT_EQ(*p4.GetBits(0, 0), 0x5D) << "keeps the odd pixel's nibble";
    EXPECT_EQ(*p4.GetBits(3, 0), 0xC0 | 0x1A) << "keeps the even pixel's nibble; 0x10 spills into it";
}

// An overlay taller and wider than the picture: its bottom rows land on the
// picture's bottom rows, the rest is dropped.
TEST(BurnIn, RowsCountFromTheBottomAndOutsidePixelsAreSkipped)
{
    Overlay overlay(6, 4);
    overlay.Set(0, 3, 9, 9, 9); // overlay's bottom row
    overlay.Set(5, 3, 9, 9, 9); // beyond the picture's width
    overlay.Set(0, 0, 8, 8, 8); // beyond the picture's height
    FCObjImage picture = Filled(4, 2, 24, 0);
    BurnInOverlay(picture, overlay.bits.data(), 6, 4);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(picture.GetPixelData(x, y), x == 0 && y == 1 ? 0x090909u : 0u) << x << "," << y;

    BurnInOverlay(picture, nullptr, 6, 4);
    FCObjImage empty;
    BurnInOverlay(empty, overlay.bits.data(), 6, 4);
}
