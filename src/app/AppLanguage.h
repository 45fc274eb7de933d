#pragma once

#include <QLocale>

// The interface language chosen from the system's language identifier (the
// 16-bit Windows form, kept because "Lang"/"LangId" stores it and the
// measurement export switches its separator on French).
enum class InterfaceLanguage { English, Chinese, French };

InterfaceLanguage ClassifyLanguageId(int langId);

// The measurement export separates with semicolons for these French
// identifiers only; Monaco's, although French for the interface, keeps commas.
bool UsesSemicolonCsv(int langId);

// The language identifier of a locale: primary language in the low ten bits,
// sub-language (the territory) above. A locale without one gives 0x0C00, the
// identifier of a custom locale.
int LanguageIdFromLocale(const QLocale& locale);

// The identifier the language commands store for each interface language.
constexpr int kLangIdEnglish = 1033;
constexpr int kLangIdFrench = 1036;
constexpr int kLangIdChinese = 2052;

// The identifier a language command stored, kept in the program's own user
// settings ($XDG_CONFIG_HOME/Oculix/Oculix.conf), not in the data folder's
// Setting.ini; 0 when the user never chose (the system language decides).
int StoredLanguageChoice();
void StoreLanguageChoice(int langId);

// The locale name of an interface language's translations ("fr", "zh_CN";
// empty for English, the language of the source texts).
QString TranslationLocale(InterfaceLanguage language);
