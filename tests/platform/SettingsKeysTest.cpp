#include "platform/SettingsKeys.h"

#include "TestFiles.h"
#include "platform/PrivateProfile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace SettingsKeys;

namespace {

TEST(SettingsKeys, RealsKeepTwoDecimalsAndFloatPrecision)
{
    EXPECT_EQ(FormatReal(0.123), "0.12");
    EXPECT_EQ(FormatReal(0.004), "0.00");
    EXPECT_EQ(FormatReal(2.675), "2.67"); // the double lies just below 2.675, as printf sees it

    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("Setting.ini"));
    ASSERT_TRUE(WriteReal(MeasureXPerPixel, 0.123, file));
    EXPECT_EQ(GetPrivateProfileString("Measure", "m_unit.m_dcxPerPixel", "", file), "0.12");
    EXPECT_EQ(ReadReal(MeasureXPerPixel, file), double(0.12f));
    ASSERT_TRUE(WriteString(MeasureYPerPixel, QStringLiteral("garbage"), file));
    EXPECT_EQ(ReadReal(MeasureYPerPixel, file), double(0.2f));
}

// A fresh installation reads the defaults and writes them, with the values
// changed, in the document's order.
TEST(SettingsKeys, FreshInstallationDefaultsAreWrittenInOrder)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("Setting.ini"));
    DocumentSettings s = ReadDocumentSettings(file);
    EXPECT_EQ(s.m_dcxPerPixel, double(0.2f));
    EXPECT_EQ(ReadCameraSize(Camera130H, file), QSize(1280, 1024));
    EXPECT_EQ(ReadCameraSize(Camera1000, file), QSize(640, 480));
    EXPECT_EQ(RgbGainBlue(12).m_name, "BGAIN12");
    s.m_device = QStringLiteral("KMZ-N130 USB2.0 Camera");
    s.m_dcxPerPixel = 0.0125;
    s.m_rtUnit = 0;
    s.m_ctText = 7;
    ASSERT_TRUE(WriteDocumentSettings(s, file));
    EXPECT_EQ(ReadAll(file),
        "[Video]\r\nCameraType=1\r\nDisplayMode=2\r\nDevice=KMZ-N130 USB2.0 Camera\r\n"
        "CurSel=4\r\n[Process]\r\nbFlip=0\r\nbMirror=0\r\n[Measure]\r\n"
        "m_unit.m_dcxPerPixel=0.01\r\nm_unit.m_dcyPerPixel=0.20\r\nm_unit.m_rtUnit=0\r\n"
        "m_unit.m_dcxReal=0.20\r\nm_unit.m_dcyReal=0.20\r\nm_color.m_ctAdjust=1\r\n"
        "m_color.m_ctCoord=1\r\nm_color.m_ctRuler=1\r\nm_color.m_ctText=7\r\nPrecision=1\r\n"
        "FontSize=1\r\nFontBackground=1\r\n");
}

TEST(SettingsKeys, ASettingsFileFromWindowsSurvivesADocument)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("Setting.ini"));
    const QByteArray original = "[Lang]\r\nLangId=2052\r\n[Measure]\r\nm_unit.m_dcxPerPixel = 0.01\r\n"
                                "Precision = 2\r\nFONTSIZE=3\r\n; my note\r\n\r\n[RGBGAIN]\r\nTotal=1\r\n"
                                "RGBGAINNAME0=Warm\r\n[Gerneral]\r\nAppName=Other.exe\r\n";
    ASSERT_TRUE(WriteAll(file, original));
    DocumentSettings s = ReadDocumentSettings(file);
    EXPECT_EQ(s.m_dcxPerPixel, double(0.01f));
    EXPECT_EQ(s.m_fontSize, 3);
    EXPECT_EQ(ReadString(GeneralAppName, file), "Other.exe") << "the section keeps its old spelling";
    s.m_precision = 4;
    ASSERT_TRUE(WriteDocumentSettings(s, file));
    QByteArray expected = original;
    expected.replace("Precision = 2", "Precision=4");
    expected.replace("FONTSIZE=3\r\n",
        "FONTSIZE=3\r\nm_unit.m_dcyPerPixel=0.20\r\nm_unit.m_rtUnit=1\r\n"
        "m_unit.m_dcxReal=0.20\r\nm_unit.m_dcyReal=0.20\r\nm_color.m_ctAdjust=1\r\n"
        "m_color.m_ctCoord=1\r\nm_color.m_ctRuler=1\r\nm_color.m_ctText=1\r\n"
        "FontBackground=1\r\n");
    expected += "[Video]\r\nCameraType=1\r\nDisplayMode=2\r\nDevice=\r\nCurSel=4\r\n"
                "[Process]\r\nbFlip=0\r\nbMirror=0\r\n";
    EXPECT_EQ(ReadAll(file), expected);

    // Fields of 256 and 260 characters keep one less.
    ASSERT_TRUE(WriteString(VideoDevice, QString(300, u'd'), file));
    ASSERT_TRUE(WriteString(SaveFilePath, QString(300, u'p'), file));
    EXPECT_EQ(ReadString(VideoDevice, file).size(), 255);
    EXPECT_EQ(ReadString(SaveFilePath, file).size(), 259);
}

} // namespace
