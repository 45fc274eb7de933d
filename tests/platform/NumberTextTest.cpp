#include "platform/NumberText.h"

#include "CommaLocale.h"
#include "RequiredTools.h"
#include "platform/SettingsKeys.h"

#include <climits>
#include <clocale>
#include <cmath>
#include <gtest/gtest.h>

using namespace NumberText;

TEST(NumberText, LeadingNumbersAreReadAsTheCLibraryReadsThem)
{
    const std::pair<const char*, double> reals[]
        = { { "0.0100\r", 0.01 }, { "  -2.5mm", -2.5 }, { "+.5", 0.5 }, { "3.", 3.0 }, { "1e2x", 100.0 },
              { "1e", 1.0 }, { "1e-999", 0.0 }, { "2,5", 2.0 }, { "", 0.0 }, { "abc", 0.0 }, { ".", 0.0 },
              { "-", 0.0 }, { "--1", 0.0 }, { "inf", 0.0 }, { "nan", 0.0 }, { "0x10", 0.0 } };
    for (const auto& [text, value] : reals)
        EXPECT_EQ(LeadingReal(QString::fromLatin1(text)), value) << text;
    EXPECT_TRUE(std::isinf(LeadingReal(u"1e999")));

    // "%f" into a float: float precision, and nothing for what is not a finite number.
    const std::pair<const char*, std::optional<float>> floats[] = { { " 1.5mm", 1.5f }, { "+2", 2.0f },
        { "-0.25", -0.25f }, { "0.1", 0.1f }, { "1e-50", 0.0f }, { "abc", std::nullopt },
        { "", std::nullopt }, { "--1", std::nullopt }, { "1e50", std::nullopt }, { "nan", std::nullopt } };
    for (const auto& [text, value] : floats)
        EXPECT_EQ(LeadingFloat(QString::fromLatin1(text)), value) << text;

    const std::tuple<const char*, int, quint32> ints[] = { { " \t-12abc", -12, quint32(-12) }, { "+7", 7, 7 },
        { "923\r", 923, 923 }, { "2.9", 2, 2 }, { "x1", 0, 0 }, { "4294967297", INT_MAX, 1 },
        { "99999999999999999999", INT_MAX, quint32(7766279631452241919ull) },
        { "-99999999999999999999", INT_MIN, quint32(-7766279631452241919ll) } };
    for (const auto& [text, clamped, wrapped] : ints) {
        EXPECT_EQ(LeadingInt(QString::fromLatin1(text)), clamped) << text;
        EXPECT_EQ(LeadingIntWrapped(QString::fromLatin1(text)), wrapped) << text;
    }
}

// A Qt program takes LC_NUMERIC from the desktop; a German one must still
// read and write "0.50".
TEST(NumberText, NumbersKeepAPeriodInACommaLocale)
{
    REQUIRE_TOOL(UseCommaLocale(), "a locale with a decimal comma (localedef, package locales)");
    char probe[8];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    const QString formatted = FormatC("%d,%.3f", 7, 0.25);
    const QString setting = SettingsKeys::FormatReal(0.5);
    const double real = LeadingReal(u"0.75");
    const std::optional<float> single = LeadingFloat(u"0.75");
    std::setlocale(LC_NUMERIC, "C");
    ASSERT_STREQ(probe, "1,5") << "the locale did not take effect";
    EXPECT_EQ(formatted, "7,0.250");
    EXPECT_EQ(setting, "0.50");
    EXPECT_EQ(real, 0.75);
    EXPECT_EQ(single, 0.75f);
}
