#pragma once

#include <QtGlobal>

// The pixel operations shared by still pictures and the live processing
// element. Every buffer is 24-bit BGR, rows bottom-up, each row padded to a
// multiple of 4 bytes: stride = ((width * 24 + 31) / 32) * 4.
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
