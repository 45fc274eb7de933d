#include "image/PictureXmp.h"

#include "RequiredTools.h"
#include "TestFiles.h"
#include "image/ExtendedXmp.h"
#include "image/FCObjImage.h"
#include "image/JpegSummary.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString WritePicture(const QTemporaryDir& dir, const QString& name)
{
    FCObjImage picture(32, 24, 24);
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 32; ++x)
            picture.SetPixelColor(x, y, qRgb(x * 8, y * 10, 40));
    const QString path = dir.filePath(name);
    EXPECT_TRUE(picture.Save(path)) << picture.ErrorString().toStdString();
    return path;
}

// Text of `size` characters that no two chunks share, so a chunk put back in
// the wrong place shows.
QString Numbers(int size)
{
    QString text;
    for (int i = 0; text.size() < size; ++i)
        text += QString::number(i) + QLatin1Char(',');
    return text.left(size);
}

QString Exiftool()
{
    return QStandardPaths::findExecutable(QStringLiteral("exiftool"));
}

} // namespace

// Our properties go into JPEG, PNG and TIFF files and come back unchanged,
// a second write replaces them, and the picture still reads.
TEST(PictureXmp, RoundTripInEveryTypeThatHoldsIt)
{
    const PictureXmp::Properties first { { "Unit", "2" }, { "XPerPixel", "0.123456789" },
        { "Shapes", R"([{"type":2,"points":[[1,2],[30,2]]}])" } };
    const PictureXmp::Properties second { { "Unit", "0" }, { "XPerPixel", "1.5" } };
    for (const char* name : { "a.jpg", "b.png", "c.tif", "d.JPEG", "e.tiff" }) {
        SCOPED_TRACE(name);
        QTemporaryDir dir;
        const QString path = WritePicture(dir, QString::fromLatin1(name));
        ASSERT_TRUE(PictureXmp::CanHold(path));
        EXPECT_TRUE(PictureXmp::Read(path).isEmpty());
        QString error;
        ASSERT_TRUE(PictureXmp::Write(path, first, &error)) << error.toStdString();
        EXPECT_EQ(PictureXmp::Read(path), first);
        ASSERT_TRUE(PictureXmp::Write(path, second, &error)) << error.toStdString();
        EXPECT_EQ(PictureXmp::Read(path), second) << "the old properties are gone";
        FCObjImage reread;
        ASSERT_TRUE(reread.Load(path));
        EXPECT_EQ(reread.Width(), 32);
    }
}

// A JPEG keeps its JFIF header in front, so the summary writer still puts
// its segment right after byte 20, and both kinds of data are found.
TEST(PictureXmp, JpegKeepsItsHeaderForTheSummarySegment)
{
    QTemporaryDir dir;
    const QString path = WritePicture(dir, "a.jpg");
    const QByteArray header = ReadAll(path).left(20);
    ASSERT_TRUE(PictureXmp::Write(path, { { "Unit", "1" } }));
    EXPECT_EQ(ReadAll(path).left(20), header);
    ASSERT_TRUE(WriteJpegSummary(path, "T", "", "", ""));
    EXPECT_EQ(ReadAll(path).mid(20, 10),
        QByteArray("\xFF\xE1\x00\x60"
                   "Exif\0\0",
            10));
    EXPECT_EQ(PictureXmp::Read(path).value("Unit"), "1");
    const QString exiftool = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    REQUIRE_TOOL(!exiftool.isEmpty(), "exiftool (libimage-exiftool-perl)");
    QProcess tool;
    tool.start(exiftool, { "-j", "-XMP-oculix:Unit", "-XPTitle", path });
    ASSERT_TRUE(tool.waitForFinished(60000));
    const QJsonObject tags = QJsonDocument::fromJson(tool.readAllStandardOutput()).array().at(0).toObject();
    EXPECT_EQ(tags.value("Unit").toVariant().toString(), "1");
    EXPECT_EQ(tags.value("XPTitle").toString(), "T  ");
}

// Types without XMP, files that are not pictures and missing files: no
// properties, and a failed write changes nothing.
TEST(PictureXmp, OtherFilesAreLeftAlone)
{
    QTemporaryDir dir;
    const QString bmp = WritePicture(dir, "a.bmp");
    EXPECT_FALSE(PictureXmp::CanHold(bmp));
    EXPECT_TRUE(PictureXmp::Read(bmp).isEmpty());
    const QString fake = dir.filePath("fake.png");
    ASSERT_TRUE(WriteAll(fake, "not a picture at all"));
    EXPECT_TRUE(PictureXmp::Read(fake).isEmpty());
    QString error;
    EXPECT_FALSE(PictureXmp::Write(fake, { { "Unit", "1" } }, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(ReadAll(fake), "not a picture at all");
    EXPECT_FALSE(PictureXmp::Write(dir.filePath("missing.jpg"), { { "Unit", "1" } }));
    EXPECT_TRUE(PictureXmp::Read(dir.filePath("missing.jpg")).isEmpty());
}

// A property far larger than one JPEG segment goes into the second packet
// and comes back whole with the small ones; a second, small write takes the
// old segments away; PNG and TIFF keep any size in one piece.
TEST(ExtendedXmp, LargePropertiesRoundTripAndLeaveNothingBehind)
{
    QTemporaryDir dir;
    const PictureXmp::Properties large { { "Unit", "2" }, { "Shapes", Numbers(300000) } };
    for (const char* name : { "a.jpg", "b.png", "c.tif" }) {
        SCOPED_TRACE(name);
        const QString path = WritePicture(dir, QString::fromLatin1(name));
        QString error;
        ASSERT_TRUE(PictureXmp::Write(path, large, &error)) << error.toStdString();
        EXPECT_EQ(PictureXmp::Read(path), large);
        ASSERT_TRUE(PictureXmp::Write(path, { { "Unit", "1" } }, &error)) << error.toStdString();
        EXPECT_EQ(PictureXmp::Read(path), PictureXmp::Properties({ { "Unit", "1" } }));
        EXPECT_FALSE(ReadAll(path).contains(ExtendedXmp::kSignature));
        FCObjImage reread;
        EXPECT_TRUE(reread.Load(path));
    }
}

// exiftool reads our second packet, and we read the one exiftool writes.
TEST(ExtendedXmp, ExiftoolReadsOursAndWeReadExiftools)
{
    REQUIRE_TOOL(!Exiftool().isEmpty(), "exiftool (libimage-exiftool-perl)");
    QTemporaryDir dir;
    const QString ours = WritePicture(dir, "ours.jpg");
    const QString shapes = Numbers(150000);
    ASSERT_TRUE(PictureXmp::Write(ours, { { "Unit", "3" }, { "Shapes", shapes } }));
    QProcess tool;
    tool.start(Exiftool(), { "-j", "-b", "-XMP-oculix:all", ours });
    ASSERT_TRUE(tool.waitForFinished(60000));
    const QJsonObject tags = QJsonDocument::fromJson(tool.readAllStandardOutput()).array().at(0).toObject();
    EXPECT_EQ(tags.value("Shapes").toString().size(), shapes.size());
    EXPECT_TRUE(tags.value("Shapes").toString() == shapes);
    EXPECT_EQ(tags.value("Unit").toVariant().toString(), "3");

    // exiftool moves what does not fit into its own second packet, given our namespace.
    const QString theirs = WritePicture(dir, "theirs.jpg");
    const QString config = dir.filePath("oculix.config");
    ASSERT_TRUE(WriteAll(config,
        QStringLiteral("%Image::ExifTool::UserDefined = ('Image::ExifTool::XMP::Main' => { oculix => "
                       "{ SubDirectory => { TagTable => 'Image::ExifTool::UserDefined::oculix' } } });\n"
                       "%Image::ExifTool::UserDefined::oculix = (GROUPS => { 0 => 'XMP', 1 => 'XMP-oculix', "
                       "2 => 'Image' }, NAMESPACE => { oculix => '%1' }, WRITABLE => 'string', Unit => {}, "
                       "Shapes => {});\n1;\n")
            .arg(QString::fromLatin1(PictureXmp::kNamespace))
            .toUtf8()));
    const QString value = dir.filePath("shapes.txt");
    ASSERT_TRUE(WriteAll(value, shapes.toUtf8()));
    ASSERT_EQ(QProcess::execute(Exiftool(),
                  { "-config", config, "-q", "-overwrite_original", "-XMP-oculix:Unit=4",
                      "-XMP-oculix:Shapes<=" + value, theirs }),
        0);
    ASSERT_TRUE(ReadAll(theirs).contains(ExtendedXmp::kSignature)) << "exiftool wrote one segment";
    const PictureXmp::Properties read = PictureXmp::Read(theirs);
    EXPECT_EQ(read.value("Unit"), "4");
    EXPECT_TRUE(read.value("Shapes") == shapes) << read.value("Shapes").size();
}

// Reassembly takes the chunks in any order and refuses gaps, chunks past the
// length and segments that disagree on it; another GUID's segments are not ours.
TEST(ExtendedXmp, ReassemblyChecksEveryChunk)
{
    QTemporaryDir dir;
    const QByteArray jpeg = ReadAll(WritePicture(dir, "a.jpg"));
    const QByteArray packet = Numbers(3 * ExtendedXmp::kChunk + 17).toUtf8();
    const QByteArray guid = ExtendedXmp::GuidFor(packet);
    const QByteArray with = ExtendedXmp::Insert(jpeg, guid, packet);
    ASSERT_FALSE(with.isEmpty());
    EXPECT_EQ(ExtendedXmp::Reassemble(with, guid), packet);
    EXPECT_TRUE(ExtendedXmp::Reassemble(with, ExtendedXmp::GuidFor("other")).isEmpty());
    EXPECT_EQ(ExtendedXmp::Strip(with), jpeg);

    // Segments start where the JFIF header ends; each is marker, length, 75 bytes of header, data.
    const qsizetype first = with.indexOf(ExtendedXmp::kSignature) - 4;
    const qsizetype segment = 4 + 75 + ExtendedXmp::kChunk;
    auto without = [&](int index) {
        QByteArray bytes = with;
        return bytes.remove(first + index * segment, segment);
    };
    QString error;
    EXPECT_TRUE(ExtendedXmp::Reassemble(without(1), guid, &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(ExtendedXmp::Reassemble(without(3), guid, &error).isEmpty());

    // The chunks in reverse order.
    QByteArray reversed = with.left(first);
    for (int i = 3; i >= 0; --i)
        reversed += with.mid(first + i * segment, i == 3 ? 4 + 75 + 17 : segment);
    reversed += with.mid(first + 3 * segment + 4 + 75 + 17);
    EXPECT_EQ(ExtendedXmp::Reassemble(reversed, guid), packet);

    // A length that the others do not share, and an offset past the length.
    QByteArray bytes = with;
    bytes[first + 4 + 35 + 32 + 3] = char(bytes[first + 4 + 35 + 32 + 3] + 1);
    EXPECT_TRUE(ExtendedXmp::Reassemble(bytes, guid, &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
    bytes = with;
    bytes[first + segment + 4 + 35 + 32 + 4] = char(0x7F);
    EXPECT_TRUE(ExtendedXmp::Reassemble(bytes, guid, &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
}
