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
