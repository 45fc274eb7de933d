#include "image/PictureXmp.h"

#include "RequiredTools.h"
#include "TestFiles.h"
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
