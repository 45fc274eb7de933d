#include "capture/CCamProcess.h"
#include "capture/CFrameMailbox.h"
#include "capture/CXCapGraph.h"
#include "platform/DebugLog.h"

#include <gst/video/video.h>

#include <chrono>
#include <cstring>

// What comes back from the running pipeline: the grabber's frames, the
// renderer's samples, and the bus (end of stream, errors and what each
// error means to the user).

const QString CXCapGraph::kCameraLostMessage
    = QStringLiteral("The camera stopped sending pictures. It may have been unplugged.");
const QString CXCapGraph::kCameraStartMessage
    = QStringLiteral("The camera could not be started. It may be in use by another program.");
const QString CXCapGraph::kRecordWriteMessage
    = QStringLiteral("The recording could not be written any further. Is the disk full?");
const QString CXCapGraph::kStreamErrorMessage = QStringLiteral("The live video stopped because of an error.");

namespace {

// How long stopping a recording waits for the file to be finished.
constexpr auto kEosTimeout = std::chrono::seconds(5);

bool ElementIsOrContains(GstElement* parent, GstObject* child)
{
    for (GstObject* o = child; o; o = GST_OBJECT_PARENT(o))
        if (o == GST_OBJECT(parent))
            return true;
    return false;
}

} // namespace

bool CXCapGraph::FinishRecording()
{
    // End of stream goes in right after the camera: the frames already on
    // their way are written, then the multiplexer writes its index.
    if (!m_graph || !m_fileSink || !m_firstAfterDevice)
        return false;
    GstState state = GST_STATE_NULL;
    gst_element_get_state(m_graph, &state, nullptr, 0);
    if (state < GST_STATE_PAUSED)
        return false;
    // Sinks report the end of stream only while playing.
    gst_element_set_state(m_graph, GST_STATE_PLAYING);
    // A camera that failed has already sent its end of stream; then this one
    // is refused and the wait below ends at once.
    GstPad* pad = gst_element_get_static_pad(m_firstAfterDevice, "sink");
    gst_pad_send_event(pad, gst_event_new_eos());
    gst_object_unref(pad);
    std::unique_lock lock(m_busMutex);
    const bool done = m_busCv.wait_for(lock, kEosTimeout, [this] { return m_eosSeen; });
    if (!done)
        qCWarning(lcCapture) << "the recording did not finish in time";
    return done;
}

// ---------------------------------------------------------------- grabber

GstPadProbeReturn CXCapGraph::GrabberProbe(GstPad*, GstPadProbeInfo* info, gpointer self)
{
    auto* graph = static_cast<CXCapGraph*>(self);
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    // The grabber follows the processing element on its streaming thread,
    // with no queue between: the element's count is this frame's.
    int frames = 0;
    graph->m_processState->GetStateB(&frames);
    {
        std::lock_guard lock(graph->m_frameMutex);
        gst_buffer_replace(&graph->m_lastBuffer, buffer);
        graph->m_lastBufferFrame = unsigned(frames);
    }
    graph->m_frameCv.notify_all();
    return GST_PAD_PROBE_OK;
}

bool CXCapGraph::WaitGrabbedAfter(int frames, std::chrono::milliseconds timeout)
{
    if (!m_grabber)
        return false;
    // Counts wrap at 2^31; a frame within half of that ahead is a later one.
    const auto later = [this, frames] {
        const unsigned ahead = (m_lastBufferFrame - unsigned(frames)) & 0x7FFFFFFFu;
        return m_lastBuffer && ahead != 0 && ahead < 0x40000000u;
    };
    std::unique_lock lock(m_frameMutex);
    m_frameCv.wait_for(lock, timeout, [&] { return m_streamFailed || later(); });
    return !m_streamFailed && later();
}

long CXCapGraph::GetCurrentBuffer(long* size, uchar* buffer)
{
    if (!m_grabber || !size)
        return E_POINTER;
    const unsigned width = m_grabberWidth;
    const unsigned height = m_grabberHeight;
    const long needed = long(width) * long(height) * 3;
    if (!buffer) {
        *size = needed;
        return S_OK;
    }
    if (*size < needed)
        return E_INVALIDARG;
    GstBuffer* last = nullptr;
    {
        std::lock_guard lock(m_frameMutex);
        if (m_lastBuffer)
            last = gst_buffer_ref(m_lastBuffer);
    }
    if (!last)
        return E_FAIL;
    GstVideoInfo info;
    gst_video_info_set_format(&info, GST_VIDEO_FORMAT_BGR, width, height);
    GstVideoFrame frame;
    if (!gst_video_frame_map(&frame, &info, last, GST_MAP_READ)) {
        gst_buffer_unref(last);
        return E_FAIL;
    }
    const auto* src = static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
    const std::ptrdiff_t stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    const std::size_t row = std::size_t(width) * 3;
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(buffer + std::size_t(y) * row, src + std::ptrdiff_t(height - 1 - y) * stride, row);
    gst_video_frame_unmap(&frame);
    gst_buffer_unref(last);
    *size = needed;
    return S_OK;
}

void CXCapGraph::ClearLastFrame()
{
    std::lock_guard lock(m_frameMutex);
    if (m_lastBuffer)
        gst_buffer_unref(m_lastBuffer);
    m_lastBuffer = nullptr;
}

GstFlowReturn CXCapGraph::RendererSample(GstAppSink* sink, gpointer self)
{
    GstSample* sample = gst_app_sink_pull_sample(sink);
    if (!sample)
        return GST_FLOW_OK;
    static_cast<CXCapGraph*>(self)->m_mailbox->Post(sample);
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}

// ---------------------------------------------------------------- bus

GstBusSyncReply CXCapGraph::BusSync(GstBus*, GstMessage* message, gpointer self)
{
    auto* graph = static_cast<CXCapGraph*>(self);
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_EOS: {
        std::lock_guard lock(graph->m_busMutex);
        graph->m_eosSeen = true;
        graph->m_busCv.notify_all();
        break;
    }
    case GST_MESSAGE_ERROR: {
        GError* error = nullptr;
        gchar* debug = nullptr;
        gst_message_parse_error(message, &error, &debug);
        const QString text = QString::fromUtf8(error ? error->message : "");
        const QString details = QString::fromUtf8(debug ? debug : "");
        g_clear_error(&error);
        g_free(debug);
        // Which part failed decides the message; name it by its role.
        QString source = QStringLiteral("other");
        if (graph->m_device && ElementIsOrContains(graph->m_device, GST_MESSAGE_SRC(message)))
            source = QStringLiteral("camera");
        else if (graph->m_fileSink && ElementIsOrContains(graph->m_fileSink, GST_MESSAGE_SRC(message)))
            source = QStringLiteral("file");
        {
            std::lock_guard lock(graph->m_busMutex);
            graph->m_errorSeen = true;
            graph->m_busCv.notify_all();
        }
        {
            // A wait for a frame ends now, not when its time is up.
            std::lock_guard lock(graph->m_frameMutex);
            graph->m_streamFailed = true;
        }
        graph->m_frameCv.notify_all();
        QMetaObject::invokeMethod(
            graph->m_bridge.get(),
            [graph, text, details, source] { graph->OnStreamError(text, details, source); },
            Qt::QueuedConnection);
        break;
    }
    case GST_MESSAGE_WARNING: {
        GError* error = nullptr;
        gst_message_parse_warning(message, &error, nullptr);
        qCDebug(lcCapture) << "warning:" << (error ? error->message : "");
        g_clear_error(&error);
        break;
    }
    default:
        break;
    }
    // A handler that drops a message owns it.
    gst_message_unref(message);
    return GST_BUS_DROP;
}

void CXCapGraph::OnStreamError(const QString& text, const QString& debug, const QString& source)
{
    if (m_handlingError || !m_graph)
        return;
    GstState state = GST_STATE_NULL;
    gst_element_get_state(m_graph, &state, nullptr, 0);
    if (state == GST_STATE_NULL)
        return; // already taken down; a late echo of the same failure
    m_handlingError = true;
    // The pipeline stays up after an error from the camera: take it down,
    // finishing the record file so the frames so far stay playable.
    m_recordingFinishedOnError = IsRecordGraph() && source != QLatin1String("file") && FinishRecording();
    SetNull();
    int frames = 0;
    m_processState->GetStateB(&frames);
    const bool started = frames != m_framesAtRun;
    const QString message = source == QLatin1String("camera")
        ? (started ? kCameraLostMessage : kCameraStartMessage)
        : source == QLatin1String("file") ? kRecordWriteMessage
                                          : kStreamErrorMessage;
    Fail(message, debug.isEmpty() ? text : text + QLatin1Char('\n') + debug);
    if (m_errorHandler)
        m_errorHandler(message);
}

void CXCapGraph::SetStreamErrorHandler(std::function<void(const QString& message)> handler)
{
    m_errorHandler = std::move(handler);
}
