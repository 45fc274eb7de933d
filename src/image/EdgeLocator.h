#pragma once

#include <QImage>
#include <QPointF>

#include <optional>

// An edge found near a point, to a fraction of a pixel.
struct EdgeFix
{
    // Where the edge crosses the search line, in picture pixels (integers are
    // pixel centres).
    QPointF position;
    // Its distance from the starting point along the search direction.
    double shift = 0.0;
    // Standard uncertainty of the position along the search line, pixels:
    // the picture's noise over the edge's contrast, and a floor for what
    // resampling leaves.
    double sigma = 0.0;
};

// Looks along the line through `from` in `direction` (any length but zero)
// for the nearest clear edge no further than `reach` pixels away, and places
// it by the centre of mass of the brightness change across it, which is
// exact for a blurred or anti-aliased straight edge wherever it falls on the
// pixel grid. Any picture format; a QImage::Format_Grayscale8 one is read
// without a copy. None when no edge stands out of the noise there or the line
// leaves the picture.
std::optional<EdgeFix> LocateEdge(
    const QImage& picture, const QPointF& from, const QPointF& direction, double reach = 4.0);
