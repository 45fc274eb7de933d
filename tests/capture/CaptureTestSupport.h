#pragma once

#include "capture/CXCapGraph.h"
#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"
#include "capture/SimDeviceProvider.h"
#include "platform/MessageBox.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSize>
#include <QStringList>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <vector>

// 320 x 240 YUY2 only: frames are cheap and rows unpadded.
inline const char* const kSmallCameraCaps = "video/x-raw, format=(string)YUY2, width=(int)320, "
                                            "height=(int)240, framerate=(fraction)30/1";

// Runs the event loop until the condition holds or the time is up.
inline bool PumpUntil(const std::function<bool()>& done, int timeoutMs = 5000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    return true;
}

// Keeps frames flowing for a while.
inline void Pump(int ms)
{
    PumpUntil([] { return false; }, ms);
}

// Collects every message box instead of showing it.
class MessageCollector
{
public:
    MessageCollector()
        : m_scope([this](const MessageBoxRequest& r) {
            m_requests.push_back(r);
            return IDOK;
        })
    {
    }
    QStringList Texts() const
    {
        QStringList out;
        for (const MessageBoxRequest& r : m_requests)
            out << r.text;
        return out;
    }
    const std::vector<MessageBoxRequest>& Requests() const { return m_requests; }
    void Clear() { m_requests.clear(); }

private:
    std::vector<MessageBoxRequest> m_requests;
    ScopedMessageBoxHandler m_scope;
};

// Puts the simulated cameras back as a test found them: demo camera on, no
// extra devices, no faults.
class SimCameraScope
{
public:
    explicit SimCameraScope(bool demo = true)
    {
        EnsureGStreamer();
        RemoveAllSimDevices();
        ClearSimCameraFaults();
        EnableDemoCamera(demo);
    }
    ~SimCameraScope()
    {
        RemoveAllSimDevices();
        ClearSimCameraFaults();
        EnableDemoCamera(false);
    }
};

// The frames processed so far by the graph's processing element.
inline int ProcessedFrames(CXCapGraph& graph)
{
    int frames = -1;
    graph.GetStateB(&frames);
    return frames;
}

// Waits until frames processed after this call have reached the grabber.
inline bool WaitFreshFrames(CXCapGraph& graph, int count = 3, int timeoutMs = 5000)
{
    const int start = ProcessedFrames(graph);
    return PumpUntil([&] { return ProcessedFrames(graph) >= start + count; }, timeoutMs);
}

// A simulated camera offering the formats of the caps string.
inline void AddCapsCamera(const QString& name, const char* caps)
{
    GstCaps* c = gst_caps_from_string(caps);
    AddSimDevice(name, c);
    gst_caps_unref(c);
}

// Binds the camera by name and lists its formats.
inline bool BindCamera(CXCapGraph& graph, const QString& name)
{
    graph.SetDeviceName(name);
    if (graph.InitGraph() != S_OK)
        return false;
    graph.EnumFormats();
    return true;
}

// Binds, builds and runs the preview until fresh frames arrive; a still
// camera sends every frame alike (no drift, no noise).
inline bool StartPreview(CXCapGraph& graph, const QString& name, bool still = false)
{
    if (!BindCamera(graph, name))
        return false;
    graph.BuildPreviewGraph();
    if (still && graph.DeviceElement())
        g_object_set(graph.DeviceElement(), "drift", FALSE, "noise", FALSE, nullptr);
    return graph.RunGraph() == S_OK && WaitFreshFrames(graph);
}

// The size the camera is bound at, and the size the processing sees.
inline QSize VideoSize(CXCapGraph& graph)
{
    unsigned w = 0, h = 0;
    graph.GetVideoSize(&w, &h);
    return QSize(int(w), int(h));
}
inline QSize ProcessedSize(CXCapGraph& graph)
{
    int w = 0, h = 0;
    graph.GetStateA(&w, &h);
    return QSize(w, h);
}

// The grabber's current frame: bottom-up BGR.
inline std::vector<uchar> Snapshot(CXCapGraph& graph)
{
    long size = 0;
    EXPECT_EQ(graph.GetCurrentBuffer(&size, nullptr), S_OK);
    std::vector<uchar> bits(std::size_t(std::max(0L, size)));
    EXPECT_EQ(graph.GetCurrentBuffer(&size, bits.data()), S_OK);
    return bits;
}

// What the processing makes of a picture under an overlay: every pixel but
// the key (1, 1, 1) replaces the picture's. Answers how many did.
inline int BlendOverlay(std::vector<uchar>& picture, const std::vector<uchar>& overlay)
{
    int covered = 0;
    for (std::size_t i = 0; i + 2 < picture.size(); i += 3)
        if (!(overlay[i] == 1 && overlay[i + 1] == 1 && overlay[i + 2] == 1)) {
            std::copy_n(&overlay[i], 3, &picture[i]);
            ++covered;
        }
    return covered;
}

// The messages shown, for a failure's text.
inline std::string Shown(const MessageCollector& messages)
{
    return messages.Texts().join('|').toStdString();
}

// Whether a real camera could take part in enumeration on this machine.
inline bool HasRealCamera()
{
    return !QDir(QStringLiteral("/dev")).entryList({ QStringLiteral("video*") }, QDir::System).isEmpty();
}

// Every frame a camera element sends on, with its timestamp and the moment
// it left. The probe sits on the camera's own pad, which outlives the
// graph's rebuilds; the camera numbers its frames from 0 each time it
// starts, so the frames of each run (preview, recording, preview) are told
// apart by that number.
class CameraFrameLog
{
public:
    using Clock = std::chrono::steady_clock;
    struct Frame
    {
        guint64 number;
        GstClockTime pts;
        Clock::time_point sent;
    };

    explicit CameraFrameLog(GstElement* camera)
        : m_pad(camera ? gst_element_get_static_pad(camera, "src") : nullptr)
    {
        if (m_pad)
            m_probe
                = gst_pad_add_probe(m_pad, GST_PAD_PROBE_TYPE_BUFFER, &CameraFrameLog::Sent, this, nullptr);
    }
    ~CameraFrameLog()
    {
        if (m_pad) {
            gst_pad_remove_probe(m_pad, m_probe);
            gst_object_unref(m_pad);
        }
    }
    CameraFrameLog(const CameraFrameLog&) = delete;
    CameraFrameLog& operator=(const CameraFrameLog&) = delete;

    bool IsAttached() const { return m_probe != 0; }

    // The frames of each run the camera started while logged, in order (the
    // end of a run already going when the log began is left out).
    std::vector<std::vector<Frame>> Runs() const
    {
        std::lock_guard lock(m_mutex);
        std::vector<std::vector<Frame>> runs;
        bool started = false;
        for (const Frame& f : m_frames) {
            if (f.number == 0 || (started && f.number <= runs.back().back().number)) {
                runs.emplace_back();
                started = true;
            }
            if (started)
                runs.back().push_back(f);
        }
        return runs;
    }

private:
    static GstPadProbeReturn Sent(GstPad*, GstPadProbeInfo* info, gpointer self)
    {
        auto* log = static_cast<CameraFrameLog*>(self);
        const GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
        std::lock_guard lock(log->m_mutex);
        log->m_frames.push_back({ GST_BUFFER_OFFSET(buffer), GST_BUFFER_PTS(buffer), Clock::now() });
        return GST_PAD_PROBE_OK;
    }

    GstPad* m_pad;
    gulong m_probe = 0;
    mutable std::mutex m_mutex;
    std::vector<Frame> m_frames;
};

// Where a run of frames stood still: the longest time between two frames
// leaving the camera, and how far their timestamps moved meanwhile.
struct FrameStall
{
    std::size_t after = 0; // the frame before the stall
    double seconds = 0;
    double streamSeconds = 0;
};
inline FrameStall LongestStall(const std::vector<CameraFrameLog::Frame>& run)
{
    FrameStall stall;
    for (std::size_t i = 1; i < run.size(); ++i) {
        const double s = std::chrono::duration<double>(run[i].sent - run[i - 1].sent).count();
        if (s > stall.seconds)
            stall = { i - 1, s, double(run[i].pts - run[i - 1].pts) / GST_SECOND };
    }
    return stall;
}

// A pause of two seconds or more is left out of the stream: the camera sent
// nothing meanwhile, and its timestamps went on where they stopped.
inline void ExpectPauseLeftOut(const std::vector<CameraFrameLog::Frame>& run)
{
    const FrameStall pause = LongestStall(run);
    EXPECT_GE(pause.seconds, 2.0) << "the camera went on sending while paused";
    EXPECT_LE(pause.streamSeconds, 2.5 / 30) << "the timestamps jump over the pause";
}

// The frames a recording of this run holds: the fixed frame rate the file
// keeps covers the pipeline's running time from its start (the first frame
// fills in until it came) to the last frame. A pause stops the running time.
inline long RecordedFrames(const std::vector<CameraFrameLog::Frame>& run)
{
    if (run.empty())
        return 0;
    return long(std::llround(double(run.back().pts) * 30 / GST_SECOND)) + 1;
}
