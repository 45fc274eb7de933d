#pragma once

#include <QImageIOHandler>
#include <QString>

// ZSoft PCX pictures: reads 1, 2, 4 and 8 bits in one plane, 1 bit in four
// planes (16 colours), 8 bits in three or four planes (RGB, RGBA), RLE or
// raw; a file too short for its header's size is refused before any pixel
// memory is taken. Writes black-and-white pictures as 1 bit, other paletted
// ones as 8 bits with the 256-colour palette at the end, deeper ones as 24
// bits in three planes; four planes (RGBA) when some pixel is not opaque,
// paletted or not. Always RLE.
class CPcxHandler : public QImageIOHandler
{
public:
    bool canRead() const override;
    bool read(QImage* image) override;
    bool write(const QImage& image) override;
    bool supportsOption(ImageOption option) const override;
    QVariant option(ImageOption option) const override;

    // True when device (left where it was) starts with a usable PCX header.
    static bool canRead(QIODevice* device);

    // Why the last read failed, in words for the user.
    QString errorString() const { return m_error; }

private:
    bool Fail(const QString& why);

    QString m_error;
};
