#include "capture/CameraModels.h"

#include "capture/SimDeviceProvider.h"
#include "platform/PrivateProfile.h"

#include <atomic>
#include <cstring>
#include <mutex>

namespace {

std::mutex g_mutex;
CameraModelSizes g_sizes;
std::atomic<bool> g_mjpg { false };
std::atomic<bool> g_byHand { false };

QSize ReadSize(const char* section, int width, int height, const QString& file)
{
    const QString s = QString::fromLatin1(section);
    return QSize(int(GetPrivateProfileInt(s, QStringLiteral("Width"), width, file)),
        int(GetPrivateProfileInt(s, QStringLiteral("Height"), height, file)));
}

} // namespace

void LoadCameraModelSizes(const QString& settingsFile)
{
    CameraModelSizes s;
    s.n130 = ReadSize("Camera130H", 1280, 1024, settingsFile);
    s.i30 = ReadSize("Camera300", 640, 480, settingsFile);
    s.i50 = ReadSize("Camera500", 640, 480, settingsFile);
    s.i90 = ReadSize("Camera900", 640, 480, settingsFile);
    s.i100 = ReadSize("Camera1000", 640, 480, settingsFile);
    s.m30 = ReadSize("Camera300", 640, 480, settingsFile);
    s.m50 = ReadSize("Camera500", 640, 480, settingsFile);
    s.m90 = ReadSize("Camera900", 640, 480, settingsFile);
    s.m100 = ReadSize("Camera1000", 640, 480, settingsFile);
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

QSize ModelDefaultSize(const QString& name, bool chosenByName)
{
    const CameraModelSizes s = GetCameraModelSizes();
    const std::pair<const char*, QSize> models[] = {
        { "KMZ-N130", s.n130 },
        { "KMZ-I30", s.i30 },
        { "KMZ-I50", s.i50 },
        { "KMZ-I90", s.i90 },
        { "KMZ-I100", s.i100 },
        { "KMZ-M30", s.m30 },
        { "KMZ-M50", s.m50 },
        { "KMZ-M90", s.m90 },
        { "KMZ-M100", s.m100 },
    };
    for (const auto& [model, size] : models)
        if (name == QLatin1String(model) + QLatin1String(" USB2.0 Camera"))
            return size;
    if (chosenByName && name.contains(QLatin1String("USB2_CCD_5.01M_YF")))
        return QSize(868, 650);
    return kFallbackDeviceSize;
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

bool IsSupportedCamera(const QString&, GstDevice*)
{
    return true;
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
