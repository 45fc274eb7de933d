#pragma once

#include <QRect>
#include <QRgb>
#include <QSize>

class QImage;

// Puts a BGR frame on a 32-bit picture shown at `shown`, nearest neighbour,
// computing only `part` of it into `out` (its top-left pixel at `out`'s
// origin, `out` at least that large): a repaint then costs one pass over the
// pixels painted and memory for them only, with no conversion of the whole
// frame. The sampling is the one Qt's painter uses for an unsmoothed
// drawImage clipped to `part`, so the window shows the same pixels it always
// did at every zoom level.
void ScaleBgrInto(const QImage& frame, QSize shown, const QRect& part, QImage& out);

// The clipping warning over the live picture: the pixels of `part` with a
// channel at 255 painted `bright`, those with one at 0 `dark`.
void MarkClipped(QImage& shown, const QRect& part, QRgb bright, QRgb dark);
