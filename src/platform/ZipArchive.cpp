#include "platform/ZipArchive.h"

#include <cstdint>
#include <cstring>
#include <zlib.h>

namespace ZipArchive {

namespace {

constexpr std::uint32_t kLocalHeader = 0x04034b50;
constexpr std::uint32_t kCentralHeader = 0x02014b50;
constexpr std::uint32_t kEnd = 0x06054b50;
// Names are UTF-8 (general purpose flag bit 11).
constexpr std::uint16_t kUtf8Names = 0x0800;
// 1 January 2000, 00:00, in MS-DOS form: the archive's dates carry nothing.
constexpr std::uint16_t kDosDate = (20 << 9) | (1 << 5) | 1;

void Put16(QByteArray& out, std::uint32_t v)
{
    out.append(char(v & 0xff));
    out.append(char((v >> 8) & 0xff));
}

void Put32(QByteArray& out, std::uint32_t v)
{
    Put16(out, v & 0xffff);
    Put16(out, v >> 16);
}

std::uint32_t Crc(const QByteArray& data)
{
    return std::uint32_t(
        crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef*>(data.constData()), uInt(data.size())));
}

// Little-endian reads that fail instead of running off the end.
struct Reader
{
    const QByteArray& bytes;
    bool ok = true;
    std::uint32_t Get(qsizetype at, int size)
    {
        if (at < 0 || at + size > bytes.size()) {
            ok = false;
            return 0;
        }
        std::uint32_t v = 0;
        for (int i = size - 1; i >= 0; --i)
            v = (v << 8) | std::uint8_t(bytes[at + i]);
        return v;
    }
    std::uint32_t U16(qsizetype at) { return Get(at, 2); }
    std::uint32_t U32(qsizetype at) { return Get(at, 4); }
};

std::optional<QByteArray> Inflate(const QByteArray& packed, qint64 size)
{
    QByteArray out(qsizetype(size), Qt::Uninitialized);
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return std::nullopt;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.constData()));
    stream.avail_in = uInt(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    const int status = inflate(&stream, Z_FINISH);
    const bool whole = status == Z_STREAM_END && stream.total_out == uLong(size);
    inflateEnd(&stream);
    if (!whole)
        return std::nullopt;
    return out;
}

} // namespace

QByteArray Build(const std::vector<Entry>& entries)
{
    QByteArray archive;
    QByteArray directory;
    for (const Entry& entry : entries) {
        const QByteArray name = entry.name.toUtf8();
        const std::uint32_t crc = Crc(entry.data);
        const auto offset = std::uint32_t(archive.size());
        Put32(archive, kLocalHeader);
        Put16(archive, 20); // version needed: 2.0
        Put16(archive, kUtf8Names);
        Put16(archive, 0); // stored
        Put16(archive, 0); // time
        Put16(archive, kDosDate);
        Put32(archive, crc);
        Put32(archive, std::uint32_t(entry.data.size()));
        Put32(archive, std::uint32_t(entry.data.size()));
        Put16(archive, std::uint32_t(name.size()));
        Put16(archive, 0); // extra field
        archive += name;
        archive += entry.data;

        Put32(directory, kCentralHeader);
        Put16(directory, 20); // made by: 2.0
        Put16(directory, 20);
        Put16(directory, kUtf8Names);
        Put16(directory, 0);
        Put16(directory, 0);
        Put16(directory, kDosDate);
        Put32(directory, crc);
        Put32(directory, std::uint32_t(entry.data.size()));
        Put32(directory, std::uint32_t(entry.data.size()));
        Put16(directory, std::uint32_t(name.size()));
        Put16(directory, 0); // extra field
        Put16(directory, 0); // comment
        Put16(directory, 0); // disk
        Put16(directory, 0); // internal attributes
        Put32(directory, 0); // external attributes
        Put32(directory, offset);
        directory += name;
    }
    const auto directoryOffset = std::uint32_t(archive.size());
    archive += directory;
    Put32(archive, kEnd);
    Put16(archive, 0);
    Put16(archive, 0);
    Put16(archive, std::uint32_t(entries.size()));
    Put16(archive, std::uint32_t(entries.size()));
    Put32(archive, std::uint32_t(directory.size()));
    Put32(archive, directoryOffset);
    Put16(archive, 0); // comment
    return archive;
}

std::optional<std::vector<Entry>> Extract(const QByteArray& archive, QString* error, qint64 limit)
{
    const auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return std::nullopt;
    };
    Reader in { archive };
    // The end record sits in the last 22 bytes plus a comment of up to 64 KB.
    qsizetype end = -1;
    for (qsizetype at = archive.size() - 22; at >= 0 && at >= archive.size() - 22 - 0xffff; --at) {
        if (in.U32(at) == kEnd) {
            end = at;
            break;
        }
    }
    if (end < 0)
        return fail(QStringLiteral("not a ZIP archive"));
    const std::uint32_t count = in.U16(end + 10);
    qsizetype at = in.U32(end + 16);
    std::vector<Entry> entries;
    qint64 total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (in.U32(at) != kCentralHeader || !in.ok)
            return fail(QStringLiteral("the archive's directory is damaged"));
        const std::uint32_t flags = in.U16(at + 8);
        const std::uint32_t method = in.U16(at + 10);
        const std::uint32_t crc = in.U32(at + 16);
        const std::uint32_t packedSize = in.U32(at + 20);
        const std::uint32_t size = in.U32(at + 24);
        const std::uint32_t nameLength = in.U16(at + 28);
        const std::uint32_t extraLength = in.U16(at + 30);
        const std::uint32_t commentLength = in.U16(at + 32);
        const std::uint32_t local = in.U32(at + 42);
        const QByteArray rawName = archive.mid(at + 46, nameLength);
        at += 46 + qsizetype(nameLength) + extraLength + commentLength;
        if (!in.ok || rawName.size() != qsizetype(nameLength))
            return fail(QStringLiteral("the archive's directory is damaged"));
        const QString name = (flags & kUtf8Names) ? QString::fromUtf8(rawName) : QString::fromLatin1(rawName);
        if (flags & 1)
            return fail(QStringLiteral("%1 is encrypted").arg(name));
        if (name.endsWith(QLatin1Char('/')))
            continue;
        total += size;
        if (total > limit)
            return fail(QStringLiteral("the archive unpacks to more than %1 MB").arg(limit / (1024 * 1024)));
        if (in.U32(local) != kLocalHeader)
            return fail(QStringLiteral("%1 is damaged").arg(name));
        const qsizetype dataAt = local + 30 + qsizetype(in.U16(local + 26)) + in.U16(local + 28);
        if (!in.ok || dataAt + qsizetype(packedSize) > archive.size())
            return fail(QStringLiteral("%1 is cut short").arg(name));
        const QByteArray packed = archive.mid(dataAt, packedSize);
        std::optional<QByteArray> data;
        if (method == 0 && packedSize == size)
            data = packed;
        else if (method == 8)
            data = Inflate(packed, size);
        else if (method != 0)
            return fail(QStringLiteral("%1 is packed by a method not supported (%2)").arg(name).arg(method));
        if (!data || Crc(*data) != crc)
            return fail(QStringLiteral("%1 is damaged").arg(name));
        entries.push_back({ name, *data });
    }
    return entries;
}

} // namespace ZipArchive
