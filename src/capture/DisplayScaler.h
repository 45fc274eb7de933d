#pragma once

#include <QRect>
#include <QRgb>

class QImage;

// Puts a BGR frame on a 32-bit picture of the displayed size, nearest
// neighbour, writing only `part` of it: a repaint then costs one pass over the
// pixels painted, with no conversion of the whole frame. The sampling is the
// one Qt's painter uses for an unsmoothed drawImage clipped to `part`, so the
// window shows the same pixels it always did at every zoom level.
void ScaleBgrInto(const QImage& frame, QImage& target, const QRect& part);

// The clipping warning over the live picture: the pixels of `part` with a
// channel at 255 painted `bright`, those with one at 0 `dark`.
void MarkClipped(QImage& shown, const QRect& part, QRgb bright, QRgb dark);
