#include "calibration/MeasureTables.h"

#include "calibration/CalibrationRecord.h"
#include "calibration/ColorRecord.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

using namespace MeasureTables;

TEST(MeasureTables, PaletteIsTheEightColoursInIndexOrder)
{
    const QColor expected[] = { QColor(0, 0, 0), QColor(255, 255, 255), QColor(255, 0, 0), QColor(0, 255, 0),
        QColor(0, 0, 255), QColor(0, 255, 255), QColor(255, 0, 255), QColor(255, 255, 0) };
    for (int i = 0; i < kPaletteSize; ++i)
        EXPECT_EQ(PaletteColor(i), expected[i]) << "index " << i;
    // A hand-edited settings file must not index past the table.
    EXPECT_EQ(PaletteColor(-1), QColor(255, 255, 255));
    EXPECT_EQ(PaletteColor(8), QColor(255, 255, 255));
}

TEST(MeasureTables, UnitTextsAndOutOfRangeUnits)
{
    const char* units[] = { "um", "mm", "cm", "dm", "inch" };
    const char* perPixel[] = { "um/pixel", "mm/pixel", "cm/pixel", "dm/pixel", "inch/pixel" };
    for (int i = 0; i < kUnitCount; ++i) {
        EXPECT_STREQ(UnitText(i), units[i]);
        EXPECT_STREQ(PerPixelText(i), perPixel[i]);
        EXPECT_EQ(std::string(SpacedUnitText(i)), std::string(" ") + units[i]);
    }
    EXPECT_STREQ(UnitText(-1), "mm");
    EXPECT_STREQ(UnitText(5), "mm");
    EXPECT_STREQ(PerPixelText(99), "mm/pixel");
}

TEST(MeasureTables, LabelsByPrecisionAndEmptyOutsideOneToFive)
{
    EXPECT_EQ(FormatLabel(kLengthFormats, 1, 20.0, "mm"), "L=20.0mm");
    EXPECT_EQ(FormatLabel(kLengthFormats, 2, 12.3456, "mm"), "L=12.35mm");
    EXPECT_EQ(FormatLabel(kLengthFormats, 5, 12.3456, "inch"), "L=12.34560inch");
    EXPECT_EQ(FormatLabel(kAreaFormats, 3, 3.14159, "um"), "S=3.142um2");
    EXPECT_EQ(FormatLabel(kRadiusFormats, 4, 1.0, "cm"), "R=1.0000cm");
    EXPECT_EQ(FormatLabel(kAngleFormats, 2, 45.0), "A=45.00 deg");
    EXPECT_EQ(FormatLabel(kValueFormats, 1, 10.0, SpacedUnitText(1)), "10.0 mm");
    for (int precision : { -1, 0, 6, 100 }) {
        EXPECT_TRUE(FormatLabel(kLengthFormats, precision, 1.0, "mm").isEmpty()) << precision;
        EXPECT_EQ(FormatForPrecision(kAngleFormats, precision), nullptr);
    }
}

TEST(MeasureTables, RecordDefaultsAreThoseOfAFreshInstallation)
{
    const CalibrationRecord unit;
    EXPECT_EQ(unit.m_rtUnit, 1);
    EXPECT_DOUBLE_EQ(unit.m_dcxPerPixel, 0.2);
    EXPECT_DOUBLE_EQ(unit.m_dcyPerPixel, 0.2);
    EXPECT_DOUBLE_EQ(unit.m_dcxReal, 0.2);
    EXPECT_DOUBLE_EQ(unit.m_dcyReal, 0.2);
    EXPECT_EQ(ColorRecord {}, (ColorRecord { 1, 1, 1, 1 }));
}

namespace {

// A locale with a decimal comma: the installed one, or one compiled into a
// temporary directory when only the locale sources are present.
bool UseCommaLocale(QTemporaryDir& dir)
{
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        return true;
    if (!dir.isValid() || !QFile::exists("/usr/share/i18n/locales/de_DE"))
        return false;
    const QString target = dir.filePath("de_DE.UTF-8");
    if (QProcess::execute("localedef", { "-i", "de_DE", "-f", "UTF-8", target }) != 0)
        return false;
    setenv("LOCPATH", QFile::encodeName(dir.path()).constData(), 1);
    return std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
}

} // namespace

TEST(MeasureTables, NumbersKeepAPeriodInACommaLocale)
{
    QTemporaryDir dir;
    if (!UseCommaLocale(dir))
        GTEST_SKIP() << "no locale with a decimal comma can be made here (Debian package 'locales')";
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    EXPECT_STREQ(probe, "1,5") << "the comma locale is not in effect";
    EXPECT_EQ(FormatLabel(kLengthFormats, 2, 1.5, "mm"), "L=1.50mm");
    EXPECT_EQ(FormatC("%d,%.3f", 7, 0.25), "7,0.250");
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
}
