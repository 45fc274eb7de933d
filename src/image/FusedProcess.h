#pragma once

#include "image/ProcessSwitches.h"

#include <QtGlobal>

#include <cstddef>

// The overlay key: an overlay pixel of these three bytes lets the picture show.
inline constexpr uchar kOverlayKey = 1;

// Runs the chain of ProcessOperations.h on a 24-bit picture in one sweep over
// memory, then lays the overlay over it. The result is byte for byte what
// the operations give one after another on a whole bottom-up picture with
// rows padded to 4 bytes, padding included.
//
// src and dst hold the rows in the picture's buffer order (row 0 first, the
// bottom row of a bottom-up picture), each row at its own step from the
// previous one; a step may be negative (a top-down frame read bottom-up) and
// its magnitude must be at least the padded row, DibStride(width).
// src and dst must not overlap. overlay, when not null, is a bottom-up picture
// of the same size with padded rows: each pixel other than kOverlayKey in all
// three bytes replaces the result's pixel.
void FusedProcess(const uchar* src, std::ptrdiff_t srcStep, uchar* dst, std::ptrdiff_t dstStep,
    unsigned width, unsigned height, const ProcessSwitches& switches, const uchar* overlay);

// A source of 24-bit rows: a camera frame in another layout is turned into
// them row by row, so it never needs a whole-frame conversion pass of its own.
class FrameRows
{
public:
    virtual ~FrameRows() = default;
    // Writes row y (buffer order, as src above) as DibStride(width) bytes,
    // padding zero.
    virtual void Read(unsigned y, uchar* out) const = 0;
};

// Rows of a 24-bit picture at their step, as src above.
class PaddedRows final : public FrameRows
{
public:
    PaddedRows(const uchar* bits, std::ptrdiff_t step, unsigned width);
    void Read(unsigned y, uchar* out) const override;

private:
    const uchar* m_bits;
    std::ptrdiff_t m_step;
    std::size_t m_stride;
};

// The same chain reading its rows from `rows`.
void FusedProcess(const FrameRows& rows, uchar* dst, std::ptrdiff_t dstStep, unsigned width, unsigned height,
    const ProcessSwitches& switches, const uchar* overlay);
