#include "image/FrameHistogram.h"

void FrameHistogram::AddRow(const uchar* row, unsigned width)
{
    for (unsigned x = 0; x < width; x += kColumnStep) {
        const uchar* p = row + 3 * std::size_t(x);
        const unsigned b = p[0];
        const unsigned g = p[1];
        const unsigned r = p[2];
        ++blue[b];
        ++green[g];
        ++red[r];
        ++luma[(77 * r + 150 * g + 29 * b + 128) >> 8];
        overexposed += (b == 255 || g == 255 || r == 255) ? 1u : 0u;
        underexposed += (b == 0 || g == 0 || r == 0) ? 1u : 0u;
        ++samples;
    }
}
