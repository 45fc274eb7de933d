#include "calibration/MeasureTables.h"

#include "platform/NumberText.h"

#include <algorithm>
#include <cmath>

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

double MicrometresPer(int unit)
{
    return kMicrometresPerUnit[static_cast<std::size_t>(ClampUnit(unit))];
}

int CalibrationUnit(double umPerPixel, int preferred)
{
    const int unit = ClampUnit(preferred);
    return umPerPixel / MicrometresPer(unit) < 0.1 ? 0 : unit;
}

const char* FormatForPrecision(const PrecisionFormats& formats, int precision)
{
    if (precision < 1 || precision > 5)
        return nullptr;
    return formats[static_cast<std::size_t>(precision - 1)];
}

QString FormatLabel(const PrecisionFormats& formats, int precision, double value, const char* unitText)
{
    const char* format = FormatForPrecision(formats, precision);
    if (!format)
        return QString();
    return NumberText::FormatC(format, value, unitText ? unitText : "");
}

QString FormatLabel(
    const PrecisionFormats& formats, int precision, double value, const char* unitText, double uncertainty)
{
    const char* format = FormatForPrecision(formats, precision);
    if (!format)
        return QString();
    int decimals = precision;
    if (uncertainty > 0 && std::isfinite(uncertainty))
        decimals = std::clamp(1 - int(std::floor(std::log10(uncertainty))), precision, 6);
    return NumberText::FormatC(format, value, "") + QChar(0x00B1)
        + NumberText::FormatC("%.*f%s", decimals, uncertainty, unitText ? unitText : "");
}

} // namespace MeasureTables
