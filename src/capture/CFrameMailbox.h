#pragma once

#include <QImage>

#include <gst/gst.h>

#include <atomic>
#include <mutex>

class QObject;

// Hands frames from the streaming thread to the user-interface thread: the
// streaming thread replaces the one frame held and, when no notification is
// pending, posts one to the receiver. Frames are dropped, never queued, so a
// slow display never holds up the stream.
class CFrameMailbox
{
public:
    CFrameMailbox() = default;
    ~CFrameMailbox();
    CFrameMailbox(const CFrameMailbox&) = delete;
    CFrameMailbox& operator=(const CFrameMailbox&) = delete;

    // The object told about new frames (by a posted QEvent of EventType());
    // null to stop. The receiver clears itself before it is destroyed.
    void SetReceiver(QObject* receiver);
    static int EventType();
    // The receiver calls this first in its event(): it orders the posted
    // event's creation before the receiver reads it in a way thread checkers
    // see (Qt's event queue synchronises too, but out of their sight).
    void Acquire() const { (void)m_published.load(std::memory_order_acquire); }

    // Streaming thread: a BGR sample (the mailbox takes a reference).
    void Post(GstSample* sample);
    // Receiver: the newest frame as an image that shares the buffer's memory
    // while the image lives; a null image when there is none.
    QImage Take();
    void Clear();

private:
    std::mutex m_mutex;
    QObject* m_receiver = nullptr;
    GstSample* m_sample = nullptr;
    bool m_pending = false;
    std::atomic<unsigned> m_published { 0 };
};
