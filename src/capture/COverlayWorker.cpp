#include "capture/COverlayWorker.h"

#include "image/ImageProcess.h"
#include "measure/CGVLElemMgr.h"
#include "platform/DebugLog.h"

namespace {

std::atomic<int> g_running { 0 };

} // namespace

COverlayWorker::COverlayWorker(CGVLElemMgr& shapes, Frames frames, int periodMs)
    : m_shapes(shapes)
    , m_frames(std::move(frames))
    , m_nPeriodMs(periodMs)
{
}

COverlayWorker::~COverlayWorker()
{
    Stop();
}

int COverlayWorker::Running()
{
    return g_running;
}

void COverlayWorker::Allocate(unsigned width, unsigned height)
{
    WaitUnused();
    const std::size_t bytes = DibStride(int(width)) * height;
    m_bufferA.assign(bytes, 1);
    m_bufferB.assign(bytes, 1);
    m_nWidth = width;
    m_nHeight = height;
    m_nDrawnAt.reset();
    std::atomic_ref<uchar*>(m_pPublished).store(m_bufferA.data());
}

void COverlayWorker::Release()
{
    WaitUnused();
    std::atomic_ref<uchar*>(m_pPublished).store(nullptr);
    m_bufferA = {};
    m_bufferB = {};
    m_nWidth = m_nHeight = 0;
    m_nDrawnAt.reset();
}

void COverlayWorker::Start()
{
    if (m_thread.joinable())
        return;
    {
        std::lock_guard lock(m_stopMutex);
        m_bStop = false;
    }
    // Counted from its start, so it is never missed between start and first run.
    ++g_running;
    m_thread = std::thread([this] { Run(); });
}

void COverlayWorker::Stop()
{
    if (m_thread.joinable()) {
        {
            std::lock_guard lock(m_stopMutex);
            m_bStop = true;
        }
        m_stopCv.notify_all();
        m_thread.join();
    }
    WaitUnused();
}

void COverlayWorker::WaitUnused() const
{
    for (const std::vector<uchar>* buffer : { &m_bufferA, &m_bufferB })
        if (!buffer->empty())
            m_frames.waitUnused(buffer->data());
}

void COverlayWorker::Run()
{
    std::unique_lock lock(m_stopMutex);
    while (!m_bStop) {
        lock.unlock();
        if (!m_bufferA.empty() && m_frames.running()) {
            // The buffers are reallocated with the worker stopped; a size
            // that no longer matches waits for that.
            const QSize size = m_frames.size();
            if (size == QSize(int(m_nWidth), int(m_nHeight))) {
                // Only this thread publishes, so the other buffer is the one
                // no new frame takes; one still reading it is waited for.
                auto published = std::atomic_ref<uchar*>(m_pPublished);
                uchar* target = published.load() == m_bufferA.data() ? m_bufferB.data() : m_bufferA.data();
                // Nothing to wait for while the published overlay is up to
                // date; the count is compared again under the drawing's lock.
                if (!m_nDrawnAt || *m_nDrawnAt != m_shapes.ChangeCount()) {
                    m_frames.waitUnused(target);
                    if (m_shapes.DrawToBitsIfChanged(target, size.width(), size.height(), m_nDrawnAt)) {
                        published.store(target);
                        ++m_nDrawn;
                        qCDebug(lcApp, "MakeElemOverlay");
                    }
                }
            }
        }
        ++m_nPasses;
        lock.lock();
        m_stopCv.wait_for(lock, std::chrono::milliseconds(m_nPeriodMs), [this] { return m_bStop; });
    }
    --g_running;
}
