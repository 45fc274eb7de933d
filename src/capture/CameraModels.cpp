#include "capture/CameraModels.h"

#include "capture/CameraSources.h"
#include "capture/CaptureFormat.h"
#include "platform/DebugLog.h"

#include <algorithm>
#include <atomic>
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
