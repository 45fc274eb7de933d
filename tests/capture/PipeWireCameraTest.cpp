#include "CaptureTestSupport.h"
#include "PipeWireRigSuite.h"
#include "capture/CDevicePropertiesDlg.h"
#include "capture/CDeviceWatcher.h"
#include "capture/CameraSources.h"

#include <QLabel>

#include <gtest/gtest.h>

// A camera a real PipeWire offers, in the program's capture graph and device
// watcher: the program's own route for preview, pull and return.

namespace {

const QString kName = QStringLiteral("Rig Live Scope");
const QString kCaps = QStringLiteral("video/x-raw,format=YUY2,width=320,height=240,framerate=30/1");

class PipeWireCamera : public PipeWireRigSuite<::testing::Test>
{
protected:
    SimCameraScope sim { false };
    MessageCollector messages;
};

} // namespace

// The node going away does not fail PipeWire's stream: the watcher's removal
// ends the preview with the pulled camera's message; the node back is
// reported, and the preview runs again.
TEST_F(PipeWireCamera, PreviewEndsWhenTheNodeGoesAndRunsAgainWhenItComesBack)
{
    const pid_t camera = s_rig->StartCamera(kName, kCaps);
    ASSERT_NE(camera, 0) << s_rig->Error().toStdString();
    CDeviceWatcher watcher;
    ASSERT_TRUE(watcher.IsWatching());
    QStringList added;
    QObject::connect(&watcher, &CDeviceWatcher::DeviceAdded, [&](const QString& n) { added << n; });
    ASSERT_TRUE(PumpUntil([&] { return added.contains(kName); }));

    CXCapGraph graph;
    QObject::connect(
        &watcher, &CDeviceWatcher::DeviceRemoved, [&](const QString& n) { graph.OnDeviceRemoved(n); });
    ASSERT_TRUE(StartPreview(graph, kName)) << Shown(messages);
    const CameraSource* source = CameraSourceOfElement(graph.DeviceElement());
    ASSERT_NE(source, nullptr);
    EXPECT_STREQ(source->name, "pipewire");
    EXPECT_EQ(VideoSize(graph), QSize(320, 240));
    {
        // PipeWire passes no controls to the stream: said so, not an empty page.
        CDevicePropertiesDlg properties(graph.DeviceElement(), nullptr);
        EXPECT_TRUE(properties.Controls().isEmpty());
        QStringList labels;
        for (const QLabel* label : properties.findChildren<QLabel*>())
            labels << label->text();
        EXPECT_TRUE(labels.contains(QStringLiteral("This camera offers no settings here.")))
            << labels.join('|').toStdString();
    }

    s_rig->StopCamera(camera);
    ASSERT_TRUE(PumpUntil([&] { return !messages.Texts().isEmpty(); }, 10000));
    EXPECT_EQ(messages.Texts(), QStringList { CXCapGraph::kCameraLostMessage });

    const pid_t back = s_rig->StartCamera(kName, kCaps);
    ASSERT_NE(back, 0) << s_rig->Error().toStdString();
    ASSERT_TRUE(PumpUntil([&] { return added.count(kName) == 2; }));
    messages.Clear();
    ASSERT_EQ(graph.Reconnect(), S_OK) << Shown(messages);
    EXPECT_TRUE(WaitFreshFrames(graph)) << Shown(messages);
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
    graph.StopGraph();
    graph.ReleaseAll();
    s_rig->StopCamera(back);
}
