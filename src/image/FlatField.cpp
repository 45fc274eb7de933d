#include "image/FlatField.h"

#include "image/ImageProcess.h"

#include <algorithm>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
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

void FlatField::Scale(double blue, double green, double red)
{
    const double factors[3] = { blue, green, red };
    for (std::size_t i = 0; i < m_gains.size(); ++i)
        m_gains[i] = std::uint16_t(std::min<double>(kMaxGain, std::lround(m_gains[i] * factors[i % 3])));
}

namespace {

constexpr unsigned kHalf = 1u << (FlatField::kGainBits - 1);

// One value: less the dark level, times the gain, rounded, at most 255.
inline uchar Corrected(unsigned value, std::uint16_t gain)
{
    return uchar(std::min(255u, (value * gain + kHalf) >> FlatField::kGainBits));
}

#if defined(__SSE2__)
// Eight values of 16 bits times their gains, rounded and shifted back, as
// eight 16-bit results (at most 4080, so they pack without loss).
inline __m128i Scale8(__m128i values, __m128i gains)
{
    const __m128i low = _mm_mullo_epi16(values, gains);
    const __m128i high = _mm_mulhi_epu16(values, gains);
    const __m128i half = _mm_set1_epi32(int(kHalf));
    const __m128i a
        = _mm_srli_epi32(_mm_add_epi32(_mm_unpacklo_epi16(low, high), half), FlatField::kGainBits);
    const __m128i b
        = _mm_srli_epi32(_mm_add_epi32(_mm_unpackhi_epi16(low, high), half), FlatField::kGainBits);
    return _mm_packs_epi32(a, b);
}
#endif

} // namespace

void FlatField::ApplyRow(uchar* row, unsigned y) const
{
    const std::size_t bytes = std::size_t(m_width) * 3;
    const std::uint16_t* gain = m_gains.data() + y * bytes;
    const uchar* dark = m_dark.empty() ? nullptr : m_dark.data() + y * bytes;
    std::size_t i = 0;
#if defined(__SSE2__)
    // Sixteen values at a time; the same arithmetic as the tail below.
    const __m128i zero = _mm_setzero_si128();
    for (; i + 16 <= bytes; i += 16) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + i));
        if (dark)
            v = _mm_subs_epu8(v, _mm_loadu_si128(reinterpret_cast<const __m128i*>(dark + i)));
        const __m128i g0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gain + i));
        const __m128i g1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(gain + i + 8));
        const __m128i out = _mm_packus_epi16(
            Scale8(_mm_unpacklo_epi8(v, zero), g0), Scale8(_mm_unpackhi_epi8(v, zero), g1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(row + i), out);
    }
#endif
    for (; i < bytes; ++i) {
        const unsigned v = dark ? (row[i] > dark[i] ? unsigned(row[i] - dark[i]) : 0u) : row[i];
        row[i] = Corrected(v, gain[i]);
    }
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
