#include "calibration/MeasureTables.h"

#include "calibration/CalibrationRecord.h"
#include "calibration/ColorRecord.h"

#include <gtest/gtest.h>

using namespace MeasureTables;

TEST(MeasureTables, PaletteAndUnitTablesNeverIndexPastTheirEnd)
{
    // The palette holds COLORREFs, 0x00BBGGRR: entry 2, 0x0000FF, is red.
    const std::pair<int, QColor> colors[] = { { 2, Qt::red }, { 4, Qt::blue }, { 5, Qt::cyan },
        { 7, Qt::yellow }, { -1, Qt::white }, { 8, Qt::white } };
    for (const auto& [index, color] : colors)
        EXPECT_EQ(PaletteColor(index), color) << index;
    EXPECT_STREQ(UnitText(4), "inch");
    EXPECT_STREQ(PerPixelText(0), "um/pixel");
    EXPECT_STREQ(SpacedUnitText(3), " dm");
    EXPECT_STREQ(UnitText(5), "mm");
    EXPECT_STREQ(PerPixelText(-1), "mm/pixel");
    EXPECT_EQ(CalibrationRecord {}, (CalibrationRecord { 1, 0.2, 0.2, 0.2, 0.2 }));
    EXPECT_EQ(ColorRecord {}, (ColorRecord { 1, 1, 1, 1 }));
}

TEST(MeasureTables, LabelsByPrecisionAndEmptyOutsideOneToFive)
{
    EXPECT_EQ(FormatLabel(kLengthFormats, 2, 12.3456, "mm"), "L=12.35mm");
    EXPECT_EQ(FormatLabel(kLengthFormats, 5, 12.3456, "inch"), "L=12.34560inch");
    EXPECT_EQ(FormatLabel(kAreaFormats, 3, 3.14159, "um"), "S=3.142um2");
    EXPECT_EQ(FormatLabel(kRadiusFormats, 4, 1.0, "cm"), "R=1.0000cm");
    EXPECT_EQ(FormatLabel(kAngleFormats, 1, 45.0), "A=45.0 deg");
    EXPECT_EQ(FormatLabel(kValueFormats, 1, 10.0, SpacedUnitText(1)), "10.0 mm");
    for (int precision : { 0, 6 })
        EXPECT_TRUE(FormatLabel(kLengthFormats, precision, 1.0, "mm").isEmpty()) << precision;

    // With an uncertainty: two significant digits of it, never fewer decimals than the value.
    struct Row
    {
        const PrecisionFormats& formats;
        int precision;
        double value;
        double u;
        const char* unit;
        const char* label;
    };
    const Row rows[] = {
        { kLengthFormats, 2, 12.3456, 0.0523, "um", "L=12.35±0.052um" },
        { kLengthFormats, 1, 5.0, 0.25, "mm", "L=5.0±0.25mm" },
        { kRadiusFormats, 3, 1.0, 2.5, "inch", "R=1.000±2.500inch" },
        { kRadiusFormats, 2, 1.0, 1e-9, "mm", "R=1.00±0.000000mm" },
        { kLengthFormats, 0, 1.0, 0.1, "mm", "" },
    };
    for (const Row& r : rows)
        EXPECT_EQ(FormatLabel(r.formats, r.precision, r.value, r.unit, r.u), QString::fromUtf8(r.label))
            << r.label;
}
