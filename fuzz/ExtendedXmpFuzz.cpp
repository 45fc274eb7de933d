// Any bytes as a JPEG's segments: reassembly answers a packet of the length
// its segments declare, or nothing; a picture stripped of the segments has
// none left, and a packet put in comes back whole.
#include "image/ExtendedXmp.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    // The GUID of the first segment that carries one, or a fixed one.
    QByteArray guid(32, 'A');
    const qsizetype at = bytes.indexOf(ExtendedXmp::kSignature);
    if (at >= 0 && at + 35 + 32 <= bytes.size())
        guid = bytes.mid(at + 35, 32);

    QString error;
    const QByteArray packet = ExtendedXmp::Reassemble(bytes, guid, &error);
    if (!packet.isEmpty() && !error.isEmpty())
        std::abort();
    if (quint64(packet.size()) > ExtendedXmp::kMaxLength || packet.size() > bytes.size())
        std::abort();

    const QByteArray stripped = ExtendedXmp::Strip(bytes);
    if (!ExtendedXmp::Reassemble(stripped, guid).isEmpty())
        std::abort();
    const QByteArray content = bytes.left(200000);
    const QByteArray with = ExtendedXmp::Insert(stripped, ExtendedXmp::GuidFor(content), content);
    if (!with.isEmpty() && !content.isEmpty()
        && ExtendedXmp::Reassemble(with, ExtendedXmp::GuidFor(content)) != content)
        std::abort();
    if (!with.isEmpty() && ExtendedXmp::Strip(with) != stripped)
        std::abort();
    return 0;
}
