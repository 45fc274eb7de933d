#pragma once

#include "measure/CGVLShape.h"

// A graduated cross (reticle) centred in its own width and height: a tick
// every step/10 pixels, longer at every fifth and tenth. It takes no mouse
// input and cannot be deleted; no command creates one.
class CGVLScale : public CGVLShape
{
public:
    CGVLScale(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
    void UpdateElem() override;

    // Half length of the tick number i (1-based): 15 at every tenth, 10 at
    // every fifth, else 5 pixels.
    static int TickReach(int i);
    // Ticks per half axis, taken from the width for both axes.
    int TickCount() const { return m_nWidth / 2 / 2; }

    int m_nWidth = 640;
    int m_nHeight = 480;
    int m_nStepX = 50;
    int m_nStepY = 50;
};
