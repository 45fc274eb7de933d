#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>

#include <optional>

// Numbers in text as the C library reads and writes them in the "C" locale,
// whatever locale the process runs in: Qt sets the user's locale at start-up,
// and a desktop with a decimal comma must still read and write "0.50".
// The one place that scans or formats numbers for files, labels and CSV.
namespace NumberText {

// White space as isspace sees it in the C locale.
bool IsCSpace(QChar c);

// The integer at the start of text as strtol reads it (white space, one
// sign, decimal digits); 0 when there are no digits. Clamped to the int
// range, or kept modulo 2^32 as 32-bit arithmetic wraps.
int LeadingInt(QStringView text);
quint32 LeadingIntWrapped(QStringView text);

// The decimal number at the start of text as strtod reads it (white space,
// one sign, digits, a point, digits, an exponent; no hex, inf or nan): 0
// when there is none; overflow gives an infinity.
double LeadingReal(QStringView text);
// The same scanned as "%f" into a float; none also when it is not finite.
std::optional<float> LeadingFloat(QStringView text);

// printf in the C locale: numbers always carry a period. Safe on any thread.
QString FormatC(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace NumberText
