#pragma once

// One picture handler reads bytes, writes the picture back and reads that
// again: the check of the PCX and TGA fuzz targets and of the picture tests.
#include <QBuffer>
#include <QImage>
#include <QString>

#include <string>

inline const std::string kDoesNotRead = "does not read";

// Empty when every pixel, alpha included, came back; kDoesNotRead when the
// bytes are not a picture the handler takes; else what went wrong.
template <typename Handler> std::string RoundTripFault(QByteArray bytes)
{
    QBuffer in(&bytes);
    in.open(QIODevice::ReadOnly);
    Handler reader;
    reader.setDevice(&in);
    QImage image;
    if (!reader.canRead() || !reader.read(&image))
        return kDoesNotRead;
    if (image.isNull())
        return "reads as an empty picture";
    QBuffer out;
    out.open(QIODevice::ReadWrite);
    Handler writer;
    writer.setDevice(&out);
    if (!writer.write(image))
        return "does not write";
    out.seek(0);
    Handler again;
    again.setDevice(&out);
    QImage back;
    if (!again.read(&back))
        return "written, does not read back";
    const QImage a = image.convertToFormat(QImage::Format_ARGB32);
    const QImage b = back.convertToFormat(QImage::Format_ARGB32);
    if (a.size() != b.size())
        return "comes back in another size";
    if (a == b)
        return {};
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                return QStringLiteral("pixel (%1, %2) %3 comes back %4")
                    .arg(x)
                    .arg(y)
                    .arg(a.pixel(x, y), 8, 16)
                    .arg(b.pixel(x, y), 8, 16)
                    .toStdString();
    return {};
}
