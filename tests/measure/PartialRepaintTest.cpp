#include "MeasureTestSupport.h"

#include <QImage>
#include <QPainter>

using namespace MeasureTest;

namespace {

constexpr int kWidth = 360;
constexpr int kHeight = 200;

QImage Drawn(CGVLElemMgr& mgr, const QRect& clip = QRect())
{
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(QColor(40, 90, 40));
    QPainter dc(&image);
    Gdi::ResetDC(dc);
    if (!clip.isNull())
        dc.setClipRect(clip);
    mgr.DrawAll(dc, kWidth, kHeight);
    return image;
}

} // namespace

// A repaint of part of the window passes by the elements that cannot reach
// it, and still paints every pixel inside it as a whole repaint does: counting
// markers with short and long numbers, selected and not, at every label font
// and background, under small repaint areas laid over the whole window.
TEST(PartialRepaint, PaintsInsideTheAreaWhatTheWholeRepaintPaints)
{
    CGVLElemMgr mgr;
    const std::vector<std::pair<int, QPoint>> markers { { 1, { 40, 50 } }, { 9, { 110, 40 } },
        { 47, { 190, 60 } }, { 100, { 280, 50 } }, { 5555, { 60, 140 } }, { 88888, { 180, 150 } },
        { 7, { 300, 150 } } };
    for (const auto& [number, at] : markers) {
        mgr.SetCount(number - 1);
        Click(mgr, 202, at);
    }
    // The last one selected: drawn dotted.
    Drag(mgr, 9, { 300, 150 }, { { 300, 150 } });
    ASSERT_EQ(mgr.m_arShape.size(), markers.size());
    ASSERT_TRUE(mgr.m_arShape.back()->m_bSelected);
    constexpr int kTile = 12;
    for (const int font : { 1, 2, 3 }) {
        for (const int background : { 1, 0 }) {
            EditAppearance(mgr, [&](auto& a) {
                a.fontSize = font;
                a.fontBackground = background;
            });
            const QImage whole = Drawn(mgr);
            int differing = 0;
            for (int y = 0; y < kHeight; y += kTile - 5) {
                for (int x = 0; x < kWidth; x += kTile - 5) {
                    const QRect tile(x, y, kTile, kTile);
                    const QImage part = Drawn(mgr, tile);
                    const QRect inside = tile & whole.rect();
                    for (int py = inside.top(); py <= inside.bottom(); ++py)
                        for (int px = inside.left(); px <= inside.right(); ++px)
                            differing += part.pixel(px, py) != whole.pixel(px, py);
                }
            }
            EXPECT_EQ(differing, 0) << "font " << font << ", background " << background;
        }
    }
}
