#include "capture/CFrameMailbox.h"

#include <QCoreApplication>
#include <QEvent>

#include <gst/video/video.h>

namespace {

// Keeps a sample mapped while the image made from it lives.
struct MappedFrame
{
    GstSample* sample;
    GstVideoFrame frame;
};

void ReleaseFrame(void* info)
{
    auto* mapped = static_cast<MappedFrame*>(info);
    gst_video_frame_unmap(&mapped->frame);
    gst_sample_unref(mapped->sample);
    delete mapped;
}

} // namespace

CFrameMailbox::~CFrameMailbox()
{
    Clear();
}

int CFrameMailbox::EventType()
{
    static const int type = QEvent::registerEventType();
    return type;
}

void CFrameMailbox::SetReceiver(QObject* receiver)
{
    std::lock_guard lock(m_mutex);
    m_receiver = receiver;
    m_pending = false;
}

void CFrameMailbox::Post(GstSample* sample)
{
    std::lock_guard lock(m_mutex);
    if (m_sample)
        gst_sample_unref(m_sample);
    m_sample = gst_sample_ref(sample);
    // Posting under the lock: the receiver cannot be destroyed meanwhile, as
    // it clears itself here first, and its destruction drops posted events.
    if (m_receiver && !m_pending) {
        m_pending = true;
        auto* event = new QEvent(QEvent::Type(EventType()));
        m_published.fetch_add(1, std::memory_order_release);
        QCoreApplication::postEvent(m_receiver, event);
    }
}

QImage CFrameMailbox::Take()
{
    GstSample* sample = nullptr;
    {
        std::lock_guard lock(m_mutex);
        m_pending = false;
        if (m_sample)
            sample = gst_sample_ref(m_sample);
    }
    if (!sample)
        return {};
    GstVideoInfo info;
    GstCaps* caps = gst_sample_get_caps(sample);
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    auto* mapped = new MappedFrame { sample, {} };
    if (!caps || !buffer || !gst_video_info_from_caps(&info, caps)
        || GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_BGR
        || !gst_video_frame_map(&mapped->frame, &info, buffer, GST_MAP_READ)) {
        gst_sample_unref(sample);
        delete mapped;
        return {};
    }
    return QImage(static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped->frame, 0)),
        GST_VIDEO_FRAME_WIDTH(&mapped->frame), GST_VIDEO_FRAME_HEIGHT(&mapped->frame),
        GST_VIDEO_FRAME_PLANE_STRIDE(&mapped->frame, 0), QImage::Format_BGR888, ReleaseFrame, mapped);
}

void CFrameMailbox::Clear()
{
    std::lock_guard lock(m_mutex);
    if (m_sample)
        gst_sample_unref(m_sample);
    m_sample = nullptr;
}
