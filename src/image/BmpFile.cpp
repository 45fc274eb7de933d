#include "image/BmpFile.h"

#include "image/FCObjImage.h"
#include "image/ReadFailure.h"

#include <QtEndian>

#include <cstdlib>

namespace {

constexpr int kFileHeaderSize = 14;
constexpr int kRgb = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6;

// Decodes a run-length stream of 8 or 4 bits into image (bottom row first).
// Runs past a row's end and moves past the picture are cut to it.
BmpOutcome DecodeRle(const uchar* in, qint64 size, int bits, QImage& image, QString& why)
{
    const int w = image.width(), h = image.height();
    image.fill(0);
    qint64 i = 0;
    int x = 0, y = 0;
    auto put = [&](int value) {
        if (x < w && y < h)
            image.scanLine(h - 1 - y)[x] = uchar(value);
        ++x;
    };
    while (i + 2 <= size) {
        const int n = in[i], v = in[i + 1];
        i += 2;
        if (n > 0) {
            for (int k = 0; k < n; ++k)
                put(bits == 8 ? v : (k % 2 == 0 ? v >> 4 : v & 15));
        } else if (v == 0) {
            x = 0;
            ++y;
        } else if (v == 1) {
            return BmpOutcome::Read;
        } else if (v == 2) {
            if (i + 2 > size)
                break;
            x += in[i];
            y += in[i + 1];
            i += 2;
        } else {
            const qint64 bytes = bits == 8 ? v : (v + 1) / 2;
            if (i + bytes > size)
                break;
            for (int k = 0; k < v; ++k)
                put(bits == 8 ? in[i + k] : (k % 2 == 0 ? in[i + k / 2] >> 4 : in[i + k / 2] & 15));
            i += (bytes + 1) & ~qint64(1); // absolute runs keep to 16-bit words
        }
        if (y >= h) // every row is there; an end marker may be missing
            return BmpOutcome::Read;
    }
    why = TruncatedText(y, h);
    return BmpOutcome::Refused;
}

} // namespace

BmpOutcome ReadBmpFile(const QByteArray& file, QImage& image, QString& why)
{
    const auto* p = reinterpret_cast<const uchar*>(file.constData());
    const qint64 size = file.size();
    if (size < kFileHeaderSize + 16 || !file.startsWith("BM"))
        return BmpOutcome::LeaveToQt;
    const qint64 dataAt = qFromLittleEndian<quint32>(p + 10);
    const qint64 infoSize = qFromLittleEndian<quint32>(p + 14);
    qint64 width = 0, height = 0;
    int bits = 0, compression = kRgb;
    if (infoSize == 12) {
        width = qFromLittleEndian<quint16>(p + 18);
        height = qFromLittleEndian<quint16>(p + 20);
        bits = qFromLittleEndian<quint16>(p + 24);
    } else if (infoSize >= 40 && size >= kFileHeaderSize + 40) {
        width = qFromLittleEndian<qint32>(p + 18);
        height = qFromLittleEndian<qint32>(p + 22);
        bits = qFromLittleEndian<quint16>(p + 28);
        compression = int(qFromLittleEndian<quint32>(p + 30));
    } else {
        return BmpOutcome::LeaveToQt;
    }
    const qint64 rows = std::abs(height);
    // Sizes Qt refuses, and pictures too large for us, are its to report.
    if (width <= 0 || rows == 0 || width * rows > FCObjImage::kMaxPixels || bits <= 0 || bits > 32)
        return BmpOutcome::LeaveToQt;

    if (compression == kRgb || compression == kBitFields || compression == kAlphaBitFields) {
        const qint64 stride = (width * bits + 31) / 32 * 4;
        const qint64 present = std::max<qint64>(0, size - dataAt) / stride;
        if (present < rows) {
            why = TruncatedText(present, rows);
            return BmpOutcome::Refused;
        }
        return BmpOutcome::LeaveToQt;
    }
    if (compression != kRle8 && compression != kRle4)
        return BmpOutcome::LeaveToQt;
    // Qt would decode these too, into memory it never clears.
    if (bits != (compression == kRle8 ? 8 : 4) || height < 0) {
        why = QStringLiteral("the run-length encoding does not fit the picture's depth or row order");
        return BmpOutcome::Refused;
    }

    const qint64 tableAt = kFileHeaderSize + infoSize;
    const qint64 used = qFromLittleEndian<quint32>(p + 46);
    const qint64 entries = used > 0 && used < (1 << bits) ? used : (1 << bits);
    if (tableAt + 4 * entries > size || dataAt > size) {
        why = QStringLiteral("the colour table is truncated");
        return BmpOutcome::Refused;
    }
    QImage out(int(width), int(rows), QImage::Format_Indexed8);
    if (out.isNull()) {
        why = QStringLiteral("not enough memory for the picture");
        return BmpOutcome::Refused;
    }
    QVector<QRgb> table(1 << bits, qRgb(0, 0, 0));
    for (qint64 k = 0; k < entries; ++k) {
        const uchar* e = p + tableAt + 4 * k;
        table[int(k)] = qRgb(e[2], e[1], e[0]);
    }
    out.setColorTable(table);
    const BmpOutcome outcome = DecodeRle(p + dataAt, size - dataAt, bits, out, why);
    if (outcome == BmpOutcome::Read)
        image = out;
    return outcome;
}
