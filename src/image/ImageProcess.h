#pragma once

#include <QtGlobal>

#include <cstddef>

// Bytes per row of a picture `width` pixels wide at `bits` per pixel, rows
// padded to a multiple of 4 bytes: ((width * bits + 31) / 32) * 4; 0 for no width.
constexpr std::size_t DibStride(qint64 width, int bits = 24)
{
    return width <= 0 ? 0 : std::size_t(((width * bits + 31) / 32) * 4);
}

// The pixel operations shared by still pictures and the live processing
// element. Every buffer is 24-bit BGR, rows bottom-up, each row padded to a
// multiple of 4 bytes: DibStride(width).
// The int results are -1 for a null buffer or a zero width or height (the
// buffer is left untouched), else 0.

int FlipVertical(uchar* bits, unsigned width, unsigned height);
int MirrorHorizontal(uchar* bits, unsigned width, unsigned height);
int Gray(uchar* bits, unsigned width, unsigned height);
int Negative(uchar* bits, unsigned width, unsigned height);
int Binary(uchar* bits, unsigned width, unsigned height, int threshold);
int Emboss(uchar* bits, unsigned width, unsigned height);
void Sharpen(uchar* bits, unsigned width, unsigned height);
int ColorOffset(uchar* bits, unsigned width, unsigned height, int red, int green, int blue);
