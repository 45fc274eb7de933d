// The checks that BMP, GIF, JPEG and PNG files pass before (or instead of)
// Qt's readers: any bytes give a picture whose every index is in its table,
// a refusal with a reason, or leave the file to Qt; a PNG is complete only
// with its IEND.
#include "image/BmpFile.h"
#include "image/GifCheck.h"
#include "image/JpegCheck.h"
#include "image/PngCheck.h"

#include <QtEndian>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    // Large declared sizes cost only their allocation; they are skipped so
    // that the time goes to parsing.
    if (size >= 26
        && std::abs(qint64(qFromLittleEndian<qint32>(data + 18)))
                * std::abs(qint64(qFromLittleEndian<qint32>(data + 22)))
            > (1 << 22))
        return 0;
    QImage image;
    QString why;
    switch (ReadBmpFile(bytes, image, why)) {
    case BmpOutcome::Read:
        if (image.format() != QImage::Format_Indexed8)
            std::abort();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelIndex(x, y) >= image.colorCount())
                    std::abort();
        break;
    case BmpOutcome::Refused:
        if (why.isEmpty())
            std::abort();
        break;
    case BmpOutcome::LeaveToQt:
        break;
    }
    QString gifWhy, jpegWhy;
    if (!GifFrameComplete(bytes, gifWhy) && gifWhy.isEmpty())
        std::abort();
    if (!JpegComplete(bytes, jpegWhy) && jpegWhy.isEmpty())
        std::abort();
    // Complete only where an IEND chunk was found.
    if (!bytes.contains("IEND") && !PngTruncated(bytes))
        std::abort();
    return 0;
}
