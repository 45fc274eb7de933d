// Any bytes either fail to read as TGA or give a picture that the writer
// takes and that reads back with the same pixels, alpha included.
#include "ImageRoundTrip.h"
#include "image/CTgaHandler.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string fault
        = RoundTripFault<CTgaHandler>(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    if (!fault.empty() && fault != kDoesNotRead)
        std::abort();
    return 0;
}
