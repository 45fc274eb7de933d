#pragma once

#include <QImage>

// A picture in at most 256 colours for formats that hold no more, such as
// GIF, with one index for the fully transparent pixels (alpha below half).
// A paletted picture keeps its own palette and indices; a deeper one with at
// most 256 colours gets exactly those colours; only a picture with more is
// reduced, by median cut over its colours, each pixel taking the entry of
// its box. Never dithered.
struct IndexedPicture
{
    QImage image; // Indexed8, opaque colour table (the transparent entry is black)
    int transparent = -1; // index of the transparent entry, -1 when none
};

IndexedPicture ReduceToPalette(const QImage& source);
