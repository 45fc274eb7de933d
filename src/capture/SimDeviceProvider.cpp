#include "capture/SimDeviceProvider.h"

#include "capture/SimCameraSource.h"
#include "platform/DebugLog.h"

#include <atomic>
#include <mutex>
#include <vector>

struct OculixSimDevice
{
    GstDevice parent;
};

struct OculixSimDeviceClass
{
    GstDeviceClass parent_class;
};

G_DEFINE_TYPE(OculixSimDevice, oculix_sim_device, GST_TYPE_DEVICE)

struct OculixSimProvider
{
    GstDeviceProvider parent;
};

struct OculixSimProviderClass
{
    GstDeviceProviderClass parent_class;
};

G_DEFINE_TYPE(OculixSimProvider, oculix_sim_provider, GST_TYPE_DEVICE_PROVIDER)

namespace {

std::atomic<bool> g_demoEnabled { false };

// Devices in listing order, each holding one reference. The demo camera is
// made once and kept, listed only while enabled.
std::mutex g_devicesMutex;
GstDevice* g_demoDevice = nullptr;
std::vector<GstDevice*> g_extraDevices;
bool g_started = false;

GstDevice* MakeDevice(const QString& name, GstCaps* caps)
{
    GstStructure* props = gst_structure_new(
        "oculix-sim-device-properties", "device.api", G_TYPE_STRING, "oculix-sim", nullptr);
    GstDevice* device
        = GST_DEVICE(g_object_new(oculix_sim_device_get_type(), "display-name", name.toUtf8().constData(),
            "device-class", "Video/Source", "caps", caps, "properties", props, nullptr));
    gst_structure_free(props);
    gst_object_ref_sink(device);
    return device;
}

// GStreamer is started (EnsureGStreamer) before anything here is used; a
// caller that forgot gets nothing rather than a crash.
bool GStreamerStarted()
{
    if (gst_is_initialized())
        return true;
    qCWarning(lcCapture) << "simulated cameras used before GStreamer was started";
    return false;
}

bool DemoFromEnvironment()
{
    return qEnvironmentVariableIntValue("OCULIX_DEMO_CAMERA") == 1;
}

// The devices listed now, each with a new reference.
std::vector<GstDevice*> ListedLocked()
{
    std::vector<GstDevice*> out;
    if (IsDemoCameraEnabled()) {
        if (!g_demoDevice) {
            GstCaps* caps = DemoCameraCaps();
            g_demoDevice = MakeDevice(DemoCameraName(), caps);
            gst_caps_unref(caps);
        }
        out.push_back(GST_DEVICE(gst_object_ref(g_demoDevice)));
    }
    for (GstDevice* d : g_extraDevices)
        out.push_back(GST_DEVICE(gst_object_ref(d)));
    return out;
}

GstDeviceProvider* RunningProvider()
{
    GstDeviceProvider* provider = gst_device_provider_factory_get_by_name("oculixsimdeviceprovider");
    if (provider && !gst_device_provider_is_started(provider)) {
        gst_object_unref(provider);
        return nullptr;
    }
    return provider;
}

void Announce(GstDevice* device, bool added)
{
    if (GstDeviceProvider* provider = RunningProvider()) {
        // The devices are never floating: the provider takes a reference of
        // its own when one is added and drops it when it is removed.
        if (added)
            gst_device_provider_device_add(provider, device);
        else
            gst_device_provider_device_remove(provider, device);
        gst_object_unref(provider);
    }
}

GstElement* CreateElement(GstDevice* device, const gchar* name)
{
    GstElement* src = gst_element_factory_make(kSimCameraElement, name);
    if (!src)
        return nullptr;
    gchar* display = gst_device_get_display_name(device);
    GstCaps* caps = gst_device_get_caps(device);
    g_object_set(src, "camera-name", display, "device-caps", caps, nullptr);
    gst_caps_unref(caps);
    g_free(display);
    return src;
}

GList* Probe(GstDeviceProvider*)
{
    std::lock_guard lock(g_devicesMutex);
    GList* list = nullptr;
    for (GstDevice* d : ListedLocked())
        list = g_list_append(list, d);
    return list;
}

gboolean StartProvider(GstDeviceProvider* provider)
{
    std::vector<GstDevice*> devices;
    {
        std::lock_guard lock(g_devicesMutex);
        g_started = true;
        devices = ListedLocked();
    }
    // The provider takes references of its own.
    for (GstDevice* d : devices) {
        gst_device_provider_device_add(provider, d);
        gst_object_unref(d);
    }
    return TRUE;
}

// The base class forgets the devices it was told about; nothing to undo here.
void StopProvider(GstDeviceProvider*)
{
    std::lock_guard lock(g_devicesMutex);
    g_started = false;
}

} // namespace

static void oculix_sim_device_class_init(OculixSimDeviceClass* klass)
{
    GST_DEVICE_CLASS(klass)->create_element = CreateElement;
}

static void oculix_sim_device_init(OculixSimDevice*)
{
}

static void oculix_sim_provider_class_init(OculixSimProviderClass* klass)
{
    GstDeviceProviderClass* provider = GST_DEVICE_PROVIDER_CLASS(klass);
    provider->probe = Probe;
    provider->start = StartProvider;
    provider->stop = StopProvider;
    gst_device_provider_class_set_static_metadata(
        provider, "Oculix simulated cameras", "Video/Source", "Simulated microscope cameras", "Oculix");
}

static void oculix_sim_provider_init(OculixSimProvider*)
{
}

void EnableDemoCamera(bool on)
{
    const bool was = IsDemoCameraEnabled();
    g_demoEnabled = on;
    if (was == IsDemoCameraEnabled())
        return;
    GstDevice* demo = nullptr;
    {
        std::lock_guard lock(g_devicesMutex);
        if (!g_started)
            return;
        if (on) {
            std::vector<GstDevice*> listed = ListedLocked(); // makes the device
            for (GstDevice* d : listed)
                gst_object_unref(d);
        }
        if (!g_demoDevice)
            return;
        demo = GST_DEVICE(gst_object_ref(g_demoDevice));
    }
    Announce(demo, on);
    gst_object_unref(demo);
}

bool IsDemoCameraEnabled()
{
    return g_demoEnabled || DemoFromEnvironment();
}

GstCaps* DemoCameraCaps()
{
    if (!GStreamerStarted())
        return nullptr;
    return gst_caps_from_string(
        "video/x-raw, format=(string)YUY2, width=(int)640, height=(int)480, "
        "pixel-aspect-ratio=(fraction)1/1, "
        "framerate=(fraction){ 30/1, 15/1 }; "
        "video/x-raw, format=(string)YUY2, width=(int)1280, height=(int)1024, "
        "pixel-aspect-ratio=(fraction)1/1, framerate=(fraction)30/1; "
        "video/x-raw, format=(string)YUY2, width=(int)1600, height=(int)1200, "
        "pixel-aspect-ratio=(fraction)1/1, framerate=(fraction){ 15/1, 10/1 }; "
        "image/jpeg, width=(int)1280, height=(int)1024, pixel-aspect-ratio=(fraction)1/1, "
        "framerate=(fraction)30/1; "
        // The sizes of 5-megapixel and 4K microscope cameras, last so the
        // formats before keep their places in the list.
        "video/x-raw, format=(string)YUY2, width=(int)2592, height=(int)1944, "
        "pixel-aspect-ratio=(fraction)1/1, framerate=(fraction){ 15/1, 5/1 }; "
        "video/x-raw, format=(string)YUY2, width=(int)3840, height=(int)2160, "
        "pixel-aspect-ratio=(fraction)1/1, framerate=(fraction){ 30/1, 15/1 }");
}

void AddSimDevice(const QString& name, GstCaps* caps)
{
    if (!GStreamerStarted())
        return;
    GstCaps* own = caps ? gst_caps_ref(caps) : DemoCameraCaps();
    GstDevice* device = MakeDevice(name, own);
    gst_caps_unref(own);
    {
        std::lock_guard lock(g_devicesMutex);
        g_extraDevices.push_back(GST_DEVICE(gst_object_ref(device)));
    }
    Announce(device, true);
    gst_object_unref(device);
}

bool RemoveSimDevice(const QString& name)
{
    GstDevice* device = nullptr;
    {
        std::lock_guard lock(g_devicesMutex);
        for (auto it = g_extraDevices.rbegin(); it != g_extraDevices.rend(); ++it) {
            gchar* display = gst_device_get_display_name(*it);
            const bool match = name == QString::fromUtf8(display);
            g_free(display);
            if (match) {
                device = *it;
                g_extraDevices.erase(std::next(it).base());
                break;
            }
        }
    }
    if (!device)
        return false;
    Announce(device, false);
    gst_object_unref(device);
    return true;
}

bool PullSimDevice(const QString& name)
{
    // The stream fails first, as the driver does when the device goes.
    SimCameraFault gone;
    gone.failAfterFrames = 1;
    SetSimCameraFault(name, gone);
    return RemoveSimDevice(name);
}

void ReplugSimDevice(const QString& name, GstCaps* caps)
{
    SetSimCameraFault(name, SimCameraFault());
    AddSimDevice(name, caps);
}

void RemoveAllSimDevices()
{
    std::vector<GstDevice*> devices;
    {
        std::lock_guard lock(g_devicesMutex);
        devices.swap(g_extraDevices);
    }
    for (GstDevice* d : devices) {
        Announce(d, false);
        gst_object_unref(d);
    }
}

void RegisterSimDeviceProvider()
{
    static const bool registered = [] {
        RegisterSimCameraSource();
        return gst_device_provider_register(
            nullptr, "oculixsimdeviceprovider", GST_RANK_PRIMARY, oculix_sim_provider_get_type());
    }();
    (void)registered;
}

bool IsSimDevice(GstDevice* device)
{
    return device && G_TYPE_CHECK_INSTANCE_TYPE(device, oculix_sim_device_get_type());
}
