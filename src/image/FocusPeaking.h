#pragma once

#include <QImage>
#include <QRgb>

#include <cstddef>

// Focus peaking: marks the edges of a 24-bit BGR frame that are in focus, in
// place, so that the user sees which part of the picture is sharp while
// turning the focus knob. An edge counts as in focus where the green
// channel's central differences across and down add to kThreshold levels or
// more: a defocused edge spreads its step over more pixels than that allows.
// Edges are judged at every other pixel of every other row, each marking a
// 2 x 2 block.
struct FocusPeaking
{
    static constexpr int kThreshold = 56;

    // Marks the frame's rows (step apart, may be negative) in colour and
    // returns its sharpness: the root mean square of those summed
    // differences over the frame, in levels (blur spreads a step over more
    // pixels, which lowers it). Frames under 3 x 3 pixels are left alone (0).
    static double Mark(uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height, QRgb colour);

    // Tints a quarter of the way to colour the pixels where coverage (8-bit
    // gray, top-down, any size, stretched over the frame) is over 127. rows
    // are in the order of a bottom-up picture, as the live element has them.
    static void Tint(uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height,
        const QImage& coverage, QRgb colour);
};
