#pragma once

#include <QtGlobal>

#include <array>
#include <cstdint>

// The histograms of a frame taken on a sample of its pixels: every
// kColumnStep-th pixel of every kRowStep-th row, enough for a histogram's
// shape at a small part of a pass over the frame.
struct FrameHistogram
{
    static constexpr unsigned kRowStep = 8;
    static constexpr unsigned kColumnStep = 4;

    using Counts = std::array<std::uint32_t, 256>;
    Counts blue {};
    Counts green {};
    Counts red {};
    Counts luma {}; // (77 R + 150 G + 29 B + 128) / 256, BT.601's weights
    std::uint32_t samples = 0;
    std::uint32_t overexposed = 0; // samples with a channel at 255
    std::uint32_t underexposed = 0; // samples with a channel at 0

    // Whether row y (buffer order) is one of the sample's rows.
    static bool Sampled(unsigned y) { return y % kRowStep == 0; }
    // Counts the sample's pixels of one 24-bit row.
    void AddRow(const uchar* row, unsigned width);

    double OverexposedShare() const { return samples ? double(overexposed) / samples : 0; }
    double UnderexposedShare() const { return samples ? double(underexposed) / samples : 0; }
};
