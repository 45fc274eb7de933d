// Any bytes either are refused as ruler data or give eleven values that
// write back as a file which reads as the same values, start corner at 100.
#include "calibration/SvrFile.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const std::optional<SvrData> read = SvrFile::FromBytes(bytes);
    if (!read)
        return 0;
    const QByteArray written = SvrFile::ToBytes(*read);
    Check(written.count("\r\r\n") >= SvrFile::kLineCount);
    const std::optional<SvrData> again = SvrFile::FromBytes(written);
    Check(again.has_value());
    Check(*again == read->Normalized());
    Check(SvrFile::ToBytes(*again) == written);
    return 0;
}
