#pragma once

#include "measure/CGVLLine.h"

// The arrow annotation (type 12, tool 203): made, hit and moved like a line,
// with a head at point 1, where the drag began; no label and no result.
class CGVLAnoArrow : public CGVLLine
{
public:
    CGVLAnoArrow(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
};
