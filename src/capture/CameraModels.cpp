#include "capture/CameraModels.h"

#include "capture/CaptureFormat.h"
#include "capture/GstInit.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

namespace {

// The model table: friendly-name prefix, the field of its size and the
// settings section that gives it, in matching order.
struct Model
{
    const char* prefix;
    QSize CameraModelSizes::*size;
    const SettingsKeys::CameraSection* section;
};
const Model kModels[kCameraModelCount] = {
    { "KMZ-N130", &CameraModelSizes::n130, &SettingsKeys::Camera130H },
    { "KMZ-I30", &CameraModelSizes::i30, &SettingsKeys::Camera300 },
    { "KMZ-I50", &CameraModelSizes::i50, &SettingsKeys::Camera500 },
    { "KMZ-I90", &CameraModelSizes::i90, &SettingsKeys::Camera900 },
    { "KMZ-I100", &CameraModelSizes::i100, &SettingsKeys::Camera1000 },
    { "KMZ-M30", &CameraModelSizes::m30, &SettingsKeys::Camera300 },
    { "KMZ-M50", &CameraModelSizes::m50, &SettingsKeys::Camera500 },
    { "KMZ-M90", &CameraModelSizes::m90, &SettingsKeys::Camera900 },
    { "KMZ-M100", &CameraModelSizes::m100, &SettingsKeys::Camera1000 },
};

std::mutex g_mutex;
CameraModelSizes g_sizes;
AttachedCameraModel g_attached;
std::atomic<bool> g_mjpg { false };
std::atomic<bool> g_byHand { false };
GstDeviceMonitor* g_sharedMonitor = nullptr; // under g_mutex

bool StreamsMjpg(GstDevice* device)
{
    GstCaps* caps = device ? gst_device_get_caps(device) : nullptr;
    const std::vector<CaptureFormat> formats = NormaliseCaps(caps);
    if (caps)
        gst_caps_unref(caps);
    return std::any_of(formats.begin(), formats.end(),
        [](const CaptureFormat& f) { return f.fourcc == QLatin1String("MJPG"); });
}

} // namespace

void LoadCameraModelSizes(const QString& settingsFile)
{
    CameraModelSizes s;
    for (const Model& m : kModels)
        s.*m.size = SettingsKeys::ReadCameraSize(*m.section, settingsFile);
    SetCameraModelSizes(s);
}

void SetCameraModelSizes(const CameraModelSizes& sizes)
{
    std::lock_guard lock(g_mutex);
    g_sizes = sizes;
}

CameraModelSizes GetCameraModelSizes()
{
    std::lock_guard lock(g_mutex);
    return g_sizes;
}

QString CameraModelName(int model)
{
    if (model < 0 || model >= kCameraModelCount)
        return {};
    return QLatin1String(kModels[model].prefix) + QLatin1String(" USB2.0 Camera");
}

int CameraModelOf(const QString& friendlyName)
{
    for (int i = 0; i < kCameraModelCount; ++i)
        if (friendlyName == CameraModelName(i))
            return i;
    return -1;
}

QSize ModelDefaultSize(const QString& name, bool chosenByName)
{
    if (const int model = CameraModelOf(name); model >= 0)
        return GetCameraModelSizes().*kModels[model].size;
    if (chosenByName && name.contains(QLatin1String("USB2_CCD_5.01M_YF")))
        return QSize(868, 650);
    return kFallbackDeviceSize;
}

QString DeviceDisplayName(GstDevice* device)
{
    gchar* name = device ? gst_device_get_display_name(device) : nullptr;
    QString out = QString::fromUtf8(name);
    g_free(name);
    return out;
}

bool IsCaptureDevice(GstDevice* device)
{
    if (!device)
        return false;
    if (IsSimDevice(device))
        return true;
    GstStructure* props = gst_device_get_properties(device);
    bool v4l2 = false;
    if (props) {
        const gchar* api = gst_structure_get_string(props, "device.api");
        v4l2 = api && std::strcmp(api, "v4l2") == 0;
        gst_structure_free(props);
    }
    return v4l2;
}

std::vector<GstDevice*> ListCaptureDevices(bool* monitorFailed)
{
    std::vector<GstDevice*> out;
    *monitorFailed = false;
    GstDeviceMonitor* monitor = nullptr;
    {
        std::lock_guard lock(g_mutex);
        if (g_sharedMonitor)
            monitor = GST_DEVICE_MONITOR(gst_object_ref(g_sharedMonitor));
    }
    const bool shared = monitor != nullptr;
    if (!monitor && EnsureGStreamer()) {
        monitor = gst_device_monitor_new();
        gst_device_monitor_add_filter(monitor, "Video/Source", nullptr);
        // A desktop's PipeWire provider hides the V4L2 one; cameras are
        // opened through V4L2, so ask every provider and keep V4L2's devices.
        gst_device_monitor_set_show_all_devices(monitor, TRUE);
    }
    if (!monitor) {
        *monitorFailed = true;
        return out;
    }
    GList* devices = gst_device_monitor_get_devices(monitor);
    // A running provider keeps its devices newest first; a probe lists them
    // in the order they were found.
    if (shared)
        devices = g_list_reverse(devices);
    std::vector<GstDevice*> simulated;
    for (GList* l = devices; l; l = l->next) {
        auto* d = GST_DEVICE(l->data);
        if (!IsCaptureDevice(d))
            continue;
        (IsSimDevice(d) ? simulated : out).push_back(GST_DEVICE(gst_object_ref(d)));
    }
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    // Real cameras first, so a demo camera never displaces one as the default.
    out.insert(out.end(), simulated.begin(), simulated.end());
    return out;
}

void ShareDeviceMonitor(GstDeviceMonitor* monitor)
{
    std::lock_guard lock(g_mutex);
    g_sharedMonitor = monitor;
}

bool IsSupportedCamera(const QString& friendlyName, GstDevice* device)
{
    if (CameraModelOf(friendlyName) >= 0 && StreamsMjpg(device))
        SetMjpgCamera(true);
    return true;
}

AttachedCameraModel ScanAttachedCameras()
{
    AttachedCameraModel found;
    bool monitorFailed = false;
    for (GstDevice* d : ListCaptureDevices(&monitorFailed)) {
        const QString name = DeviceDisplayName(d);
        IsSupportedCamera(name, d);
        if (found.m_model < 0 && (found.m_model = CameraModelOf(name)) >= 0)
            found.m_bMjpg = StreamsMjpg(d);
        gst_object_unref(d);
    }
    qCDebug(lcCapture) << "attached camera model:" << CameraModelName(found.m_model) << "MJPG"
                       << found.m_bMjpg;
    std::lock_guard lock(g_mutex);
    g_attached = found;
    return found;
}

AttachedCameraModel GetAttachedCameraModel()
{
    std::lock_guard lock(g_mutex);
    return g_attached;
}

void SetMjpgCamera(bool on)
{
    g_mjpg = on;
}

bool IsMjpgCamera()
{
    return g_mjpg;
}

void SetDeviceChosenByHand(bool on)
{
    g_byHand = on;
}

bool IsDeviceChosenByHand()
{
    return g_byHand;
}
