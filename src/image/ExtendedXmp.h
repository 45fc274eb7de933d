#pragma once

#include <QByteArray>
#include <QString>

// The multi-segment form of XMP in JPEG files: a packet too large for one
// APP1 segment keeps some properties in the main packet, which names the
// rest by a GUID (xmpNote:HasExtendedXMP), and the rest as a second packet
// split over APP1 segments headed by kSignature, the GUID, the packet's full
// length and the chunk's offset in it. Works on the file's bytes only.
namespace ExtendedXmp {

inline constexpr char kSignature[] = "http://ns.adobe.com/xmp/extension/";
// The payload of one segment after its header.
inline constexpr int kChunk = 65400;
// A second packet larger than this is refused on reading, before anything
// is allocated for it.
inline constexpr quint32 kMaxLength = 64u * 1024 * 1024;

// The GUID of a second packet: the MD5 of its bytes in 32 uppercase hex digits.
QByteArray GuidFor(const QByteArray& packet);

// The second packet of GUID `guid` put together from the segments of `jpeg`.
// Empty, with `error` set, when segments are missing, overlap, disagree on
// the length or reach past it; empty without an error when there are none.
QByteArray Reassemble(const QByteArray& jpeg, const QByteArray& guid, QString* error = nullptr);

// `jpeg` without any segment of a second packet.
QByteArray Strip(const QByteArray& jpeg);

// `jpeg` with the segments of `packet` right after the main XMP segment (or,
// without one, after the leading APPn segments). Empty when `jpeg` does not
// parse as JPEG or the packet is too large.
QByteArray Insert(const QByteArray& jpeg, const QByteArray& guid, const QByteArray& packet);

} // namespace ExtendedXmp
