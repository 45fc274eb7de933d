#pragma once

#include "capture/ICamProcess.h"
#include "image/FrameHistogram.h"
#include "image/FusedProcess.h"

#include <QImage>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

class FlatField;

// The state and the frame work of the live processing element. The switches
// are set on the user-interface thread and read by the streaming thread once
// per frame; the overlay pointer is published by the document's overlay
// worker. The state outlives the GStreamer element that uses it, so the
// switches survive a rebuild of the pipeline.
//
// Overlay protocol: the owner draws into one of two buffers and publishes the
// finished one with
//     std::atomic_ref<uchar*>(overlayPointer).store(buffer);
// and, before drawing into a buffer again, calls WaitOverlayUnused(buffer),
// which returns once no frame reads that buffer. A frame reads the published
// buffer only after announcing it (see ProcessFrame), so a buffer is never
// drawn while it is blended.
class CCamProcess : public ICamProcess
{
public:
    CCamProcess() = default;
    CCamProcess(const CCamProcess&) = delete;
    CCamProcess& operator=(const CCamProcess&) = delete;

    int SetProcessEnable(int on) override;
    int SetOperation(ProcessOp op, const ProcessSwitches& values) override;
    // Returns once no frame reads through the previous pointer any more.
    int SetOverlay(int on, uchar* const* overlayPointer) override;

    int GetProcessEnable(int* on) override;
    int GetOperation(ProcessOp op, ProcessSwitches* values) override;
    int GetStateA(int* width, int* height) override;
    int GetStateB(int* frames) override;

    // The size the overlay buffers were made for; frames of another size are
    // not overlaid, so a stale buffer is never read past its end.
    void SetOverlaySize(unsigned width, unsigned height);

    // Any thread: waits while a frame is reading this overlay buffer.
    void WaitOverlayUnused(const uchar* buffer) const;

    // The flat-field correction applied to each frame of its size before the
    // operations, while processing is on; null: none (the default).
    void SetFlatField(std::shared_ptr<const FlatField> field);
    std::shared_ptr<const FlatField> GetFlatField() const;

    // Takes the histogram of each frame, after the flat field and before the
    // operations, on the sample FrameHistogram describes. Off by default.
    void KeepHistograms(bool on);
    // Any thread: the last frame's histogram; false when none was taken
    // since they were switched on.
    bool LastHistogram(FrameHistogram* histogram) const;

    // Marks the in-focus edges of each frame in colour (FocusPeaking), after
    // the operations and under the overlay, and measures its sharpness. Off
    // by default; off, frames are as without it.
    void SetFocusPeaking(bool on, QRgb colour);
    // Any thread: the last marked frame's sharpness; negative when none was
    // marked since peaking was switched on.
    double LastSharpness() const;
    // Tints the frame where coverage (FocusPeaking::Tint) says, with peaking
    // or without; a null picture: no tint (the default).
    void SetCoverage(const QImage& coverage, QRgb colour);

    // Averages the next `frames` frames as the camera gives them, before the
    // flat field and the operations: a blank field for a new correction.
    // Starts over when the frame size changes meanwhile.
    void CaptureBlank(unsigned frames);
    // Any thread: the averaged frames once all came, top-down 24-bit; null
    // before, and after another CaptureBlank.
    QImage CapturedBlank() const;

    // Keeps each frame as processed, before the overlay is laid over it, so
    // that shapes can snap to the picture under them. Off by default: it
    // costs a pass over every frame.
    void KeepCleanFrames(bool on);
    // Any thread: the last frame kept, top-down 24-bit; null when none was.
    QImage CleanFrame() const;

    // Streaming thread: processes one frame. Rows are given bottom-up, in the
    // order of a bottom-up picture (see FusedProcess); steps may be negative.
    void ProcessFrame(const uchar* src, std::ptrdiff_t srcStep, uchar* dst, std::ptrdiff_t dstStep,
        unsigned width, unsigned height);
    // The same for a frame read row by row from another layout.
    void ProcessFrame(
        const FrameRows& rows, uchar* dst, std::ptrdiff_t dstStep, unsigned width, unsigned height);

private:
    struct State
    {
        bool enable = true;
        ProcessSwitches switches;
        bool overlayOn = false;
        uchar* const* overlayPointer = nullptr;
        unsigned overlayWidth = 0;
        unsigned overlayHeight = 0;
        bool keepClean = false;
        std::shared_ptr<const FlatField> flatField;
        bool keepHistogram = false;
        bool peaking = false;
        QRgb peakColour = 0;
        // A copy of the element's own, never shared with the caller's
        // picture: frames read it on the streaming thread.
        std::shared_ptr<const QImage> coverage;
        QRgb coverageColour = 0;
    };
    template <typename Fn> int Update(Fn&& fn);
    State Snapshot() const;

    mutable std::mutex m_stateMutex;
    State m_state;
    // Held while a frame reads the overlay, so that SetOverlay can wait.
    std::mutex m_frameMutex;
    // The overlay buffer a frame is reading, or null (a hazard pointer).
    std::atomic<const uchar*> m_overlayInUse { nullptr };

    // Writes the kept frame from rows in buffer order (bottom-up).
    void KeepClean(const uchar* rows, std::ptrdiff_t step, unsigned width, unsigned height);

    mutable std::mutex m_cleanMutex;
    // The kept frame: bottom-up rows of DibStride(m_cleanWidth) bytes.
    std::vector<uchar> m_clean;
    unsigned m_cleanWidth = 0;
    unsigned m_cleanHeight = 0;

    // Adds the frame to the blank field being averaged.
    void AddToBlank(const FrameRows& rows, unsigned width, unsigned height);

    mutable std::mutex m_blankMutex;
    unsigned m_blankWanted = 0;
    unsigned m_blankCount = 0;
    unsigned m_blankWidth = 0;
    unsigned m_blankHeight = 0;
    std::vector<std::uint32_t> m_blankSum; // bottom-up rows of width * 3 values
    std::atomic<bool> m_blankPending { false };

    mutable std::mutex m_histogramMutex;
    FrameHistogram m_histogram;
    bool m_hasHistogram = false;

    // The frame before the overlay, while peaking under one; streaming thread.
    std::vector<uchar> m_peaked;
    std::atomic<double> m_sharpness { -1.0 };

    std::atomic<int> m_lastWidth { 0 };
    std::atomic<int> m_lastHeight { 0 };
    std::atomic<unsigned> m_frames { 0 };
};
