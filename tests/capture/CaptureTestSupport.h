#pragma once

#include "capture/CXCapGraph.h"
#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"
#include "capture/SimDeviceProvider.h"
#include "platform/MessageBox.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

#include <functional>
#include <vector>

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

// Whether a real camera could take part in enumeration on this machine.
inline bool HasRealCamera()
{
    return !QDir(QStringLiteral("/dev")).entryList({ QStringLiteral("video*") }, QDir::System).isEmpty();
}
