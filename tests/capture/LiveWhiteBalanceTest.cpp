#include "capture/LiveWhiteBalance.h"

#include "CaptureTestSupport.h"
#include "FakeLiveDocument.h"
#include "TemporaryDataFolder.h"
#include "capture/CCameraControlStore.h"
#include "capture/CCameraControls.h"
#include "image/FCObjImage.h"
#include "image/WhiteBalance.h"
#include "platform/AppPaths.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The channel means of a region of the grabber's frame, picture coordinates.
ChannelMeans Means(CXCapGraph& graph, const QRect& region)
{
    const QSize size = ProcessedSize(graph);
    std::vector<uchar> rows = Snapshot(graph); // bottom-up, unpadded
    FCObjImage frame(size.width(), size.height(), 24);
    for (int y = 0; y < size.height(); ++y)
        std::memcpy(frame.GetMemStart() + std::size_t(y) * frame.GetPitch(),
            rows.data() + std::size_t(y) * size.width() * 3, std::size_t(size.width()) * 3);
    return RegionMeans(frame.GetMemStart(), unsigned(size.width()), unsigned(size.height()), region)
        .value_or(ChannelMeans {});
}

double Spread(const ChannelMeans& m)
{
    const double gray = (m.blue + m.green + m.red) / 3;
    return std::max({ std::abs(m.blue - gray), std::abs(m.green - gray), std::abs(m.red - gray) }) / gray;
}

} // namespace

// One rectangle over a tinted area of the live picture of a camera without
// white balance controls makes it gray within 1 % through the element's RGB
// offsets, which the document's switches show;
// doing it again keeps it there instead of adding up.
TEST(LiveWhiteBalance, RectangleTurnsGrayThroughTheElement)
{
    SimCameraScope cameras;
    MessageCollector messages;
    CXCapGraph graph;
    QTemporaryDir dir;
    FakeLiveDocument document(graph, dir.filePath("Setting.ini"));
    AddCapsCamera(QStringLiteral("Small Camera"), kSmallCameraCaps);
    ASSERT_TRUE(StartPreview(graph, QStringLiteral("Small Camera"), true));
    // A camera without a white balance of its own.
    g_object_set(graph.DeviceElement(), "balance-controls", FALSE, nullptr);
    // Background of the scene, a warm lamp's beige.
    const QRect drawn(8, 150, 60, 40);
    const QRect inside = drawn.adjusted(5, 5, -5, -5);
    const ChannelMeans before = Means(graph, inside);
    ASSERT_GT(Spread(before), 0.03) << "the scene must be tinted for the test to mean anything";

    ASSERT_EQ(BalanceLiveRegion(document, drawn), LiveWhiteBalance::Done);
    EXPECT_TRUE(document.m_switches.rgb);
    const ProcessSwitches first = document.m_switches;
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_LE(Spread(Means(graph, inside)), 0.01);
    int on = 0, r = -1, g = -1, b = -1;
    ASSERT_EQ(graph.GetRgbGain(&on, &r, &g, &b), S_OK);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(r, first.red);
    EXPECT_EQ(g, first.green);
    EXPECT_EQ(b, first.blue);

    ASSERT_EQ(BalanceLiveRegion(document, drawn), LiveWhiteBalance::Done);
    EXPECT_NEAR(document.m_switches.red, first.red, 1);
    EXPECT_NEAR(document.m_switches.green, first.green, 1);
    EXPECT_NEAR(document.m_switches.blue, first.blue, 1);

    EXPECT_EQ(BalanceLiveRegion(document, QRect(10, 10, 6, 6)), LiveWhiteBalance::TooSmall);
    EXPECT_EQ(BalanceLiveRegion(document, QRect(1000, 10, 50, 50)), LiveWhiteBalance::Outside);
}

// A camera with red and blue gains of its own gets them set instead: the
// element's offsets, on from an earlier balance, are taken out of the
// measurement and switched off, the picture turns gray within 1 % with one
// rectangle, and the gains are kept for the camera's next start.
TEST(LiveWhiteBalance, RectangleTurnsGrayThroughTheCamerasOwnGains)
{
    SimCameraScope cameras;
    MessageCollector messages;
    const TemporaryDataFolder data;
    CXCapGraph graph;
    FakeLiveDocument document(graph, data.FilePath("Setting.ini"));
    const QString name = QStringLiteral("Balanced Camera");
    AddCapsCamera(name, kSmallCameraCaps);
    ASSERT_TRUE(StartPreview(graph, name, true));
    document.m_switches.rgb = true;
    document.m_switches.red = 12;
    document.m_switches.blue = 3;
    graph.SetRgbGain(1, 12, 0, 3);
    ASSERT_TRUE(WaitFreshFrames(graph));
    const QRect drawn(8, 150, 60, 40);
    const QRect inside = drawn.adjusted(5, 5, -5, -5);
    ASSERT_GT(Spread(Means(graph, inside)), 0.03);

    ASSERT_EQ(BalanceLiveRegion(document, drawn), LiveWhiteBalance::Done);
    EXPECT_FALSE(document.m_switches.rgb);
    int on = 1, r = -1, g = -1, b = -1;
    ASSERT_EQ(graph.GetRgbGain(&on, &r, &g, &b), S_OK);
    EXPECT_EQ(on, 0);
    int red = 0, blue = 0;
    g_object_get(graph.DeviceElement(), "red-balance", &red, "blue-balance", &blue, nullptr);
    EXPECT_GT(blue, 100) << "the lamp is short of blue";
    ASSERT_TRUE(WaitFreshFrames(graph));
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_LE(Spread(Means(graph, inside)), 0.01);

    CCameraControls controls(graph.DeviceElement(), nullptr);
    const CCameraControlStore store;
    for (const CameraControl& c : controls.Query())
        if (c.property == "blue-balance") {
            int kept = 0;
            EXPECT_TRUE(store.Stored(CCameraControlStore::CameraKey(name, graph.BoundDevice()), c, &kept));
            EXPECT_EQ(kept, blue);
        }
}
