#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QVector>

#include <vector>

class QIODevice;

// The in-memory picture: a device-independent bitmap of 1, 4, 8, 16 (5-5-5),
// 24 (blue, green, red) or 32 (blue, green, red, alpha or unused) bits per
// pixel, rows stored bottom-up and padded to 4 bytes, with a palette for the
// depths up to 8. Coordinates of the accessors are picture coordinates: (0, 0)
// is the top-left pixel, whatever the row order in memory.
//
// Files go through Qt's image I/O plus our own PCX, TGA and GIF-writing
// handlers, which this class registers, so every reader and writer of the
// program finds them.
class FCObjImage
{
public:
    // Pictures above this many pixels are refused before memory is spent.
    static constexpr qint64 kMaxPixels = 200'000'000;

    FCObjImage() = default;
    FCObjImage(int width, int height, int colorBits) { Create(width, height, colorBits); }

    // A zeroed picture; paletted depths get a gray ramp. False (and an empty
    // picture) for a bad size or depth or when memory runs out.
    bool Create(int width, int height, int colorBits);
    void Destroy();
    bool IsValidImage() const { return !m_bits.empty(); }

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    int ColorBits() const { return m_colorBits; }
    // 32 bits: the fourth byte is alpha (SetHasAlpha). Up to 8 bits: some
    // palette entry is not opaque, as files with a transparent index give.
    bool HasAlpha() const;
    void SetHasAlpha(bool alpha) { m_hasAlpha = alpha && m_colorBits == 32; }

    // Bytes per row, DibStride(width, bits).
    int GetPitch() const { return m_pitch; }
    // First byte of the buffer: the bottom row.
    uchar* GetMemStart() { return m_bits.empty() ? nullptr : m_bits.data(); }
    const uchar* GetMemStart() const { return m_bits.empty() ? nullptr : m_bits.data(); }
    // Byte holding pixel (x, y) (for 1 and 4 bits, the byte that holds it);
    // null outside the picture.
    uchar* GetBits(int x, int y);
    const uchar* GetBits(int x, int y) const;

    // Palette of depths up to 8 (2, 16 or 256 entries as 0xAARRGGBB);
    // empty for deeper pictures.
    const QVector<QRgb>& GetPalette() const { return m_palette; }
    bool SetPalette(const QVector<QRgb>& colors); // extra entries are ignored, missing ones left
    QRgb GetPaletteColor(int index) const;
    void SetPaletteColor(int index, QRgb color);

    // The raw value of a pixel in its depth's own form: palette index for up
    // to 8 bits, the 5-5-5 word for 16, 0xRRGGBB for 24, the whole 32-bit word
    // (0xAARRGGBB) for 32. Outside the picture: 0 / nothing.
    quint32 GetPixelData(int x, int y) const;
    void SetPixelData(int x, int y, quint32 data);
    // The colour of a pixel (through the palette, 5-5-5 widened), opaque
    // unless the picture has alpha; setting picks the nearest palette entry
    // for paletted depths.
    QRgb GetPixelColor(int x, int y) const;
    void SetPixelColor(int x, int y, QRgb color);

    // A copy of rect (clipped to the picture), same depth and palette; empty
    // when nothing is left.
    FCObjImage CopyRect(const QRect& rect) const;
    // Resizes to width x height with area averaging / bilinear filtering.
    // Pictures up to 16 bits become 24-bit.
    bool Stretch(int width, int height);
    // Any depth to 24 bits; alpha is dropped, colours are kept as they are.
    bool ConvertTo24Bit();
    bool ConvertTo32Bit();

    QImage ToQImage() const;
    bool FromQImage(const QImage& image);

    // Saving chooses the format by the file's extension (.bmp, .jpg, .jpeg,
    // .png, .tif, .tiff, .gif, .tga, .pcx), at default quality; loading by
    // the content where it shows one, else by the extension. A file the
    // format's reader refuses stays refused. On failure the picture is
    // unchanged and ErrorString() says why: the path, then the reader's own
    // reason ("the file is truncated (2 of 8 rows)").
    bool Load(const QString& path);
    // The same from a file's bytes, `name` standing for its path.
    bool LoadBytes(const QByteArray& bytes, const QString& name);
    bool Save(const QString& path) const;
    QString ErrorString() const { return m_error; }

    // Makes Qt's image readers and writers know our formats; done by every
    // FCObjImage load and save, callable by code that uses QImageReader alone.
    static void RegisterFormats();

private:
    bool LoadFrom(QIODevice& device, const QString& name);
    const uchar* Row(int y) const { return m_bits.data() + std::size_t(m_height - 1 - y) * m_pitch; }
    uchar* Row(int y) { return m_bits.data() + std::size_t(m_height - 1 - y) * m_pitch; }
    bool Inside(int x, int y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    int NearestPaletteIndex(QRgb color) const;

    int m_width = 0;
    int m_height = 0;
    int m_colorBits = 0;
    int m_pitch = 0;
    bool m_hasAlpha = false;
    std::vector<uchar> m_bits;
    QVector<QRgb> m_palette;
    mutable QString m_error;
};
