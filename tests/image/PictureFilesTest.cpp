#include "ImageRoundTrip.h"
#include "PillowAgrees.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "image/CGifHandler.h"
#include "image/CPcxHandler.h"
#include "image/CTgaHandler.h"
#include "image/FCObjImage.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

FCObjImage Colourful(int w, int h)
{
    FCObjImage img(w, h, 24);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.SetPixelColor(x, y, qRgb((x * 7) & 255, (y * 13) & 255, (x * y) & 255));
    return img;
}

// Few colours, so palette formats (GIF, 8-bit PCX) keep them exactly.
FCObjImage Paletted(int w, int h)
{
    FCObjImage img(w, h, 8);
    for (int i = 0; i < 256; ++i)
        img.SetPaletteColor(i, qRgb(i, (i * 5) & 255, 255 - i));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.SetPixelData(x, y, quint32((x + 3 * y) % 40));
    return img;
}

bool SameColours(const FCObjImage& a, const FCObjImage& b, int tolerance = 0)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return false;
    for (int y = 0; y < a.Height(); ++y)
        for (int x = 0; x < a.Width(); ++x)
            if (!Near(a.GetPixelColor(x, y), b.GetPixelColor(x, y), tolerance))
                return false;
    return true;
}

std::string RoundTripFault(const QString& path)
{
    const QByteArray bytes = ReadAll(path);
    return path.endsWith(".pcx") ? RoundTripFault<CPcxHandler>(bytes) : RoundTripFault<CTgaHandler>(bytes);
}

// Walks a one-frame GIF's LZW codes as a decoder sizes them and returns the
// decoder's table size at each clear code after the first; codes that come
// after the table is full count on, so a late clear shows as more than 4096.
// -1 when a code points past the table or the stream is cut.
std::vector<int> GifTableSizesAtClear(const QByteArray& gif)
{
    const auto* p = reinterpret_cast<const uchar*>(gif.constData());
    int at = 13 + ((p[10] & 0x80) ? 3 << ((p[10] & 7) + 1) : 0) + 10;
    const int minCodeSize = p[at++];
    QByteArray data;
    while (at < gif.size() && p[at] != 0) {
        data.append(gif.mid(at + 1, p[at]));
        at += 1 + p[at];
    }
    const int clear = 1 << minCodeSize;
    std::vector<int> sizes;
    int size = clear + 2, bits = minCodeSize + 1;
    bool first = true, any = false;
    for (qint64 bit = 0; bit + bits <= data.size() * 8;) {
        int code = 0;
        for (int k = 0; k < bits; ++k, ++bit)
            code |= ((uchar(data[bit / 8]) >> (bit % 8)) & 1) << k;
        if (code == clear) {
            if (any)
                sizes.push_back(size);
            size = clear + 2;
            bits = minCodeSize + 1;
            first = true;
            continue;
        }
        if (code == clear + 1)
            return sizes;
        // After a clear the first code only names a colour; each later one
        // adds an entry, and may name the entry it adds.
        if (code > size || (first && code >= clear))
            return { -1 };
        if (!first && ++size == (1 << bits) && bits < 12)
            ++bits;
        first = false;
        any = true;
    }
    return { -1 };
}

} // namespace

// Every picture our PCX and TGA readers take comes back from our writers with
// the same pixels: the fuzzers' seeds and the files that once did not.
TEST(PictureFiles, WhatOurReadersTakeOurWritersGiveBack)
{
    QStringList paths;
    for (const char* kind : { "corpus", "regression" })
        for (const char* target : { "TgaReaderFuzz", "PcxReaderFuzz" })
            for (const QFileInfo& file :
                QDir(QStringLiteral(OCULIX_SOURCE_DIR "/fuzz/%1/%2").arg(kind, target))
                    .entryInfoList({ "*.tga", "*.pcx" }, QDir::Files))
                paths << file.filePath();
    EXPECT_GE(paths.size(), 17);
    for (const QString& path : paths)
        EXPECT_EQ(RoundTripFault(path), "") << path.toStdString();

    // Translucent pixels in PCX need a fourth plane; opaque ones keep three,
    // which every other reader takes.
    QImage argb(7, 3, QImage::Format_ARGB32);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 7; ++x)
            argb.setPixel(x, y, qRgba(x * 30, y * 80, 200, x * 40));
    for (const bool translucent : { true, false }) {
        if (!translucent)
            argb.fill(qRgba(5, 6, 7, 255));
        QBuffer written;
        written.open(QIODevice::WriteOnly);
        CPcxHandler writer;
        writer.setDevice(&written);
        ASSERT_TRUE(writer.write(argb));
        EXPECT_EQ(written.data().at(65), translucent ? 4 : 3);
        EXPECT_EQ(RoundTripFault<CPcxHandler>(written.data()), "") << translucent;
    }
}

// A fuzzed RLE colour-mapped TGA whose map has 32-bit entries while its
// descriptor declares no alpha bits: the entries' fourth byte is padding. Read
// as alpha, the picture came back from our writer with other pixels.
TEST(PictureFiles, TgaMapAlphaOnlyWhereTheDescriptorDeclaresIt)
{
    QByteArray finding = ReadAll(
        QStringLiteral(OCULIX_SOURCE_DIR "/fuzz/regression/TgaReaderFuzz/tga-roundtrip-mismatch.tga"));
    ASSERT_EQ(finding.size(), 1307);
    EXPECT_EQ(RoundTripFault<CTgaHandler>(finding), "");
    QBuffer in(&finding);
    in.open(QIODevice::ReadOnly);
    CTgaHandler reader;
    reader.setDevice(&in);
    QImage image;
    ASSERT_TRUE(reader.read(&image));
    EXPECT_EQ(image.size(), QSize(9, 5));
    EXPECT_FALSE(image.hasAlphaChannel());

    // Written back with a 24-bit map that Pillow reads as we read the finding.
    QTemporaryDir dir;
    QFile file(dir.filePath("finding.tga"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    CTgaHandler writer;
    writer.setDevice(&file);
    ASSERT_TRUE(writer.write(image));
    file.close();
    const QByteArray written = ReadAll(file.fileName());
    EXPECT_EQ(written.at(7), 24);
    EXPECT_EQ(written.at(17), 0);
    if (HavePillow()) {
        EXPECT_EQ(PillowAgrees(dir, { "finding.tga" }), QStringList { "TGA" });
    }

    // A translucent palette goes as 32-bit true colour declaring its eight
    // alpha bits: some readers (Pillow) take no 32-bit colour map.
    QImage translucent(5, 2, QImage::Format_Indexed8);
    translucent.setColorTable({ qRgba(10, 20, 30, 0), qRgba(200, 100, 50, 128), qRgb(1, 2, 3) });
    for (int i = 0; i < 10; ++i)
        translucent.setPixel(i % 5, i / 5, uint(i % 3));
    QBuffer out;
    out.open(QIODevice::ReadWrite);
    writer.setDevice(&out);
    ASSERT_TRUE(writer.write(translucent));
    EXPECT_EQ(out.data().at(2), 2);
    EXPECT_EQ(out.data().at(16), 32);
    EXPECT_EQ(out.data().at(17) & 0x0F, 8);
    EXPECT_EQ(RoundTripFault<CTgaHandler>(out.data()), "");
    out.seek(0);
    reader.setDevice(&out);
    ASSERT_TRUE(reader.read(&image));
    EXPECT_EQ(image.pixel(1, 0), qRgba(200, 100, 50, 128));
}

// Noise fills the writer's 4096-code table many times: each time the table is
// full, and only then, the writer sends a clear code and starts over with
// short codes. Qt's reader and Pillow read every pixel back.
TEST(PictureFiles, GifCodeTableFillsAndStartsOver)
{
    QTemporaryDir dir;
    std::mt19937 rng(19);
    QStringList names;
    // 256 colours (9-bit codes first) and 4 colours (3-bit codes first).
    for (const int colours : { 256, 4 }) {
        QImage image(300, 260, QImage::Format_Indexed8);
        QVector<QRgb> table;
        for (int i = 0; i < colours; ++i)
            table << qRgb(i, (i * 37) & 255, 255 - i);
        image.setColorTable(table);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, uint(rng() % uint(colours)));
        names << QStringLiteral("noise%1.gif").arg(colours);
        QFile file(dir.filePath(names.last()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        CGifHandler writer;
        writer.setDevice(&file);
        ASSERT_TRUE(writer.write(image));
        file.close();

        const std::vector<int> sizes = GifTableSizesAtClear(ReadAll(file.fileName()));
        EXPECT_GE(sizes.size(), 3u) << colours;
        EXPECT_EQ(sizes, std::vector<int>(sizes.size(), 4096)) << colours;

        QImageReader qt(file.fileName(), "gif");
        const QImage back = qt.read().convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(back.size(), image.size()) << qt.errorString().toStdString();
        int wrong = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                wrong += back.pixel(x, y) != image.pixel(x, y);
        EXPECT_EQ(wrong, 0) << colours;
    }
    if (HavePillow()) {
        EXPECT_EQ(PillowAgrees(dir, names), QStringList({ "GIF", "GIF" }));
    }
}

TEST(PictureFiles, EveryFormatSavesAndLoadsBackEveryDepth)
{
    QTemporaryDir dir;
    const FCObjImage colour = Colourful(385, 17);
    const FCObjImage paletted = Paletted(101, 9);
    FCObjImage mono(77, 5, 1);
    mono.SetPaletteColor(0, qRgb(0, 0, 0));
    mono.SetPaletteColor(1, qRgb(255, 255, 255));
    FCObjImage nibble(9, 3, 4);
    for (int x = 0; x < 77; ++x) {
        mono.SetPixelData(x, x % 5, x % 2 == 0);
        nibble.SetPixelData(x % 9, x % 3, quint32(x % 9));
    }
    for (const char* ext : { "bmp", "png", "tif", "tiff", "tga", "pcx", "gif", "jpg", "jpeg" }) {
        const bool jpeg = QByteArray(ext).startsWith("jp"), gif = QByteArray(ext) == "gif";
        for (const FCObjImage* img :
            std::initializer_list<const FCObjImage*> { &colour, &paletted, &mono, &nibble }) {
            const QString path = dir.filePath(QStringLiteral("%1.%2").arg(img->ColorBits()).arg(ext));
            ASSERT_TRUE(img->Save(path)) << ext << " " << img->ErrorString().toStdString();
            FCObjImage back;
            ASSERT_TRUE(back.Load(path)) << ext << " " << back.ErrorString().toStdString();
            if (jpeg) {
                EXPECT_EQ(back.Width(), img->Width());
                // The JPEG summary writer inserts its segment after SOI and a 16-byte
                // JFIF APP0 segment, so the encoder must start files that way.
                EXPECT_EQ(ReadAll(path).left(11), QByteArray("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00", 11));
                continue;
            }
            // A GIF of a full-colour picture is reduced to 256 colours, still close.
            EXPECT_TRUE(SameColours(back, *img, gif && img == &colour ? 80 : 0))
                << ext << " " << img->ColorBits();
            if (img == &colour && !gif) {
                EXPECT_EQ(back.ColorBits(), 24) << ext;
            }
        }
    }
    FCObjImage alpha;
    QImage argb(6, 4, QImage::Format_ARGB32);
    argb.fill(qRgba(10, 200, 30, 128));
    ASSERT_TRUE(alpha.FromQImage(argb));
    for (const char* ext : { "png", "tga" }) {
        const QString path = dir.filePath(QStringLiteral("a.") + ext);
        ASSERT_TRUE(alpha.Save(path));
        FCObjImage back;
        ASSERT_TRUE(back.Load(path));
        EXPECT_TRUE(back.HasAlpha()) << ext;
        EXPECT_EQ(back.GetPixelData(2, 2), qRgba(10, 200, 30, 128)) << ext;
    }
    // The content decides when the extension lies.
    ASSERT_TRUE(QFile::copy(dir.filePath("24.png"), dir.filePath("named.bmp")));
    FCObjImage named;
    ASSERT_TRUE(named.Load(dir.filePath("named.bmp"))) << named.ErrorString().toStdString();
    EXPECT_TRUE(SameColours(named, colour));
}

TEST(PictureFiles, QtReadersAndWritersFindOurFormats)
{
    FCObjImage::RegisterFormats();
    const QList<QByteArray> writable = QImageWriter::supportedImageFormats();
    for (const char* f : { "pcx", "tga", "gif", "bmp", "jpeg", "png", "tiff" })
        EXPECT_TRUE(writable.contains(f)) << f;
    EXPECT_TRUE(QImageReader::supportedImageFormats().contains("pcx"));

    QTemporaryDir dir;
    QImage img(10, 4, QImage::Format_RGB32);
    img.fill(qRgb(1, 2, 3));
    ASSERT_TRUE(img.save(dir.filePath("q.pcx")));
    EXPECT_EQ(QImage(dir.filePath("q.pcx")).pixel(9, 3), qRgb(1, 2, 3));
}

TEST(PictureFiles, OutsideReadersAgreeWithWhatWeWrite)
{
    REQUIRE_TOOL(HavePillow(), "python3 with Pillow (python3-pil)");
    QTemporaryDir dir;
    QStringList names, formats;
    for (auto [ext, format] : { std::pair { "bmp", "BMP" }, { "png", "PNG" }, { "tif", "TIFF" },
             { "tga", "TGA" }, { "pcx", "PCX" }, { "gif", "GIF" }, { "jpg", "JPEG" } }) {
        for (const FCObjImage& img : { Colourful(385, 17), Paletted(101, 9) }) {
            names << QStringLiteral("o%1.%2").arg(img.ColorBits()).arg(ext);
            formats << format;
            ASSERT_TRUE(img.Save(dir.filePath(names.last())));
        }
    }
    EXPECT_EQ(PillowAgrees(dir, names), formats);
}

// Pillow writes PCX (1, 8 bits and RGB planes), RLE and raw TGA (top-down and
// bottom-up), GIF.
TEST(PictureFiles, ReadsWhatOutsideWritersWrite)
{
    REQUIRE_TOOL(HavePillow(), "python3 with Pillow (python3-pil)");
    QTemporaryDir dir;
    const QString setup = QStringLiteral(
        "im = Image.new('RGB', (37, 13))\n"
        "im.putdata([((x * 7) % 256, (y * 19) % 256, (x * y) % 256) for y in range(13) for x in range(37)])\n"
        "im.save(d + '/rgb.pcx'); im.save(d + '/rle.tga', rle=True); im.save(d + '/raw.tga', rle=False)\n"
        "im.save(d + '/top.tga', orientation=1)\n"
        "im.convert('P').save(d + '/pal.pcx'); im.convert('P').save(d + '/pal.tga', rle=True)\n"
        "im.convert('L').save(d + '/gray.tga'); im.convert('1').save(d + '/mono.pcx')\n"
        "im.convert('P').save(d + '/pal.gif')\n");
    const QStringList names = { "rgb.pcx", "rle.tga", "raw.tga", "top.tga", "pal.pcx", "pal.tga", "gray.tga",
        "mono.pcx", "pal.gif" };
    EXPECT_EQ(PillowAgrees(dir, names, setup).size(), names.size());
}

TEST(PictureFiles, BadFilesFailWithAReasonAndLeaveThePictureAlone)
{
    QTemporaryDir dir;
    FCObjImage keep = Colourful(5, 5);
    EXPECT_FALSE(keep.Load(dir.filePath("missing.png")));
    EXPECT_TRUE(keep.ErrorString().contains("missing.png"));
    EXPECT_EQ(keep.Width(), 5);

    EXPECT_FALSE(keep.Save(dir.filePath("x.xyz")));
    EXPECT_FALSE(keep.ErrorString().isEmpty());
    EXPECT_FALSE(keep.Save(dir.filePath("no/such/folder/x.png")));
    EXPECT_FALSE(FCObjImage().Save(dir.filePath("empty.png")));

    // Every truncation of every format fails cleanly with a reason, or, where
    // only bytes past the pixels are gone, gives the whole file's pixels:
    // no reader makes up the rest.
    const FCObjImage colour = Colourful(40, 30);
    for (const char* ext : { "pcx", "tga", "bmp", "png", "gif", "jpg", "tif" }) {
        const QString whole = dir.filePath(QStringLiteral("w.") + ext);
        ASSERT_TRUE(colour.Save(whole));
        FCObjImage reference;
        ASSERT_TRUE(reference.Load(whole));
        const QByteArray data = ReadAll(whole);
        for (int cut : { 0, 1, 17, 18, 64, 127, 128, int(data.size()) / 2, int(data.size()) - 1 }) {
            const QString part = dir.filePath(QStringLiteral("cut%1.%2").arg(cut).arg(ext));
            ASSERT_TRUE(WriteAll(part, data.left(cut)));
            FCObjImage img = Colourful(3, 3);
            if (img.Load(part)) {
                EXPECT_TRUE(SameColours(img, reference)) << ext << " cut at " << cut;
            } else {
                EXPECT_FALSE(img.ErrorString().isEmpty());
                EXPECT_EQ(img.Width(), 3);
            }
        }
    }

    // Random bytes behind valid headers.
    std::mt19937 rng(5);
    for (const char* ext : { "pcx", "tga" }) {
        const QByteArray data = ReadAll(dir.filePath(QStringLiteral("w.") + ext));
        for (int i = 0; i < 200; ++i) {
            QByteArray junk = data;
            for (int k = 0; k < 8; ++k)
                junk[int(rng() % junk.size())] = char(rng());
            ASSERT_TRUE(WriteAll(dir.filePath(QStringLiteral("junk.") + ext), junk));
            FCObjImage img;
            img.Load(dir.filePath(QStringLiteral("junk.") + ext)); // must not crash or hang
        }
    }
}

TEST(PictureFiles, HugePicturesAreRefusedFromTheHeader)
{
    QTemporaryDir dir;
    // PCX: 65535 x 65535, eight bits, one plane; TGA: 65535 x 65535 true colour.
    const QByteArray pcx = QByteArray::fromHex("0a05010800000000ffffffff").leftJustified(65, '\0')
        + QByteArray::fromHex("01ffff").leftJustified(63, '\0');
    ASSERT_TRUE(WriteAll(dir.filePath("huge.pcx"), pcx + QByteArray(1000, '\x11')));
    const QByteArray tga = QByteArray::fromHex("000002000000000000000000ffffffff1800");
    ASSERT_TRUE(WriteAll(dir.filePath("huge.tga"), tga + QByteArray(1000, '\x11')));
    // BMP: 30000 x 30000 in a header Qt would otherwise believe.
    QImage small(2, 2, QImage::Format_RGB32);
    small.fill(0);
    ASSERT_TRUE(small.save(dir.filePath("small.bmp")));
    QByteArray bmp = ReadAll(dir.filePath("small.bmp"));
    const qint32 side = 30000;
    std::memcpy(bmp.data() + 18, &side, 4);
    std::memcpy(bmp.data() + 22, &side, 4);
    ASSERT_TRUE(WriteAll(dir.filePath("huge.bmp"), bmp));
    for (const char* name : { "huge.pcx", "huge.tga", "huge.bmp" }) {
        FCObjImage img;
        EXPECT_FALSE(img.Load(dir.filePath(name))) << name;
        EXPECT_FALSE(img.ErrorString().isEmpty());
    }
}

// GIF keeps a picture of up to 256 colours exactly, with its own colours and
// its transparency; one with more gets a palette fitted to its colours.
TEST(PictureFiles, GifKeepsFewColoursExactlyAndFitsThePaletteToMany)
{
    QTemporaryDir dir;
    // 30 colours with fully clear pixels, the form a GIF with a transparent
    // index reads as; then a flat gray with an alpha channel.
    QImage few(64, 40, QImage::Format_ARGB32);
    for (int y = 0; y < few.height(); ++y)
        for (int x = 0; x < few.width(); ++x)
            few.setPixel(
                x, y, (x + y) % 31 == 30 ? qRgba(0, 0, 0, 0) : qRgb(7 * ((x + y) % 31), 100, 3 * (y % 2)));
    QImage flat(64, 40, QImage::Format_ARGB32);
    flat.fill(qRgba(128, 128, 128, 255));
    const QStringList names = { "few.gif", "flat.gif", "many.gif" };
    // Smooth shades of some 20,000 colours, as a photograph has.
    FCObjImage many(320, 240, 24);
    for (int y = 0; y < many.Height(); ++y)
        for (int x = 0; x < many.Width(); ++x)
            many.SetPixelColor(x, y,
                qRgb(100 + x / 4, 60 + y / 3 + int(20 * std::sin(x / 17.0)),
                    90 + int(40 * std::cos((x + y) / 40.0))));
    for (int i = 0; i < 3; ++i) {
        FCObjImage picture;
        if (i < 2)
            ASSERT_TRUE(picture.FromQImage(i == 0 ? few : flat));
        else
            picture = many;
        ASSERT_TRUE(picture.Save(dir.filePath(names[i])));
        FCObjImage back;
        ASSERT_TRUE(back.Load(dir.filePath(names[i]))) << back.ErrorString().toStdString();
        ASSERT_EQ(back.Width(), picture.Width());
        int wrong = 0, worst = 0;
        qint64 error = 0;
        for (int y = 0; y < picture.Height(); ++y)
            for (int x = 0; x < picture.Width(); ++x) {
                const QRgb a = picture.GetPixelColor(x, y), b = back.GetPixelColor(x, y);
                wrong += qAlpha(a) == 0 ? qAlpha(b) != 0 : a != b;
                const int d = std::max({ std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                    std::abs(qBlue(a) - qBlue(b)) });
                worst = std::max(worst, d);
                error += d;
            }
        if (i < 2) {
            EXPECT_EQ(wrong, 0) << names[i].toStdString();
            EXPECT_EQ(back.HasAlpha(), i == 0) << names[i].toStdString();
        } else {
            // A fixed 216-colour cube is off by 19 levels on average here (27
            // dithered); a palette fitted to the colours by a few.
            EXPECT_LT(double(error) / (picture.Width() * picture.Height()), 5.0);
            EXPECT_LE(worst, 16);
        }
    }
    if (HavePillow()) {
        EXPECT_EQ(PillowAgrees(dir, names, {}, true), QStringList({ "GIF", "GIF", "GIF" }));
    }
}

// Readers show a 1-bit PCX as black and white whatever its header says: a
// white-on-black picture keeps 1 bit with its bits turned, another pair of
// colours goes as 8 bits with its palette, a translucent palette as RGBA.
TEST(PictureFiles, PcxWritesWhatReadersShowAsThePictureItself)
{
    QTemporaryDir dir;
    struct
    {
        const char* name;
        QRgb zero, one;
        int bits, planes;
    } cases[] = { { "inverse.pcx", qRgb(255, 255, 255), qRgb(0, 0, 0), 1, 1 },
        { "plain.pcx", qRgb(0, 0, 0), qRgb(255, 255, 255), 1, 1 },
        { "colours.pcx", qRgb(200, 10, 10), qRgb(10, 10, 200), 8, 1 },
        { "clear.pcx", qRgba(0, 0, 0, 0), qRgb(255, 255, 255), 8, 4 } };
    QStringList forPillow;
    for (const auto& c : cases) {
        FCObjImage mono(21, 3, 1);
        mono.SetPaletteColor(0, c.zero);
        mono.SetPaletteColor(1, c.one);
        for (int x = 0; x < 21; ++x)
            mono.SetPixelData(x, x % 3, 1);
        ASSERT_TRUE(mono.Save(dir.filePath(c.name)));
        const QByteArray written = ReadAll(dir.filePath(c.name));
        EXPECT_EQ(int(written.at(3)), c.bits) << c.name;
        EXPECT_EQ(int(written.at(65)), c.planes) << c.name;
        FCObjImage back;
        ASSERT_TRUE(back.Load(dir.filePath(c.name)));
        for (int i = 0; i < 63; ++i)
            EXPECT_EQ(back.GetPixelColor(i % 21, i / 21), mono.GetPixelColor(i % 21, i / 21))
                << c.name << " " << i;
        if (c.planes != 4)
            forPillow << c.name;
    }
    // 32 bits without alpha: three planes, as every reader takes them.
    FCObjImage unused(9, 2, 32);
    unused.SetPixelData(3, 1, 0x00102030);
    ASSERT_TRUE(unused.Save(dir.filePath("rgb.pcx")));
    EXPECT_EQ(int(ReadAll(dir.filePath("rgb.pcx")).at(65)), 3);
    forPillow << "rgb.pcx";
    if (HavePillow()) {
        EXPECT_EQ(PillowAgrees(dir, forPillow, {}, true).size(), forPillow.size());
    }
}
