#pragma once

#include "image/FusedProcess.h"

class FlatField;

// Rows of a frame corrected as they are read, so the correction costs no pass
// of its own: the live sweep reads the camera's rows through this.
class CorrectedRows final : public FrameRows
{
public:
    // flat, when not null, must be of the frame's size and outlive this.
    CorrectedRows(const FrameRows& rows, const FlatField* flat);
    void Read(unsigned y, uchar* out) const override;

private:
    const FrameRows& m_rows;
    const FlatField* m_flat;
};
