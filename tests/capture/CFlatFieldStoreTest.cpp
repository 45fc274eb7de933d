#include "capture/CFlatFieldStore.h"

#include "CaptureTestSupport.h"
#include "TemporaryDataFolder.h"
#include "capture/CXCapGraph.h"
#include "capture/HResult.h"
#include "image/FlatField.h"
#include "platform/AppPaths.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QImage Blank(int width, int height)
{
    QImage blank(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            blank.setPixel(x, y, qRgb(150 + x % 40, 160 + y % 30, 170));
    return blank;
}

} // namespace

// A kept blank field comes back for its camera at its size, and for no other
// camera or size; the switch is off until turned on and stays as set.
TEST(CFlatFieldStore, KeptPerCameraAndSize)
{
    QTemporaryDir dir;
    const CFlatFieldStore store(dir.filePath("FlatFields"));
    const QString camera = QStringLiteral("Simulated Microscope Camera");
    EXPECT_EQ(store.Correction(camera, 64, 48), nullptr) << "nothing kept yet";
    EXPECT_FALSE(store.Enabled());

    QString error;
    ASSERT_TRUE(store.Save(camera, Blank(64, 48), &error)) << error.toStdString();
    ASSERT_TRUE(store.Save(QStringLiteral("USB Camera #1234"), Blank(32, 24), &error));
    const auto field = store.Correction(camera, 64, 48);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->Width(), 64u);
    EXPECT_EQ(field->Height(), 48u);
    EXPECT_EQ(store.Blank(camera, 64, 48).convertToFormat(QImage::Format_RGB888), Blank(64, 48))
        << "kept without loss";

    EXPECT_EQ(store.Correction(QStringLiteral("Simulated Microscope Camera 2"), 64, 48), nullptr);
    EXPECT_EQ(store.Correction(camera, 48, 64), nullptr);
    EXPECT_EQ(store.Correction(camera, 32, 24), nullptr) << "the other camera's size";
    EXPECT_NE(store.Correction(QStringLiteral("USB Camera #1234"), 32, 24), nullptr);
    // Another resolution of the same camera is kept beside it.
    ASSERT_TRUE(store.Save(camera, Blank(64, 32), &error));
    EXPECT_NE(store.Correction(camera, 64, 32), nullptr);
    EXPECT_NE(store.Correction(camera, 64, 48), nullptr);

    store.SetEnabled(true);
    EXPECT_TRUE(CFlatFieldStore(dir.filePath("FlatFields")).Enabled());
    store.SetEnabled(false);
    EXPECT_FALSE(CFlatFieldStore(dir.filePath("FlatFields")).Enabled());
}

// A file that is no picture, or a picture of another size under the name,
// gives no correction rather than a wrong one.
TEST(CFlatFieldStore, DamagedFilesGiveNone)
{
    QTemporaryDir dir;
    const CFlatFieldStore store(dir.filePath("FlatFields"));
    QString error;
    ASSERT_TRUE(store.Save(QStringLiteral("A"), Blank(20, 10), &error));
    ASSERT_TRUE(QFile::rename(
        store.FileFor(QStringLiteral("A"), 20, 10), store.FileFor(QStringLiteral("A"), 30, 10)));
    EXPECT_EQ(store.Correction(QStringLiteral("A"), 30, 10), nullptr);
    QFile junk(store.FileFor(QStringLiteral("B"), 20, 10));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a picture");
    junk.close();
    EXPECT_EQ(store.Correction(QStringLiteral("B"), 20, 10), nullptr);
}

namespace {

// The mean of one byte column range over the grabber's frame (bottom-up BGR).
double Mean(const std::vector<uchar>& bits, int width, int x0, int x1)
{
    double sum = 0;
    long n = 0;
    const int height = int(bits.size() / (std::size_t(width) * 3));
    for (int y = 0; y < height; ++y)
        for (int x = x0; x < x1; ++x)
            for (int c = 0; c < 3; ++c, ++n)
                sum += bits[(std::size_t(y) * width + x) * 3 + c];
    return n ? sum / n : 0;
}

} // namespace

// A live graph that starts takes the blank field kept for its camera and
// size while the switch is on, and frames come out corrected; another
// camera, another size or the switch off give none.
TEST(CFlatFieldStore, CameraStartingTakesItsKeptField)
{
    SimCameraScope cameras;
    MessageCollector messages;
    const TemporaryDataFolder data;

    AddCapsCamera(QStringLiteral("Small Camera"), kSmallCameraCaps);
    CXCapGraph graph;
    ASSERT_TRUE(StartPreview(graph, QStringLiteral("Small Camera"), true));
    const std::vector<uchar> plain = Snapshot(graph);
    graph.StopGraph();

    // Darker on the left: the correction brightens the left half 1.5 times
    // (as far as 255 lets it) and dims the right to 0.75.
    QImage blank(320, 240, QImage::Format_RGB888);
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x)
            blank.setPixel(x, y, x < 160 ? qRgb(100, 100, 100) : qRgb(200, 200, 200));
    const CFlatFieldStore store;
    QString error;
    ASSERT_TRUE(store.Save(graph.CameraKey(), blank.scaled(320, 200), &error)) << "another size";
    ASSERT_TRUE(store.Save(QStringLiteral("Other Camera"), blank, &error));
    EXPECT_FALSE(graph.ApplyStoredFlatField()) << "none for this camera at this size, switch off";
    store.SetEnabled(true);
    EXPECT_FALSE(graph.ApplyStoredFlatField()) << "none for this camera at this size";
    ASSERT_TRUE(store.Save(graph.CameraKey(), blank, &error));
    store.SetEnabled(false);
    EXPECT_FALSE(graph.ApplyStoredFlatField()) << "switch off";
    store.SetEnabled(true);

    graph.SetUseStoredFlatField(true);
    ASSERT_EQ(graph.RunGraph(), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    const std::vector<uchar> corrected = Snapshot(graph);
    ASSERT_EQ(corrected.size(), plain.size());
    // The bright scene stops at 255 on the left.
    EXPECT_GT(Mean(corrected, 320, 20, 140) / Mean(plain, 320, 20, 140), 1.25);
    EXPECT_NEAR(Mean(corrected, 320, 180, 300) / Mean(plain, 320, 180, 300), 0.75, 0.03);

    graph.StopGraph();
    store.SetEnabled(false);
    ASSERT_EQ(graph.RunGraph(), S_OK);
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(Snapshot(graph), plain) << "switched off: byte for byte as before";
    graph.StopGraph();
}
