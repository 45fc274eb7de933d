#include "capture/CameraSources.h"

#include "CaptureTestSupport.h"
#include "FakeCameraProvider.h"
#include "capture/CCameraControlStore.h"
#include "capture/CDeviceWatcher.h"

#include <gtest/gtest.h>

// How cameras of different sources reach the device list and the watcher,
// with made-up devices as V4L2's provider (or any other) reports them.

namespace {

QStringList Names(const std::vector<GstDevice*>& devices)
{
    QStringList out;
    for (GstDevice* d : devices)
        out << DeviceDisplayName(d);
    return out;
}

QStringList Listed(CXCapGraph& graph)
{
    graph.EnumDevices();
    QStringList out;
    for (int i = 0; i < graph.DeviceCount(); ++i)
        out << graph.DeviceNameAt(i);
    return out;
}

std::string Text(const QStringList& names)
{
    return names.join(QLatin1Char('|')).toStdString();
}

// What a watcher reported, in order.
struct WatcherLog
{
    explicit WatcherLog(CDeviceWatcher& watcher)
    {
        QObject::connect(&watcher, &CDeviceWatcher::DeviceAdded, [this](const QString& n) { added << n; });
        QObject::connect(
            &watcher, &CDeviceWatcher::DeviceRemoved, [this](const QString& n) { removed << n; });
    }
    QStringList added;
    QStringList removed;
};

// Owns the made-up cameras of a test and takes them out at its end.
class FakeCameras
{
public:
    ~FakeCameras()
    {
        UnplugAllFakeCameras();
        for (GstDevice* d : m_made)
            gst_object_unref(d);
    }
    GstDevice* Make(const QString& name, FakeCameraProperties properties)
    {
        m_made.push_back(MakeFakeCamera(name, properties));
        return m_made.back();
    }
    GstDevice* Plug(const QString& name, FakeCameraProperties properties)
    {
        GstDevice* d = Make(name, properties);
        PlugFakeCamera(d);
        return d;
    }

private:
    std::vector<GstDevice*> m_made;
};

class CameraSourcesTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (HasRealCamera())
            GTEST_SKIP() << "a camera is attached; the lists below assume made-up ones only";
    }
    SimCameraScope sim;
    MessageCollector messages;
    FakeCameras fakes;
};

// Two routes to the same cameras, told apart by "device.api" and matched by
// "device.path". The one listed first is the one not preferred.
bool IsShared(GstDevice* d)
{
    return DeviceProperty(d, "device.api") == QLatin1String("shared");
}
bool IsDirect(GstDevice* d)
{
    return DeviceProperty(d, "device.api") == QLatin1String("direct");
}
QString NodeOf(GstDevice* d)
{
    return DeviceProperty(d, "device.path");
}
GstElement* Element(GstDevice* d, const char* name)
{
    return gst_device_create_element(d, name);
}
const CameraSource kTwoRoutes[] = {
    { "shared", "Video/Source", IsShared, 0, NodeOf, 1, kSimCameraElement, Element, nullptr,
        CameraControlAccess::None },
    { "direct", "Video/Source", IsDirect, 0, NodeOf, 0, kSimCameraElement, Element, nullptr,
        CameraControlAccess::None },
};

} // namespace

// Only devices a source claims are cameras, listed and watched; V4L2's come
// before the simulated ones whatever order the monitor found them in, and a
// probe and the watcher's running monitor list them alike, oldest first.
TEST_F(CameraSourcesTest, ListsAndWatchesTheClaimedDevicesRealCamerasFirst)
{
    AddCapsCamera(QStringLiteral("Sim B"), kSmallCameraCaps);
    fakes.Plug(QStringLiteral("Fake V4L2 A"), { { "device.api", "v4l2" }, { "device.path", "/dev/fake0" } });
    fakes.Plug(QStringLiteral("Fake Other"), { { "device.api", "other" }, { "device.path", "/dev/fake9" } });
    fakes.Plug(QStringLiteral("Fake V4L2 B"), { { "device.api", "v4l2" }, { "device.path", "/dev/fake1" } });
    const QStringList expected { QStringLiteral("Fake V4L2 A"), QStringLiteral("Fake V4L2 B"),
        DemoCameraName(), QStringLiteral("Sim B") };

    CXCapGraph graph;
    EXPECT_EQ(Text(Listed(graph)), Text(expected));

    CDeviceWatcher watcher;
    ASSERT_TRUE(watcher.IsWatching());
    WatcherLog log(watcher);
    EXPECT_EQ(Text(Listed(graph)), Text(expected)) << "the program lists as oculix-cli does";

    // Present at the start, then plugged in and out.
    GstDevice* other = fakes.Plug(QStringLiteral("Fake Other 2"), { { "device.api", "other" } });
    GstDevice* c = fakes.Plug(QStringLiteral("Fake V4L2 C"), { { "device.api", "v4l2" } });
    ASSERT_TRUE(PumpUntil([&] { return log.added.contains(QStringLiteral("Fake V4L2 C")); }));
    UnplugFakeCamera(other);
    UnplugFakeCamera(c);
    ASSERT_TRUE(PumpUntil([&] { return !log.removed.isEmpty(); }));
    Pump(50);
    log.added.sort();
    EXPECT_EQ(Text(log.added),
        Text({ QStringLiteral("Fake V4L2 A"), QStringLiteral("Fake V4L2 B"), QStringLiteral("Fake V4L2 C"),
            QStringLiteral("Sim B"), DemoCameraName() }));
    EXPECT_EQ(Text(log.removed), Text({ QStringLiteral("Fake V4L2 C") }));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

// One camera that two sources offer is one entry, through the preferred
// source, in its place in the monitor's order; cameras only one source
// offers, or that cannot be matched, stay.
TEST_F(CameraSourcesTest, ACameraOfferedTwiceIsListedOnceThroughThePreferredSource)
{
    GstDevice* sharedA
        = fakes.Make(QStringLiteral("A shared"), { { "device.api", "shared" }, { "device.path", "/dev/a" } });
    GstDevice* directB
        = fakes.Make(QStringLiteral("B direct"), { { "device.api", "direct" }, { "device.path", "/dev/b" } });
    GstDevice* directA
        = fakes.Make(QStringLiteral("A direct"), { { "device.api", "direct" }, { "device.path", "/dev/a" } });
    GstDevice* sharedC
        = fakes.Make(QStringLiteral("C shared"), { { "device.api", "shared" }, { "device.path", "/dev/c" } });
    GstDevice* sharedB
        = fakes.Make(QStringLiteral("B shared"), { { "device.api", "shared" }, { "device.path", "/dev/b" } });
    GstDevice* nodeless = fakes.Make(QStringLiteral("Nodeless"), { { "device.api", "shared" } });
    GstDevice* unclaimed
        = fakes.Make(QStringLiteral("Unclaimed"), { { "device.api", "v4l2" }, { "device.path", "/dev/a" } });

    std::vector<GstDevice*> listed = ArrangeCaptureDevices(
        { sharedA, directB, directA, sharedC, sharedB, nodeless, unclaimed }, kTwoRoutes);
    EXPECT_EQ(Text(Names(listed)),
        Text({ QStringLiteral("B direct"), QStringLiteral("A direct"), QStringLiteral("C shared"),
            QStringLiteral("Nodeless") }));
    for (GstDevice* d : listed)
        gst_object_unref(d);

    // The watcher says nothing of a hidden device, judged by the devices
    // present when it reports.
    CDeviceWatcher watcher(nullptr, kTwoRoutes);
    ASSERT_TRUE(watcher.IsWatching());
    WatcherLog log(watcher);
    PlugFakeCamera(directA);
    PlugFakeCamera(sharedA);
    PlugFakeCamera(sharedC);
    ASSERT_TRUE(PumpUntil([&] { return log.added.size() == 2; }));
    UnplugFakeCamera(sharedA);
    UnplugFakeCamera(sharedC);
    ASSERT_TRUE(PumpUntil([&] { return log.removed.size() == 1; }));
    UnplugFakeCamera(directA);
    ASSERT_TRUE(PumpUntil([&] { return log.removed.size() == 2; }));
    PlugFakeCamera(sharedA);
    ASSERT_TRUE(PumpUntil([&] { return log.added.size() == 3; }));
    Pump(50);
    EXPECT_EQ(Text(log.added),
        Text({ QStringLiteral("A direct"), QStringLiteral("C shared"), QStringLiteral("A shared") }));
    EXPECT_EQ(Text(log.removed), Text({ QStringLiteral("C shared"), QStringLiteral("A direct") }));
}

// A V4L2 camera's stored controls are kept apart by its serial number.
TEST_F(CameraSourcesTest, StoredControlsAreKeyedByTheSourcesStableId)
{
    GstDevice* serial = fakes.Make(QStringLiteral("Cam"),
        { { "device.api", "v4l2" }, { "device.path", "/dev/fake0" }, { "device.serial", "SN1" } });
    GstDevice* none
        = fakes.Make(QStringLiteral("Cam"), { { "device.api", "v4l2" }, { "device.path", "/dev/fake0" } });
    EXPECT_EQ(CCameraControlStore::CameraKey(QStringLiteral("Cam"), serial), QStringLiteral("Cam #SN1"));
    EXPECT_EQ(CCameraControlStore::CameraKey(QStringLiteral("Cam"), none), QStringLiteral("Cam"));
}

// A V4L2 camera PipeWire offers too, with the properties both providers
// report for it, is one entry, taken directly; PipeWire's node is not taken
// for a V4L2 device for the "device.api" it copies. A camera only PipeWire
// offers (libcamera's) stays, its controls kept by its node's name.
TEST_F(CameraSourcesTest, AV4l2CameraPipeWireOffersTooIsListedOnceDirectly)
{
    GstDevice* throughPipeWire = fakes.Make(QStringLiteral("HD USB Camera (V4L2)"),
        { { "media.class", "Video/Source" }, { "device.api", "v4l2" }, { "api.v4l2.path", "/dev/video0" },
            { "object.path", "v4l2:/dev/video0" }, { "node.name", "v4l2_input.pci-0000_00_14.0-usb-0_2_1.0" },
            { "object.serial", "41" } });
    GstDevice* direct = fakes.Make(QStringLiteral("HD USB Camera"),
        { { "device.api", "v4l2" }, { "device.path", "/dev/video0" }, { "v4l2.device.driver", "uvcvideo" } });
    GstDevice* libcamera = fakes.Make(QStringLiteral("imx219"),
        { { "media.class", "Video/Source" }, { "device.api", "libcamera" },
            { "node.name", "libcamera_input.imx219" }, { "object.serial", "44" } });

    std::vector<GstDevice*> listed = ArrangeCaptureDevices({ throughPipeWire, direct, libcamera });
    EXPECT_EQ(Text(Names(listed)), Text({ QStringLiteral("HD USB Camera"), QStringLiteral("imx219") }));
    for (GstDevice* d : listed)
        gst_object_unref(d);
    ASSERT_NE(CameraSourceOf(throughPipeWire), nullptr);
    EXPECT_STREQ(CameraSourceOf(throughPipeWire)->name, "pipewire");
    EXPECT_STREQ(CameraSourceOf(throughPipeWire)->elementFactory, "pipewiresrc");
    EXPECT_EQ(CameraSourceOf(throughPipeWire)->controls, CameraControlAccess::None);
    EXPECT_STREQ(CameraSourceOf(direct)->name, "v4l2");
    EXPECT_EQ(CCameraControlStore::CameraKey(QStringLiteral("imx219"), libcamera),
        QStringLiteral("imx219 #libcamera_input.imx219"));
}
