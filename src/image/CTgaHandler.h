#pragma once

#include <QImageIOHandler>

// Truevision TGA pictures: reads colour-mapped (8-bit indices, 15/16/24/32-bit
// map entries), true-colour (15, 16, 24, 32 bits) and gray (8 bits) pictures,
// raw or RLE, any origin; alpha only where the descriptor counts alpha bits.
// Writes uncompressed true-colour (24 bits, 32 with alpha) or colour-mapped
// (8 bits; 24-bit map entries, 32 when the palette has alpha) pictures with
// the TGA 2 footer.
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
};
