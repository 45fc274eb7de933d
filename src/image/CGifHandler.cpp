#include "image/CGifHandler.h"

#include "image/PaletteReduce.h"

#include <QIODevice>
#include <QImage>
#include <QtEndian>

#include <array>
#include <vector>

namespace {

// Variable-length LZW codes packed least significant bit first into
// sub-blocks of at most 255 bytes.
class CodeWriter
{
public:
    explicit CodeWriter(QByteArray& out)
        : m_out(out)
    {
    }

    void Put(int code, int bits)
    {
        m_accumulator |= quint32(code) << m_count;
        m_count += bits;
        while (m_count >= 8) {
            Byte(uchar(m_accumulator & 0xFF));
            m_accumulator >>= 8;
            m_count -= 8;
        }
    }

    void Finish()
    {
        if (m_count > 0)
            Byte(uchar(m_accumulator & 0xFF));
        if (m_blockSize > 0)
            Flush();
        m_out.append(char(0)); // block terminator
    }

private:
    void Byte(uchar b)
    {
        m_block[m_blockSize++] = b;
        if (m_blockSize == 255)
            Flush();
    }

    void Flush()
    {
        m_out.append(char(m_blockSize));
        m_out.append(reinterpret_cast<const char*>(m_block.data()), m_blockSize);
        m_blockSize = 0;
    }

    QByteArray& m_out;
    quint32 m_accumulator = 0;
    int m_count = 0;
    std::array<uchar, 255> m_block {};
    int m_blockSize = 0;
};

// Classic LZW with a hashed string table, cleared when the 12-bit code space
// is full.
void Compress(const QImage& image, int minCodeSize, QByteArray& out)
{
    constexpr int kTableSize = 5003; // prime, above 4096
    constexpr int kMaxCode = 4095;
    std::vector<int> keys(kTableSize, -1);
    std::vector<int> codes(kTableSize, 0);
    const int clear = 1 << minCodeSize;
    const int end = clear + 1;
    int next = clear + 2;
    int bits = minCodeSize + 1;

    CodeWriter writer(out);
    writer.Put(clear, bits);
    int prefix = -1;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const int c = line[x];
            if (prefix < 0) {
                prefix = c;
                continue;
            }
            const int key = (prefix << 8) | c;
            int slot = key % kTableSize;
            while (keys[std::size_t(slot)] != -1 && keys[std::size_t(slot)] != key)
                slot = (slot + 1) % kTableSize;
            if (keys[std::size_t(slot)] == key) {
                prefix = codes[std::size_t(slot)];
                continue;
            }
            writer.Put(prefix, bits);
            if (next <= kMaxCode) {
                keys[std::size_t(slot)] = key;
                codes[std::size_t(slot)] = next;
                // The decoder widens its codes one step behind the encoder.
                if (next == (1 << bits) && bits < 12)
                    ++bits;
                ++next;
            } else {
                writer.Put(clear, bits);
                std::fill(keys.begin(), keys.end(), -1);
                next = clear + 2;
                bits = minCodeSize + 1;
            }
            prefix = c;
        }
    }
    if (prefix >= 0)
        writer.Put(prefix, bits);
    writer.Put(end, bits);
    writer.Finish();
}

} // namespace

bool CGifHandler::write(const QImage& source)
{
    QIODevice* dev = device();
    if (dev == nullptr || source.isNull() || source.width() > 65535 || source.height() > 65535)
        return false;
    const IndexedPicture indexed = ReduceToPalette(source);
    const QImage& image = indexed.image;
    if (image.isNull())
        return false;
    QVector<QRgb> table = image.colorTable();
    if (table.isEmpty())
        table.append(qRgb(0, 0, 0));
    int tableBits = 1;
    while ((1 << tableBits) < table.size())
        ++tableBits;
    table.resize(1 << tableBits);

    // Logical screen: size, global table, 8-bit colour resolution,
    // background colour 0, square pixels.
    uchar screen[7] = {};
    qToLittleEndian(quint16(image.width()), screen);
    qToLittleEndian(quint16(image.height()), screen + 2);
    screen[4] = uchar(0x80 | (7 << 4) | (tableBits - 1));
    QByteArray out("GIF89a");
    out.append(reinterpret_cast<const char*>(screen), sizeof screen);
    for (const QRgb c : table) {
        out.append(char(qRed(c)));
        out.append(char(qGreen(c)));
        out.append(char(qBlue(c)));
    }
    if (indexed.transparent >= 0) {
        // Graphic control: no disposal, no delay, a transparent index.
        const uchar control[8] = { 0x21, 0xF9, 4, 1, 0, 0, uchar(indexed.transparent), 0 };
        out.append(reinterpret_cast<const char*>(control), sizeof control);
    }
    // The frame covers the screen; no local table, not interlaced.
    uchar frame[10] = { 0x2C };
    qToLittleEndian(quint16(image.width()), frame + 5);
    qToLittleEndian(quint16(image.height()), frame + 7);
    out.append(reinterpret_cast<const char*>(frame), sizeof frame);
    const int minCodeSize = std::max(2, tableBits);
    out.append(char(minCodeSize));
    Compress(image, minCodeSize, out);
    out.append(char(0x3B));
    return dev->write(out) == out.size();
}
