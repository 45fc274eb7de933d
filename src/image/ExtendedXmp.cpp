#include "image/ExtendedXmp.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr uchar kApp1 = 0xE1;
constexpr char kMainSignature[] = "http://ns.adobe.com/xap/1.0/";
// Signature with its terminating zero, GUID, full length, offset.
constexpr qsizetype kSignatureSize = sizeof(ExtendedXmp::kSignature);
constexpr qsizetype kGuidSize = 32;
constexpr qsizetype kSegmentHeaderSize = kSignatureSize + kGuidSize + 4 + 4;

struct Segment
{
    qsizetype start; // its 0xFF
    qsizetype payload; // after the length field
    qsizetype end;
    uchar marker;
};

// The segments in front of the picture data; they end at the start of scan,
// at the end of the image or where the bytes stop making sense, which is
// where the picture's own reader takes over.
std::vector<Segment> HeaderSegments(const QByteArray& jpeg, bool* whole = nullptr)
{
    std::vector<Segment> segments;
    const auto* d = reinterpret_cast<const uchar*>(jpeg.constData());
    const qsizetype n = jpeg.size();
    if (whole)
        *whole = false;
    if (n < 4 || d[0] != 0xFF || d[1] != 0xD8)
        return segments;
    qsizetype pos = 2;
    while (pos < n && d[pos] == 0xFF) {
        qsizetype m = pos + 1;
        while (m < n && d[m] == 0xFF)
            ++m;
        if (m >= n)
            break;
        const uchar marker = d[m];
        if (marker == 0xDA || marker == 0xD9) {
            if (whole)
                *whole = true;
            break;
        }
        if ((marker >= 0xD0 && marker <= 0xD7) || marker == 0x01) {
            pos = m + 1;
            continue;
        }
        if (m + 3 > n)
            break;
        const qsizetype length = (qsizetype(d[m + 1]) << 8) | d[m + 2];
        if (length < 2 || m + 1 + length > n)
            break;
        segments.push_back({ pos, m + 3, m + 1 + length, marker });
        pos = m + 1 + length;
    }
    return segments;
}

bool HasSignature(const QByteArray& jpeg, const Segment& s, const char* signature, qsizetype size)
{
    return s.marker == kApp1 && s.end - s.payload >= size
        && std::memcmp(jpeg.constData() + s.payload, signature, std::size_t(size)) == 0;
}

bool IsExtension(const QByteArray& jpeg, const Segment& s)
{
    return HasSignature(jpeg, s, ExtendedXmp::kSignature, kSignatureSize)
        && s.end - s.payload >= kSegmentHeaderSize;
}

quint32 BigEndian32(const char* p)
{
    const auto* u = reinterpret_cast<const uchar*>(p);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
}

void AppendBigEndian32(QByteArray& out, quint32 v)
{
    out.append(char(v >> 24)).append(char(v >> 16)).append(char(v >> 8)).append(char(v));
}

} // namespace

namespace ExtendedXmp {

QByteArray GuidFor(const QByteArray& packet)
{
    return QCryptographicHash::hash(packet, QCryptographicHash::Md5).toHex().toUpper();
}

QByteArray Reassemble(const QByteArray& jpeg, const QByteArray& guid, QString* error)
{
    auto fail = [&](const QString& why) {
        if (error)
            *error = why;
        return QByteArray();
    };
    if (error)
        error->clear();
    struct Chunk
    {
        quint32 offset;
        qsizetype from;
        qsizetype size;
    };
    std::vector<Chunk> chunks;
    quint32 length = 0;
    for (const Segment& s : HeaderSegments(jpeg)) {
        if (!IsExtension(jpeg, s))
            continue;
        const char* header = jpeg.constData() + s.payload + kSignatureSize;
        if (QByteArray::fromRawData(header, kGuidSize) != guid)
            continue;
        const quint32 full = BigEndian32(header + kGuidSize);
        const quint32 offset = BigEndian32(header + kGuidSize + 4);
        const qsizetype size = s.end - s.payload - kSegmentHeaderSize;
        if (!chunks.empty() && full != length)
            return fail(QStringLiteral("the extended XMP segments disagree on its length"));
        length = full;
        if (length > kMaxLength)
            return fail(QStringLiteral("the extended XMP is larger than %1 bytes").arg(kMaxLength));
        if (quint64(offset) + quint64(size) > length)
            return fail(QStringLiteral("an extended XMP segment reaches past its length"));
        chunks.push_back({ offset, s.payload + kSegmentHeaderSize, size });
    }
    if (chunks.empty())
        return {};
    std::sort(
        chunks.begin(), chunks.end(), [](const Chunk& a, const Chunk& b) { return a.offset < b.offset; });
    // Every byte covered before anything as large as the length is allocated:
    // the chunks then hold at least that many bytes of the file.
    quint64 covered = 0;
    for (const Chunk& c : chunks) {
        if (c.offset > covered)
            break;
        covered = std::max<quint64>(covered, c.offset + quint64(c.size));
    }
    if (covered != length)
        return fail(QStringLiteral("extended XMP segments are missing"));
    QByteArray packet(qsizetype(length), Qt::Uninitialized);
    for (const Chunk& c : chunks)
        std::memcpy(packet.data() + c.offset, jpeg.constData() + c.from, std::size_t(c.size));
    return packet;
}

QByteArray Strip(const QByteArray& jpeg)
{
    QByteArray out;
    qsizetype copied = 0;
    for (const Segment& s : HeaderSegments(jpeg)) {
        if (!IsExtension(jpeg, s))
            continue;
        if (out.isEmpty())
            out.reserve(jpeg.size());
        out.append(jpeg.constData() + copied, s.start - copied);
        copied = s.end;
    }
    if (copied == 0)
        return jpeg;
    out.append(jpeg.constData() + copied, jpeg.size() - copied);
    return out;
}

QByteArray Insert(const QByteArray& jpeg, const QByteArray& guid, const QByteArray& packet)
{
    bool whole = false;
    const std::vector<Segment> segments = HeaderSegments(jpeg, &whole);
    if (!whole || guid.size() != kGuidSize || quint64(packet.size()) > kMaxLength)
        return {};
    qsizetype at = 2;
    for (const Segment& s : segments) {
        if (HasSignature(jpeg, s, kMainSignature, sizeof(kMainSignature))) {
            at = s.end;
            break;
        }
        if (s.marker >= 0xE0 && s.marker <= 0xEF && s.start == at)
            at = s.end;
    }
    QByteArray out;
    out.reserve(jpeg.size() + packet.size() + (packet.size() / kChunk + 1) * (kSegmentHeaderSize + 4));
    out.append(jpeg.constData(), at);
    for (qsizetype offset = 0; offset < packet.size(); offset += kChunk) {
        const qsizetype size = std::min<qsizetype>(kChunk, packet.size() - offset);
        const qsizetype length = 2 + kSegmentHeaderSize + size;
        out.append(char(0xFF)).append(char(kApp1)).append(char(length >> 8)).append(char(length & 0xFF));
        out.append(ExtendedXmp::kSignature, kSignatureSize);
        out.append(guid);
        AppendBigEndian32(out, quint32(packet.size()));
        AppendBigEndian32(out, quint32(offset));
        out.append(packet.constData() + offset, size);
    }
    out.append(jpeg.constData() + at, jpeg.size() - at);
    return out;
}

} // namespace ExtendedXmp
