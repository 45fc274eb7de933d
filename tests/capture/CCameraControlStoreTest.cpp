#include "capture/CCameraControlStore.h"

#include "CaptureTestSupport.h"
#include "TemporaryDataFolder.h"
#include "TestFiles.h"
#include "capture/CDevicePropertiesDlg.h"
#include "platform/AppPaths.h"
#include "platform/PrivateProfile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QString kStageCamera = QStringLiteral("Stage Camera");

int Property(CXCapGraph& graph, const char* name)
{
    int value = 0;
    g_object_get(graph.DeviceElement(), name, &value, nullptr);
    return value;
}

bool Switch(CXCapGraph& graph, const char* name)
{
    gboolean on = FALSE;
    g_object_get(graph.DeviceElement(), name, &on, nullptr);
    return on;
}

int Row(const CDevicePropertiesDlg& d, const QString& name)
{
    for (int i = 0; i < d.Controls().size(); ++i)
        if (d.Controls()[i].name == name)
            return i;
    return -1;
}

class CameraControlStore : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(data.IsValid());
        AddCapsCamera(kStageCamera, kSmallCameraCaps);
        AddCapsCamera(QStringLiteral("Other Camera"), kSmallCameraCaps);
    }

    QString File() const { return data.FilePath(QStringLiteral("CameraControls.ini")); }

    SimCameraScope cameras;
    MessageCollector messages;
    TemporaryDataFolder data;
};

} // namespace

// What the user sets in the properties dialog is kept under the camera's
// name and set again when that camera starts the next time; another camera
// keeps its own values.
TEST_F(CameraControlStore, PropertiesSetOnceComeBackWhenTheCameraStartsAgain)
{
    int defaultBrightness = 0;
    {
        CXCapGraph graph;
        ASSERT_TRUE(StartPreview(graph, kStageCamera));
        defaultBrightness = Property(graph, "brightness");
        CDevicePropertiesDlg d(
            graph.DeviceElement(), nullptr, CCameraControlStore::CameraKey(kStageCamera, nullptr));
        const int brightness = Row(d, QStringLiteral("Brightness"));
        const int noise = Row(d, QStringLiteral("Noise"));
        ASSERT_GE(brightness, 0);
        ASSERT_GE(noise, 0);
        d.Apply(brightness, defaultBrightness + 20);
        d.Apply(noise, 0);
        EXPECT_EQ(Property(graph, "brightness"), defaultBrightness + 20);
        graph.StopGraph();
        graph.ReleaseAll();
    }
    EXPECT_EQ(GetPrivateProfileString(kStageCamera, QStringLiteral("Brightness"), {}, File()),
        QString::number(defaultBrightness + 20));

    CXCapGraph again;
    ASSERT_TRUE(StartPreview(again, kStageCamera));
    EXPECT_EQ(Property(again, "brightness"), defaultBrightness + 20);
    EXPECT_FALSE(Switch(again, "noise"));
    again.StopGraph();
    again.ReleaseAll();

    CXCapGraph other;
    ASSERT_TRUE(StartPreview(other, QStringLiteral("Other Camera")));
    EXPECT_EQ(Property(other, "brightness"), defaultBrightness);
    EXPECT_TRUE(Switch(other, "noise"));
    other.StopGraph();
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

// A hand-edited file: a value that is no number is left alone, one beyond
// the control's range is brought into it, names with brackets stay apart.
TEST_F(CameraControlStore, OddStoredValuesAreClampedOrIgnored)
{
    ASSERT_TRUE(WriteAll(File(), "[Stage Camera]\nBrightness=99999\nContrast=abc\n"));
    CXCapGraph graph;
    ASSERT_TRUE(BindCamera(graph, kStageCamera));
    graph.BuildPreviewGraph();
    const int contrast = Property(graph, "contrast");
    ASSERT_EQ(graph.RunGraph(), S_OK);
    CCameraControls controls(graph.DeviceElement(), nullptr);
    int maximum = 0;
    for (const CameraControl& c : controls.Query())
        if (c.name == QStringLiteral("Brightness"))
            maximum = c.maximum;
    EXPECT_EQ(Property(graph, "brightness"), maximum);
    EXPECT_EQ(Property(graph, "contrast"), contrast);
    graph.StopGraph();
    EXPECT_EQ(CCameraControlStore::CameraKey(QStringLiteral("Cam [2]"), nullptr), QStringLiteral("Cam (2)"));
}
