#pragma once

#include "capture/CameraSources.h"

#include <QObject>
#include <QString>

#include <gst/gst.h>

#include <atomic>

// Watches for cameras plugged in or out while the program runs and reports
// each on the user-interface thread, so a device list can be refreshed or a
// preview started once a camera appears. Cameras present when watching
// starts are reported as added too. A device the listing hides (one camera
// offered by two sources) is not reported.
class CDeviceWatcher : public QObject
{
    Q_OBJECT
public:
    // sources: which devices are cameras; the program's own table unless a
    // test gives one, which must outlive the watcher.
    explicit CDeviceWatcher(QObject* parent = nullptr, CameraSourceTable sources = CameraSources());
    ~CDeviceWatcher() override;

    // False when no device provider could be started.
    bool IsWatching() const { return m_monitor != nullptr; }

signals:
    void DeviceAdded(const QString& name);
    void DeviceRemoved(const QString& name);

private:
    static GstBusSyncReply BusSync(GstBus* bus, GstMessage* message, gpointer self);
    bool IsHidden(GstDevice* device) const;

    CameraSourceTable m_sources;
    GstDeviceMonitor* m_monitor = nullptr;
    // The bus hands messages over from the providers' threads; see
    // CFrameMailbox::Acquire for why the hand-over is published here too.
    std::atomic<unsigned> m_published { 0 };
};
