#include "capture/CDeviceWatcher.h"

#include "capture/CameraModels.h"
#include "capture/GstInit.h"
#include "capture/SimDeviceProvider.h"

CDeviceWatcher::CDeviceWatcher(QObject* parent)
    : QObject(parent)
{
    if (!EnsureGStreamer())
        return;
    m_monitor = gst_device_monitor_new();
    gst_device_monitor_add_filter(m_monitor, "Video/Source", nullptr);
    gst_device_monitor_set_show_all_devices(m_monitor, TRUE);
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
    gst_device_monitor_stop(m_monitor);
    GstBus* bus = gst_device_monitor_get_bus(m_monitor);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(m_monitor);
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
    if (device && IsCaptureDevice(device)) {
        const QString name = DeviceDisplayName(device);
        watcher->m_published.fetch_add(1, std::memory_order_release);
        QMetaObject::invokeMethod(
            watcher,
            [watcher, name, added] {
                (void)watcher->m_published.load(std::memory_order_acquire);
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
