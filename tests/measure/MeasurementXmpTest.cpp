#include "measure/MeasurementXmp.h"

#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

#include <gtest/gtest.h>

// A stored calibration is used only when it is one: a unit 0..4 and finite
// positive sizes per pixel. Anything else is flagged and left unused; real
// arm lengths that are no size are left out alone.
TEST(MeasurementXmp, OnlyAValidStoredCalibrationIsUsed)
{
    using P = PictureXmp::Properties;
    const P valid { { "Unit", "4" }, { "XPerPixel", "0.5" }, { "YPerPixel", "2" }, { "XReal", "inf" },
        { "YReal", "30" } };
    MeasurementXmp::Stored stored = MeasurementXmp::FromProperties(valid);
    ASSERT_TRUE(stored.unit.has_value());
    EXPECT_FALSE(stored.invalidUnit);
    CalibrationRecord record { 0, 0.2, 0.2, 10.0, 10.0 };
    stored.ApplyTo(record);
    EXPECT_EQ(record.m_rtUnit, 4);
    EXPECT_EQ(record.m_dcxPerPixel, 0.5);
    EXPECT_EQ(record.m_dcxReal, 10.0) << "an infinite arm is no length";
    EXPECT_EQ(record.m_dcyReal, 30.0);

    for (const P& bad :
        { P { { "Unit", "-7" }, { "XPerPixel", "1" }, { "YPerPixel", "1" } },
            P { { "Unit", "5" }, { "XPerPixel", "1" }, { "YPerPixel", "1" } },
            P { { "Unit", "1" }, { "XPerPixel", "nan" }, { "YPerPixel", "1" } },
            P { { "Unit", "1" }, { "XPerPixel", "1" }, { "YPerPixel", "inf" } },
            P { { "Unit", "1" }, { "XPerPixel", "0" }, { "YPerPixel", "1" } },
            P { { "Unit", "1" }, { "XPerPixel", "-0.5" }, { "YPerPixel", "1" } },
            P { { "Unit", "x" }, { "XPerPixel", "1" }, { "YPerPixel", "1" } }, P { { "XPerPixel", "1" } } }) {
        SCOPED_TRACE(bad.value("Unit").toStdString() + " " + bad.value("XPerPixel").toStdString());
        stored = MeasurementXmp::FromProperties(bad);
        EXPECT_TRUE(stored.invalidUnit);
        EXPECT_FALSE(stored.unit.has_value());
        CalibrationRecord kept { 2, 0.3, 0.4, 10.0, 10.0 };
        stored.ApplyTo(kept);
        EXPECT_EQ(kept.m_rtUnit, 2);
        EXPECT_EQ(kept.m_dcxPerPixel, 0.3);
    }
    // No calibration at all is not an invalid one.
    EXPECT_FALSE(MeasurementXmp::FromProperties({ { "Shapes", "[]" } }).invalidUnit);
}
