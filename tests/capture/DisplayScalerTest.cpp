#include "capture/DisplayScaler.h"

#include <QImage>
#include <QPainter>

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace {

// Every pixel different, so a sample taken one column or row off shows.
QImage NoisyFrame(int width, int height)
{
    QImage frame(width, height, QImage::Format_BGR888);
    std::mt19937 random(7);
    for (int y = 0; y < height; ++y) {
        uchar* row = frame.scanLine(y);
        for (int x = 0; x < 3 * width; ++x)
            row[x] = uchar(random());
    }
    return frame;
}

// What the window showed before: the painter stretching the frame over it,
// clipped to the part repainted.
QImage PainterShows(const QImage& frame, QSize shown, QRect part, QRgb outside)
{
    QImage out(shown, QImage::Format_RGB32);
    out.fill(outside);
    QPainter painter(&out);
    painter.setClipRect(part);
    painter.drawImage(QRect(QPoint(0, 0), shown), frame);
    return out;
}

QImage ScalerShows(const QImage& frame, QSize shown, QRect part, QRgb outside)
{
    QImage out(shown, QImage::Format_RGB32);
    out.fill(outside);
    const QRect area = part & out.rect();
    QImage piece(area.size(), QImage::Format_RGB32);
    piece.fill(outside);
    ScaleBgrInto(frame, shown, part, piece);
    for (int y = 0; y < area.height(); ++y)
        std::memcpy(out.scanLine(area.top() + y) + 4 * area.left(), piece.constScanLine(y), 4 * area.width());
    return out;
}

} // namespace

// The zoom levels of the view (250 % down to 25 %) over odd frame sizes, the
// whole window and parts of it, as a scrolled or half-covered window repaints.
TEST(DisplayScaler, ShowsWhatThePainterShowedAtEveryZoom)
{
    const int zooms[][2] = { { 5, 2 }, { 2, 1 }, { 3, 2 }, { 5, 4 }, { 1, 1 }, { 3, 4 }, { 2, 3 }, { 1, 2 },
        { 1, 3 }, { 1, 4 } };
    const QRgb outside = qRgb(1, 2, 3);
    for (const QSize size : { QSize(161, 121), QSize(128, 102) }) {
        const QImage frame = NoisyFrame(size.width(), size.height());
        for (const auto& zoom : zooms) {
            const QSize shown(size.width() * zoom[0] / zoom[1], size.height() * zoom[0] / zoom[1]);
            const QRect whole(QPoint(0, 0), shown);
            for (const QRect part : { whole, QRect(7, 5, shown.width() / 2, shown.height() / 3),
                     QRect(shown.width() - 9, shown.height() - 4, 40, 40) }) {
                SCOPED_TRACE(testing::Message() << size.width() << "x" << size.height() << " zoom " << zoom[0]
                                                << "/" << zoom[1] << " part " << part.x() << "," << part.y());
                EXPECT_EQ(
                    ScalerShows(frame, shown, part, outside), PainterShows(frame, shown, part, outside));
            }
        }
    }
}

// A frame in a layout the window cannot read, or a picture too small for the
// part, leaves the picture as it was.
TEST(DisplayScaler, LeavesThePictureForAFrameItCannotRead)
{
    const QImage rgb = NoisyFrame(16, 16).convertToFormat(QImage::Format_RGB888);
    EXPECT_EQ(
        ScalerShows(rgb, QSize(20, 20), QRect(0, 0, 20, 20), qRgb(9, 9, 9)).pixel(10, 10), qRgb(9, 9, 9));
    QImage small(10, 10, QImage::Format_RGB32);
    small.fill(qRgb(9, 9, 9));
    ScaleBgrInto(NoisyFrame(16, 16), QSize(20, 20), QRect(0, 0, 20, 20), small);
    EXPECT_EQ(small.pixel(5, 5), qRgb(9, 9, 9));
}

// The clipping warning marks a pixel with any channel at 255 (before one at
// 0) and leaves the rest of the part, and everything outside it, alone.
TEST(DisplayScaler, ClippedPixelsAreMarkedInsideThePartOnly)
{
    QImage shown(4, 2, QImage::Format_RGB32);
    const QRgb row0[] = { qRgb(255, 10, 10), qRgb(10, 255, 10), qRgb(10, 10, 255), qRgb(255, 0, 7) };
    const QRgb row1[] = { qRgb(0, 10, 10), qRgb(10, 0, 10), qRgb(10, 10, 0), qRgb(254, 1, 200) };
    for (int x = 0; x < 4; ++x) {
        shown.setPixel(x, 0, row0[x]);
        shown.setPixel(x, 1, row1[x]);
    }
    const QRgb bright = qRgb(200, 0, 0), dark = qRgb(0, 0, 200);
    MarkClipped(shown, QRect(0, 0, 4, 2), bright, dark);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(shown.pixel(x, 0), bright) << x;
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(shown.pixel(x, 1), dark) << x;
    EXPECT_EQ(shown.pixel(3, 1), row1[3]);

    shown.setPixel(0, 0, row0[0]);
    MarkClipped(shown, QRect(1, 0, 3, 2), qRgb(1, 2, 3), qRgb(1, 2, 3));
    EXPECT_EQ(shown.pixel(0, 0), row0[0]);
}
