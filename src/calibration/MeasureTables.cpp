#include "calibration/MeasureTables.h"

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <locale.h>
#include <vector>

namespace MeasureTables {

QColor PaletteColor(int index)
{
    if (index < 0 || index >= kPaletteSize)
        index = 1;
    const std::uint32_t ref = kPalette[static_cast<std::size_t>(index)];
    return QColor(int(ref & 0xFF), int((ref >> 8) & 0xFF), int((ref >> 16) & 0xFF));
}

int ClampUnit(int unit)
{
    return (unit >= 0 && unit < kUnitCount) ? unit : 1;
}

const char* UnitText(int unit)
{
    return kUnitTexts[static_cast<std::size_t>(ClampUnit(unit))];
}

const char* PerPixelText(int unit)
{
    return kPerPixelTexts[static_cast<std::size_t>(ClampUnit(unit))];
}

const char* SpacedUnitText(int unit)
{
    return kSpacedUnitTexts[static_cast<std::size_t>(ClampUnit(unit))];
}

const char* FormatForPrecision(const PrecisionFormats& formats, int precision)
{
    if (precision < 1 || precision > 5)
        return nullptr;
    return formats[static_cast<std::size_t>(precision - 1)];
}

namespace {

locale_t CLocale()
{
    // Created once, never freed: it must outlive every thread that formats.
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return c;
}

} // namespace

QString FormatC(const char* format, ...)
{
    // The process may run in a locale with a decimal comma (Qt sets the user's
    // locale at start-up); uselocale switches only this thread, briefly.
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

QString FormatLabel(const PrecisionFormats& formats, int precision, double value, const char* unitText)
{
    const char* format = FormatForPrecision(formats, precision);
    if (!format)
        return QString();
    return FormatC(format, value, unitText ? unitText : "");
}

} // namespace MeasureTables
