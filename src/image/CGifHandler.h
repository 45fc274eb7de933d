#pragma once

#include <QImageIOHandler>

// Writes GIF89a pictures (Qt reads GIF but cannot write it): one frame,
// global colour table of up to 256 colours, LZW compressed, transparent
// pixels (alpha below half) as the transparent index. Pictures with more
// colours are reduced first (ReduceToPalette). Writing only.
class CGifHandler : public QImageIOHandler
{
public:
    bool canRead() const override { return false; }
    bool read(QImage*) override { return false; }
    bool write(const QImage& image) override;
};
