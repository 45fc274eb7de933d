#pragma once

#include <QtGlobal>

// The control interface of the live processing element. Switches are ints,
// 0 off and anything else on; every method returns S_OK or a failure code.
class ICamProcess
{
public:
    virtual ~ICamProcess() = default;

    virtual int SetProcessEnable(int on) = 0;
    virtual int SetFlipVertical(int on) = 0;
    virtual int SetFlipHorizontal(int on) = 0;
    virtual int SetGray(int on) = 0;
    virtual int SetNegative(int on) = 0;
    // Pixels whose gray value is below the level turn black, the rest white.
    virtual int SetBinary(int on, int level) = 0;
    virtual int SetEmboss(int on) = 0;
    virtual int SetSharpen(int on) = 0;
    // Adds the gains to the channels, saturating at 255.
    virtual int SetRgbGain(int on, int red, int green, int blue) = 0;
    // overlayPointer is the address of the pointer through which the owner
    // publishes its finished overlay buffer; it must stay valid while the
    // overlay is on.
    virtual int SetOverlay(int on, uchar* const* overlayPointer) = 0;

    virtual int GetProcessEnable(int* on) = 0;
    virtual int GetFlipVertical(int* on) = 0;
    virtual int GetFlipHorizontal(int* on) = 0;
    virtual int GetGray(int* on) = 0;
    virtual int GetNegative(int* on) = 0;
    virtual int GetBinary(int* on, int* level) = 0;
    virtual int GetEmboss(int* on) = 0;
    virtual int GetSharpen(int* on) = 0;
    // Width and height of the last frame processed (0, 0 before the first).
    virtual int GetStateA(int* width, int* height) = 0;
    virtual int GetRgbGain(int* on, int* red, int* green, int* blue) = 0;
    // Frames processed since the state was created, wrapping at 2^31.
    virtual int GetStateB(int* frames) = 0;
};
