#include "image/JpegSummary.h"

#include "platform/AtomicFileWrite.h"

#include <QFile>

#include <array>

namespace {

constexpr int kKeptHeader = 20;
// TIFF header (8) + entry count (2) + four entries (48) + next offset (4).
constexpr quint16 kFirstValueOffset = 62;
// The above plus the length field (2) and "Exif\0\0" (6).
constexpr quint16 kFixedLength = 70;

void PutLe16(QByteArray& out, quint16 v)
{
    out.append(char(v & 0xff)).append(char(v >> 8));
}

void PutLe32(QByteArray& out, quint32 v)
{
    PutLe16(out, quint16(v & 0xffff));
    PutLe16(out, quint16(v >> 16));
}

QByteArray Utf16Text(const QString& text)
{
    const QString padded = text + QStringLiteral("  ");
    QByteArray out;
    for (QChar c : padded)
        PutLe16(out, c.unicode());
    PutLe16(out, 0);
    return out;
}

} // namespace

bool WriteJpegSummary(const QString& path, const QString& title, const QString& subject,
    const QString& author, const QString& comment)
{
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return false;
    const QByteArray old = in.readAll();
    in.close();
    if (old.size() < kKeptHeader)
        return false;

    struct Entry
    {
        quint16 tag;
        QByteArray data;
    };
    // Stored in this order, their data following in the same order.
    const std::array<Entry, 4> entries { { { 0x9C9B, Utf16Text(title) }, { 0x9C9C, Utf16Text(comment) },
        { 0x9C9D, Utf16Text(author) }, { 0x9C9F, Utf16Text(subject) } } };

    // Counts and the length are 16-bit quantities, as the readers expect.
    quint16 length = kFixedLength;
    for (const Entry& e : entries)
        length = quint16(length + quint16(e.data.size()));

    QByteArray segment;
    segment.append(char(0xFF)).append(char(0xE1));
    segment.append(char(length >> 8)).append(char(length & 0xff));
    segment.append("Exif\0\0", 6).append("II", 2);
    PutLe16(segment, 0x2A);
    PutLe32(segment, 8);
    PutLe16(segment, quint16(entries.size()));
    quint16 offset = kFirstValueOffset;
    for (const Entry& e : entries) {
        const quint16 count = quint16(e.data.size());
        PutLe16(segment, e.tag);
        PutLe16(segment, 1); // BYTE
        PutLe32(segment, count);
        PutLe32(segment, offset);
        offset = quint16(offset + count);
    }
    PutLe32(segment, 0);
    for (const Entry& e : entries)
        segment.append(e.data);

    QByteArray result;
    result.reserve(old.size() + segment.size());
    result.append(old.constData(), kKeptHeader)
        .append(segment)
        .append(old.constData() + kKeptHeader, old.size() - kKeptHeader);
    return ReplaceFileContents(path, result);
}
