#include "FakeCameraProvider.h"

#include "CaptureTestSupport.h"

#include <algorithm>
#include <mutex>
#include <vector>

struct OculixFakeCamera
{
    GstDevice parent;
};

struct OculixFakeCameraClass
{
    GstDeviceClass parent_class;
};

G_DEFINE_TYPE(OculixFakeCamera, oculix_fake_camera, GST_TYPE_DEVICE)

struct OculixFakeProvider
{
    GstDeviceProvider parent;
};

struct OculixFakeProviderClass
{
    GstDeviceProviderClass parent_class;
};

G_DEFINE_TYPE(OculixFakeProvider, oculix_fake_provider, GST_TYPE_DEVICE_PROVIDER)

namespace {

std::mutex g_mutex;
std::vector<GstDevice*> g_plugged; // in the order plugged, each with a reference

GstElement* CreateElement(GstDevice* device, const gchar* name)
{
    GstElement* src = gst_element_factory_make(kSimCameraElement, name);
    gchar* display = gst_device_get_display_name(device);
    GstCaps* caps = gst_device_get_caps(device);
    g_object_set(src, "camera-name", display, "device-caps", caps, nullptr);
    gst_caps_unref(caps);
    g_free(display);
    return src;
}

std::vector<GstDevice*> Plugged()
{
    std::lock_guard lock(g_mutex);
    std::vector<GstDevice*> out;
    for (GstDevice* d : g_plugged)
        out.push_back(GST_DEVICE(gst_object_ref(d)));
    return out;
}

GList* Probe(GstDeviceProvider*)
{
    GList* list = nullptr;
    for (GstDevice* d : Plugged())
        list = g_list_append(list, d);
    return list;
}

gboolean Start(GstDeviceProvider* provider)
{
    for (GstDevice* d : Plugged()) {
        gst_device_provider_device_add(provider, d);
        gst_object_unref(d);
    }
    return TRUE;
}

void Stop(GstDeviceProvider*)
{
}

void Announce(GstDevice* device, bool added)
{
    GstDeviceProvider* provider = gst_device_provider_factory_get_by_name("oculixfakecameraprovider");
    if (!provider)
        return;
    if (gst_device_provider_is_started(provider)) {
        if (added)
            gst_device_provider_device_add(provider, device);
        else
            gst_device_provider_device_remove(provider, device);
    }
    gst_object_unref(provider);
}

void Register()
{
    static const bool registered = gst_device_provider_register(
        nullptr, "oculixfakecameraprovider", GST_RANK_MARGINAL, oculix_fake_provider_get_type());
    (void)registered;
}

} // namespace

static void oculix_fake_camera_class_init(OculixFakeCameraClass* klass)
{
    GST_DEVICE_CLASS(klass)->create_element = CreateElement;
}

static void oculix_fake_camera_init(OculixFakeCamera*)
{
}

static void oculix_fake_provider_class_init(OculixFakeProviderClass* klass)
{
    GstDeviceProviderClass* provider = GST_DEVICE_PROVIDER_CLASS(klass);
    provider->probe = Probe;
    provider->start = Start;
    provider->stop = Stop;
    gst_device_provider_class_set_static_metadata(
        provider, "Oculix test cameras", "Video/Source", "Made-up cameras of any source", "Oculix");
}

static void oculix_fake_provider_init(OculixFakeProvider*)
{
}

GstDevice* MakeFakeCamera(const QString& name, FakeCameraProperties properties)
{
    Register();
    GstStructure* props = gst_structure_new_empty("oculix-fake-camera-properties");
    for (const auto& [field, value] : properties)
        gst_structure_set(props, field, G_TYPE_STRING, value, nullptr);
    GstCaps* caps = gst_caps_from_string(kSmallCameraCaps);
    auto* device
        = GST_DEVICE(g_object_new(oculix_fake_camera_get_type(), "display-name", name.toUtf8().constData(),
            "device-class", "Video/Source", "caps", caps, "properties", props, nullptr));
    gst_caps_unref(caps);
    gst_structure_free(props);
    return GST_DEVICE(gst_object_ref_sink(device));
}

void PlugFakeCamera(GstDevice* camera)
{
    {
        std::lock_guard lock(g_mutex);
        g_plugged.push_back(GST_DEVICE(gst_object_ref(camera)));
    }
    Announce(camera, true);
}

void UnplugFakeCamera(GstDevice* camera)
{
    {
        std::lock_guard lock(g_mutex);
        const auto it = std::find(g_plugged.begin(), g_plugged.end(), camera);
        if (it == g_plugged.end())
            return;
        g_plugged.erase(it);
    }
    Announce(camera, false);
    gst_object_unref(camera);
}

void UnplugAllFakeCameras()
{
    std::vector<GstDevice*> plugged;
    {
        std::lock_guard lock(g_mutex);
        plugged.swap(g_plugged);
    }
    for (GstDevice* d : plugged) {
        Announce(d, false);
        gst_object_unref(d);
    }
}
