#include "image/FCObjImage.h"

#include <QBuffer>
#include <QImage>

#include <cstring>
#include <gtest/gtest.h>

namespace {

// A picture whose every pixel differs from its neighbours at each depth.
quint32 PatternValue(int x, int y, int bits)
{
    return quint32(x * 2654435761u + y * 40503u + 7) & (bits == 32 ? 0xFFFFFFFFu : (1u << bits) - 1);
}

FCObjImage Pattern(int w, int h, int bits)
{
    FCObjImage img;
    EXPECT_TRUE(img.Create(w, h, bits));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.SetPixelData(x, y, PatternValue(x, y, bits));
    return img;
}

} // namespace

TEST(FCObjImage, CreatesZeroedBottomUpPaddedRowsAtEveryDepth)
{
    for (int bits : { 1, 4, 8, 16, 24, 32 }) {
        FCObjImage img;
        ASSERT_TRUE(img.Create(385, 3, bits)) << bits;
        EXPECT_EQ(img.Width(), 385);
        EXPECT_EQ(img.Height(), 3);
        EXPECT_EQ(img.ColorBits(), bits);
        EXPECT_EQ(img.GetPitch(), ((385 * bits + 31) / 32) * 4);
        EXPECT_EQ(img.GetPalette().size(), bits <= 8 ? (1 << bits) : 0);
        const uchar* b = img.GetMemStart();
        EXPECT_TRUE(std::all_of(b, b + img.GetPitch() * 3, [](uchar v) { return v == 0; }));
        // (0, 0) is the top-left pixel, stored in the last row of the buffer.
        EXPECT_EQ(img.GetBits(0, 0), img.GetMemStart() + 2 * img.GetPitch());
        EXPECT_EQ(img.GetBits(0, 2), img.GetMemStart());
    }
}

TEST(FCObjImage, RefusesBadSizesAndHugePicturesWithoutAllocating)
{
    FCObjImage img;
    EXPECT_FALSE(img.Create(0, 5, 24));
    EXPECT_FALSE(img.Create(5, -1, 24));
    EXPECT_FALSE(img.Create(5, 5, 12));
    EXPECT_FALSE(img.Create(20000, 20000, 24)); // 400 Mpixel: above the limit
    EXPECT_FALSE(img.IsValidImage());
    EXPECT_EQ(img.GetMemStart(), nullptr);
    EXPECT_FALSE(img.ErrorString().isEmpty());
    EXPECT_FALSE(img.Stretch(10, 10));
}

TEST(FCObjImage, PixelDataRoundTripsAtEveryDepthWithoutTouchingNeighbours)
{
    for (int bits : { 1, 4, 8, 16, 24, 32 }) {
        const FCObjImage img = Pattern(13, 5, bits);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 13; ++x)
                ASSERT_EQ(img.GetPixelData(x, y), PatternValue(x, y, bits))
                    << bits << " bits at " << x << "," << y;
        EXPECT_EQ(img.GetPixelData(13, 0), 0u);
        EXPECT_EQ(img.GetPixelData(-1, 0), 0u);
    }
    // Packing: 1 bit most significant first, 4 bits high nibble first.
    FCObjImage mono(9, 1, 1);
    mono.SetPixelData(0, 0, 1);
    mono.SetPixelData(8, 0, 1);
    EXPECT_EQ(mono.GetMemStart()[0], 0x80);
    EXPECT_EQ(mono.GetMemStart()[1], 0x80);
    FCObjImage nib(3, 1, 4);
    nib.SetPixelData(0, 0, 0xA);
    nib.SetPixelData(1, 0, 0x5);
    nib.SetPixelData(2, 0, 0xF);
    EXPECT_EQ(nib.GetMemStart()[0], 0xA5);
    EXPECT_EQ(nib.GetMemStart()[1], 0xF0);
    // 24 bits are blue, green, red in memory.
    FCObjImage rgb(1, 1, 24);
    rgb.SetPixelColor(0, 0, qRgb(10, 20, 30));
    EXPECT_EQ(rgb.GetMemStart()[0], 30);
    EXPECT_EQ(rgb.GetMemStart()[2], 10);
    EXPECT_EQ(rgb.GetPixelData(0, 0), 0x0A141Eu);
}

TEST(FCObjImage, PixelColoursGoThroughPaletteAndFiveBitChannels)
{
    FCObjImage pal(4, 1, 8);
    pal.SetPaletteColor(3, qRgb(200, 0, 0));
    pal.SetPaletteColor(4, qRgb(0, 0, 200));
    pal.SetPixelColor(1, 0, qRgb(190, 10, 5)); // nearest entry
    EXPECT_EQ(pal.GetPixelData(1, 0), 3u);
    EXPECT_EQ(pal.GetPixelColor(1, 0), qRgb(200, 0, 0));
    // A palette's alpha is the picture's: GetPixelColor and HasAlpha agree.
    EXPECT_FALSE(pal.HasAlpha());
    pal.SetPaletteColor(5, qRgba(9, 9, 9, 0));
    pal.SetPixelData(2, 0, 5);
    EXPECT_TRUE(pal.HasAlpha());
    EXPECT_EQ(pal.GetPixelColor(2, 0), qRgba(9, 9, 9, 0));
    EXPECT_TRUE(pal.CopyRect(QRect(0, 0, 1, 1)).HasAlpha()) << "the palette goes with the copy";

    FCObjImage hi(1, 1, 16);
    hi.SetPixelData(0, 0, 0x7FFF);
    EXPECT_EQ(hi.GetPixelColor(0, 0), qRgb(255, 255, 255));
    hi.SetPixelColor(0, 0, qRgb(255, 0, 8));
    EXPECT_EQ(hi.GetPixelData(0, 0), (31u << 10) | 1u);
}

TEST(FCObjImage, ConvertsToAndFromQImageWithoutSurprises)
{
    // Odd widths whose rows are padded; 1 bit with its own two colours.
    QImage mono(385, 4, QImage::Format_Mono);
    mono.setColorTable({ qRgb(10, 20, 30), qRgb(250, 240, 230) });
    QImage indexed(385, 3, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i)
        indexed.setColor(i, qRgb(i, 255 - i, i / 2));
    QImage rgb(385, 3, QImage::Format_RGB32);
    QImage argb(5, 2, QImage::Format_ARGB32);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 385; ++x) {
            mono.setPixel(x, y, x % 3 == 0 && x % 4 == y);
            if (y < 3) {
                indexed.setPixel(x, y, uint((x + 7 * y) & 255));
                rgb.setPixel(x, y, qRgb(x & 255, y * 80, (x * 3) & 255));
            }
            if (y < 2 && x < 5)
                argb.setPixel(x, y, x == 4 && y == 1 ? qRgba(200, 100, 50, 255) : qRgba(1, 2, 3, 4));
        }
    // Opaque colour pictures become 24-bit, with alpha 32-bit.
    const struct
    {
        const QImage& image;
        int bits;
        QPoint at;
    } cases[] = { { mono, 1, { 3, 3 } }, { mono, 1, { 1, 0 } }, { indexed, 8, { 384, 2 } },
        { rgb, 24, { 300, 2 } }, { argb, 32, { 4, 1 } }, { argb, 32, { 0, 0 } } };
    for (const auto& c : cases) {
        FCObjImage img;
        ASSERT_TRUE(img.FromQImage(c.image)) << c.bits;
        EXPECT_EQ(img.ColorBits(), c.bits);
        EXPECT_EQ(img.HasAlpha(), c.bits == 32);
        const QRgb pixel
            = c.bits == 32 ? img.GetPixelData(c.at.x(), c.at.y()) : img.GetPixelColor(c.at.x(), c.at.y());
        EXPECT_EQ(pixel, c.image.pixel(c.at)) << c.bits;
        const QImage back = img.ToQImage();
        EXPECT_EQ(c.bits == 24 ? back.convertToFormat(QImage::Format_RGB32) : back, c.image) << c.bits;
        if (c.bits == 24) {
            EXPECT_EQ(img.GetMemStart()[385 * 3], 0) << "the padding byte of the bottom row";
        }
    }

    // 32 bits without alpha: the fourth byte is unused, pictures stay opaque.
    FCObjImage x(2, 1, 32);
    x.SetPixelData(0, 0, 0x00112233);
    EXPECT_EQ(x.ToQImage().pixel(0, 0), qRgb(0x11, 0x22, 0x33));

    FCObjImage four = Pattern(7, 2, 4);
    const QImage q4 = four.ToQImage();
    EXPECT_EQ(q4.format(), QImage::Format_Indexed8);
    EXPECT_EQ(q4.colorCount(), 16);
    EXPECT_EQ(uint(q4.pixelIndex(5, 1)), four.GetPixelData(5, 1));
}

TEST(FCObjImage, StretchAveragesInsteadOfPickingPixels)
{
    FCObjImage board(64, 64, 24);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            board.SetPixelColor(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    ASSERT_TRUE(board.Stretch(16, 8));
    EXPECT_EQ(board.Width(), 16);
    EXPECT_EQ(board.Height(), 8);
    EXPECT_EQ(board.ColorBits(), 24);
    const int v = qRed(board.GetPixelColor(7, 3));
    EXPECT_GT(v, 100); // a fine checkerboard shrinks to mid gray
    EXPECT_LT(v, 155);

    FCObjImage small(3, 2, 8);
    small.SetPaletteColor(0, qRgb(0, 128, 0));
    ASSERT_TRUE(small.Stretch(1600 / 100, 1200 / 100));
    EXPECT_EQ(small.ColorBits(), 24);
    EXPECT_EQ(small.GetPixelColor(5, 5), qRgb(0, 128, 0));
}

TEST(FCObjImage, CopiesRectsAndConvertsTo24BitKeepingEveryPixel)
{
    for (int bits : { 1, 4, 8, 16, 24, 32 }) {
        const FCObjImage src = Pattern(19, 7, bits);
        const FCObjImage part = src.CopyRect(QRect(3, 2, 100, 4)); // clipped to the picture
        ASSERT_TRUE(part.IsValidImage()) << bits;
        EXPECT_EQ(part.Width(), 16);
        EXPECT_EQ(part.Height(), 4);
        EXPECT_EQ(part.ColorBits(), bits);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 16; ++x)
                ASSERT_EQ(part.GetPixelData(x, y), src.GetPixelData(x + 3, y + 2)) << bits;
        FCObjImage deep = src;
        ASSERT_TRUE(deep.ConvertTo24Bit());
        EXPECT_EQ(deep.ColorBits(), 24);
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 19; ++x)
                ASSERT_EQ(deep.GetPixelColor(x, y), src.GetPixelColor(x, y) | 0xFF000000u) << bits;
        FCObjImage copy = src; // copies are independent
        copy.SetPixelData(0, 0, ~src.GetPixelData(0, 0));
        EXPECT_EQ(src.GetPixelData(0, 0), PatternValue(0, 0, bits));
    }
    EXPECT_FALSE(Pattern(4, 4, 24).CopyRect(QRect(10, 10, 5, 5)).IsValidImage());
}

// A picture opens from its bytes as from its file. A PNG whose text chunk
// claims far more than the file holds is refused at once with the reason,
// rather than having the PNG library clear gigabytes for it; the same file
// with the claim fitting opens.
TEST(FCObjImage, OpensFromBytesAndRefusesAPngChunkLargerThanTheFile)
{
    QImage source(8, 6, QImage::Format_RGB888);
    source.fill(QColor(10, 200, 30));
    QByteArray png;
    {
        QBuffer out(&png);
        out.open(QIODevice::WriteOnly);
        QImage withText = source;
        withText.setText("Comment", "kept");
        ASSERT_TRUE(withText.save(&out, "PNG"));
    }
    FCObjImage picture;
    ASSERT_TRUE(picture.LoadBytes(png, "a.png")) << picture.ErrorString().toStdString();
    EXPECT_EQ(picture.Width(), 8);

    const qsizetype text = png.indexOf("tEXt") - 4;
    ASSERT_GT(text, 0);
    QByteArray claim = png;
    claim.replace(text, 4, QByteArray("\x66\x00\x00\x25", 4));
    EXPECT_FALSE(picture.LoadBytes(claim, "b.png"));
    EXPECT_TRUE(picture.ErrorString().contains("tEXt chunk claims 1711276069 bytes"))
        << picture.ErrorString().toStdString();
    EXPECT_EQ(picture.Width(), 8) << "the picture is unchanged";
}
