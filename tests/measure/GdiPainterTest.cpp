#include "measure/GdiPainter.h"

#include "MeasureTestSupport.h"
#include "measure/GdiRect.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <climits>
#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

// A painter in a fresh device context's state on a key-filled image.
struct Canvas
{
    explicit Canvas(int width, int height)
        : image(width, height, QImage::Format_BGR888)
    {
        image.fill(kKeyBits);
        dc.begin(&image);
        Gdi::ResetDC(dc);
    }
    // One row (or column) as '#' pen, 'g' background, '.' untouched.
    std::string Trace(QPoint from, QPoint step, int count)
    {
        Finish();
        std::string s;
        for (QPoint p = from; count-- > 0; p += step)
            s += image.pixelColor(p) == kKeyBits ? '.' : (image.pixelColor(p) == kRed ? '#' : 'g');
        return s;
    }
    QRect Lit()
    {
        Finish();
        QRect box;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) != kKeyBits)
                    box |= QRect(x, y, 1, 1);
        return box;
    }
    void Finish()
    {
        if (dc.isActive())
            dc.end();
    }
    QImage image;
    QPainter dc;
};

const Gdi::Pen kSolid { kRed, 1, Gdi::PenStyle::Solid };

} // namespace

TEST(GdiRect, LeftAndTopInsideRightAndBottomOutside)
{
    const GdiRect r { 10, 20, 30, 40 };
    EXPECT_TRUE(r.Contains({ 10, 20 }) && r.Contains({ 29, 39 }));
    EXPECT_FALSE(
        r.Contains({ 30, 25 }) || r.Contains({ 15, 40 }) || r.Contains({ 9, 25 }) || r.Contains({ 15, 19 }));
    const GdiRect flipped { 30, 40, 10, 20 };
    EXPECT_FALSE(flipped.Contains({ 15, 25 })) << "only a normalised rectangle holds points";
    EXPECT_EQ(flipped.Normalized(), r);
    EXPECT_EQ(r.ToQRect(), QRect(10, 20, 20, 20));
}

TEST(GdiPainter, LinesLeaveOutTheirEndPointWhicheverWayTheyRunAndHoweverFarTheyReach)
{
    for (const auto& [a, b, trace] : { std::tuple { QPoint(2, 1), QPoint(8, 1), ".######.." },
             { QPoint(8, 1), QPoint(2, 1), "..######." }, { QPoint(5, 5), QPoint(5, 5), "........." } }) {
        Canvas c(10, 10);
        Gdi::Line(c.dc, kSolid, a, b);
        EXPECT_EQ(c.Trace({ 1, a.y() }, { 1, 0 }, 9), trace);
    }
    Canvas c(10, 10);
    Gdi::Line(c.dc, kSolid, { 8, 8 }, { 2, 2 });
    EXPECT_EQ(c.Trace({ 1, 1 }, { 1, 1 }, 9), "..######.");

    // Reaching far outside, they keep their pixels and pattern.
    Canvas far(40, 40);
    Gdi::SetBkMode(far.dc, false);
    Gdi::Line(far.dc, { kRed, 1, Gdi::PenStyle::Dot }, { -10, 1 }, { 20, 1 });
    Gdi::Line(far.dc, kSolid, { INT_MIN, 5 }, { INT_MAX, 5 });
    Gdi::Line(far.dc, kSolid, { -1000000000, -999999980 }, { 1000000000, 1000000020 });
    EXPECT_EQ(far.Trace({ 0, 1 }, { 1, 0 }, 10), "..###...##") << "the pattern still starts at -10";
    EXPECT_EQ(far.Trace({ 0, 5 }, { 1, 0 }, 40), std::string(40, '#'));
    EXPECT_EQ(far.image.pixelColor(10, 30), kRed);
}

TEST(GdiPainter, StyledPensStartAtTheFirstPointAndFillGapsOnlyWhenOpaque)
{
    Canvas c(60, 10);
    Gdi::SetBkColor(c.dc, kGray);
    Gdi::Line(c.dc, { kRed, 1, Gdi::PenStyle::Dot }, { 14, 1 }, { 0, 1 });
    Gdi::Line(c.dc, { kRed, 1, Gdi::PenStyle::Dash }, { 0, 3 }, { 50, 3 });
    Gdi::SetBkMode(c.dc, false);
    Gdi::Line(c.dc, { kRed, 1, Gdi::PenStyle::Dot }, { 0, 5 }, { 14, 5 });
    Gdi::Line(c.dc, { kRed, 3, Gdi::PenStyle::Dot }, { 5, 8 }, { 40, 8 }); // wide pens are solid
    EXPECT_EQ(c.Trace({ 0, 1 }, { 1, 0 }, 15), ".##ggg###ggg###");
    EXPECT_EQ(c.Trace({ 0, 3 }, { 1, 0 }, 51),
        std::string(18, '#') + "gggggg" + std::string(18, '#') + "gggggg##.");
    EXPECT_EQ(c.Trace({ 0, 5 }, { 1, 0 }, 15), "###...###...##.");
    EXPECT_EQ(c.Trace({ 10, 8 }, { 1, 0 }, 26), std::string(26, '#'));
}

TEST(GdiPainter, EllipseCoversLeftToRightMinusOneWithAnyPen)
{
    for (const bool dotted : { false, true }) {
        Canvas c(40, 40);
        Gdi::SetBkColor(c.dc, kGray);
        Gdi::Ellipse(c.dc, { kRed, 1, dotted ? Gdi::PenStyle::Dot : Gdi::PenStyle::Solid }, { 5, 6, 25, 30 });
        EXPECT_EQ(c.Lit(), QRect(QPoint(5, 6), QPoint(24, 29))) << dotted;
        EXPECT_EQ(c.image.pixelColor(15, 18), kKeyBits) << "hollow";
    }
}

TEST(GdiPainter, AWideArcIsCutWhereTheRaysMeetTheEllipse)
{
    Canvas c(100, 60);
    // Centre (50, 30), radii 40 and 20: the ray through the box's corner
    // meets the ellipse 45 degrees along it, near (77, 16), not at the
    // corner's own 26.6 degrees, near (85, 21).
    Gdi::Arc(c.dc, kSolid, { 10, 10, 90, 50 }, { 90, 10 }, { 50, 0 });
    const QRect lit = c.Lit();
    EXPECT_EQ(lit.top(), 10);
    EXPECT_NEAR(lit.left(), 50, 1);
    EXPECT_NEAR(lit.right(), 77, 2);
    EXPECT_NEAR(lit.bottom(), 16, 1);
}

TEST(GdiPainter, FontsReachTheCellHeightAndAverageWidth)
{
    for (const auto& [height, width] : { std::pair { 20, 8 }, { 28, 10 }, { 36, 14 }, { 12, 7 } }) {
        const QFontMetricsF metrics(Gdi::MakeFont(height, width, 400));
        EXPECT_NEAR(metrics.height(), height, 1.0) << height;
        EXPECT_NEAR(metrics.averageCharWidth(), width, 1.0) << height;
    }
}

TEST(GdiPainter, TextIsPlacedByTheTopOfItsCellAndNotAntialiased)
{
    Canvas c(200, 80);
    c.dc.setFont(Gdi::MakeFont(28, 10, 400));
    Gdi::SetBkColor(c.dc, kGray);
    Gdi::TextOut(c.dc, 10, 20, "L=8", kRed);
    EXPECT_EQ(c.Lit(), QRect(QPoint(10, 20), Gdi::TextExtent(c.dc.font(), "L=8")));
    for (int y = 20; y < 48; ++y)
        for (int x = 10; x < 30; ++x)
            ASSERT_TRUE(c.image.pixelColor(x, y) == kGray || c.image.pixelColor(x, y) == kRed)
                << x << "," << y;
}
