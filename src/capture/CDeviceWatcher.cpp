#include "capture/CDeviceWatcher.h"

#include "capture/GstInit.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace {

// PipeWire's provider of Debian 12 (0.3.65) corrupts memory when it stops
// after it connected (the connection is freed twice). A monitor with it runs
// on unheard, still referenced, until the process ends. Without a daemon to
// connect to it stops cleanly, and leaves nothing behind.
std::mutex g_parkedMutex;
std::vector<GstDeviceMonitor*> g_parked; // under g_parkedMutex

// Where PipeWire's clients look for the daemon's socket.
bool PipeWireIsRunning()
{
    QString folder = qEnvironmentVariable("PIPEWIRE_RUNTIME_DIR");
    if (folder.isEmpty())
        folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QString name = qEnvironmentVariable("PIPEWIRE_REMOTE");
    if (name.isEmpty())
        name = QStringLiteral("pipewire-0");
    return !folder.isEmpty() && QFileInfo(QDir(folder).filePath(name)).exists();
}

bool StopsUnsafely(GstDeviceMonitor* monitor)
{
    gchar** names = gst_device_monitor_get_providers(monitor);
    bool found = false;
    for (gchar** n = names; n && *n; ++n)
        found = found || std::strcmp(*n, "pipewiredeviceprovider") == 0;
    g_strfreev(names);
    return found && PipeWireIsRunning();
}

} // namespace

CDeviceWatcher::CDeviceWatcher(QObject* parent, CameraSourceTable sources)
    : QObject(parent)
    , m_sources(sources)
{
    if (!EnsureGStreamer())
        return;
    m_monitor = NewCameraMonitor(m_sources);
    GstBus* bus = gst_device_monitor_get_bus(m_monitor);
    gst_bus_set_sync_handler(bus, &CDeviceWatcher::BusSync, this, nullptr);
    gst_object_unref(bus);
    if (!gst_device_monitor_start(m_monitor)) {
        gst_object_unref(m_monitor);
        m_monitor = nullptr;
        return;
    }
    ShareDeviceMonitor(m_monitor);
}

CDeviceWatcher::~CDeviceWatcher()
{
    if (!m_monitor)
        return;
    ShareDeviceMonitor(nullptr);
    if (StopsUnsafely(m_monitor)) {
        GstBus* bus = gst_device_monitor_get_bus(m_monitor);
        gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
        gst_bus_set_flushing(bus, TRUE);
        gst_object_unref(bus);
        std::lock_guard lock(g_parkedMutex);
        g_parked.push_back(m_monitor);
        return;
    }
    gst_device_monitor_stop(m_monitor);
    GstBus* bus = gst_device_monitor_get_bus(m_monitor);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(m_monitor);
}

// Judged on the user-interface thread, against the devices present when the
// report arrives there.
bool CDeviceWatcher::IsHidden(GstDevice* device) const
{
    if (!m_monitor)
        return false;
    GList* devices = gst_device_monitor_get_devices(m_monitor);
    std::vector<GstDevice*> present;
    for (GList* l = devices; l; l = l->next)
        present.push_back(GST_DEVICE(l->data));
    const bool hidden = IsHiddenDuplicate(device, present, m_sources);
    g_list_free_full(devices, gst_object_unref);
    return hidden;
}

GstBusSyncReply CDeviceWatcher::BusSync(GstBus*, GstMessage* message, gpointer self)
{
    auto* watcher = static_cast<CDeviceWatcher*>(self);
    const bool added = GST_MESSAGE_TYPE(message) == GST_MESSAGE_DEVICE_ADDED;
    const bool removed = GST_MESSAGE_TYPE(message) == GST_MESSAGE_DEVICE_REMOVED;
    // A handler that drops a message owns it.
    if (!added && !removed) {
        gst_message_unref(message);
        return GST_BUS_DROP;
    }
    GstDevice* device = nullptr;
    if (added)
        gst_message_parse_device_added(message, &device);
    else
        gst_message_parse_device_removed(message, &device);
    if (device && CameraSourceOf(device, watcher->m_sources)) {
        const QString name = DeviceDisplayName(device);
        // Dropped with the call, also when the watcher goes first.
        std::shared_ptr<GstDevice> held(GST_DEVICE(gst_object_ref(device)), gst_object_unref);
        watcher->m_published.fetch_add(1, std::memory_order_release);
        QMetaObject::invokeMethod(
            watcher,
            [watcher, name, added, held] {
                (void)watcher->m_published.load(std::memory_order_acquire);
                if (watcher->IsHidden(held.get()))
                    return;
                if (added)
                    emit watcher->DeviceAdded(name);
                else
                    emit watcher->DeviceRemoved(name);
            },
            Qt::QueuedConnection);
    }
    if (device)
        gst_object_unref(device);
    gst_message_unref(message);
    return GST_BUS_DROP;
}
