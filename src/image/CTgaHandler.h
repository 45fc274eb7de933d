#pragma once

#include <QImageIOHandler>
#include <QString>

// Truevision TGA pictures: reads colour-mapped (8-bit indices, 15/16/24/32-bit
// map entries), true-colour (15, 16, 24, 32 bits) and gray (8 bits, 16 with
// alpha) pictures, raw or RLE, any origin; alpha only where the descriptor
// counts alpha bits and a TGA 2 extension area does not deny them.
// Writes uncompressed true-colour (24 bits, 32 with alpha; gray pictures with
// alpha as 16-bit gray) or colour-mapped (8 bits, 24-bit map entries; a
// translucent palette goes as 32-bit true colour) pictures with the TGA 2
// footer. A file too short
// for its header's size is refused before any pixel memory is taken.
class CTgaHandler : public QImageIOHandler
{
public:
    bool canRead() const override;
    bool read(QImage* image) override;
    bool write(const QImage& image) override;
    bool supportsOption(ImageOption option) const override;
    QVariant option(ImageOption option) const override;

    // True when device (left where it was) starts with a plausible header.
    static bool canRead(QIODevice* device);

    // Why the last read failed, in words for the user.
    QString errorString() const { return m_error; }

private:
    bool Fail(const QString& why);

    QString m_error;
};
