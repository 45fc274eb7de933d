#pragma once

#include <QSize>
#include <QtGlobal>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class CGVLElemMgr;

// The drawing side of the processing element's overlay hand-over (see
// CCamProcess): a thread that looks at the shapes every period and, when
// they changed since the published overlay was drawn (their manager's
// ChangeCount) or none was drawn into the buffers yet, waits until no frame
// still reads the buffer that is not published, draws into it, and only then
// publishes it through a pointer whose address the processing element holds;
// otherwise the published buffer stays. Pixels no shape covers are 1,1,1.
//
// Threads: Allocate, Start, Stop and Release belong to one thread (the user
// interface); the hooks run on the worker.
class COverlayWorker
{
public:
    static constexpr int kPeriodMs = 30;

    // What the worker asks about the frames, on its own thread.
    struct Frames
    {
        // Frames are being shown; the worker draws only then.
        std::function<bool()> running;
        // The size of the frames now; a size the buffers were not made for
        // waits for new ones.
        std::function<QSize()> size;
        // Returns once no frame reads the buffer.
        std::function<void(const uchar*)> waitUnused;
    };

    COverlayWorker(CGVLElemMgr& shapes, Frames frames, int periodMs = kPeriodMs);
    ~COverlayWorker();
    COverlayWorker(const COverlayWorker&) = delete;
    COverlayWorker& operator=(const COverlayWorker&) = delete;

    // Two buffers for frames of this size, neither with shapes, the first
    // published. While stopped, with the overlay switched off at the element.
    void Allocate(unsigned width, unsigned height);
    // Frees the buffers; the published pointer becomes null. Same conditions.
    void Release();
    // Nothing happens while it already runs.
    void Start();
    // Wakes the thread, joins it, then waits until no frame reads either
    // buffer. Switch the overlay off at the element first, or a frame may
    // take the published buffer again.
    void Stop();

    bool IsRunning() const { return m_thread.joinable(); }
    // The address the processing element is given.
    uchar* const* PublishedPointer() { return &m_pPublished; }
    // Overlays published since this worker was made (tests, diagnostics).
    unsigned OverlaysDrawn() const { return m_nDrawn; }
    // Passes finished since this worker was made, drawn or not: a pass that
    // begins after a change publishes it before it ends.
    unsigned Passes() const { return m_nPasses; }
    // Workers of the process that have started and not yet ended.
    static int Running();

private:
    void Run();
    void WaitUnused() const;

    CGVLElemMgr& m_shapes;
    Frames m_frames;
    int m_nPeriodMs;

    std::vector<uchar> m_bufferA;
    std::vector<uchar> m_bufferB;
    unsigned m_nWidth = 0;
    unsigned m_nHeight = 0;
    // Written with std::atomic_ref: the element reads it the same way.
    alignas(sizeof(uchar*)) uchar* m_pPublished = nullptr;

    std::thread m_thread;
    std::mutex m_stopMutex;
    std::condition_variable m_stopCv;
    bool m_bStop = false;
    std::atomic<unsigned> m_nDrawn { 0 };
    std::atomic<unsigned> m_nPasses { 0 };
    // The shapes' change count the published buffer shows; unset until a
    // buffer of the current allocation is drawn. The worker's own while it
    // runs.
    std::optional<std::uint64_t> m_nDrawnAt;
};
