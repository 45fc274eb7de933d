#include "image/CTgaHandler.h"

#include "image/FCObjImage.h"
#include "image/ReadFailure.h"

#include <QIODevice>
#include <QImage>
#include <QSize>
#include <QVariant>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr int kTgaHeaderSize = 18;

struct TgaHeader
{
    int idLength = 0;
    int mapType = 0;
    int type = 0;
    int mapFirst = 0;
    int mapLength = 0;
    int mapEntryBits = 0;
    int width = 0;
    int height = 0;
    int pixelBits = 0;
    int descriptor = 0;

    bool Rle() const { return type >= 9; }
    int BaseType() const { return type & 7; } // 1 colour-mapped, 2 true colour, 3 gray
    int PixelBytes() const { return (pixelBits + 7) / 8; }
    bool TopDown() const { return (descriptor & 0x20) != 0; }
    bool RightToLeft() const { return (descriptor & 0x10) != 0; }
    int AlphaBits() const { return descriptor & 0x0F; }
};

bool ParseHeader(const QByteArray& raw, TgaHeader& h, QString* why)
{
    auto fail = [why](const char* text) {
        if (why)
            *why = QString::fromLatin1(text);
        return false;
    };
    if (raw.size() < kTgaHeaderSize)
        return fail("TGA header is truncated");
    const auto* p = reinterpret_cast<const uchar*>(raw.constData());
    h.idLength = p[0];
    h.mapType = p[1];
    h.type = p[2];
    h.mapFirst = qFromLittleEndian<quint16>(p + 3);
    h.mapLength = qFromLittleEndian<quint16>(p + 5);
    h.mapEntryBits = p[7];
    h.width = qFromLittleEndian<quint16>(p + 12);
    h.height = qFromLittleEndian<quint16>(p + 14);
    h.pixelBits = p[16];
    h.descriptor = p[17];
    if (h.mapType > 1
        || (h.type != 1 && h.type != 2 && h.type != 3 && h.type != 9 && h.type != 10 && h.type != 11))
        return fail("not a TGA file");
    if ((h.descriptor & 0xC0) != 0)
        return fail("interleaved TGA is not supported");
    const bool mapped = h.BaseType() == 1;
    if (mapped && (h.mapType != 1 || h.pixelBits != 8))
        return fail("unsupported TGA colour map");
    if (h.mapType == 1
        && (h.mapLength == 0
            || (h.mapEntryBits != 15 && h.mapEntryBits != 16 && h.mapEntryBits != 24
                && h.mapEntryBits != 32)))
        return fail("unsupported TGA colour map");
    if (h.BaseType() == 2 && h.pixelBits != 15 && h.pixelBits != 16 && h.pixelBits != 24 && h.pixelBits != 32)
        return fail("unsupported TGA pixel depth");
    if (h.BaseType() == 3 && h.pixelBits != 8 && h.pixelBits != 16)
        return fail("unsupported TGA pixel depth");
    if (h.width == 0 || h.height == 0)
        return fail("TGA picture has no pixels");
    if (qint64(h.width) * h.height > FCObjImage::kMaxPixels)
        return fail("picture is too large");
    return true;
}

QRgb Color16(int v)
{
    const int r = (v >> 10) & 31, g = (v >> 5) & 31, b = v & 31;
    return qRgb((r << 3) | (r >> 2), (g << 3) | (g >> 2), (b << 3) | (b >> 2));
}

// One pixel or map entry of `bits` bits at p as a colour.
QRgb ColorAt(const uchar* p, int bits, bool alpha)
{
    switch (bits) {
    case 15:
    case 16:
        return Color16(qFromLittleEndian<quint16>(p));
    case 24:
        return qRgb(p[2], p[1], p[0]);
    default:
        return qRgba(p[2], p[1], p[0], alpha ? p[3] : 255);
    }
}

// What the TGA 2 footer says: where the pixel data must end (the extension
// and developer areas follow it) and the extension area's attribute type.
struct Footer
{
    qint64 dataEnd = 0;
    int attributes = -1; // absent

    // 0 no alpha, 1 and 2 undefined bits to ignore or keep, 3 alpha,
    // 4 premultiplied alpha.
    bool AlphaDenied() const { return attributes >= 0 && attributes < 3; }
    bool Premultiplied() const { return attributes == 4; }
};

// rest is the file after its header; offsets in the footer count from the
// file's start. An area said to begin inside the header, the ID or the
// colour map is ignored.
Footer FindFooter(const QByteArray& rest, qint64 pixelStart)
{
    constexpr int kFooterSize = 26;
    constexpr int kExtensionSize = 495;
    Footer f;
    f.dataEnd = rest.size();
    if (rest.size() < kFooterSize || !rest.endsWith(QByteArray("TRUEVISION-XFILE.\0", 18)))
        return f;
    const auto* p = reinterpret_cast<const uchar*>(rest.constData());
    const qint64 footerAt = rest.size() - kFooterSize;
    f.dataEnd = footerAt;
    const qint64 extension = qint64(qFromLittleEndian<quint32>(p + footerAt)) - kTgaHeaderSize;
    const qint64 developer = qint64(qFromLittleEndian<quint32>(p + footerAt + 4)) - kTgaHeaderSize;
    for (const qint64 area : { extension, developer })
        if (area >= pixelStart && area < f.dataEnd)
            f.dataEnd = area;
    if (extension >= pixelStart && extension + kExtensionSize <= footerAt
        && qFromLittleEndian<quint16>(p + extension) == kExtensionSize)
        f.attributes = p[extension + kExtensionSize - 1];
    return f;
}

// Pixels the RLE stream in[0, size) holds completely, up to limit: walks the
// packets without decoding, so a short file is refused before allocation.
qint64 RlePixelsPresent(const uchar* in, qint64 size, int bytes, qint64 limit)
{
    qint64 done = 0, i = 0;
    while (done < limit && i < size) {
        const uchar packet = in[i];
        const qint64 count = (packet & 0x7F) + 1;
        const qint64 length = 1 + ((packet & 0x80) ? bytes : count * bytes);
        if (i + length > size)
            break;
        i += length;
        done += count;
    }
    return std::min(done, limit);
}

// Expands a stream RlePixelsPresent found complete; a run past the end is cut.
void DecodeRle(const uchar* in, int bytes, std::vector<uchar>& out)
{
    std::size_t o = 0, i = 0;
    const std::size_t total = out.size();
    while (o < total) {
        const uchar packet = in[i++];
        const std::size_t count = std::size_t(packet & 0x7F) + 1;
        const std::size_t n = std::min(count * bytes, total - o);
        if (packet & 0x80) {
            for (std::size_t k = 0; k < n; k += bytes)
                std::memcpy(out.data() + o + k, in + i, std::size_t(bytes));
            i += bytes;
        } else {
            std::memcpy(out.data() + o, in + i, n);
            i += count * bytes;
        }
        o += n;
    }
}

bool IsGray(const QImage& argb)
{
    for (int y = 0; y < argb.height(); ++y) {
        const auto* px = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x)
            if (qRed(px[x]) != qGreen(px[x]) || qGreen(px[x]) != qBlue(px[x]))
                return false;
    }
    return true;
}

} // namespace

bool CTgaHandler::canRead(QIODevice* device)
{
    if (device == nullptr)
        return false;
    TgaHeader h;
    return ParseHeader(device->peek(kTgaHeaderSize), h, nullptr);
}

bool CTgaHandler::canRead() const
{
    if (!canRead(device()))
        return false;
    setFormat("tga");
    return true;
}

bool CTgaHandler::supportsOption(ImageOption option) const
{
    return option == Size;
}

QVariant CTgaHandler::option(ImageOption option) const
{
    TgaHeader h;
    if (option == Size && device() != nullptr && ParseHeader(device()->peek(kTgaHeaderSize), h, nullptr))
        return QSize(h.width, h.height);
    return {};
}

bool CTgaHandler::Fail(const QString& why)
{
    m_error = why;
    qWarning("TGA: %s", qPrintable(why));
    return false;
}

bool CTgaHandler::read(QImage* image)
{
    QIODevice* dev = device();
    if (dev == nullptr)
        return Fail(QStringLiteral("no file to read"));
    TgaHeader h;
    QString why;
    if (!ParseHeader(dev->read(kTgaHeaderSize), h, &why))
        return Fail(why);
    // Everything after the header is in the file already, so holding it costs
    // no more than the file; sizes are checked against it before any pixel
    // buffer is allocated.
    const QByteArray rest = dev->readAll();
    const auto* in = reinterpret_cast<const uchar*>(rest.constData());
    const int bytes = h.PixelBytes();
    const int entryBytes = (h.mapEntryBits + 7) / 8;
    const qint64 mapBytes = h.mapType == 1 ? qint64(h.mapLength) * entryBytes : 0;
    const qint64 pixelStart = h.idLength + mapBytes;
    const Footer footer = FindFooter(rest, pixelStart);
    const qint64 end = footer.dataEnd;
    if (pixelStart > end)
        return Fail(
            h.mapType == 1 ? QStringLiteral("the colour map is truncated") : TruncatedText(0, h.height));
    const qint64 pixels = qint64(h.width) * h.height;
    const qint64 available = end - pixelStart;
    const qint64 present
        = h.Rle() ? RlePixelsPresent(in + pixelStart, available, bytes, pixels) : available / bytes;
    if (present < pixels)
        return Fail(TruncatedText(present / h.width, h.height));

    // Alpha only where the descriptor counts alpha bits and, in a TGA 2 file,
    // the extension area does not say the bits are something else.
    const bool alphaDeclared = h.AlphaBits() > 0 && !footer.AlphaDenied();
    const bool premultiplied = footer.Premultiplied();
    QVector<QRgb> map;
    if (h.mapType == 1) {
        const bool mapAlpha = h.mapEntryBits == 32 && alphaDeclared;
        const uchar* m = in + h.idLength;
        for (int i = 0; i < h.mapLength; ++i)
            map.append(ColorAt(m + i * entryBytes, h.mapEntryBits, mapAlpha));
    }

    std::vector<uchar> raw;
    try {
        raw.resize(std::size_t(pixels) * bytes);
    } catch (const std::bad_alloc&) {
        return Fail(QStringLiteral("not enough memory for the picture"));
    }
    if (h.Rle())
        DecodeRle(in + pixelStart, bytes, raw);
    else
        std::memcpy(raw.data(), in + pixelStart, raw.size());

    const bool grayAlpha = h.BaseType() == 3 && h.pixelBits == 16 && alphaDeclared;
    const bool alpha = (h.BaseType() == 2 && h.pixelBits == 32 && alphaDeclared) || grayAlpha;
    QImage::Format format = QImage::Format_RGB32;
    if (alpha)
        format = premultiplied ? QImage::Format_ARGB32_Premultiplied : QImage::Format_ARGB32;
    else if (h.BaseType() != 2)
        format = QImage::Format_Indexed8;
    QImage out(h.width, h.height, format);
    if (out.isNull())
        return Fail(QStringLiteral("not enough memory for the picture"));
    if (h.BaseType() == 1) {
        // Indices count from the map's first entry; the table covers 0..255
        // so that no index can point outside it.
        QVector<QRgb> table(256, qRgb(0, 0, 0));
        for (int i = 0; i < 256; ++i) {
            const int entry = i - h.mapFirst;
            if (entry >= 0 && entry < map.size())
                table[i] = map[entry];
        }
        out.setColorTable(table);
    } else if (format == QImage::Format_Indexed8) {
        QVector<QRgb> table;
        for (int i = 0; i < 256; ++i)
            table.append(qRgb(i, i, i));
        out.setColorTable(table);
    }
    for (int row = 0; row < h.height; ++row) {
        const int y = h.TopDown() ? row : h.height - 1 - row;
        const uchar* src = raw.data() + std::size_t(row) * h.width * bytes;
        uchar* dst = out.scanLine(y);
        for (int col = 0; col < h.width; ++col) {
            const int x = h.RightToLeft() ? h.width - 1 - col : col;
            const uchar* p = src + std::size_t(col) * bytes;
            if (format == QImage::Format_Indexed8)
                dst[x] = p[0]; // the gray byte of 16-bit gray comes first
            else if (grayAlpha)
                reinterpret_cast<QRgb*>(dst)[x] = qRgba(p[0], p[0], p[0], p[1]);
            else
                reinterpret_cast<QRgb*>(dst)[x] = ColorAt(p, h.pixelBits, alpha);
        }
    }
    *image = out;
    return true;
}

bool CTgaHandler::write(const QImage& source)
{
    QIODevice* dev = device();
    if (dev == nullptr || source.isNull() || source.width() > 65535 || source.height() > 65535)
        return false;
    // A translucent palette goes as 32-bit true colour, which every reader
    // takes; 32-bit colour maps are beyond some (Pillow).
    const QVector<QRgb> sourceTable = source.colorTable();
    const bool mapped = source.depth() <= 8
        && std::all_of(sourceTable.cbegin(), sourceTable.cend(), [](QRgb c) { return qAlpha(c) == 255; });
    const QImage image = mapped
        ? source.convertToFormat(QImage::Format_Indexed8)
        : source.convertToFormat(source.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const int w = image.width(), hgt = image.height();

    QVector<QRgb> table;
    if (mapped) {
        table = image.colorTable();
        if (table.isEmpty())
            table.append(qRgb(0, 0, 0));
    }
    const bool alpha = !mapped && image.hasAlphaChannel();
    // A gray picture with alpha takes two bytes a pixel, gray then alpha.
    const bool grayAlpha = alpha && IsGray(image);
    const int bytes = mapped ? 1 : grayAlpha ? 2 : alpha ? 4 : 3;
    uchar header[kTgaHeaderSize] = {};
    if (mapped) {
        header[1] = 1;
        header[2] = 1;
        qToLittleEndian(quint16(table.size()), header + 5);
        header[7] = 24;
    } else {
        header[2] = grayAlpha ? 3 : 2;
    }
    qToLittleEndian(quint16(w), header + 12);
    qToLittleEndian(quint16(hgt), header + 14);
    header[16] = uchar(bytes * 8);
    // Bottom-up rows, left to right; eight alpha bits in the pixels.
    header[17] = alpha ? 8 : 0;

    QByteArray out(reinterpret_cast<const char*>(header), kTgaHeaderSize);
    for (const QRgb c : table) {
        const char entry[3] = { char(qBlue(c)), char(qGreen(c)), char(qRed(c)) };
        out.append(entry, 3);
    }
    QByteArray line(w * bytes, 0);
    for (int y = hgt - 1; y >= 0; --y) {
        const uchar* src = image.constScanLine(y);
        if (mapped) {
            std::memcpy(line.data(), src, std::size_t(w));
        } else {
            const auto* px = reinterpret_cast<const QRgb*>(src);
            for (int x = 0; x < w && grayAlpha; ++x) {
                line[2 * x] = char(qBlue(px[x]));
                line[2 * x + 1] = char(qAlpha(px[x]));
            }
            for (int x = 0; x < w && !grayAlpha; ++x) {
                char* d = line.data() + x * bytes;
                d[0] = char(qBlue(px[x]));
                d[1] = char(qGreen(px[x]));
                d[2] = char(qRed(px[x]));
                if (alpha)
                    d[3] = char(qAlpha(px[x]));
            }
        }
        out.append(line);
        if (out.size() > (1 << 20)) {
            if (dev->write(out) != out.size())
                return false;
            out.clear();
        }
    }
    static const char footer[26] = { 0, 0, 0, 0, 0, 0, 0, 0, 'T', 'R', 'U', 'E', 'V', 'I', 'S', 'I', 'O', 'N',
        '-', 'X', 'F', 'I', 'L', 'E', '.', 0 };
    out.append(footer, sizeof footer);
    return dev->write(out) == out.size();
}
