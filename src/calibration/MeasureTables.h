#pragma once

#include <QColor>
#include <QString>

#include <array>
#include <cstdint>

// The fixed tables every shape, the ruler, the export and the dialogs share:
// palette, unit names and the label formats by precision.
namespace MeasureTables {

inline constexpr int kPaletteSize = 8;

// COLORREF values (0x00BBGGRR): black, white, red, green, blue, cyan, magenta, yellow.
inline constexpr std::array<std::uint32_t, kPaletteSize> kPalette = {
    0x000000,
    0xFFFFFF,
    0x0000FF,
    0x00FF00,
    0xFF0000,
    0xFFFF00,
    0xFF00FF,
    0x00FFFF,
};

// An index outside the palette (a hand-edited settings file) draws white, the
// colour a fresh installation uses.
QColor PaletteColor(int index);

inline constexpr int kUnitCount = 5;
inline constexpr std::array<const char*, kUnitCount> kUnitTexts = { "um", "mm", "cm", "dm", "inch" };
inline constexpr std::array<const char*, kUnitCount> kPerPixelTexts = {
    "um/pixel",
    "mm/pixel",
    "cm/pixel",
    "dm/pixel",
    "inch/pixel",
};
// The unit column of the export and the ruler's arm labels put a space first.
inline constexpr std::array<const char*, kUnitCount> kSpacedUnitTexts
    = { " um", " mm", " cm", " dm", " inch" };

// Micrometres in one of each unit.
inline constexpr std::array<double, kUnitCount> kMicrometresPerUnit
    = { 1.0, 1000.0, 10000.0, 100000.0, 25400.0 };

// An index outside 0..4 is read as "mm", the default unit, so it never
// reaches past the tables.
int ClampUnit(int unit);
const char* UnitText(int unit);
const char* PerPixelText(int unit);
const char* SpacedUnitText(int unit);
double MicrometresPer(int unit);

// The unit a calibration of umPerPixel micrometres per pixel is kept in: the
// preferred one, or micrometres when the pixel is below 0.1 of it, since the
// calibration keeps four decimals of the pixel size.
int CalibrationUnit(double umPerPixel, int preferred);

inline constexpr QColor kLabelGray = QColor(128, 128, 128);

// One printf format per precision 1..5; the value comes first, then the unit.
using PrecisionFormats = std::array<const char*, 5>;
inline constexpr PrecisionFormats kLengthFormats
    = { "L=%.1f%s", "L=%.2f%s", "L=%.3f%s", "L=%.4f%s", "L=%.5f%s" };
inline constexpr PrecisionFormats kAreaFormats
    = { "S=%.1f%s2", "S=%.2f%s2", "S=%.3f%s2", "S=%.4f%s2", "S=%.5f%s2" };
inline constexpr PrecisionFormats kRadiusFormats
    = { "R=%.1f%s", "R=%.2f%s", "R=%.3f%s", "R=%.4f%s", "R=%.5f%s" };
inline constexpr PrecisionFormats kAngleFormats = {
    "A=%.1f deg",
    "A=%.2f deg",
    "A=%.3f deg",
    "A=%.4f deg",
    "A=%.5f deg",
};
inline constexpr PrecisionFormats kValueFormats = { "%.1f%s", "%.2f%s", "%.3f%s", "%.4f%s", "%.5f%s" };

// The format for `precision` decimals, or null outside 1..5 (the label is then empty).
const char* FormatForPrecision(const PrecisionFormats& formats, int precision);

// A label from one of the tables above: value and unit text (`unitText` may be
// null for formats without %s). Empty when the precision is outside 1..5.
QString FormatLabel(const PrecisionFormats& formats, int precision, double value, const char* unitText = "");
// The same with an uncertainty between the value and the unit ("L=12.34±0.052um"): the
// uncertainty to two significant digits, never fewer decimals than the value. For the formats that
// end with the unit (length, radius).
QString FormatLabel(
    const PrecisionFormats& formats, int precision, double value, const char* unitText, double uncertainty);

} // namespace MeasureTables
