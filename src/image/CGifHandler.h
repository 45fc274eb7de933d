#pragma once

#include <QImageIOHandler>

// Writes GIF89a pictures (Qt reads GIF but cannot write it): one frame,
// global colour table of up to 256 colours, LZW compressed. Pictures with
// more colours are reduced to 256 first. Writing only.
class CGifHandler : public QImageIOHandler
{
public:
    bool canRead() const override { return false; }
    bool read(QImage*) override { return false; }
    bool write(const QImage& image) override;
};
