#pragma once

#include <QImage>
#include <QString>

#include <memory>
#include <vector>

// Where a frame of a focus series lies over the first frame: the frame's
// pixel showing the first frame's pixel p is scale * (p - c) + c + (dx, dy),
// c the picture's centre. Focus breathing changes the scale, drift the shift.
struct FrameWarp
{
    double dx = 0.0;
    double dy = 0.0;
    double scale = 1.0;
};

// Extended depth of field: fuses a focus series into one picture sharp
// everywhere, frame by frame. Each frame is aligned to the first, and only
// the fused pyramid, the best focus so far and the depth are kept, so memory
// does not grow with the number of frames. The result is in the first
// frame's geometry (same size, no crop).
class FocusStack
{
public:
    FocusStack();
    ~FocusStack();
    FocusStack(const FocusStack&) = delete;
    FocusStack& operator=(const FocusStack&) = delete;

    // Aligns the frame and fuses it in. False, with ErrorString() and the
    // stack unchanged, for a null frame or one not of the first's size.
    bool Add(const QImage& frame);
    int Count() const;
    QString ErrorString() const;

    // The fused picture, RGB888; null before the first frame.
    QImage Result() const;
    // Per pixel, row by row, the index of the frame that was sharpest there,
    // smoothed (a fraction between two frames at a depth step); empty before
    // the first frame.
    std::vector<float> DepthIndex() const;
    // The depth as 8-bit gray: frame index * 255 / (frames - 1).
    QImage DepthPicture() const;
    // The alignment found for each frame added, the first's the identity.
    const std::vector<FrameWarp>& Warps() const;

    // The alignment of one picture over another of the same size, as Add
    // finds it; the identity for pictures without texture.
    static FrameWarp Align(const QImage& reference, const QImage& frame);

private:
    struct State;
    std::unique_ptr<State> m;
};
