#include "measure/GdiPainter.h"

#include "MeasureTestSupport.h"
#include "measure/GdiRect.h"

#include <QFontMetrics>

#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

const QColor kKey(1, 1, 1);
const QColor kRed(255, 0, 0);

// Lit pixels of one row (or column) between two coordinates, as a string of
// '#' (pen), 'g' (background) and '.' (untouched).
std::string Row(const QImage& image, int y, int x0, int x1)
{
    std::string s;
    for (int x = x0; x <= x1; ++x) {
        const QColor c = image.pixelColor(x, y);
        s += c == kKey ? '.' : (c == kRed ? '#' : 'g');
    }
    return s;
}

std::string Column(const QImage& image, int x, int y0, int y1)
{
    std::string s;
    for (int y = y0; y <= y1; ++y) {
        const QColor c = image.pixelColor(x, y);
        s += c == kKey ? '.' : (c == kRed ? '#' : 'g');
    }
    return s;
}

QRect LitBox(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != kKey)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace

TEST(GdiRect, LeftAndTopInsideRightAndBottomOutside)
{
    const GdiRect r { 10, 20, 30, 40 };
    EXPECT_TRUE(r.Contains({ 10, 20 }));
    EXPECT_TRUE(r.Contains({ 29, 39 }));
    EXPECT_FALSE(r.Contains({ 30, 25 }));
    EXPECT_FALSE(r.Contains({ 15, 40 }));
    EXPECT_FALSE(r.Contains({ 9, 25 }));
    EXPECT_FALSE(r.Contains({ 15, 19 }));
    // An unnormalised rectangle holds nothing until it is normalised.
    const GdiRect flipped { 30, 40, 10, 20 };
    EXPECT_FALSE(flipped.Contains({ 15, 25 }));
    EXPECT_EQ(flipped.Normalized(), r);
    EXPECT_EQ(r.ToQRect(), QRect(10, 20, 20, 20));
}

TEST(GdiPainter, LineLeavesOutItsEndPointInEveryDirection)
{
    Canvas c(30, 30);
    const Gdi::Pen pen { kRed, 1, Gdi::PenStyle::Solid };
    Gdi::Line(c.painter, pen, { 2, 2 }, { 8, 2 });
    Gdi::Line(c.painter, pen, { 8, 4 }, { 2, 4 });
    Gdi::Line(c.painter, pen, { 12, 2 }, { 12, 8 });
    Gdi::Line(c.painter, pen, { 14, 8 }, { 14, 2 });
    Gdi::Line(c.painter, pen, { 20, 20 }, { 20, 20 }); // nothing at all
    Gdi::Line(c.painter, pen, { 2, 10 }, { 8, 16 });
    Gdi::Line(c.painter, pen, { 8, 26 }, { 2, 20 });
    const QImage& image = c.Done();
    EXPECT_EQ(Row(image, 2, 1, 9), ".######..");
    EXPECT_EQ(Row(image, 4, 1, 9), "..######.");
    EXPECT_EQ(Column(image, 12, 1, 9), ".######..");
    EXPECT_EQ(Column(image, 14, 1, 9), "..######.");
    EXPECT_EQ(image.pixelColor(20, 20), kKey);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(image.pixelColor(2 + i, 10 + i), kRed);
        EXPECT_EQ(image.pixelColor(8 - i, 26 - i), kRed);
    }
    EXPECT_EQ(image.pixelColor(8, 16), kKey);
    EXPECT_EQ(image.pixelColor(2, 20), kKey);
}

TEST(GdiPainter, StyledPensStartAtTheFirstPointAndFillGapsOnlyWhenOpaque)
{
    Canvas c(60, 10);
    Gdi::SetBkColor(c.painter, kGray);
    Gdi::SetBkMode(c.painter, true);
    Gdi::Line(c.painter, { kRed, 1, Gdi::PenStyle::Dot }, { 14, 1 }, { 0, 1 });
    Gdi::Line(c.painter, { kRed, 1, Gdi::PenStyle::Dash }, { 0, 3 }, { 50, 3 });
    Gdi::SetBkMode(c.painter, false);
    Gdi::Line(c.painter, { kRed, 1, Gdi::PenStyle::Dot }, { 0, 5 }, { 14, 5 });
    // Wider pens know no style: a dotted arrow stroke is solid.
    Gdi::Line(c.painter, { kRed, 3, Gdi::PenStyle::Dot }, { 5, 8 }, { 40, 8 });
    const QImage& image = c.Done();
    EXPECT_EQ(Row(image, 1, 0, 14), ".##ggg###ggg###");
    EXPECT_EQ(Row(image, 3, 0, 50), std::string(18, '#') + "gggggg" + std::string(18, '#') + "gggggg##.");
    EXPECT_EQ(Row(image, 5, 0, 14), "###...###...##.");
    EXPECT_EQ(Row(image, 8, 10, 35), std::string(26, '#'));
}

TEST(GdiPainter, EllipseCoversLeftToRightMinusOne)
{
    Canvas c(40, 40);
    Gdi::Ellipse(c.painter, { kRed, 1, Gdi::PenStyle::Solid }, { 5, 6, 25, 30 });
    const QImage& image = c.Done();
    EXPECT_EQ(LitBox(image), QRect(QPoint(5, 6), QPoint(24, 29)));
    EXPECT_EQ(image.pixelColor(15, 18), kKey) << "hollow";
}

TEST(GdiPainter, ArcRunsCounterClockwiseFromStartToEnd)
{
    Canvas c(60, 60);
    // Centre (30, 30), radius 20: from the right-hand ray to the upward ray
    // is the upper-right quarter only.
    Gdi::Arc(c.painter, { kRed, 1, Gdi::PenStyle::Solid }, { 10, 10, 51, 51 }, { 45, 30 }, { 30, 0 });
    const QRect lit = LitBox(c.Done());
    EXPECT_GE(lit.left(), 29);
    EXPECT_LE(lit.bottom(), 31);
    EXPECT_NEAR(lit.right(), 50, 1);
    EXPECT_NEAR(lit.top(), 10, 1);
}

TEST(GdiPainter, FontsReachTheCellHeightAndAverageWidth)
{
    struct Size
    {
        int height, width;
    };
    for (const Size s : { Size { 20, 8 }, Size { 28, 10 }, Size { 36, 14 }, Size { 12, 7 } }) {
        const QFont font = Gdi::MakeFont(s.height, s.width, 400);
        const QFontMetricsF metrics(font);
        EXPECT_NEAR(metrics.height(), s.height, 1.0) << s.height << "x" << s.width;
        EXPECT_NEAR(metrics.averageCharWidth(), s.width, 1.0) << s.height << "x" << s.width;
        EXPECT_EQ(font.styleStrategy() & QFont::NoAntialias, QFont::NoAntialias);
    }
    // A wider request gives wider text at the same height.
    EXPECT_GT(Gdi::TextExtent(Gdi::MakeFont(28, 14, 400), "L=12.35mm").width(),
        Gdi::TextExtent(Gdi::MakeFont(28, 10, 400), "L=12.35mm").width());
}

TEST(GdiPainter, TextIsPlacedByTheTopOfItsCellAndOpaqueFillsTheCell)
{
    Canvas c(200, 80);
    c.painter.setFont(Gdi::MakeFont(28, 10, 400));
    Gdi::SetBkColor(c.painter, kGray);
    Gdi::SetBkMode(c.painter, true);
    Gdi::TextOut(c.painter, 10, 20, "L=8", kRed);
    const QSize cell = Gdi::TextExtent(c.painter.font(), "L=8");
    const QImage& image = c.Done();
    QRect touched;
    bool onlyTwoColours = true;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 200; ++x) {
            const QColor p = image.pixelColor(x, y);
            if (p == kKey)
                continue;
            touched |= QRect(x, y, 1, 1);
            onlyTwoColours &= (p == kGray || p == kRed);
        }
    }
    EXPECT_EQ(touched, QRect(QPoint(10, 20), cell));
    EXPECT_TRUE(onlyTwoColours) << "text must not be antialiased";
}
