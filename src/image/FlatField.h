#pragma once

#include <QtGlobal>

#include <cstdint>
#include <span>
#include <vector>

// Flat-field correction: a per-pixel, per-channel gain taken from pictures of
// an empty field, which evens out the shading of the optics (darker edges, a
// lamp's uneven light, dust on the sensor). Each channel's gains are scaled
// so that the blank field's mean keeps its value: the picture's level and its
// colour balance stay, only the shading goes.
//
// Pictures are 24-bit (blue, green, red) bottom-up with rows padded to 4 bytes
// (ImageProcess.h); rows are counted in buffer order, row 0 the bottom one.
class FlatField
{
public:
    // Gains are kept in 4.12 fixed point: a pixel of the blank field darker
    // than a sixteenth of its channel's mean is not brightened further.
    static constexpr int kGainBits = 12;
    static constexpr std::uint16_t kMaxGain = 0xFFFF;

    FlatField() = default;

    // The correction from one or more blank fields (averaged) and an optional
    // dark frame (null: none), all width x height. Empty when there is no
    // frame, a size is zero, or the blank field minus the dark frame is black
    // in some channel everywhere.
    static FlatField FromFrames(
        std::span<const uchar* const> blanks, const uchar* dark, unsigned width, unsigned height);

    bool IsNull() const { return m_gains.empty(); }
    unsigned Width() const { return m_width; }
    unsigned Height() const { return m_height; }
    bool HasDark() const { return !m_dark.empty(); }

    // Corrects row y (buffer order) of a picture of the flat field's size,
    // in place: width * 3 bytes.
    void ApplyRow(uchar* row, unsigned y) const;
    // Corrects a whole padded picture in place; false (and the picture as it
    // was) when its size is not the flat field's.
    bool Apply(uchar* bits, unsigned width, unsigned height) const;

    // Multiplies every gain of a channel by its factor, so the one sweep also
    // applies a white balance; gains stop at kMaxGain.
    void Scale(double blue, double green, double red);

private:
    unsigned m_width = 0;
    unsigned m_height = 0;
    // width * 3 values a row, no padding.
    std::vector<std::uint16_t> m_gains;
    std::vector<uchar> m_dark;
};
