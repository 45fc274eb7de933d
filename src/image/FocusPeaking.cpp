#include "image/FocusPeaking.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

void FocusPeaking::Tint(
    uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height, const QImage& coverage, QRgb colour)
{
    if (coverage.isNull() || coverage.format() != QImage::Format_Grayscale8 || !width || !height)
        return;
    std::vector<unsigned> column(width);
    for (unsigned x = 0; x < width; ++x)
        column[x] = unsigned(std::uint64_t(x) * unsigned(coverage.width()) / width);
    const int add[3] = { qBlue(colour), qGreen(colour), qRed(colour) };
    for (unsigned y = 0; y < height; ++y) {
        const uchar* mask = coverage.constScanLine(
            int(std::uint64_t(height - 1 - y) * unsigned(coverage.height()) / height));
        uchar* p = rows + std::ptrdiff_t(y) * step;
        for (unsigned x = 0; x < width; ++x, p += 3)
            if (mask[column[x]] > 127)
                for (int c = 0; c < 3; ++c)
                    p[c] = uchar((3 * p[c] + add[c] + 2) / 4);
    }
}

double FocusPeaking::Mark(uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height, QRgb colour)
{
    if (width < 3 || height < 3)
        return 0.0;
    // Judged at every other pixel of every other row, each judgement marking
    // a 2 x 2 block: a quarter of the work, and a mark a user sees as well.
    // All are judged before any is drawn, so a mark is never read as an edge.
    const unsigned columns = (width - 1) / 2;
    const unsigned lines = (height - 1) / 2;
    std::vector<uchar> inFocus(std::size_t(columns) * lines);
    const auto row = [&](unsigned y) { return rows + std::ptrdiff_t(y) * step; };
    std::uint64_t sum = 0;
    for (unsigned j = 0; j < lines; ++j) {
        const unsigned y = 2 * j + 1;
        // Green, the channel with most of the detail.
        const uchar* above = row(y - 1) + 1;
        const uchar* here = row(y) + 1;
        const uchar* below = row(y + 1) + 1;
        uchar* out = inFocus.data() + std::size_t(j) * columns;
        std::uint32_t rowSum = 0;
        for (unsigned i = 0; i < columns; ++i) {
            const unsigned x = 3 * (2 * i + 1);
            const int e
                = std::abs(int(here[x + 3]) - int(here[x - 3])) + std::abs(int(below[x]) - int(above[x]));
            out[i] = e >= kThreshold;
            rowSum += std::uint32_t(e * e);
        }
        sum += rowSum;
    }
    const uchar b = uchar(qBlue(colour)), g = uchar(qGreen(colour)), r = uchar(qRed(colour));
    for (unsigned j = 0; j < lines; ++j) {
        const uchar* marks = inFocus.data() + std::size_t(j) * columns;
        for (unsigned i = 0; i < columns; ++i) {
            if (!marks[i])
                continue;
            for (unsigned y = 2 * j + 1; y < 2 * j + 3; ++y) {
                uchar* p = row(y) + 3 * (2 * i + 1);
                p[0] = p[3] = b;
                p[1] = p[4] = g;
                p[2] = p[5] = r;
            }
        }
    }
    return std::sqrt(double(sum) / (double(columns) * double(lines)));
}
