#pragma once

#include "image/ImageProcess.h"
#include "image/ProcessSwitches.h"

#include <QtGlobal>

#include <iterator>
#include <span>

// Everything about each processing operation, in one row per operation: the
// still-picture chain, the live sweep, the live element's switches, the
// command line and the processing settings dialog all work from these rows.
// The program's menu commands name their operation in the app's command table.

// An operation on a 24-bit bottom-up picture with padded rows (see
// ImageProcess.h), in place, taking its parameters from the switches.
using ProcessKernel = void (*)(uchar* bits, unsigned width, unsigned height, const ProcessSwitches& switches);

// A parameter: where the switches keep it and how the settings dialog shows it.
struct ProcessParameter
{
    int ProcessSwitches::*value;
    // The dialog's label for one of several parameters, in the translation
    // context "CProcessPropertiesDlg"; a lone parameter sits beside the
    // operation's check box and has none.
    const char* label;
    int sliderMax; // the dialog's slider runs from 0 to this
};

// How --process writes the values of an operation with parameters:
// "name=V", or "name=V1,V2,V3" spanning as many items of the list.
struct ProcessValueSyntax
{
    const char* brief; // "L", as in the list of names: binary=L
    const char* full; // "LEVEL", as in the help and the message for a bad value
    const char* range; // "0-255", as in the help
    const char* takes; // "a level from 0 to 255", what a bad value is told
    int low; // every value's bounds
    int high;
};

struct ProcessOperation
{
    ProcessOp op;
    // The switch's name, also the operation's name on the command line.
    const char* name;
    bool ProcessSwitches::*on;
    std::span<const ProcessParameter> parameters = {};
    ProcessValueSyntax syntax = {}; // for an operation with parameters
    // The settings dialog's check box, and for an operation with several
    // parameters the title of the group that holds them (translation context
    // "CProcessPropertiesDlg").
    const char* label = nullptr;
    const char* group = nullptr;

    // The operation on a whole still picture.
    ProcessKernel still = nullptr;
    // The live sweep's: the operation on a band of consecutive rows. It may
    // read up to rowsAbove rows above and rowsBelow rows below the one it
    // writes; every band row with that many band rows on each side, or with
    // the band reaching the picture's edge on that side, must get the bytes
    // that still gives it in the whole picture.
    ProcessKernel band = nullptr;
    unsigned rowsAbove = 0;
    unsigned rowsBelow = 0;
    // No band kernel: the sweep reads the rows from the other end instead.
    // Only the first operation can, all others see the rows in their order.
    bool reversesRows = false;

    // Turns the picture over without changing a pixel.
    bool geometric = false;
    // Leaves every pixel gray (blue = green = red).
    bool makesGray = false;
    // Leaves a gray pixel gray, its value a function of the value alone: after
    // an operation that makes gray, a run of these is one lookup of 256
    // values, and a step (one comparison a byte) when they end in a threshold.
    bool mapsGray = false;
};

namespace ProcessKernels {

inline void Flip(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    FlipVertical(b, w, h);
}
inline void Mirror(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    MirrorHorizontal(b, w, h);
}
inline void Gray(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    ::Gray(b, w, h);
}
inline void Negative(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    ::Negative(b, w, h);
}
inline void Binary(uchar* b, unsigned w, unsigned h, const ProcessSwitches& s)
{
    ::Binary(b, w, h, s.binaryLevel);
}
inline void Emboss(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    ::Emboss(b, w, h);
}
inline void Sharpen(uchar* b, unsigned w, unsigned h, const ProcessSwitches&)
{
    ::Sharpen(b, w, h);
}
inline void Rgb(uchar* b, unsigned w, unsigned h, const ProcessSwitches& s)
{
    ColorOffset(b, w, h, s.red, s.green, s.blue);
}

} // namespace ProcessKernels

inline constexpr ProcessParameter kBinaryLevel[] = { { &ProcessSwitches::binaryLevel, nullptr, 255 } };
// The dialog's gain sliders stop where the RGB dialog's do.
inline constexpr ProcessParameter kRgbGains[] = {
    { &ProcessSwitches::red, QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "Red:"), 63 },
    { &ProcessSwitches::green, QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "Green:"), 63 },
    { &ProcessSwitches::blue, QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "Blue:"), 63 },
};

// In the order of ProcessOp, which is the order a picture goes through them.
inline constexpr ProcessOperation kProcessOperations[] = {
    { .op = ProcessOp::Flip,
        .name = "flip",
        .on = &ProcessSwitches::flip,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "Flip &Vertical"),
        .still = ProcessKernels::Flip,
        .reversesRows = true,
        .geometric = true },
    { .op = ProcessOp::Mirror,
        .name = "mirror",
        .on = &ProcessSwitches::mirror,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "Flip &Horizontal"),
        .still = ProcessKernels::Mirror,
        .band = ProcessKernels::Mirror,
        .geometric = true },
    { .op = ProcessOp::Gray,
        .name = "gray",
        .on = &ProcessSwitches::gray,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Gray"),
        .still = ProcessKernels::Gray,
        .band = ProcessKernels::Gray,
        .makesGray = true,
        .mapsGray = true },
    { .op = ProcessOp::Negative,
        .name = "negative",
        .on = &ProcessSwitches::negative,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Negative"),
        .still = ProcessKernels::Negative,
        .band = ProcessKernels::Negative,
        .mapsGray = true },
    { .op = ProcessOp::Binary,
        .name = "binary",
        .on = &ProcessSwitches::binary,
        .parameters = kBinaryLevel,
        .syntax = { "L", "LEVEL", "0-255", "a level from 0 to 255", 0, 255 },
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Binary"),
        .still = ProcessKernels::Binary,
        .band = ProcessKernels::Binary,
        .makesGray = true,
        .mapsGray = true },
    { .op = ProcessOp::Emboss,
        .name = "emboss",
        .on = &ProcessSwitches::emboss,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Emboss"),
        .still = ProcessKernels::Emboss,
        .band = ProcessKernels::Emboss,
        .rowsBelow = 1 },
    { .op = ProcessOp::Sharpen,
        .name = "sharpen",
        .on = &ProcessSwitches::sharpen,
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Sharpen"),
        .still = ProcessKernels::Sharpen,
        .band = ProcessKernels::Sharpen,
        .rowsAbove = 1,
        .rowsBelow = 1 },
    { .op = ProcessOp::Rgb,
        .name = "rgb",
        .on = &ProcessSwitches::rgb,
        .parameters = kRgbGains,
        .syntax = { "R,G,B", "R,G,B", "-255 to 255", "three offsets from -255 to 255", -255, 255 },
        .label = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "&Apply the gains"),
        .group = QT_TRANSLATE_NOOP("CProcessPropertiesDlg", "RGB gain"),
        .still = ProcessKernels::Rgb,
        .band = ProcessKernels::Rgb },
};

constexpr const ProcessOperation& Operation(ProcessOp op)
{
    return kProcessOperations[int(op)];
}

// Copies op's switch and parameters from one set of switches to another.
void CopyOperation(ProcessOp op, const ProcessSwitches& from, ProcessSwitches& to);

namespace ProcessTableChecks {

constexpr bool Consistent()
{
    if (std::size(kProcessOperations) != std::size_t(kProcessOpCount))
        return false;
    for (int i = 0; i < kProcessOpCount; ++i) {
        const ProcessOperation& row = kProcessOperations[i];
        const bool pixelwise = row.rowsAbove == 0 && row.rowsBelow == 0 && !row.geometric;
        // Kernels cannot be checked here: sanitizer builds do not fold a
        // function's address; the sweep asserts the band kernel instead.
        if (int(row.op) != i || !row.name || !row.on || !row.label || (row.reversesRows && i != 0))
            return false;
        if ((row.mapsGray || row.makesGray) && !pixelwise)
            return false;
        if (row.parameters.size() > 1 && !row.group)
            return false;
        if (!row.parameters.empty()
            && !(row.syntax.brief && row.syntax.full && row.syntax.range && row.syntax.takes))
            return false;
    }
    return true;
}

} // namespace ProcessTableChecks

static_assert(ProcessTableChecks::Consistent(),
    "each row in ProcessOp order, with its name, switch and label; only the first reverses rows; "
    "the gray shortcuts only for operations on single pixels; several parameters need a group");
