#include "image/BurnIn.h"

#include "image/FCObjImage.h"
#include "image/ImageProcess.h"

#include <cstddef>

namespace {

void WritePixel(uchar* p, int x, int depth, uchar blue, uchar green, uchar red)
{
    switch (depth) {
    case 1: {
        const int shift = 7 - (x & 7);
        *p = uchar(*p & ~(1 << shift));
        *p = uchar(*p | (blue << shift));
        break;
    }
    case 4:
        *p = uchar(*p & (15 << ((x & 1) ? 4 : 0)));
        *p = uchar(*p | (blue << ((x & 1) ? 0 : 4)));
        break;
    case 8:
        *p = blue;
        break;
    case 16:
        p[0] = blue;
        p[1] = green;
        break;
    case 24:
        p[0] = blue;
        p[1] = green;
        p[2] = red;
        break;
    case 32:
        p[0] = blue;
        p[1] = green;
        p[2] = red;
        p[3] = 0;
        break;
    default:
        break;
    }
}

} // namespace

void BurnInOverlay(FCObjImage& picture, const uchar* overlay, int width, int height)
{
    if (!overlay || width <= 0 || height <= 0 || !picture.IsValidImage())
        return;
    const std::size_t stride = DibStride(width);
    const int depth = picture.ColorBits();
    for (int row = 0; row < height; ++row) {
        const int y = picture.Height() - 1 - row;
        if (y < 0)
            break;
        const uchar* line = overlay + std::size_t(row) * stride;
        for (int x = 0; x < width && x < picture.Width(); ++x) {
            const uchar* o = line + 3 * x;
            if (o[0] == 0 && o[1] == 0 && o[2] == 0)
                continue;
            if (uchar* p = picture.GetBits(x, y))
                WritePixel(p, x, depth, o[0], o[1], o[2]);
        }
    }
}
