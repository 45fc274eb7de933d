#pragma once

#include "image/FusedProcess.h"

#include <vector>

class FlatField;
struct FrameHistogram;

// Rows of a frame corrected as they are read, so the correction costs no pass
// of its own: the live sweep reads the camera's rows through this. It also
// counts the histogram's sample rows as they go by, after the correction.
class CorrectedRows final : public FrameRows
{
public:
    // flat, when not null, must be of the frame's size; flat and histogram
    // must outlive this. height: the frame's.
    CorrectedRows(const FrameRows& rows, unsigned width, unsigned height, const FlatField* flat,
        FrameHistogram* histogram);
    void Read(unsigned y, uchar* out) const override;

private:
    const FrameRows& m_rows;
    unsigned m_width;
    const FlatField* m_flat;
    FrameHistogram* m_histogram;
    // The sweep reads a row twice where its bands overlap; each sample row
    // counts once.
    mutable std::vector<bool> m_counted;
};
