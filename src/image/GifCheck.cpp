#include "image/GifCheck.h"

#include "image/ReadFailure.h"

#include <QtEndian>

#include <vector>

namespace {

// Pixels the LZW stream expands to, up to limit: the length of every table
// entry is kept, never its string.
qint64 LzwPixels(const QByteArray& data, int minCodeSize, qint64 limit)
{
    const int clear = 1 << minCodeSize;
    const int end = clear + 1;
    std::vector<qint64> length(4096, 1);
    int next = clear + 2, bits = minCodeSize + 1, previous = -1;
    qint64 pixels = 0;
    const auto* p = reinterpret_cast<const uchar*>(data.constData());
    const qint64 totalBits = qint64(data.size()) * 8;
    for (qint64 bit = 0; bit + bits <= totalBits && pixels < limit;) {
        int code = 0;
        for (int k = 0; k < bits; ++k, ++bit)
            code |= ((p[bit / 8] >> (bit % 8)) & 1) << k;
        if (code == clear) {
            next = clear + 2;
            bits = minCodeSize + 1;
            previous = -1;
            continue;
        }
        if (code == end)
            break;
        if (code > next || (previous < 0 && code >= clear))
            break; // a code the decoder cannot know: the rest is lost to it
        const qint64 n = code == next ? length[std::size_t(previous)] + 1 : length[std::size_t(code)];
        pixels += n;
        if (previous >= 0 && next < 4096) {
            length[std::size_t(next)] = length[std::size_t(previous)] + 1;
            ++next;
            if (next == (1 << bits) && bits < 12)
                ++bits;
        }
        previous = code;
    }
    return std::min(pixels, limit);
}

} // namespace

bool GifFrameComplete(const QByteArray& file, QString& why)
{
    const auto* p = reinterpret_cast<const uchar*>(file.constData());
    const qint64 size = file.size();
    const QString cut = TruncatedFileText();
    if (size < 13)
        return true; // not a GIF we can judge; Qt's reader refuses it
    qint64 at = 13;
    if (p[10] & 0x80)
        at += 3 << ((p[10] & 7) + 1);
    // Sub-blocks from at to their terminator; false when the file ends first.
    auto blocks = [&](QByteArray* into) {
        while (at < size && p[at] != 0) {
            if (into != nullptr)
                into->append(file.mid(at + 1, p[at]));
            at += 1 + p[at];
        }
        ++at;
        return at <= size;
    };
    while (at < size) {
        const uchar kind = p[at++];
        if (kind == 0x21) {
            ++at; // label
            if (!blocks(nullptr)) {
                why = cut;
                return false;
            }
        } else if (kind == 0x2C) {
            if (at + 9 > size) {
                why = cut;
                return false;
            }
            const int width = qFromLittleEndian<quint16>(p + at + 4);
            const int height = qFromLittleEndian<quint16>(p + at + 6);
            const uchar flags = p[at + 8];
            at += 9;
            if (flags & 0x80)
                at += 3 << ((flags & 7) + 1);
            if (at >= size) {
                why = TruncatedText(0, height);
                return false;
            }
            const int minCodeSize = p[at++];
            if (minCodeSize < 1 || minCodeSize > 11)
                return true; // Qt's to refuse
            QByteArray data;
            blocks(&data);
            const qint64 want = qint64(width) * height;
            const qint64 got = LzwPixels(data, minCodeSize, want);
            if (got < want) {
                why = TruncatedText(width > 0 ? got / width : 0, height);
                return false;
            }
            return true;
        } else {
            return true; // the trailer, or bytes Qt may know better
        }
    }
    why = cut;
    return false;
}
