#include "image/FlatField.h"

#include "image/ImageProcess.h"

#include <algorithm>
#include <cmath>

FlatField FlatField::FromFrames(
    std::span<const uchar* const> blanks, const uchar* dark, unsigned width, unsigned height)
{
    FlatField field;
    if (blanks.empty() || width == 0 || height == 0)
        return field;
    for (const uchar* blank : blanks)
        if (!blank)
            return field;
    const std::size_t stride = DibStride(width);
    const std::size_t rowBytes = std::size_t(width) * 3;
    const std::size_t count = rowBytes * height;

    // The averaged blank field less the dark frame, in the units of one frame.
    std::vector<float> level(count);
    double sum[3] = { 0, 0, 0 };
    const float frames = float(blanks.size());
    for (unsigned y = 0; y < height; ++y) {
        float* out = level.data() + y * rowBytes;
        for (std::size_t i = 0; i < rowBytes; ++i) {
            unsigned total = 0;
            for (const uchar* blank : blanks)
                total += blank[y * stride + i];
            float value = float(total) / frames;
            if (dark)
                value = std::max(0.0f, value - float(dark[y * stride + i]));
            out[i] = value;
            sum[i % 3] += value;
        }
    }
    const double pixels = double(width) * height;
    for (double s : sum)
        if (s <= 0)
            return field;

    field.m_width = width;
    field.m_height = height;
    field.m_gains.resize(count);
    constexpr double kOne = 1 << kGainBits;
    for (std::size_t i = 0; i < count; ++i) {
        const double mean = sum[i % 3] / pixels;
        const double gain = level[i] > 0 ? mean / level[i] * kOne : kMaxGain;
        field.m_gains[i] = std::uint16_t(std::min<double>(kMaxGain, std::lround(gain)));
    }
    if (dark) {
        field.m_dark.resize(count);
        for (unsigned y = 0; y < height; ++y)
            std::copy_n(dark + y * stride, rowBytes, field.m_dark.begin() + std::ptrdiff_t(y * rowBytes));
    }
    return field;
}

void FlatField::ApplyRow(uchar* row, unsigned y) const
{
    const std::size_t bytes = std::size_t(m_width) * 3;
    const std::uint16_t* gain = m_gains.data() + y * bytes;
    constexpr unsigned kHalf = 1u << (kGainBits - 1);
    // Plain loops over bytes and 16-bit gains that the compiler vectorises.
    if (!m_dark.empty()) {
        const uchar* dark = m_dark.data() + y * bytes;
        for (std::size_t i = 0; i < bytes; ++i) {
            const unsigned v = row[i] > dark[i] ? unsigned(row[i] - dark[i]) : 0u;
            row[i] = uchar(std::min(255u, (v * gain[i] + kHalf) >> kGainBits));
        }
        return;
    }
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = uchar(std::min(255u, (unsigned(row[i]) * gain[i] + kHalf) >> kGainBits));
}

bool FlatField::Apply(uchar* bits, unsigned width, unsigned height) const
{
    if (IsNull() || !bits || width != m_width || height != m_height)
        return false;
    const std::size_t stride = DibStride(width);
    for (unsigned y = 0; y < height; ++y)
        ApplyRow(bits + y * stride, y);
    return true;
}
