#pragma once

#include <QImage>
#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

class FocusStack;

// Focus stacking of a live video: frames are offered as they come, and a
// thread of its own fuses those that add detail while the user sweeps the
// focus. A frame offered while the thread is busy is dropped, so the video
// never waits. A frame is kept when, on enough of the picture's blocks, it
// shows more detail than every frame kept before; the others are let go.
// Coverage() says where the series already holds a sharp view: blocks whose
// detail has risen well above the least seen there.
class LiveFocusStack
{
public:
    // Blocks of this many pixels square judge detail and coverage.
    static constexpr int kBlock = 16;

    LiveFocusStack();
    // Waits for the frame being fused, if any.
    ~LiveFocusStack();
    LiveFocusStack(const LiveFocusStack&) = delete;
    LiveFocusStack& operator=(const LiveFocusStack&) = delete;

    // Any thread: hands the frame over; false, dropping it, while the thread
    // works on another or after Finish.
    bool Offer(const QImage& frame);
    // Waits until the thread is idle and stops it; the results stay.
    void Finish();
    // Any thread: whether a frame is being judged or fused.
    bool Busy() const;
    // Any thread: waits until the frame handed over last is judged.
    void WaitIdle() const;

    // Any thread: frames judged and frames fused so far.
    int Seen() const;
    int Kept() const;
    // Any thread: one pixel per block, 255 where covered, 0 elsewhere;
    // null before the first frame.
    QImage Coverage() const;

    // After Finish: the fused picture (null when no frame was kept), its
    // depth map in colour with a scale beneath, and why a frame could not
    // be fused (empty when all went well).
    QImage Result() const;
    QImage DepthPicture() const;
    QString ErrorString() const;

private:
    void Run();
    void Judge(const QImage& frame);

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_wake;
    QImage m_pending;
    bool m_busy = false;
    bool m_quit = false;
    int m_seen = 0;
    int m_kept = 0;
    QImage m_coverage;
    QString m_error;

    // The worker thread's own, read by others only after Finish.
    std::unique_ptr<FocusStack> m_stack;
    std::vector<float> m_best; // per block: the most detail of a kept frame
    std::vector<float> m_least; // per block: the least detail seen
    int m_blocksX = 0;
    int m_blocksY = 0;

    std::thread m_thread;
};
