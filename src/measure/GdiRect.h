#pragma once

#include <QPoint>
#include <QRect>

#include <span>

// A rectangle as the shapes' geometry is written: left, top, right, bottom,
// with the right and bottom edges outside. QRect's inclusive right() would
// invite off-by-one errors, so the shapes use this and convert at the edge.
struct GdiRect
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    // Left and top edges are inside, right and bottom edges outside.
    bool Contains(const QPoint& point) const;
    // Left/top the smaller, right/bottom the larger coordinates.
    GdiRect Normalized() const;
    // The smallest box holding the points, with the outermost ones on its
    // edges; all zero for none.
    static GdiRect Around(std::span<const QPoint> points);
    // Grown, if need be, to hold the point on or inside its edges.
    GdiRect With(const QPoint& point) const;
    // The same pixels as a QRect (empty when right <= left or bottom <= top).
    QRect ToQRect() const;

    bool operator==(const GdiRect&) const = default;
};
