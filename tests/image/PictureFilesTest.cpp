#include "TestFiles.h"
#include "image/FCObjImage.h"

#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

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
        for (int x = 0; x < a.Width(); ++x) {
            const QRgb p = a.GetPixelColor(x, y), q = b.GetPixelColor(x, y);
            if (std::abs(qRed(p) - qRed(q)) > tolerance || std::abs(qGreen(p) - qGreen(q)) > tolerance
                || std::abs(qBlue(p) - qBlue(q)) > tolerance)
                return false;
        }
    return true;
}

// Python with Pillow, Debian's outside reader and writer of every format here.
bool HavePillow()
{
    static const bool have = [] {
        const QString python = QStandardPaths::findExecutable("python3", { "/usr/bin", "/bin" });
        return !python.isEmpty() && QProcess::execute(python, { "-c", "import PIL.Image" }) == 0;
    }();
    return have;
}

QString Pillow(const QString& script)
{
    QProcess p;
    p.start(QStandardPaths::findExecutable("python3", { "/usr/bin", "/bin" }), { "-c", script });
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

} // namespace

TEST(PictureFiles, EveryFormatSavesAndLoadsBack)
{
    QTemporaryDir dir;
    const FCObjImage colour = Colourful(385, 17);
    const FCObjImage paletted = Paletted(101, 9);
    for (const char* ext : { "bmp", "png", "tif", "tiff", "tga", "pcx" }) {
        const QString path = dir.filePath(QStringLiteral("c.") + ext);
        ASSERT_TRUE(colour.Save(path)) << ext << " " << colour.ErrorString().toStdString();
        FCObjImage back;
        ASSERT_TRUE(back.Load(path)) << ext << " " << back.ErrorString().toStdString();
        EXPECT_EQ(back.ColorBits(), 24) << ext;
        EXPECT_TRUE(SameColours(back, colour)) << ext;
    }
    for (const char* ext : { "bmp", "png", "tif", "tga", "pcx", "gif" }) {
        const QString path = dir.filePath(QStringLiteral("p.") + ext);
        ASSERT_TRUE(paletted.Save(path)) << ext;
        FCObjImage back;
        ASSERT_TRUE(back.Load(path)) << ext << " " << back.ErrorString().toStdString();
        EXPECT_TRUE(SameColours(back, paletted)) << ext;
    }
    for (const char* ext : { "jpg", "jpeg" }) {
        const QString path = dir.filePath(QStringLiteral("c.") + ext);
        ASSERT_TRUE(colour.Save(path));
        FCObjImage back;
        ASSERT_TRUE(back.Load(path));
        EXPECT_EQ(back.Width(), 385);
        // The JPEG summary writer inserts its segment after SOI and a 16-byte
        // JFIF APP0 segment, so the encoder must start files that way.
        const QByteArray head = ReadAll(path).left(11);
        EXPECT_EQ(head, QByteArray("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00", 11));
    }
    // A GIF of a full-colour picture is reduced to 256 colours, still close.
    const QString gif = dir.filePath("c.gif");
    ASSERT_TRUE(colour.Save(gif));
    FCObjImage back;
    ASSERT_TRUE(back.Load(gif));
    EXPECT_TRUE(SameColours(back, colour, 80));
}

TEST(PictureFiles, OneBitFourBitAndAlphaPicturesKeepTheirColours)
{
    QTemporaryDir dir;
    FCObjImage mono(77, 5, 1);
    mono.SetPaletteColor(0, qRgb(0, 0, 0));
    mono.SetPaletteColor(1, qRgb(255, 255, 255));
    for (int x = 0; x < 77; x += 2)
        mono.SetPixelData(x, x % 5, 1);
    FCObjImage nibble(9, 3, 4);
    for (int x = 0; x < 9; ++x)
        nibble.SetPixelData(x, x % 3, quint32(x));
    for (const char* ext : { "bmp", "png", "tif", "tga", "pcx", "gif" }) {
        for (const FCObjImage* img : { &mono, &nibble }) {
            const QString path = dir.filePath(QStringLiteral("m%1.%2").arg(img->ColorBits()).arg(ext));
            ASSERT_TRUE(img->Save(path)) << ext;
            FCObjImage back;
            ASSERT_TRUE(back.Load(path)) << ext;
            EXPECT_TRUE(SameColours(back, *img)) << ext << " " << img->ColorBits();
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
    if (!HavePillow())
        GTEST_SKIP() << "python3 with Pillow is not installed";
    QTemporaryDir dir;
    const FCObjImage colour = Colourful(385, 17);
    const FCObjImage paletted = Paletted(101, 9);
    for (const char* ext : { "bmp", "png", "tif", "tga", "pcx", "gif", "jpg" }) {
        for (const FCObjImage* img : { &colour, &paletted }) {
            const QString path = dir.filePath(QStringLiteral("o%1.%2").arg(img->ColorBits()).arg(ext));
            ASSERT_TRUE(img->Save(path));
            const int x = img->Width() - 1, y = img->Height() - 2;
            const QString got
                = Pillow(QStringLiteral("from PIL import Image\n"
                                        "im = Image.open('%1'); print(im.format, im.size[0], im.size[1], "
                                        "*im.convert('RGB').getpixel((%2, %3)))")
                             .arg(path)
                             .arg(x)
                             .arg(y));
            const QStringList parts = got.split(' ');
            ASSERT_EQ(parts.size(), 6) << ext << ": " << got.toStdString();
            EXPECT_EQ(parts[1].toInt(), img->Width()) << ext;
            EXPECT_EQ(parts[2].toInt(), img->Height()) << ext;
            // Same pixels as our own reading; only JPEG decoders may round
            // differently.
            FCObjImage ours;
            ASSERT_TRUE(ours.Load(path));
            const QRgb want = ours.GetPixelColor(x, y);
            const int tolerance = QByteArray(ext) == "jpg" ? 3 : 0;
            EXPECT_NEAR(parts[3].toInt(), qRed(want), tolerance) << ext;
            EXPECT_NEAR(parts[4].toInt(), qGreen(want), tolerance) << ext;
            EXPECT_NEAR(parts[5].toInt(), qBlue(want), tolerance) << ext;
        }
    }
}

TEST(PictureFiles, ReadsWhatOutsideWritersWrite)
{
    if (!HavePillow())
        GTEST_SKIP() << "python3 with Pillow is not installed";
    QTemporaryDir dir;
    // Pillow writes PCX (1, 8 bits and RGB planes), RLE and raw TGA
    // (top-down and bottom-up), GIF; we compare every pixel with Pillow's view.
    const QString script = QStringLiteral(
        "from PIL import Image\n"
        "d = '%1'\n"
        "im = Image.new('RGB', (37, 13))\n"
        "im.putdata([((x * 7) % 256, (y * 19) % 256, (x * y) % 256) for y in range(13) for x in "
        "range(37)])\n"
        "im.save(d + '/rgb.pcx'); im.save(d + '/rle.tga', rle=True); im.save(d + '/raw.tga', rle=False)\n"
        "im.save(d + '/top.tga', orientation=1)\n"
        "im.convert('P').save(d + '/pal.pcx'); im.convert('P').save(d + '/pal.tga', rle=True)\n"
        "im.convert('L').save(d + '/gray.tga'); im.convert('1').save(d + '/mono.pcx')\n"
        "im.convert('P').save(d + '/pal.gif')\n"
        "for n in ['rgb.pcx', 'rle.tga', 'raw.tga', 'top.tga', 'pal.pcx', 'pal.tga', 'gray.tga', 'mono.pcx', "
        "'pal.gif']:\n"
        "    p = Image.open(d + '/' + n).convert('RGB')\n"
        "    print(n, ' '.join('%d,%d,%d' % p.getpixel((x, y)) for y in range(13) for x in range(37)))\n")
                               .arg(dir.path());
    const QStringList lines = Pillow(script).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 9) << Pillow(script).toStdString();
    for (const QString& line : lines) {
        const QStringList parts = line.split(' ');
        FCObjImage img;
        ASSERT_TRUE(img.Load(dir.filePath(parts[0])))
            << parts[0].toStdString() << img.ErrorString().toStdString();
        ASSERT_EQ(img.Width(), 37);
        ASSERT_EQ(img.Height(), 13);
        int wrong = 0;
        for (int i = 1; i < parts.size(); ++i) {
            const QStringList c = parts[i].split(',');
            const QRgb got = img.GetPixelColor((i - 1) % 37, (i - 1) / 37);
            wrong += qRed(got) != c[0].toInt() || qGreen(got) != c[1].toInt() || qBlue(got) != c[2].toInt();
        }
        EXPECT_EQ(wrong, 0) << parts[0].toStdString();
    }
}

TEST(PictureFiles, ImageMagickIdentifiesOurFiles)
{
    const QString identify = QStandardPaths::findExecutable("identify");
    if (identify.isEmpty())
        GTEST_SKIP() << "ImageMagick is not installed";
    QTemporaryDir dir;
    const FCObjImage colour = Colourful(33, 7);
    for (auto [ext, name] : { std::pair { "pcx", "PCX" }, { "tga", "TGA" }, { "gif", "GIF" } }) {
        const QString path = dir.filePath(QStringLiteral("i.") + ext);
        ASSERT_TRUE(colour.Save(path));
        QProcess p;
        p.start(identify, { "-format", "%m %w %h", path });
        ASSERT_TRUE(p.waitForFinished(60000));
        EXPECT_EQ(
            QString::fromUtf8(p.readAllStandardOutput()).trimmed(), QStringLiteral("%1 33 7").arg(name));
    }
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

    // Every truncation of every format fails cleanly (or, for formats that
    // tolerate a short tail, yields the declared size).
    const FCObjImage colour = Colourful(40, 30);
    for (const char* ext : { "pcx", "tga", "bmp", "png", "gif", "jpg", "tif" }) {
        const QString whole = dir.filePath(QStringLiteral("w.") + ext);
        ASSERT_TRUE(colour.Save(whole));
        const QByteArray data = ReadAll(whole);
        for (int cut : { 0, 1, 17, 18, 64, 127, 128, int(data.size()) / 2, int(data.size()) - 1 }) {
            const QString part = dir.filePath(QStringLiteral("cut%1.%2").arg(cut).arg(ext));
            ASSERT_TRUE(WriteAll(part, data.left(cut)));
            FCObjImage img = Colourful(3, 3);
            if (img.Load(part)) {
                EXPECT_EQ(img.Width(), 40) << ext << " cut at " << cut;
            } else {
                EXPECT_FALSE(img.ErrorString().isEmpty());
                EXPECT_EQ(img.Width(), 3);
            }
        }
        // Our own formats never accept a truncated body.
        if (QByteArray(ext) == "pcx" || QByteArray(ext) == "tga") {
            ASSERT_TRUE(WriteAll(dir.filePath(QStringLiteral("short.") + ext), data.left(data.size() / 2)));
            EXPECT_FALSE(FCObjImage().Load(dir.filePath(QStringLiteral("short.") + ext))) << ext;
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
    // PCX: 65535 x 65535, eight bits, one plane.
    QByteArray pcx(128, '\0');
    pcx[0] = 0x0A;
    pcx[1] = 5;
    pcx[2] = 1;
    pcx[3] = 8;
    pcx[8] = pcx[9] = pcx[10] = pcx[11] = char(0xFF);
    pcx[65] = 1;
    pcx[66] = pcx[67] = char(0xFF);
    ASSERT_TRUE(WriteAll(dir.filePath("huge.pcx"), pcx + QByteArray(1000, '\x11')));
    // TGA: 65535 x 65535 true colour.
    QByteArray tga(18, '\0');
    tga[2] = 2;
    tga[12] = tga[13] = tga[14] = tga[15] = char(0xFF);
    tga[16] = 24;
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

TEST(PictureFiles, ContentDecidesWhenTheExtensionLies)
{
    QTemporaryDir dir;
    const FCObjImage colour = Colourful(12, 8);
    ASSERT_TRUE(colour.Save(dir.filePath("real.png")));
    QFile::copy(dir.filePath("real.png"), dir.filePath("named.bmp"));
    FCObjImage img;
    ASSERT_TRUE(img.Load(dir.filePath("named.bmp"))) << img.ErrorString().toStdString();
    EXPECT_TRUE(SameColours(img, colour));
}
