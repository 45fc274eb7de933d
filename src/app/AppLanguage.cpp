#include "app/AppLanguage.h"

#include "platform/AppPaths.h"

#include <QSettings>

#include <algorithm>
#include <array>

namespace {

constexpr int kCustomLocale = 0x0C00;
constexpr int kSubDefault = 0x0400;

constexpr std::array kChineseIds { 0x0004, 0x0404, 0x0804, 0x0C04, 0x1004, 0x1404, 0x7C04 };
constexpr std::array kFrenchIds { 0x040C, 0x080C, 0x0C0C, 0x100C, 0x140C, 0x180C };
constexpr std::array kSemicolonCsvIds { 0x040C, 0x080C, 0x0C0C, 0x100C, 0x140C };

struct TerritoryId
{
    QLocale::Territory territory;
    int id;
};

// Sub-languages of the three interface languages, whose territory decides
// the choice; other languages only need their primary identifier. A territory
// without a row gives the neutral identifier of its language.
constexpr TerritoryId kEnglish[] = {
    { QLocale::UnitedStates, 0x0409 },
    { QLocale::UnitedKingdom, 0x0809 },
    { QLocale::Australia, 0x0C09 },
    { QLocale::Canada, 0x1009 },
    { QLocale::NewZealand, 0x1409 },
    { QLocale::Ireland, 0x1809 },
    { QLocale::SouthAfrica, 0x1C09 },
    { QLocale::Jamaica, 0x2009 },
    { QLocale::Belize, 0x2809 },
    { QLocale::TrinidadAndTobago, 0x2C09 },
    { QLocale::Zimbabwe, 0x3009 },
    { QLocale::Philippines, 0x3409 },
    { QLocale::India, 0x4009 },
    { QLocale::Malaysia, 0x4409 },
    { QLocale::Singapore, 0x4809 },
};
constexpr TerritoryId kFrench[] = {
    { QLocale::France, 0x040C },
    { QLocale::Belgium, 0x080C },
    { QLocale::Canada, 0x0C0C },
    { QLocale::Switzerland, 0x100C },
    { QLocale::Luxembourg, 0x140C },
    { QLocale::Monaco, 0x180C },
    { QLocale::Reunion, 0x200C },
    { QLocale::CongoKinshasa, 0x240C },
    { QLocale::Senegal, 0x280C },
    { QLocale::Cameroon, 0x2C0C },
    { QLocale::IvoryCoast, 0x300C },
    { QLocale::Mali, 0x340C },
    { QLocale::Morocco, 0x380C },
    { QLocale::Haiti, 0x3C0C },
};
constexpr TerritoryId kChinese[] = {
    { QLocale::Taiwan, 0x0404 },
    { QLocale::China, 0x0804 },
    { QLocale::HongKong, 0x0C04 },
    { QLocale::Singapore, 0x1004 },
    { QLocale::Macao, 0x1404 },
};

struct PrimaryId
{
    QLocale::Language language;
    int primary;
};

constexpr PrimaryId kPrimary[] = {
    { QLocale::Arabic, 0x01 },
    { QLocale::Bulgarian, 0x02 },
    { QLocale::Catalan, 0x03 },
    { QLocale::Czech, 0x05 },
    { QLocale::Danish, 0x06 },
    { QLocale::German, 0x07 },
    { QLocale::Greek, 0x08 },
    { QLocale::Finnish, 0x0B },
    { QLocale::Hebrew, 0x0D },
    { QLocale::Hungarian, 0x0E },
    { QLocale::Icelandic, 0x0F },
    { QLocale::Italian, 0x10 },
    { QLocale::Japanese, 0x11 },
    { QLocale::Korean, 0x12 },
    { QLocale::Dutch, 0x13 },
    { QLocale::NorwegianBokmal, 0x14 },
    { QLocale::Polish, 0x15 },
    { QLocale::Romanian, 0x18 },
    { QLocale::Russian, 0x19 },
    { QLocale::Croatian, 0x1A },
    { QLocale::Slovak, 0x1B },
    { QLocale::Albanian, 0x1C },
    { QLocale::Swedish, 0x1D },
    { QLocale::Thai, 0x1E },
    { QLocale::Turkish, 0x1F },
    { QLocale::Urdu, 0x20 },
    { QLocale::Indonesian, 0x21 },
    { QLocale::Ukrainian, 0x22 },
    { QLocale::Belarusian, 0x23 },
    { QLocale::Slovenian, 0x24 },
    { QLocale::Estonian, 0x25 },
    { QLocale::Latvian, 0x26 },
    { QLocale::Lithuanian, 0x27 },
    { QLocale::Persian, 0x29 },
    { QLocale::Vietnamese, 0x2A },
    { QLocale::Hindi, 0x39 },
};

template <std::size_t N>
int FindTerritory(const TerritoryId (&table)[N], QLocale::Territory territory, int fallback)
{
    auto it = std::find_if(std::begin(table), std::end(table),
        [territory](const TerritoryId& t) { return t.territory == territory; });
    return it == std::end(table) ? fallback : it->id;
}

} // namespace

InterfaceLanguage ClassifyLanguageId(int langId)
{
    if (std::find(kChineseIds.begin(), kChineseIds.end(), langId) != kChineseIds.end())
        return InterfaceLanguage::Chinese;
    if (std::find(kFrenchIds.begin(), kFrenchIds.end(), langId) != kFrenchIds.end())
        return InterfaceLanguage::French;
    return InterfaceLanguage::English;
}

bool UsesSemicolonCsv(int langId)
{
    return std::find(kSemicolonCsvIds.begin(), kSemicolonCsvIds.end(), langId) != kSemicolonCsvIds.end();
}

int LanguageIdFromLocale(const QLocale& locale)
{
    switch (locale.language()) {
    case QLocale::C:
        return 0x0409;
    case QLocale::English:
        return FindTerritory(kEnglish, locale.territory(), 0x0009);
    case QLocale::French:
        return FindTerritory(kFrench, locale.territory(), 0x000C);
    case QLocale::Chinese:
        if (locale.territory() == QLocale::AnyTerritory)
            return locale.script() == QLocale::TraditionalChineseScript ? 0x7C04 : 0x0004;
        return FindTerritory(kChinese, locale.territory(),
            locale.script() == QLocale::TraditionalChineseScript ? 0x7C04 : 0x0004);
    case QLocale::Spanish:
        return 0x0C0A;
    case QLocale::Portuguese:
        return locale.territory() == QLocale::Portugal ? 0x0816 : 0x0416;
    default:
        break;
    }
    auto it = std::find_if(std::begin(kPrimary), std::end(kPrimary),
        [&locale](const PrimaryId& p) { return p.language == locale.language(); });
    return it == std::end(kPrimary) ? kCustomLocale : (kSubDefault | it->primary);
}

namespace {

const QString kChoiceKey = QStringLiteral("Interface/LangId");

} // namespace

int StoredLanguageChoice()
{
    const QSettings settings(UserSettingsFilePath(), QSettings::IniFormat);
    return settings.value(kChoiceKey, 0).toInt();
}

void StoreLanguageChoice(int langId)
{
    QSettings settings(UserSettingsFilePath(), QSettings::IniFormat);
    settings.setValue(kChoiceKey, langId);
}

QString TranslationLocale(InterfaceLanguage language)
{
    switch (language) {
    case InterfaceLanguage::Chinese:
        return QStringLiteral("zh_CN");
    case InterfaceLanguage::French:
        return QStringLiteral("fr");
    case InterfaceLanguage::English:
        break;
    }
    return {};
}
