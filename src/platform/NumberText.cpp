#include "platform/NumberText.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <locale.h>
#include <string>
#include <vector>

namespace NumberText {

namespace {

locale_t CLocale()
{
    // Created once, never freed: it must outlive every thread that uses it.
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return c;
}

// The number at the start of text in the C library's own spelling (sign
// included), or empty when there is none. `real` also takes a fraction and
// an exponent.
std::string LeadingNumber(QStringView text, bool real)
{
    qsizetype i = 0;
    while (i < text.size() && IsCSpace(text[i]))
        ++i;
    std::string number;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        number += char(text[i++].unicode());
    auto digits = [&] {
        const std::size_t before = number.size();
        while (i < text.size() && text[i] >= u'0' && text[i] <= u'9')
            number += char(text[i++].unicode());
        return number.size() > before;
    };
    bool any = digits();
    if (real && i < text.size() && text[i] == u'.') {
        number += '.';
        ++i;
        any = digits() || any;
    }
    if (!any)
        return {};
    if (real && i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        const std::size_t mark = number.size();
        number += 'e';
        ++i;
        if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
            number += char(text[i++].unicode());
        if (!digits())
            number.resize(mark); // "1e" is the number 1 followed by a letter
    }
    return number;
}

} // namespace

bool IsCSpace(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\r';
}

int LeadingInt(QStringView text)
{
    const std::string number = LeadingNumber(text, false);
    long long value = 0;
    for (const char c : number) {
        if (c >= '0' && c <= '9')
            value = std::min(value * 10 + (c - '0'), 1LL + INT_MAX);
    }
    if (!number.empty() && number[0] == '-')
        value = -value;
    return int(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

quint32 LeadingIntWrapped(QStringView text)
{
    const std::string number = LeadingNumber(text, false);
    quint32 value = 0;
    for (const char c : number) {
        if (c >= '0' && c <= '9')
            value = value * 10u + quint32(c - '0');
    }
    return !number.empty() && number[0] == '-' ? 0u - value : value;
}

double LeadingReal(QStringView text)
{
    const std::string number = LeadingNumber(text, true);
    return number.empty() ? 0.0 : strtod_l(number.c_str(), nullptr, CLocale());
}

std::optional<float> LeadingFloat(QStringView text)
{
    const std::string number = LeadingNumber(text, true);
    if (number.empty())
        return std::nullopt;
    const float value = strtof_l(number.c_str(), nullptr, CLocale());
    if (!std::isfinite(value))
        return std::nullopt;
    return value;
}

QString FormatC(const char* format, ...)
{
    // uselocale switches only this thread, briefly.
    const locale_t previous = uselocale(CLocale());
    char small[256];
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int needed = std::vsnprintf(small, sizeof small, format, args);
    va_end(args);
    QString result;
    if (needed >= 0 && std::size_t(needed) < sizeof small) {
        result = QString::fromUtf8(small, needed);
    } else if (needed >= 0) {
        std::vector<char> big(std::size_t(needed) + 1);
        std::vsnprintf(big.data(), big.size(), format, again);
        result = QString::fromUtf8(big.data(), needed);
    }
    va_end(again);
    uselocale(previous);
    return result;
}

} // namespace NumberText
