#pragma once

#include <QImage>
#include <QPoint>
#include <QPointF>

#include <optional>

// A shape's point that "Snap to edges" placed on an edge of the picture under
// the overlay. It holds only while the shape's point stays at `coord`: a later
// move of the point makes it a plain mouse point again, so no code that moves
// points has to know about snapping.
struct EdgePoint
{
    // The shape's point: the pixel nearest the edge.
    QPoint coord;
    // The edge, to a fraction of a pixel.
    QPointF exact;
    // Standard uncertainty of `exact` along its search line, pixels; 0 for none.
    double sigma = 0.0;
};

// Stated uncertainties are expanded ones, the standard uncertainty times this:
// about 95 % of true errors lie within them.
inline constexpr double kSnapCoverage = 2.0;
// How far from the mouse an edge is looked for, pixels.
inline constexpr double kSnapReach = 4.0;

// The nearest edge to `from` along the line through it in `direction`, on
// `picture` (ideally Format_Grayscale8, which is read without a copy). Shape
// points are picture pixels: shapes are drawn at 100 % only. None when no edge
// stands out within reach.
std::optional<EdgePoint> SnapToEdge(const QImage& picture, const QPoint& from, const QPointF& direction);
