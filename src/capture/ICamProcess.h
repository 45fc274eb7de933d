#pragma once

#include "image/ProcessSwitches.h"

#include <QtGlobal>

#include <initializer_list>

// The control interface of the live processing element. Switches are ints,
// 0 off and anything else on; every method returns S_OK or a failure code.
class ICamProcess
{
public:
    virtual ~ICamProcess() = default;

    virtual int SetProcessEnable(int on) = 0;
    // Takes op's switch and parameters from values (see ProcessOperations.h).
    virtual int SetOperation(ProcessOp op, const ProcessSwitches& values) = 0;
    // overlayPointer is the address of the pointer through which the owner
    // publishes its finished overlay buffer; it must stay valid while the
    // overlay is on.
    virtual int SetOverlay(int on, uchar* const* overlayPointer) = 0;

    virtual int GetProcessEnable(int* on) = 0;
    // Writes op's switch and parameters into *values, the rest untouched.
    virtual int GetOperation(ProcessOp op, ProcessSwitches* values) = 0;
    // Width and height of the last frame processed (0, 0 before the first).
    virtual int GetStateA(int* width, int* height) = 0;
    // Frames processed since the state was created, wrapping at 2^31. A
    // frame counted after a call of this that followed a Set call was
    // processed with what that call set.
    virtual int GetStateB(int* frames) = 0;

    // The operations one by one.
    int SetFlipVertical(int on) { return Set(ProcessOp::Flip, on); }
    int SetFlipHorizontal(int on) { return Set(ProcessOp::Mirror, on); }
    int SetGray(int on) { return Set(ProcessOp::Gray, on); }
    int SetNegative(int on) { return Set(ProcessOp::Negative, on); }
    // Pixels whose gray value is below the level turn black, the rest white.
    int SetBinary(int on, int level) { return Set(ProcessOp::Binary, on, { level }); }
    int SetEmboss(int on) { return Set(ProcessOp::Emboss, on); }
    int SetSharpen(int on) { return Set(ProcessOp::Sharpen, on); }
    // Adds the gains to the channels, saturating at 255.
    int SetRgbGain(int on, int red, int green, int blue)
    {
        return Set(ProcessOp::Rgb, on, { red, green, blue });
    }

    int GetFlipVertical(int* on) { return Get(ProcessOp::Flip, on); }
    int GetFlipHorizontal(int* on) { return Get(ProcessOp::Mirror, on); }
    int GetGray(int* on) { return Get(ProcessOp::Gray, on); }
    int GetNegative(int* on) { return Get(ProcessOp::Negative, on); }
    int GetBinary(int* on, int* level) { return Get(ProcessOp::Binary, on, { level }); }
    int GetEmboss(int* on) { return Get(ProcessOp::Emboss, on); }
    int GetSharpen(int* on) { return Get(ProcessOp::Sharpen, on); }
    int GetRgbGain(int* on, int* red, int* green, int* blue)
    {
        return Get(ProcessOp::Rgb, on, { red, green, blue });
    }

private:
    // The switch and the parameters in the order of op's row.
    int Set(ProcessOp op, int on, std::initializer_list<int> parameters = {});
    int Get(ProcessOp op, int* on, std::initializer_list<int*> parameters = {});
};
