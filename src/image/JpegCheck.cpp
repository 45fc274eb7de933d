#include "image/JpegCheck.h"

#include "image/ReadFailure.h"

#include <QtEndian>

namespace {

bool Restart(uchar marker)
{
    return marker >= 0xD0 && marker <= 0xD7;
}

} // namespace

bool JpegComplete(const QByteArray& file, QString& why)
{
    const auto* p = reinterpret_cast<const uchar*>(file.constData());
    const qint64 size = file.size();
    if (size < 4 || p[0] != 0xFF || p[1] != 0xD8)
        return true;
    qint64 at = 2;
    while (at + 2 <= size) {
        if (p[at] != 0xFF)
            return true; // not a layout followed here
        const uchar marker = p[at + 1];
        if (marker == 0xFF) { // fill byte before a marker
            ++at;
            continue;
        }
        at += 2;
        if (marker == 0xD9)
            return true;
        if (marker == 0x01 || Restart(marker))
            continue;
        if (at + 2 > size)
            break;
        const int length = qFromBigEndian<quint16>(p + at);
        if (length < 2)
            return true;
        at += length;
        if (marker == 0xDA) {
            // Entropy-coded data runs to the next marker other than a
            // stuffed zero or a restart.
            while (at + 1 < size && !(p[at] == 0xFF && p[at + 1] != 0 && !Restart(p[at + 1])))
                ++at;
            if (at + 1 >= size)
                break;
        }
    }
    why = TruncatedFileText();
    return false;
}
