// Any bytes either fail to read as GIF or give a picture that, made the
// program's 24-bit picture as "Open" makes it, our GIF writer takes and that
// reads back with the same pixels. (Transparency goes in that conversion:
// the writer never sees it.)
#include "image/CGifHandler.h"
#include "image/FCObjImage.h"

#include <QBuffer>
#include <QImageReader>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    FCObjImage::RegisterFormats();
    // A few bytes may claim a huge screen; a fuzzer wants many small inputs
    // (the program itself allows large pictures, which only take longer).
    QImageReader::setAllocationLimit(4);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer in(&bytes);
    in.open(QIODevice::ReadOnly);
    QImageReader reader(&in, "gif");
    // Pictures beyond 256 x 256 only take longer: the reader's paths are
    // the same, and the writer's colour reduction would dominate each run.
    const QSize screen = reader.size();
    if (!screen.isValid() || qint64(screen.width()) * screen.height() > 65536)
        return 0;
    QImage image;
    if (!reader.read(&image) || image.isNull())
        return 0;
    FCObjImage picture;
    if (!picture.FromQImage(image) || !picture.ConvertTo24Bit())
        return 0;
    const QImage opened = picture.ToQImage();
    QBuffer out;
    out.open(QIODevice::ReadWrite);
    CGifHandler writer;
    writer.setDevice(&out);
    if (!writer.write(opened))
        std::abort();
    out.seek(0);
    QImageReader again(&out, "gif");
    QImage back;
    if (!again.read(&back))
        std::abort();
    if (back.convertToFormat(QImage::Format_RGB32) != opened.convertToFormat(QImage::Format_RGB32))
        std::abort();
    return 0;
}
