// Any bytes parse, serialise back unchanged, and take an edit that reads back
// as written, whatever their encoding, line ends or garbage.
#include "platform/CIniDocument.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

void CheckRoundTrip(const CIniDocument& doc)
{
    const QByteArray bytes = doc.ToBytes();
    Check(CIniDocument(bytes).ToBytes() == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const CIniDocument doc(bytes);
    Check(doc.ToBytes() == bytes);

    // Edit the file's own first section and key (names the file chose), and
    // names of ours.
    const QStringList sections = doc.SectionNames();
    const QString section = sections.isEmpty() ? QStringLiteral("Measure") : sections.front();
    const auto keys = doc.KeyNames(section);
    const QString key = keys && !keys->isEmpty() ? keys->front() : QStringLiteral("Precision");
    const QString value = QStringLiteral("v=1;\u00e9\U0001F600]");
    for (const QString& k : { key, QStringLiteral("New") }) {
        if (!CIniDocument::IsWritable(section, k, value))
            continue;
        CIniDocument edited(bytes);
        edited.SetValue(section, k, value);
        CheckRoundTrip(edited);
        Check(CIniDocument(edited.ToBytes()).Value(section, k) == value);
        Check(!edited.SetValue(section, k, value));
        Check(edited.RemoveKey(section, k));
        CheckRoundTrip(edited);
        edited.RemoveSection(section);
        CheckRoundTrip(edited);
    }
    return 0;
}
