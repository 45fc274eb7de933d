// Any bytes either fail to read as PCX or give a picture that the writer
// takes and that reads back with the same pixels.
#include "ImageRoundTrip.h"
#include "image/CPcxHandler.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    SilenceQtMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return ImageRoundTrip<CPcxHandler>(data, size, QImage::Format_ARGB32);
}
