#include "image/CPcxHandler.h"

#include "image/FCObjImage.h"
#include "image/ReadFailure.h"

#include <QIODevice>
#include <QImage>
#include <QSize>
#include <QVariant>
#include <QtEndian>

#include <cstring>
#include <vector>

namespace {

constexpr int kPcxHeaderSize = 128;
constexpr int kPaletteSize = 769; // 0x0C, then 256 RGB triples

struct PcxHeader
{
    int version = 0;
    int encoding = 0;
    int bitsPerPixel = 0;
    int planes = 0;
    int bytesPerLine = 0;
    int width = 0;
    int height = 0;
    uchar palette16[48] = {};
};

bool Supported(int bits, int planes)
{
    return (planes == 1 && (bits == 1 || bits == 2 || bits == 4 || bits == 8)) || (planes == 4 && bits == 1)
        || ((planes == 3 || planes == 4) && bits == 8);
}

// Parses and checks the header; a reason on failure.
bool ParseHeader(const QByteArray& raw, PcxHeader& h, QString* why)
{
    auto fail = [why](const char* text) {
        if (why)
            *why = QString::fromLatin1(text);
        return false;
    };
    if (raw.size() < kPcxHeaderSize)
        return fail("PCX header is truncated");
    const auto* p = reinterpret_cast<const uchar*>(raw.constData());
    if (p[0] != 0x0A)
        return fail("not a PCX file");
    h.version = p[1];
    h.encoding = p[2];
    h.bitsPerPixel = p[3];
    const int xMin = qFromLittleEndian<quint16>(p + 4), yMin = qFromLittleEndian<quint16>(p + 6),
              xMax = qFromLittleEndian<quint16>(p + 8), yMax = qFromLittleEndian<quint16>(p + 10);
    std::memcpy(h.palette16, p + 16, sizeof h.palette16);
    h.planes = p[65];
    h.bytesPerLine = qFromLittleEndian<quint16>(p + 66);
    if (h.version > 5 || h.encoding > 1)
        return fail("not a PCX file");
    if (xMax < xMin || yMax < yMin)
        return fail("PCX picture has no pixels");
    h.width = xMax - xMin + 1;
    h.height = yMax - yMin + 1;
    if (!Supported(h.bitsPerPixel, h.planes))
        return fail("unsupported PCX pixel layout");
    if (h.bytesPerLine < (h.width * h.bitsPerPixel + 7) / 8)
        return fail("PCX line length is too short for its width");
    if (qint64(h.width) * h.height > FCObjImage::kMaxPixels)
        return fail("picture is too large");
    return true;
}

// Bytes the RLE stream in[0, size) expands to, up to limit, without
// expanding it.
qint64 RleBytesPresent(const uchar* in, qint64 size, qint64 limit)
{
    qint64 done = 0, i = 0;
    while (done < limit && i < size) {
        if ((in[i] & 0xC0) == 0xC0) {
            if (i + 1 >= size)
                break;
            done += in[i] & 0x3F;
            i += 2;
        } else {
            ++done;
            ++i;
        }
    }
    return std::min(done, limit);
}

// Expands a stream found complete into exactly out.size() bytes.
void Decode(const uchar* in, bool rle, std::vector<uchar>& out)
{
    const std::size_t total = out.size();
    if (!rle) {
        std::memcpy(out.data(), in, total);
        return;
    }
    std::size_t o = 0;
    qint64 i = 0;
    while (o < total) {
        uchar c = in[i++];
        std::size_t count = 1;
        if ((c & 0xC0) == 0xC0) {
            count = c & 0x3F;
            c = in[i++];
        }
        // A run may end past the last line; what does not fit is dropped.
        count = std::min(count, total - o);
        std::memset(out.data() + o, c, count);
        o += count;
    }
}

void EncodeLine(const uchar* line, int n, QByteArray& out)
{
    int i = 0;
    while (i < n) {
        const uchar v = line[i];
        int run = 1;
        while (i + run < n && run < 63 && line[i + run] == v)
            ++run;
        if (run > 1 || (v & 0xC0) == 0xC0)
            out.append(char(0xC0 | run));
        out.append(char(v));
        i += run;
    }
}

// True when some pixel of a picture with an alpha channel is not opaque.
bool Translucent(const QImage& image)
{
    if (!image.hasAlphaChannel())
        return false;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y) {
        const auto* px = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x)
            if (qAlpha(px[x]) != 255)
                return true;
    }
    return false;
}

// Readers show a 1-bit PCX as black (0) and white (1) whatever its header's
// palette says, so a two-colour picture is written as 1-bit only when its
// colours are black and white; its bits then become those colours' bits.
// False, leaving image alone, for any other pair.
bool BlackAndWhite(QImage& image)
{
    QImage mono = image.convertToFormat(QImage::Format_Mono);
    const QVector<QRgb> table = mono.colorTable();
    int bit[2] = { 0, 1 };
    for (int i = 0; i < 2; ++i) {
        const QRgb c = (i < table.size() ? table[i] : table.value(0)) & 0xFFFFFF;
        if (c != 0 && c != 0xFFFFFF)
            return false;
        bit[i] = c != 0;
    }
    for (int y = 0; y < mono.height(); ++y) {
        uchar* line = mono.scanLine(y);
        for (int k = 0; k < mono.bytesPerLine(); ++k)
            line[k] = uchar((bit[0] ? ~line[k] : 0) & 0xFF) | uchar((bit[1] ? line[k] : 0) & 0xFF);
    }
    mono.setColorTable({ qRgb(0, 0, 0), qRgb(255, 255, 255) });
    image = mono;
    return true;
}

} // namespace

bool CPcxHandler::canRead(QIODevice* device)
{
    if (device == nullptr)
        return false;
    PcxHeader h;
    return ParseHeader(device->peek(kPcxHeaderSize), h, nullptr);
}

bool CPcxHandler::canRead() const
{
    if (!canRead(device()))
        return false;
    setFormat("pcx");
    return true;
}

bool CPcxHandler::supportsOption(ImageOption option) const
{
    return option == Size;
}

QVariant CPcxHandler::option(ImageOption option) const
{
    PcxHeader h;
    if (option == Size && device() != nullptr && ParseHeader(device()->peek(kPcxHeaderSize), h, nullptr))
        return QSize(h.width, h.height);
    return {};
}

bool CPcxHandler::Fail(const QString& why)
{
    m_error = why;
    qWarning("PCX: %s", qPrintable(why));
    return false;
}

bool CPcxHandler::read(QImage* image)
{
    QIODevice* dev = device();
    if (dev == nullptr)
        return Fail(QStringLiteral("no file to read"));
    const QByteArray header = dev->read(kPcxHeaderSize);
    PcxHeader h;
    QString why;
    if (!ParseHeader(header, h, &why))
        return Fail(why);
    const std::size_t lineBytes = std::size_t(h.bytesPerLine) * h.planes;
    const std::size_t total = lineBytes * h.height;
    // The rest is in the file already; its length is checked against the
    // declared size before the pixels are allocated.
    const QByteArray body = dev->readAll();
    const auto* in = reinterpret_cast<const uchar*>(body.constData());
    qint64 inSize = body.size();

    // 256-colour palette after the pixels of 8-bit single-plane pictures.
    QVector<QRgb> colors;
    if (h.planes == 1 && h.bitsPerPixel == 8) {
        if (inSize >= kPaletteSize && in[inSize - kPaletteSize] == 0x0C) {
            const uchar* pal = in + inSize - kPaletteSize + 1;
            for (int i = 0; i < 256; ++i)
                colors.append(qRgb(pal[3 * i], pal[3 * i + 1], pal[3 * i + 2]));
            inSize -= kPaletteSize;
        } else {
            for (int i = 0; i < 256; ++i)
                colors.append(qRgb(i, i, i));
        }
    } else if (h.planes == 1 && h.bitsPerPixel == 1) {
        colors = { qRgb(0, 0, 0), qRgb(255, 255, 255) };
    } else if (h.planes * h.bitsPerPixel <= 4) {
        for (int i = 0; i < (1 << (h.planes * h.bitsPerPixel)); ++i)
            colors.append(qRgb(h.palette16[3 * i], h.palette16[3 * i + 1], h.palette16[3 * i + 2]));
    }

    const qint64 present = h.encoding == 1 ? RleBytesPresent(in, inSize, qint64(total)) : inSize;
    if (present < qint64(total))
        return Fail(TruncatedText(present / qint64(lineBytes), h.height));

    std::vector<uchar> pixels;
    try {
        pixels.resize(total);
    } catch (const std::bad_alloc&) {
        return Fail(QStringLiteral("not enough memory for the picture"));
    }
    Decode(in, h.encoding == 1, pixels);

    QImage::Format format = QImage::Format_Indexed8;
    if (h.planes == 1 && h.bitsPerPixel == 1)
        format = QImage::Format_Mono;
    else if (h.planes == 3)
        format = QImage::Format_RGB32;
    else if (h.planes == 4 && h.bitsPerPixel == 8)
        format = QImage::Format_ARGB32;
    QImage out(h.width, h.height, format);
    if (out.isNull())
        return Fail(QStringLiteral("not enough memory for the picture"));
    if (!colors.isEmpty())
        out.setColorTable(colors);

    for (int y = 0; y < h.height; ++y) {
        const uchar* line = pixels.data() + std::size_t(y) * lineBytes;
        uchar* dst = out.scanLine(y);
        const int bpl = h.bytesPerLine;
        if (format == QImage::Format_Mono) {
            std::memcpy(dst, line, std::size_t((h.width + 7) / 8));
        } else if (h.planes == 1 && h.bitsPerPixel == 8) {
            std::memcpy(dst, line, std::size_t(h.width));
        } else if (h.planes == 1) { // 2 or 4 bits, most significant first
            const int bits = h.bitsPerPixel;
            const int perByte = 8 / bits;
            for (int x = 0; x < h.width; ++x) {
                const int shift = 8 - bits * (x % perByte + 1);
                dst[x] = uchar((line[x / perByte] >> shift) & ((1 << bits) - 1));
            }
        } else if (h.bitsPerPixel == 1) { // four planes, plane k is bit k
            for (int x = 0; x < h.width; ++x) {
                int v = 0;
                for (int k = 0; k < 4; ++k)
                    v |= ((line[k * bpl + x / 8] >> (7 - x % 8)) & 1) << k;
                dst[x] = uchar(v);
            }
        } else {
            auto* px = reinterpret_cast<QRgb*>(dst);
            for (int x = 0; x < h.width; ++x) {
                const int a = h.planes == 4 ? line[3 * bpl + x] : 255;
                px[x] = qRgba(line[x], line[bpl + x], line[2 * bpl + x], a);
            }
        }
    }
    *image = out;
    return true;
}

bool CPcxHandler::write(const QImage& source)
{
    QIODevice* dev = device();
    if (dev == nullptr || source.isNull() || source.width() > 65535 || source.height() > 65535)
        return false;
    QImage image = source;
    int planes = 1;
    int bits = 8;
    if (Translucent(image)) {
        // A fourth plane keeps the alpha the reader takes from one, paletted
        // pictures' too; opaque pictures keep the forms every reader takes.
        image = image.convertToFormat(QImage::Format_RGBA8888);
        planes = 4;
    } else if (image.depth() == 1 && BlackAndWhite(image)) {
        bits = 1;
    } else if (image.depth() <= 8) {
        image = image.convertToFormat(QImage::Format_Indexed8);
    } else {
        image = image.convertToFormat(QImage::Format_RGB888);
        planes = 3;
    }
    const int w = image.width();
    const int bytesPerLine = ((w * bits + 15) / 16) * 2;

    uchar header[kPcxHeaderSize] = {};
    header[0] = 0x0A;
    header[1] = 5;
    header[2] = 1;
    header[3] = uchar(bits);
    qToLittleEndian(quint16(w - 1), header + 8);
    qToLittleEndian(quint16(image.height() - 1), header + 10);
    const int dpi = image.dotsPerMeterX() > 0 ? qRound(image.dotsPerMeterX() * 0.0254) : 96;
    qToLittleEndian(quint16(dpi), header + 12);
    qToLittleEndian(quint16(dpi), header + 14);
    if (bits == 1)
        std::memset(header + 19, 255, 3); // black and white, as readers show 1-bit
    header[65] = uchar(planes);
    qToLittleEndian(quint16(bytesPerLine), header + 66);
    qToLittleEndian(quint16(1), header + 68);

    QByteArray out(reinterpret_cast<const char*>(header), kPcxHeaderSize);
    std::vector<uchar> line(std::size_t(bytesPerLine), 0);
    for (int y = 0; y < image.height(); ++y) {
        const uchar* src = image.constScanLine(y);
        for (int p = 0; p < planes; ++p) {
            std::fill(line.begin(), line.end(), uchar(0));
            if (planes == 1)
                std::memcpy(line.data(), src, std::size_t((w * bits + 7) / 8));
            else
                for (int x = 0; x < w; ++x)
                    line[std::size_t(x)] = src[planes * x + p];
            EncodeLine(line.data(), bytesPerLine, out);
        }
        if (out.size() > (1 << 20)) {
            if (dev->write(out) != out.size())
                return false;
            out.clear();
        }
    }
    if (planes == 1 && bits == 8) {
        out.append(char(0x0C));
        const QVector<QRgb> table = image.colorTable();
        for (int i = 0; i < 256; ++i) {
            const QRgb c = i < table.size() ? table[i] : qRgb(0, 0, 0);
            out.append(char(qRed(c)));
            out.append(char(qGreen(c)));
            out.append(char(qBlue(c)));
        }
    }
    return dev->write(out) == out.size();
}
