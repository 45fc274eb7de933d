#pragma once

// Shared body of the picture-reader fuzz targets: any bytes either fail to
// read, or give a picture that the writer takes and that reads back with the
// same pixels (compared in `format`).
#include <QBuffer>
#include <QImage>

#include <cstdint>
#include <cstdlib>

inline void SilenceQtMessages()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

template <typename Handler>
int ImageRoundTrip(const std::uint8_t* data, std::size_t size, QImage::Format format)
{
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer in(&bytes);
    in.open(QIODevice::ReadOnly);
    Handler reader;
    reader.setDevice(&in);
    QImage image;
    if (!reader.canRead() || !reader.read(&image))
        return 0;
    if (image.isNull())
        std::abort();

    QBuffer out;
    out.open(QIODevice::ReadWrite);
    Handler writer;
    writer.setDevice(&out);
    if (!writer.write(image))
        std::abort();
    out.seek(0);
    Handler again;
    again.setDevice(&out);
    QImage back;
    if (!again.read(&back) || back.size() != image.size())
        std::abort();
    if (image.convertToFormat(format) != back.convertToFormat(format))
        std::abort();
    return 0;
}
