#include "image/PngCheck.h"

#include <QtEndian>

bool PngTruncated(const QByteArray& file)
{
    const auto* p = reinterpret_cast<const uchar*>(file.constData());
    const qint64 size = file.size();
    qint64 at = 8; // signature
    while (at + 8 <= size) {
        const qint64 length = qFromBigEndian<quint32>(p + at);
        if (file.mid(at + 4, 4) == "IEND")
            return false;
        at += 12 + length; // length, type, data, CRC
    }
    return true;
}
