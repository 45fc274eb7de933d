#include "image/CorrectedRows.h"

#include "image/FlatField.h"
#include "image/FrameHistogram.h"

CorrectedRows::CorrectedRows(
    const FrameRows& rows, unsigned width, unsigned height, const FlatField* flat, FrameHistogram* histogram)
    : m_rows(rows)
    , m_width(width)
    , m_flat(flat)
    , m_histogram(histogram)
    , m_counted(histogram ? height / FrameHistogram::kRowStep + 1 : 0, false)
{
}

void CorrectedRows::Read(unsigned y, uchar* out) const
{
    m_rows.Read(y, out);
    if (m_flat)
        m_flat->ApplyRow(out, y);
    if (m_histogram && FrameHistogram::Sampled(y)) {
        const unsigned k = y / FrameHistogram::kRowStep;
        if (k < m_counted.size() && !m_counted[k]) {
            m_counted[k] = true;
            m_histogram->AddRow(out, m_width);
        }
    }
}
