#include "app/AppLanguage.h"

#include <gtest/gtest.h>
#include <tuple>

TEST(AppLanguage, ClassifiesTheListedIdentifiersOnly)
{
    for (int id : { 0x0004, 0x0404, 0x0804, 0x0C04, 0x1004, 0x1404, 0x7C04 })
        EXPECT_EQ(ClassifyLanguageId(id), InterfaceLanguage::Chinese) << std::hex << id;
    for (int id : { 0x040C, 0x080C, 0x0C0C, 0x100C, 0x140C, 0x180C }) {
        EXPECT_EQ(ClassifyLanguageId(id), InterfaceLanguage::French) << std::hex << id;
        // Monaco's French interface still exports with commas.
        EXPECT_EQ(UsesSemicolonCsv(id), id != 0x180C) << std::hex << id;
    }
    for (int id : { 0x0409, 0x0804, 0x000C, 0x1C0C, 0x2C0C, 0x0407, 0 })
        EXPECT_FALSE(UsesSemicolonCsv(id)) << std::hex << id;
    // Other territories of the same languages, and everything else, are English.
    for (int id : { 0x0409, 0x0809, 0x2C0C, 0x300C, 0x000C, 0x1804, 0x0407, 0x0000, 0xFFFF, -1 })
        EXPECT_EQ(ClassifyLanguageId(id), InterfaceLanguage::English) << std::hex << id;
}

TEST(AppLanguage, IdentifierFromLocale)
{
    using enum InterfaceLanguage;
    const std::tuple<const char*, int, InterfaceLanguage> rows[]
        = { { "zh_CN", 0x0804, Chinese }, { "zh_TW", 0x0404, Chinese }, { "zh_HK", 0x0C04, Chinese },
              { "zh_SG", 0x1004, Chinese }, { "fr_FR", 0x040C, French }, { "fr_CA", 0x0C0C, French },
              { "fr_CH", 0x100C, French }, { "fr_CM", 0x2C0C, English }, { "fr_SN", 0x280C, English },
              { "en_US", 0x0409, English }, { "en_GB", 0x0809, English }, { "de_DE", 0x0407, English },
              { "ja_JP", 0x0411, English }, { "C", 0x0409, English } };
    for (const auto& [locale, id, language] : rows) {
        EXPECT_EQ(LanguageIdFromLocale(QLocale(QString::fromLatin1(locale))), id) << locale;
        EXPECT_EQ(ClassifyLanguageId(id), language) << locale;
    }
    EXPECT_EQ(
        LanguageIdFromLocale(QLocale(QLocale::Chinese, QLocale::TraditionalChineseScript, QLocale::Macao)),
        0x1404);
    EXPECT_EQ(LanguageIdFromLocale(QLocale(QLocale::Swahili, QLocale::Kenya)), 0x0C00);
}
