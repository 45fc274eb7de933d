#pragma once

#include "image/FusedProcess.h"

#include <cstddef>
#include <vector>

namespace libyuv {
struct YuvConstants;
}

// A camera's YUV frame read as 24-bit BGR rows, one row at a time, with the
// frame's own matrix and range. Planes are given top-down, as cameras send
// them; rows are asked for bottom-up, as the pictures store them.
class YuvFrameRows final : public FrameRows
{
public:
    enum class Layout { Yuy2, I420 };
    enum class Matrix { Bt601, Bt709, Bt2020 };

    struct Plane
    {
        const uchar* bits = nullptr;
        std::ptrdiff_t stride = 0;
    };

    // I420 takes the Y, U and V planes; YUY2 only the first.
    YuvFrameRows(Layout layout, const Plane (&planes)[3], unsigned width, unsigned height, Matrix matrix,
        bool fullRange);

    void Read(unsigned y, uchar* out) const override;

private:
    Layout m_layout;
    Plane m_planes[3];
    unsigned m_width;
    unsigned m_height;
    const libyuv::YuvConstants* m_constants;
    // One row of YUY2 split into planes.
    mutable std::vector<uchar> m_split;
};
