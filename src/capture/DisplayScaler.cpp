#include "capture/DisplayScaler.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <libyuv/convert_argb.h>
#include <vector>

namespace {

// 16.16 fixed point, rounded as the painter's scaled blits round: the first
// sample from the centre of the first pixel painted, then whole steps.
struct Walk
{
    std::int64_t first;
    std::int64_t step;
};

Walk WalkFor(int from, int source, int shown)
{
    const double ratio = double(source) / double(shown);
    return { std::int64_t(std::ceil((from + 0.5) * ratio * 65536)) - 1, std::int64_t(65536 * ratio) };
}

int Sample(std::int64_t at, int size)
{
    return std::clamp(int(at >> 16), 0, size - 1);
}

} // namespace

void ScaleBgrInto(const QImage& frame, QSize shown, const QRect& part, QImage& out)
{
    const QRect area = part & QRect(QPoint(0, 0), shown);
    if (frame.isNull() || area.isEmpty() || frame.format() != QImage::Format_BGR888 || out.depth() != 32
        || out.width() < area.width() || out.height() < area.height())
        return;
    const int width = area.width();
    std::vector<int> columns(static_cast<std::size_t>(width));
    const Walk across = WalkFor(area.left(), frame.width(), shown.width());
    for (int i = 0; i < width; ++i)
        columns[std::size_t(i)] = Sample(across.first + across.step * i, frame.width());
    // The frame's columns the part reads, made 32-bit a row at a time by the
    // vector units; the sampling then moves whole pixels.
    const int left = columns.front();
    for (int& c : columns)
        c -= left;
    const int span = columns.back() + 1;
    std::vector<quint32> wide(static_cast<std::size_t>(span));

    const Walk down = WalkFor(area.top(), frame.height(), shown.height());
    int previousRow = -1;
    const quint32* previous = nullptr;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const int row = Sample(down.first + down.step * (y - area.top()), frame.height());
        auto* line = reinterpret_cast<quint32*>(out.scanLine(y - area.top()));
        // Enlarged, neighbouring lines repeat a frame row: copied, not sampled.
        if (row == previousRow) {
            std::memcpy(line, previous, sizeof(quint32) * std::size_t(width));
        } else {
            libyuv::RGB24ToARGB(
                frame.constScanLine(row) + 3 * left, 0, reinterpret_cast<uint8_t*>(wide.data()), 0, span, 1);
            const quint32* in = wide.data();
            const int* at = columns.data();
            for (int i = 0; i < width; ++i)
                line[i] = in[at[i]];
            previousRow = row;
        }
        previous = line;
    }
}

void MarkClipped(QImage& shown, const QRect& part, QRgb bright, QRgb dark)
{
    const QRect area = part & shown.rect();
    if (area.isEmpty() || shown.depth() != 32)
        return;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* px = reinterpret_cast<quint32*>(shown.scanLine(y)) + area.left();
        for (int i = 0; i < area.width(); ++i) {
            const quint32 p = px[i];
            const quint32 r = (p >> 16) & 0xff, g = (p >> 8) & 0xff, b = p & 0xff;
            if (r == 255 || g == 255 || b == 255)
                px[i] = bright;
            else if (r == 0 || g == 0 || b == 0)
                px[i] = dark;
        }
    }
}
