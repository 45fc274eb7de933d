// Any bytes either fail to read as TGA or give a picture that the writer
// takes and that reads back with the same pixels.
#include "image/CTgaHandler.h"

#include <QBuffer>
#include <QImage>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer in(&bytes);
    in.open(QIODevice::ReadOnly);
    CTgaHandler reader;
    reader.setDevice(&in);
    QImage image;
    if (!reader.canRead() || !reader.read(&image))
        return 0;
    if (image.isNull())
        std::abort();

    QBuffer out;
    out.open(QIODevice::ReadWrite);
    CTgaHandler writer;
    writer.setDevice(&out);
    if (!writer.write(image))
        std::abort();
    out.seek(0);
    CTgaHandler again;
    again.setDevice(&out);
    QImage back;
    if (!again.read(&back) || back.size() != image.size())
        std::abort();
    if (image.convertToFormat(QImage::Format_ARGB32) != back.convertToFormat(QImage::Format_ARGB32))
        std::abort();
    return 0;
}
