#include "image/FCObjImage.h"

#include "image/BmpFile.h"
#include "image/CPcxHandler.h"
#include "image/CTgaHandler.h"
#include "image/GifCheck.h"
#include "image/ImageProcess.h"
#include "image/JpegCheck.h"
#include "image/PngCheck.h"
#include "image/ReadFailure.h"
#include "platform/AtomicFileWrite.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QtPlugin>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

// The formats Qt lacks come from our static plugin; importing it here means
// every program that links the picture object has them.
Q_IMPORT_PLUGIN(COculixImagePlugin)

namespace {

bool ValidDepth(int bits)
{
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

// Qt's format name for a file's extension; empty when we do not handle it.
QByteArray FormatForPath(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == "jpg" || suffix == "jpeg")
        return "jpeg";
    if (suffix == "tif" || suffix == "tiff")
        return "tiff";
    if (suffix == "bmp" || suffix == "png" || suffix == "gif" || suffix == "tga" || suffix == "pcx")
        return suffix.toLatin1();
    return {};
}

QVector<QRgb> GrayRamp(int entries)
{
    QVector<QRgb> colors;
    for (int i = 0; i < entries; ++i) {
        const int v = entries > 1 ? i * 255 / (entries - 1) : 0;
        colors.append(qRgb(v, v, v));
    }
    return colors;
}

// Reads through reader, refusing oversized pictures before decoding them.
bool ReadChecked(QImageReader& reader, QImage& image, QString& why)
{
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > FCObjImage::kMaxPixels) {
        why = QStringLiteral("the picture is too large (%1 x %2)").arg(size.width()).arg(size.height());
        return false;
    }
    if (reader.read(&image))
        return true;
    why = reader.errorString();
    return false;
}

// The format the content shows: the signatures of the formats Qt reads for
// us, then ours (TGA, which has none, last). Empty when nothing matches.
QByteArray SniffFormat(QIODevice& file)
{
    const QByteArray head = file.peek(8);
    if (head.startsWith("BM"))
        return "bmp";
    if (head.startsWith("\x89PNG"))
        return "png";
    if (head.startsWith("\xFF\xD8\xFF"))
        return "jpeg";
    if (head.startsWith("GIF8"))
        return "gif";
    if (head.startsWith(QByteArray("II*\0", 4)) || head.startsWith(QByteArray("MM\0*", 4)))
        return "tiff";
    if (CPcxHandler::canRead(&file))
        return "pcx";
    if (CTgaHandler::canRead(&file))
        return "tga";
    return {};
}

template <typename Handler> bool ReadOwn(QIODevice& file, QImage& image, QString& why)
{
    file.seek(0);
    Handler handler;
    handler.setDevice(&file);
    if (handler.read(&image))
        return true;
    why = handler.errorString();
    return false;
}

// Reads file as the format its content shows, else as its extension says.
// PCX and TGA are read by our handlers alone: what they refuse stays refused,
// with their reason, as no other reader then makes up pixels.
bool ReadPicture(QIODevice& file, const QByteArray& byExtension, QImage& image, QString& why)
{
    file.seek(0);
    const QByteArray sniffed = SniffFormat(file);
    const QByteArray format = sniffed.isEmpty() ? byExtension : sniffed;
    if (format == "tga" || format == "pcx") {
        if (format == "tga" ? ReadOwn<CTgaHandler>(file, image, why) : ReadOwn<CPcxHandler>(file, image, why))
            return true;
        if (!sniffed.isEmpty())
            return false;
    } else if (format == "bmp") {
        file.seek(0);
        const QByteArray bytes = file.readAll();
        switch (ReadBmpFile(bytes, image, why)) {
        case BmpOutcome::Read:
            return true;
        case BmpOutcome::Refused:
            return false;
        case BmpOutcome::LeaveToQt:
            break;
        }
    } else if (format == "gif" || format == "jpeg") {
        file.seek(0);
        const QByteArray bytes = file.readAll();
        if (format == "gif" ? !GifFrameComplete(bytes, why) : !JpegComplete(bytes, why))
            return false;
    }
    if (!format.isEmpty() && format != "tga" && format != "pcx") {
        file.seek(0);
        QImageReader reader(&file, format);
        if (ReadChecked(reader, image, why))
            return true;
        if (sniffed == "png" && file.seek(0) && PngTruncated(file.readAll()))
            why = TruncatedFileText();
        if (!sniffed.isEmpty())
            return false;
    }
    // The extension may lie about a file of a kind without a signature here.
    file.seek(0);
    QImageReader byContent(&file);
    byContent.setDecideFormatFromContent(true);
    const QByteArray found = byContent.format();
    if (found == "tga" || found == "pcx") {
        // Qt's readers claim what ours refuse; ours say why.
        if (why.isEmpty() && found == "tga")
            ReadOwn<CTgaHandler>(file, image, why);
        else if (why.isEmpty())
            ReadOwn<CPcxHandler>(file, image, why);
        return false;
    }
    if (!found.isEmpty() && found == format)
        return false;
    QString other;
    if (ReadChecked(byContent, image, other))
        return true;
    if (why.isEmpty())
        why = other;
    return false;
}

// A PNG chunk other than the picture data that claims more bytes than the
// file holds: libpng allocates and clears such a chunk whole before reading
// it, so 400 bytes claiming 1.7 GB took seconds and the memory. Empty for a
// file that is no PNG or has no such chunk.
QString PngDamage(QIODevice& device)
{
    static const QByteArray kSignature("\x89PNG\r\n\x1a\n", 8);
    if (!device.seek(0) || device.read(8) != kSignature)
        return {};
    const qint64 size = device.size();
    qint64 pos = 8;
    while (pos + 12 <= size && device.seek(pos)) {
        const QByteArray header = device.read(8);
        if (header.size() != 8)
            break;
        const auto* h = reinterpret_cast<const uchar*>(header.constData());
        const qint64 length = (qint64(h[0]) << 24) | (h[1] << 16) | (h[2] << 8) | h[3];
        const QByteArray type = header.mid(4);
        if (type == "IEND")
            break;
        if (type != "IDAT" && length > size - pos - 12)
            return QStringLiteral(
                "the PNG data is damaged: its %1 chunk claims %2 bytes, more than the file holds")
                .arg(QString::fromLatin1(type))
                .arg(length);
        pos += 12 + length;
    }
    return {};
}

} // namespace

void FCObjImage::RegisterFormats()
{
    static const bool done = [] {
        // Allow the largest picture we accept in its widest decoded form
        // (16 bits per channel); Qt's default of 128 MB stops at 32 Mpixel.
        QImageReader::setAllocationLimit(int(kMaxPixels * 8 / (1024 * 1024)) + 1);
        return true;
    }();
    Q_UNUSED(done);
}

bool FCObjImage::Create(int width, int height, int colorBits)
{
    Destroy();
    if (width <= 0 || height <= 0 || !ValidDepth(colorBits) || qint64(width) * height > kMaxPixels) {
        m_error = QCoreApplication::translate("FCObjImage", "Invalid picture size or depth");
        return false;
    }
    const int pitch = int(DibStride(width, colorBits));
    try {
        m_bits.assign(std::size_t(pitch) * height, 0);
    } catch (const std::bad_alloc&) {
        m_error = QCoreApplication::translate("FCObjImage", "Not enough memory for the picture");
        return false;
    }
    m_width = width;
    m_height = height;
    m_colorBits = colorBits;
    m_pitch = pitch;
    if (colorBits <= 8)
        m_palette = GrayRamp(1 << colorBits);
    return true;
}

void FCObjImage::Destroy()
{
    m_bits.clear();
    m_bits.shrink_to_fit();
    m_palette.clear();
    m_width = m_height = m_colorBits = m_pitch = 0;
    m_hasAlpha = false;
}

bool FCObjImage::HasAlpha() const
{
    if (m_colorBits > 8)
        return m_hasAlpha;
    return std::any_of(m_palette.cbegin(), m_palette.cend(), [](QRgb c) { return qAlpha(c) != 255; });
}

uchar* FCObjImage::GetBits(int x, int y)
{
    return Inside(x, y) ? Row(y) + std::size_t(x) * m_colorBits / 8 : nullptr;
}

const uchar* FCObjImage::GetBits(int x, int y) const
{
    return Inside(x, y) ? Row(y) + std::size_t(x) * m_colorBits / 8 : nullptr;
}

bool FCObjImage::SetPalette(const QVector<QRgb>& colors)
{
    if (m_colorBits > 8 || !IsValidImage())
        return false;
    for (int i = 0; i < std::min(colors.size(), m_palette.size()); ++i)
        m_palette[i] = colors[i];
    return true;
}

QRgb FCObjImage::GetPaletteColor(int index) const
{
    return index >= 0 && index < m_palette.size() ? m_palette[index] : qRgb(0, 0, 0);
}

void FCObjImage::SetPaletteColor(int index, QRgb color)
{
    if (index >= 0 && index < m_palette.size())
        m_palette[index] = color;
}

quint32 FCObjImage::GetPixelData(int x, int y) const
{
    if (!Inside(x, y))
        return 0;
    const uchar* row = Row(y);
    switch (m_colorBits) {
    case 1:
        return (row[x / 8] >> (7 - x % 8)) & 1;
    case 4:
        return x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15;
    case 8:
        return row[x];
    case 16:
        return quint32(row[2 * x] | (row[2 * x + 1] << 8));
    case 24: {
        const uchar* p = row + 3 * x;
        return quint32(p[0] | (p[1] << 8) | (p[2] << 16));
    }
    default: {
        const uchar* p = row + 4 * x;
        return quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16) | (quint32(p[3]) << 24);
    }
    }
}

void FCObjImage::SetPixelData(int x, int y, quint32 data)
{
    if (!Inside(x, y))
        return;
    uchar* row = Row(y);
    switch (m_colorBits) {
    case 1: {
        const uchar bit = uchar(0x80 >> (x % 8));
        row[x / 8] = uchar((row[x / 8] & ~bit) | ((data & 1) ? bit : 0));
        break;
    }
    case 4:
        if (x % 2 == 0)
            row[x / 2] = uchar((row[x / 2] & 0x0F) | ((data & 15) << 4));
        else
            row[x / 2] = uchar((row[x / 2] & 0xF0) | (data & 15));
        break;
    case 8:
        row[x] = uchar(data);
        break;
    case 16:
        row[2 * x] = uchar(data);
        row[2 * x + 1] = uchar(data >> 8);
        break;
    case 24:
        row[3 * x] = uchar(data);
        row[3 * x + 1] = uchar(data >> 8);
        row[3 * x + 2] = uchar(data >> 16);
        break;
    default:
        for (int k = 0; k < 4; ++k)
            row[4 * x + k] = uchar(data >> (8 * k));
        break;
    }
}

QRgb FCObjImage::GetPixelColor(int x, int y) const
{
    if (!Inside(x, y))
        return qRgb(0, 0, 0);
    const quint32 v = GetPixelData(x, y);
    switch (m_colorBits) {
    case 1:
    case 4:
    case 8:
        return GetPaletteColor(int(v));
    case 16: {
        const int r = (v >> 10) & 31, g = (v >> 5) & 31, b = v & 31;
        return qRgb((r << 3) | (r >> 2), (g << 3) | (g >> 2), (b << 3) | (b >> 2));
    }
    case 24:
        return 0xFF000000u | v;
    default:
        return m_hasAlpha ? v : (0xFF000000u | v);
    }
}

int FCObjImage::NearestPaletteIndex(QRgb color) const
{
    int best = 0;
    int bestDistance = INT_MAX;
    for (int i = 0; i < m_palette.size(); ++i) {
        const int dr = qRed(m_palette[i]) - qRed(color);
        const int dg = qGreen(m_palette[i]) - qGreen(color);
        const int db = qBlue(m_palette[i]) - qBlue(color);
        const int d = dr * dr + dg * dg + db * db;
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return best;
}

void FCObjImage::SetPixelColor(int x, int y, QRgb color)
{
    if (!Inside(x, y))
        return;
    switch (m_colorBits) {
    case 1:
    case 4:
    case 8:
        SetPixelData(x, y, quint32(NearestPaletteIndex(color)));
        break;
    case 16:
        SetPixelData(
            x, y, quint32(((qRed(color) >> 3) << 10) | ((qGreen(color) >> 3) << 5) | (qBlue(color) >> 3)));
        break;
    case 24:
        SetPixelData(x, y, color & 0xFFFFFF);
        break;
    default:
        SetPixelData(x, y, m_hasAlpha ? color : (color & 0xFFFFFF));
        break;
    }
}

FCObjImage FCObjImage::CopyRect(const QRect& rect) const
{
    FCObjImage out;
    const QRect r = rect.intersected(QRect(0, 0, m_width, m_height));
    if (r.isEmpty() || !out.Create(r.width(), r.height(), m_colorBits))
        return out;
    out.m_palette = m_palette;
    out.m_hasAlpha = m_hasAlpha;
    if (m_colorBits >= 8) {
        const std::size_t bytes = std::size_t(r.width()) * m_colorBits / 8;
        for (int y = 0; y < r.height(); ++y)
            std::memcpy(out.Row(y), Row(r.top() + y) + std::size_t(r.left()) * m_colorBits / 8, bytes);
    } else {
        for (int y = 0; y < r.height(); ++y)
            for (int x = 0; x < r.width(); ++x)
                out.SetPixelData(x, y, GetPixelData(r.left() + x, r.top() + y));
    }
    return out;
}

bool FCObjImage::Stretch(int width, int height)
{
    if (!IsValidImage() || width <= 0 || height <= 0 || qint64(width) * height > kMaxPixels) {
        m_error = QCoreApplication::translate("FCObjImage", "Invalid picture size");
        return false;
    }
    QImage source = ToQImage();
    if (m_colorBits <= 16)
        source = source.convertToFormat(QImage::Format_RGB32);
    const QImage scaled = source.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    FCObjImage result;
    if (scaled.isNull() || !result.FromQImage(scaled)) {
        m_error = QCoreApplication::translate("FCObjImage", "Not enough memory to resize the picture");
        return false;
    }
    if (result.ColorBits() == 32 && !m_hasAlpha)
        result.ConvertTo24Bit();
    *this = std::move(result);
    return true;
}

bool FCObjImage::ConvertTo24Bit()
{
    if (!IsValidImage())
        return false;
    if (m_colorBits == 24)
        return true;
    FCObjImage out;
    if (!out.Create(m_width, m_height, 24)) {
        m_error = out.m_error;
        return false;
    }
    for (int y = 0; y < m_height; ++y) {
        uchar* dst = out.Row(y);
        if (m_colorBits == 32) {
            const uchar* src = Row(y);
            for (int x = 0; x < m_width; ++x)
                std::memcpy(dst + 3 * x, src + 4 * x, 3);
        } else {
            for (int x = 0; x < m_width; ++x) {
                const QRgb c = GetPixelColor(x, y);
                dst[3 * x] = uchar(qBlue(c));
                dst[3 * x + 1] = uchar(qGreen(c));
                dst[3 * x + 2] = uchar(qRed(c));
            }
        }
    }
    *this = std::move(out);
    return true;
}

bool FCObjImage::ConvertTo32Bit()
{
    if (!IsValidImage())
        return false;
    if (m_colorBits == 32)
        return true;
    FCObjImage out;
    if (!out.Create(m_width, m_height, 32)) {
        m_error = out.m_error;
        return false;
    }
    for (int y = 0; y < m_height; ++y)
        for (int x = 0; x < m_width; ++x)
            out.SetPixelData(x, y, GetPixelColor(x, y) & 0xFFFFFF);
    *this = std::move(out);
    return true;
}

QImage FCObjImage::ToQImage() const
{
    if (!IsValidImage())
        return {};
    QImage::Format format = QImage::Format_Indexed8;
    switch (m_colorBits) {
    case 1:
        format = QImage::Format_Mono;
        break;
    case 16:
        format = QImage::Format_RGB555;
        break;
    case 24:
        format = QImage::Format_BGR888;
        break;
    case 32:
        format = m_hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        break;
    default:
        break;
    }
    QImage image(m_width, m_height, format);
    if (image.isNull())
        return {};
    if (m_colorBits <= 8)
        image.setColorTable(m_palette);
    for (int y = 0; y < m_height; ++y) {
        uchar* dst = image.scanLine(y);
        const uchar* src = Row(y);
        if (m_colorBits == 4) {
            for (int x = 0; x < m_width; ++x)
                dst[x] = uchar(x % 2 == 0 ? src[x / 2] >> 4 : src[x / 2] & 15);
        } else {
            std::memcpy(dst, src, (std::size_t(m_width) * m_colorBits + 7) / 8);
        }
    }
    return image;
}

bool FCObjImage::FromQImage(const QImage& source)
{
    if (source.isNull()) {
        m_error = QCoreApplication::translate("FCObjImage", "No picture");
        return false;
    }
    if (qint64(source.width()) * source.height() > kMaxPixels) {
        m_error = QCoreApplication::translate("FCObjImage", "The picture is too large");
        return false;
    }
    QImage image = source;
    int bits = 24;
    bool alpha = false;
    switch (source.format()) {
    case QImage::Format_Mono:
        bits = 1;
        break;
    case QImage::Format_MonoLSB:
        image = source.convertToFormat(QImage::Format_Mono);
        bits = 1;
        break;
    case QImage::Format_Indexed8:
        bits = 8;
        break;
    case QImage::Format_Grayscale8:
    case QImage::Format_Grayscale16:
        image = source.convertToFormat(QImage::Format_Grayscale8);
        bits = 8;
        break;
    case QImage::Format_RGB555:
        bits = 16;
        break;
    default:
        if (source.hasAlphaChannel()) {
            image = source.convertToFormat(QImage::Format_ARGB32);
            bits = 32;
            alpha = true;
        } else {
            image = source.convertToFormat(QImage::Format_BGR888);
        }
        break;
    }
    FCObjImage out;
    if (image.isNull() || !out.Create(image.width(), image.height(), bits)) {
        m_error = QCoreApplication::translate("FCObjImage", "Not enough memory for the picture");
        return false;
    }
    out.m_hasAlpha = alpha;
    if (bits <= 8) {
        const QVector<QRgb> table
            = image.format() == QImage::Format_Grayscale8 ? GrayRamp(256) : image.colorTable();
        out.m_palette.fill(qRgb(0, 0, 0));
        out.SetPalette(table);
    }
    const std::size_t bytes = (std::size_t(out.m_width) * bits + 7) / 8;
    for (int y = 0; y < out.m_height; ++y)
        std::memcpy(out.Row(y), image.constScanLine(y), bytes);
    if (bits == 1) // bits past the width stay clear, as Create left them
        for (int y = 0; y < out.m_height && out.m_width % 8 != 0; ++y)
            out.Row(y)[bytes - 1] &= uchar(0xFF << (8 - out.m_width % 8));
    *this = std::move(out);
    return true;
}

bool FCObjImage::Load(const QString& path)
{
    if (!QFileInfo(path).isFile()) {
        m_error = QStringLiteral("%1: no such file").arg(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    return LoadFrom(file, path);
}

bool FCObjImage::LoadBytes(const QByteArray& bytes, const QString& name)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return LoadFrom(buffer, name);
}

bool FCObjImage::LoadFrom(QIODevice& device, const QString& name)
{
    RegisterFormats();
    QImage image;
    QString why = PngDamage(device);
    if (why.isEmpty()) {
        if (ReadPicture(device, FormatForPath(name), image, why))
            why.clear();
        else if (why.isEmpty())
            why = QStringLiteral("the file is not a picture");
    }
    if (!why.isEmpty()) {
        m_error = QStringLiteral("%1: %2").arg(name, why);
        return false;
    }
    FCObjImage loaded;
    if (!loaded.FromQImage(image)) {
        m_error = QStringLiteral("%1: %2").arg(name, loaded.m_error);
        return false;
    }
    *this = std::move(loaded);
    return true;
}

bool FCObjImage::Save(const QString& path) const
{
    RegisterFormats();
    const QByteArray format = FormatForPath(path);
    if (format.isEmpty()) {
        m_error = QStringLiteral("%1: unsupported picture type").arg(path);
        return false;
    }
    if (!IsValidImage()) {
        m_error = QCoreApplication::translate("FCObjImage", "No picture to save");
        return false;
    }
    QImage image = ToQImage();
    if (m_colorBits == 16 || (m_colorBits == 4 && format == "bmp"))
        image = image.convertToFormat(m_colorBits == 16 ? QImage::Format_RGB32 : QImage::Format_Indexed8);
    // Encoded in memory first, so a failed or interrupted write (a full disk)
    // leaves any earlier file untouched.
    QBuffer encoded;
    encoded.open(QIODevice::WriteOnly);
    QImageWriter writer(&encoded, format);
    if (!writer.write(image)) {
        m_error = QStringLiteral("%1: %2").arg(path, writer.errorString());
        return false;
    }
    QString error;
    if (!ReplaceFileContents(path, encoded.data(), &error)) {
        m_error = QStringLiteral("%1: %2").arg(path, error);
        return false;
    }
    return true;
}
