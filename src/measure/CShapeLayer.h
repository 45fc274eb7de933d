#pragma once

#include <QBrush>
#include <QFont>
#include <QPainter>
#include <QPen>
#include <QTransform>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class CGVLShape;

// The live overlay of the leading elements of a long list, drawn once and
// reused while they stay as they are: a counting session adds one marker to
// thousands per click, and only the new one needs drawing.
//
// The layer holds elements at rest only (not held, selected or hit: mouse
// input changes those without a word) and stays valid for one while it sits
// where it sat, at rest, unchanged since the layer was drawn
// (CGVLShape::m_nChangedAt); a change to anything else the elements draw with
// (calibration, appearance, a deletion) passes `everythingAt` beyond the layer
// and drops it whole.
class CShapeLayer
{
public:
    // Leading elements the layer shows as they are now; 0 when it shows none
    // of them validly (another size, a change to everything, an element
    // changed or moved).
    std::size_t Valid(const std::vector<std::unique_ptr<CGVLShape>>& shapes, int width, int height,
        std::uint64_t everythingAt) const;
    // The leading elements from `from` on, before `to`, that may join the
    // layer: up to the first one not at rest.
    static std::size_t RestingUpTo(
        const std::vector<std::unique_ptr<CGVLShape>>& shapes, std::size_t from, std::size_t to);
    // The layer's pixels to draw the elements from `held` (what Valid gave)
    // on into; a fresh layer filled with `fill` when `held` is 0.
    uchar* Grow(std::size_t held, int width, int height, uchar fill);
    // The layer now shows the elements before `upTo` as they stood at the
    // change count `changes`.
    void Shown(
        const std::vector<std::unique_ptr<CGVLShape>>& shapes, std::size_t upTo, std::uint64_t changes);
    // Elements draw with what the elements before them left in the painter
    // (pen, font, background...), as on a device context: drawing after the
    // layer starts from what its last element left.
    void KeepPainter(const QPainter& dc);
    void ResumePainter(QPainter& dc) const;
    // Top-down rows of DibStride(width) bytes.
    const std::vector<uchar>& Pixels() const { return m_pixels; }
    void Drop();

private:
    std::vector<uchar> m_pixels;
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::uint64_t m_nDrawnAt = 0;
    std::vector<const CGVLShape*> m_arShown;
    struct PainterState
    {
        QPen pen;
        QBrush brush;
        QFont font;
        QBrush background;
        Qt::BGMode backgroundMode = Qt::OpaqueMode;
        QPainter::CompositionMode composition = QPainter::CompositionMode_SourceOver;
        QPainter::RenderHints hints;
        QTransform transform;
        QPointF brushOrigin;
        qreal opacity = 1.0;
    } m_painter;
};
