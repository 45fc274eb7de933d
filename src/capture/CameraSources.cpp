#include "capture/CameraSources.h"

#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <mutex>

namespace {

std::mutex g_monitorMutex;
GstDeviceMonitor* g_sharedMonitor = nullptr; // under g_monitorMutex

// ---------------------------------------------------------------- V4L2

// GStreamer's V4L2 provider marks its devices so. A PipeWire node of a V4L2
// camera copies "device.api" too, but carries its media class beside it.
bool IsV4l2Device(GstDevice* device)
{
    return DeviceProperty(device, "device.api") == QLatin1String("v4l2")
        && DeviceProperty(device, "media.class").isEmpty();
}

QString V4l2Node(GstDevice* device)
{
    return DeviceProperty(device, "device.path");
}

// The first of the fields the device's properties give.
QString FirstProperty(GstDevice* device, std::initializer_list<const char*> fields)
{
    for (const char* field : fields)
        if (QString value = DeviceProperty(device, field); !value.isEmpty())
            return value;
    return {};
}

QString V4l2Serial(GstDevice* device)
{
    if (QString serial = FirstProperty(device, { "device.serial", "serial" }); !serial.isEmpty())
        return serial;
    // A USB camera's serial number sits beside its interface in sysfs.
    const QString node = V4l2Node(device);
    if (node.isEmpty())
        return {};
    QFile file(QStringLiteral("/sys/class/video4linux/%1/device/../serial").arg(QFileInfo(node).fileName()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed();
}

// ---------------------------------------------------------------- PipeWire

// A video source node, as GStreamer's PipeWire provider lists it: a camera
// of PipeWire's own (libcamera's, a sandbox portal's, a program's) or a V4L2
// camera PipeWire offers as well.
bool IsPipeWireCamera(GstDevice* device)
{
    return DeviceProperty(device, "media.class") == QLatin1String("Video/Source");
}

// The V4L2 node behind it, named as V4L2's "device.path" names it.
QString PipeWireV4l2Node(GstDevice* device)
{
    return DeviceProperty(device, "api.v4l2.path");
}

// The node's serial number changes with every start of the daemon; its name
// stays ("v4l2_input.pci-..."), as does a device's serial where it has one.
QString PipeWireStableId(GstDevice* device)
{
    return FirstProperty(device, { "device.serial", "node.name" });
}

// The graph keeps the last frame past the stream (for a picture, a paused
// preview): a buffer of the node's own few held so is one the camera cannot
// fill while it is held. Copied, each goes straight back.
GstElement* PipeWireElement(GstDevice* device, const char* name)
{
    GstElement* element = gst_device_create_element(device, name);
    if (element)
        g_object_set(element, "always-copy", TRUE, nullptr);
    return element;
}

// ---------------------------------------------------------------- all

// The device's own provider knows the element and its properties (v4l2src
// with the device node; the simulated camera with its name and formats).
GstElement* ProviderElement(GstDevice* device, const char* name)
{
    return gst_device_create_element(device, name);
}

// A V4L2 camera PipeWire offers too is taken directly (preference 0 over 1):
// its controls are reached only through the device node, it offers every
// format the driver has, and PipeWire releases the device while no stream
// runs, so the direct open succeeds. Where the program sees no V4L2 node (a
// sandbox) or the camera has none (libcamera's), PipeWire's entry is the one.
const CameraSource kCameraSources[] = {
    {
        .name = "v4l2",
        .deviceClass = "Video/Source",
        .claims = IsV4l2Device,
        .listGroup = 0,
        .cameraNode = V4l2Node,
        .preference = 0,
        .elementFactory = "v4l2src",
        .makeElement = ProviderElement,
        .stableId = V4l2Serial,
        .controls = CameraControlAccess::DeviceNode,
    },
    {
        .name = "pipewire",
        .deviceClass = "Video/Source",
        .claims = IsPipeWireCamera,
        .listGroup = 0,
        .cameraNode = PipeWireV4l2Node,
        .preference = 1,
        .elementFactory = "pipewiresrc",
        .makeElement = PipeWireElement,
        .stableId = PipeWireStableId,
        // PipeWire 0.3 passes no camera controls to a GStreamer stream.
        .controls = CameraControlAccess::None,
    },
    {
        .name = "simulated",
        .deviceClass = "Video/Source",
        .claims = IsSimDevice,
        .listGroup = 1,
        .cameraNode = nullptr,
        .preference = 2,
        .elementFactory = kSimCameraElement,
        .makeElement = ProviderElement,
        .stableId = nullptr,
        .controls = CameraControlAccess::ElementProperties,
    },
};

QString CameraNodeOf(const CameraSource& source, GstDevice* device)
{
    return source.cameraNode ? source.cameraNode(device) : QString();
}

} // namespace

CameraSourceTable CameraSources()
{
    return kCameraSources;
}

const CameraSource* CameraSourceOf(GstDevice* device, CameraSourceTable sources)
{
    if (!device)
        return nullptr;
    for (const CameraSource& s : sources)
        if (s.claims(device))
            return &s;
    return nullptr;
}

const CameraSource* CameraSourceOfElement(GstElement* element, CameraSourceTable sources)
{
    GstElementFactory* factory = element ? gst_element_get_factory(element) : nullptr;
    if (!factory)
        return nullptr;
    for (const CameraSource& s : sources)
        if (std::strcmp(GST_OBJECT_NAME(factory), s.elementFactory) == 0)
            return &s;
    return nullptr;
}

QString DeviceDisplayName(GstDevice* device)
{
    gchar* name = device ? gst_device_get_display_name(device) : nullptr;
    QString out = QString::fromUtf8(name);
    g_free(name);
    return out;
}

QString DeviceProperty(GstDevice* device, const char* field)
{
    GstStructure* props = device ? gst_device_get_properties(device) : nullptr;
    if (!props)
        return {};
    QString out = QString::fromUtf8(gst_structure_get_string(props, field));
    gst_structure_free(props);
    return out;
}

GstDeviceMonitor* NewCameraMonitor(CameraSourceTable sources)
{
    GstDeviceMonitor* monitor = gst_device_monitor_new();
    for (auto s = sources.begin(); s != sources.end(); ++s)
        if (std::none_of(sources.begin(), s, [&](const CameraSource& earlier) {
                return std::strcmp(earlier.deviceClass, s->deviceClass) == 0;
            }))
            gst_device_monitor_add_filter(monitor, s->deviceClass, nullptr);
    gst_device_monitor_set_show_all_devices(monitor, TRUE);
    return monitor;
}

bool IsHiddenDuplicate(GstDevice* device, const std::vector<GstDevice*>& present, CameraSourceTable sources)
{
    const CameraSource* mine = CameraSourceOf(device, sources);
    const QString node = mine ? CameraNodeOf(*mine, device) : QString();
    if (node.isEmpty())
        return false;
    return std::any_of(present.begin(), present.end(), [&](GstDevice* other) {
        const CameraSource* theirs = other != device ? CameraSourceOf(other, sources) : nullptr;
        return theirs && theirs->preference < mine->preference && CameraNodeOf(*theirs, other) == node;
    });
}

std::vector<GstDevice*> ArrangeCaptureDevices(const std::vector<GstDevice*>& found, CameraSourceTable sources)
{
    std::vector<GstDevice*> claimed;
    std::copy_if(found.begin(), found.end(), std::back_inserter(claimed),
        [&](GstDevice* d) { return CameraSourceOf(d, sources) != nullptr; });
    std::vector<GstDevice*> out;
    for (GstDevice* d : claimed)
        if (!IsHiddenDuplicate(d, claimed, sources))
            out.push_back(GST_DEVICE(gst_object_ref(d)));
    std::stable_sort(out.begin(), out.end(), [&](GstDevice* a, GstDevice* b) {
        return CameraSourceOf(a, sources)->listGroup < CameraSourceOf(b, sources)->listGroup;
    });
    return out;
}

std::vector<GstDevice*> ListCaptureDevices(bool* monitorFailed)
{
    *monitorFailed = false;
    GstDeviceMonitor* monitor = nullptr;
    {
        std::lock_guard lock(g_monitorMutex);
        if (g_sharedMonitor)
            monitor = GST_DEVICE_MONITOR(gst_object_ref(g_sharedMonitor));
    }
    if (!monitor && EnsureGStreamer())
        monitor = NewCameraMonitor();
    if (!monitor) {
        *monitorFailed = true;
        return {};
    }
    // A running monitor gives each provider's devices oldest first, as a probe
    // gives them in the order it found them, so the program and oculix-cli
    // list the cameras alike and a camera plugged in later never becomes the
    // default in place of one already there.
    GList* devices = gst_device_monitor_get_devices(monitor);
    std::vector<GstDevice*> found;
    for (GList* l = devices; l; l = l->next)
        found.push_back(GST_DEVICE(l->data));
    std::vector<GstDevice*> out = ArrangeCaptureDevices(found);
    for (GstDevice* d : out)
        qCDebug(lcCapture) << "camera" << DeviceDisplayName(d) << "through" << CameraSourceOf(d)->name;
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    return out;
}

void ShareDeviceMonitor(GstDeviceMonitor* monitor)
{
    std::lock_guard lock(g_monitorMutex);
    g_sharedMonitor = monitor;
}
