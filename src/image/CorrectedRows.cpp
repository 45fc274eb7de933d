#include "image/CorrectedRows.h"

#include "image/FlatField.h"

CorrectedRows::CorrectedRows(const FrameRows& rows, const FlatField* flat)
    : m_rows(rows)
    , m_flat(flat)
{
}

void CorrectedRows::Read(unsigned y, uchar* out) const
{
    m_rows.Read(y, out);
    if (m_flat)
        m_flat->ApplyRow(out, y);
}
