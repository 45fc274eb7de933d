#include "calibration/SvrFile.h"

#include "TestFiles.h"
#include "platform/NumberText.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace SvrFile;

namespace {

// The ruler at (250, 400)-(450, 380), in mm.
SvrData Sample()
{
    return { "0.0100", "0.1000", "2", "2.00", 250, 450, 200, 380, 400, 20, 1 };
}

} // namespace

TEST(SvrFile, WritesElevenLinesEndingCrCrLfWithTheStartCornerAtOneHundred)
{
    EXPECT_EQ(ToBytes(Sample()),
        "0.0100\r\r\n0.1000\r\r\n2\r\r\n2."
        "00\r\r\n100\r\r\n300\r\r\n200\r\r\n100\r\r\n120\r\r\n20\r\r\n1\r\r\n");
    SvrData odd = Sample();
    odd.m_strXReal = QStringLiteral("1\n2\r");
    odd.m_strYReal = QStringLiteral("\u00b5m");
    EXPECT_TRUE(ToBytes(odd).contains("\r\r\n1 2\r\r\n\xc2\xb5m\r\r\n"))
        << "one line per value whatever the text";
}

TEST(SvrFile, ReadsWhatItWroteAndTheOtherLineEnds)
{
    const QByteArray crcrlf = ToBytes(Sample());
    ASSERT_TRUE(FromBytes(crcrlf));
    EXPECT_EQ(*FromBytes(crcrlf), Sample().Normalized());
    QByteArray crlf = crcrlf;
    crlf.replace("\r\r\n", "\r\n");
    QByteArray lf = crcrlf;
    lf.replace("\r\r\n", "\n");
    QByteArray unterminated = lf;
    unterminated.chop(1);
    for (const QByteArray& bytes : { crlf, lf, unterminated }) {
        const auto read = FromBytes(bytes);
        ASSERT_TRUE(read);
        EXPECT_EQ(*read, Sample().Normalized());
    }
    EXPECT_EQ(FromBytes(lf + "extra\nlines\n")->m_nUnit, 1) << "only eleven lines count";
    const QByteArray bom = "\xef\xbb\xbf" + lf;
    EXPECT_EQ(ToBytes(*FromBytes(bom)), "\xef\xbb\xbf" + crcrlf) << "a byte-order mark is kept as text";
}

TEST(SvrFile, ShortFilesRepeatTheirLastLine)
{
    const auto three = FromBytes("0.0100\r\r\n0.0200\r\r\n7 um\r\r\n");
    ASSERT_TRUE(three);
    EXPECT_EQ(three->m_strXReal, "7 um");
    EXPECT_EQ(three->m_strYReal, "7 um");
    EXPECT_EQ(three->m_nXStart, 7);
    EXPECT_EQ(three->m_nUnit, 7);
    const auto blankLast = FromBytes("0.0100\n\n");
    ASSERT_TRUE(blankLast);
    EXPECT_EQ(blankLast->m_strYPerPixel, "");
    EXPECT_EQ(blankLast->m_nYLenth, 0) << "empty text converts to 0";
}

TEST(SvrFile, RefusesBytesThatAreNotRulerData)
{
    EXPECT_FALSE(FromBytes(""));
    EXPECT_FALSE(FromBytes(QByteArray("0.01\n\0\x01\x02\n", 10))) << "binary";
    EXPECT_FALSE(FromBytes("0.01\n\x1b[31m\n")) << "control characters";
    EXPECT_FALSE(FromBytes(QByteArray(kMaxLineChars + 1, '7') + "\n"));
    EXPECT_TRUE(FromBytes(QByteArray(kMaxLineChars, '7') + "\n"));
    // A long line of many-byte characters counts by characters.
    QByteArray wide;
    for (int i = 0; i < kMaxLineChars; ++i)
        wide += "\xc2\xb5";
    EXPECT_TRUE(FromBytes(wide));
}

TEST(SvrFile, ReadAndWriteFilesWithoutLosingAnything)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("cal"));
    ASSERT_TRUE(WriteAll(path, QByteArray(5000, 'x'))); // longer than what replaces it
    ASSERT_EQ(Write(path, Sample()), Status::Ok);
    EXPECT_EQ(ReadAll(path), ToBytes(Sample()));
    SvrData read;
    ASSERT_EQ(Read(path, read), Status::Ok);
    EXPECT_EQ(read, Sample().Normalized());

    QString error;
    SvrData untouched = Sample();
    EXPECT_EQ(Read(dir.filePath(QStringLiteral("none.svr")), untouched, &error), Status::CannotOpen);
    EXPECT_TRUE(error.contains(QStringLiteral("none.svr")));
    const QString binary = dir.filePath(QStringLiteral("photo.svr"));
    ASSERT_TRUE(WriteAll(binary, QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)));
    EXPECT_EQ(Read(binary, untouched, &error), Status::NotRulerData);
    EXPECT_EQ(error, binary + QStringLiteral(" is not a ruler data file."));
    const QString empty = dir.filePath(QStringLiteral("empty.svr"));
    ASSERT_TRUE(WriteAll(empty, {}));
    EXPECT_EQ(Read(empty, untouched), Status::NotRulerData);
    EXPECT_EQ(Read(dir.path(), untouched), Status::CannotOpen) << "a folder";
    EXPECT_EQ(untouched, Sample());

    EXPECT_EQ(Write(dir.filePath(QStringLiteral("no/such/folder/x")), Sample(), &error), Status::CannotWrite);
    EXPECT_TRUE(error.contains(QStringLiteral("x")));
}

TEST(SvrFile, HugeFilesAreReadOnlyAsFarAsTheirFirstLines)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("huge.svr"));
    // `head`, then 1 MiB of `fill`: far more than the eleven longest lines.
    const auto write
        = [&](const QByteArray& head, char fill) { return WriteAll(path, head + QByteArray(1 << 20, fill)); };
    SvrData read;
    ASSERT_TRUE(write(ToBytes(Sample()), '\0'));
    EXPECT_EQ(Read(path, read), Status::Ok);
    EXPECT_EQ(read, Sample().Normalized());
    ASSERT_TRUE(write({}, '5')); // one line of 1 MiB
    EXPECT_EQ(Read(path, read), Status::NotRulerData);
}

TEST(SvrFile, SaveNameCutsAnExactSvrExtension)
{
    EXPECT_EQ(SaveName(QStringLiteral("/data/svrdata/a.svr")), "/data/svrdata/a");
    EXPECT_EQ(SaveName(QStringLiteral("a.svr.svr")), "a.svr");
    EXPECT_EQ(SaveName(QStringLiteral("a.SVR")), "a.SVR");
    EXPECT_EQ(SaveName(QStringLiteral("a")), "a");
    EXPECT_EQ(SaveName(QStringLiteral(".svr")), "");
}

TEST(SvrFile, FactoryFilesAreEachObjectivesCalibrationForTheFactoryFrame)
{
    EXPECT_EQ(FactoryFileName(0), "10-1280_1024.svr");
    EXPECT_EQ(FactoryFileName(4), "100-1280_1024.svr");
    EXPECT_EQ(FactoryFileName(5), "");
    EXPECT_EQ(FactoryFileName(-1), "");
    const QDir folder(QStringLiteral(OCULIX_SOURCE_DIR "/resources/svrdata"));
    double previous = 1e9;
    for (int m = 0; m < 5; ++m) {
        const QString path = folder.filePath(FactoryFileName(m));
        const QByteArray bytes = ReadAll(path);
        SvrData d;
        ASSERT_EQ(Read(path, d), Status::Ok) << path.toStdString();
        EXPECT_EQ(ToBytes(d), bytes) << "as the program writes them";
        EXPECT_EQ(d.m_nUnit, 0) << "um";
        EXPECT_LT(d.m_nXEnd, kFactoryWidth);
        EXPECT_LT(d.m_nYEnd, kFactoryHeight);
        const double x = NumberText::LeadingReal(d.m_strXReal) / d.m_nXLenth;
        EXPECT_EQ(d.m_strXPerPixel, QString::number(x, 'f', 4));
        EXPECT_EQ(
            d.m_strYPerPixel, QString::number(NumberText::LeadingReal(d.m_strYReal) / d.m_nYLenth, 'f', 4));
        EXPECT_LT(x, previous) << "a stronger objective, smaller pixels";
        previous = x;
    }
}
