#include "capture/YuvFrameRows.h"

#include "image/ImageProcess.h"

#include <cstring>
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>

namespace {

const libyuv::YuvConstants* ConstantsFor(YuvFrameRows::Matrix matrix, bool fullRange)
{
    switch (matrix) {
    case YuvFrameRows::Matrix::Bt709:
        return fullRange ? &libyuv::kYuvF709Constants : &libyuv::kYuvH709Constants;
    case YuvFrameRows::Matrix::Bt2020:
        return fullRange ? &libyuv::kYuvV2020Constants : &libyuv::kYuv2020Constants;
    case YuvFrameRows::Matrix::Bt601:
        break;
    }
    return fullRange ? &libyuv::kYuvJPEGConstants : &libyuv::kYuvI601Constants;
}

} // namespace

YuvFrameRows::YuvFrameRows(
    Layout layout, const Plane (&planes)[3], unsigned width, unsigned height, Matrix matrix, bool fullRange)
    : m_layout(layout)
    , m_planes { planes[0], planes[1], planes[2] }
    , m_width(width)
    , m_height(height)
    , m_constants(ConstantsFor(matrix, fullRange))
{
    if (layout == Layout::Yuy2)
        m_split.resize(2 * std::size_t(width) + 2);
}

void YuvFrameRows::Read(unsigned y, uchar* out) const
{
    const unsigned top = m_height - 1 - y;
    const int w = int(m_width);
    const int half = (w + 1) / 2;
    // libyuv's "RGB24" is B, G, R in memory: the pictures' byte order.
    if (m_layout == Layout::Yuy2) {
        uchar* luma = m_split.data();
        uchar* u = luma + m_width;
        uchar* v = u + half;
        libyuv::YUY2ToI422(
            m_planes[0].bits + std::ptrdiff_t(top) * m_planes[0].stride, 0, luma, 0, u, 0, v, 0, w, 1);
        libyuv::I422ToRGB24Matrix(luma, 0, u, 0, v, 0, out, 0, m_constants, w, 1);
    } else {
        const auto row = [&](int plane, unsigned r) {
            return m_planes[plane].bits + std::ptrdiff_t(r) * m_planes[plane].stride;
        };
        libyuv::I422ToRGB24Matrix(
            row(0, top), 0, row(1, top / 2), 0, row(2, top / 2), 0, out, 0, m_constants, w, 1);
    }
    const std::size_t bytes = 3 * std::size_t(m_width);
    std::memset(out + bytes, 0, DibStride(m_width) - bytes);
}
