#include "CaptureTestSupport.h"
#include "capture/CChooseDeviceDlg.h"
#include "capture/CDevicePropertiesDlg.h"
#include "capture/CFormatDlg.h"
#include "capture/CProcessPropertiesDlg.h"
#include "capture/CVideoWidget.h"
#include "capture/CameraModels.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QSlider>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

void AddCamera(const QString& name, int w, int h)
{
    GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "YUY2", "width", G_TYPE_INT,
        w, "height", G_TYPE_INT, h, "framerate", GST_TYPE_FRACTION, 30, 1, nullptr);
    AddSimDevice(name, caps);
    gst_caps_unref(caps);
}

// Runs fn on the next modal dialog of type T once it is open.
template <typename T> void WhenOpen(std::function<void(T*)> fn)
{
    QTimer::singleShot(0, [fn] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<T*>(w); dialog && dialog->isVisible()) {
                fn(dialog);
                return;
            }
        ADD_FAILURE() << "the dialog did not open";
    });
}

class Devices : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (HasRealCamera())
            GTEST_SKIP() << "a camera is attached; the lists below assume simulated ones only";
        SetCameraModelSizes(CameraModelSizes());
        SetDeviceChosenByHand(false);
        SetMjpgCamera(false);
    }
    void TearDown() override { SetMjpgCamera(false); }
    SimCameraScope cameras;
    MessageCollector messages;
    CXCapGraph graph;
};

} // namespace

TEST_F(Devices, ListedInOrderWithDuplicatesAndChosenByExactName)
{
    AddCamera(QStringLiteral("Cam A"), 320, 240);
    AddCamera(QStringLiteral("Cam B"), 160, 120);
    AddCamera(QStringLiteral("Cam A"), 640, 480);
    graph.EnumDevices();
    ASSERT_EQ(graph.DeviceCount(), 4);
    EXPECT_EQ(graph.DeviceNameAt(0), DemoCameraName());
    EXPECT_EQ(graph.DeviceNameAt(1), QStringLiteral("Cam A"));
    EXPECT_EQ(graph.DeviceNameAt(2), QStringLiteral("Cam B"));
    EXPECT_EQ(graph.DeviceNameAt(3), QStringLiteral("Cam A"));
    EXPECT_EQ(graph.DeviceNameAt(4), QString());

    // By name: the first of the two.
    GstElement* filter = nullptr;
    ASSERT_EQ(graph.GetSpecCapDevice(&filter, QStringLiteral("Cam A")), S_OK);
    EXPECT_EQ(filter, graph.DeviceElement());
    graph.EnumFormats();
    ASSERT_EQ(graph.Formats().size(), 1u);
    EXPECT_EQ(graph.Formats()[0].width, 320u);
    // By index: either.
    ASSERT_EQ(graph.BindDeviceByIndex(3), S_OK);
    graph.EnumFormats();
    EXPECT_EQ(graph.Formats()[0].width, 640u);
    EXPECT_EQ(graph.BindDeviceByIndex(4), E_INVALIDARG);

    // The name must match exactly; otherwise the first device is taken.
    ASSERT_EQ(graph.GetSpecCapDevice(&filter, QStringLiteral("cam a")), S_OK);
    EXPECT_EQ(graph.DeviceName(), DemoCameraName());
    // A camera that is gone likewise.
    RemoveSimDevice(QStringLiteral("Cam B"));
    ASSERT_EQ(graph.GetSpecCapDevice(&filter, QStringLiteral("Cam B")), S_OK);
    EXPECT_EQ(graph.DeviceName(), DemoCameraName());

    graph.SetDeviceName(QStringLiteral("Cam A"));
    graph.EnumDevices();
    graph.SelectCurrentDevice();
    EXPECT_EQ(graph.SelectedDevice(), 1);
    EXPECT_TRUE(messages.Texts().isEmpty());
}

TEST_F(Devices, KnownModelsStartAtTheirSizesFromTheSettings)
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(QStringLiteral("Setting.ini"));
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Camera300]\r\nWidth=800\r\nHeight=600\r\n[Camera130H]\r\nHeight=960\r\n");
    file.close();
    LoadCameraModelSizes(ini);

    const std::pair<const char*, QSize> cases[] = {
        { "KMZ-I30 USB2.0 Camera", { 800, 600 } },
        { "KMZ-M30 USB2.0 Camera", { 800, 600 } },
        { "KMZ-I50 USB2.0 Camera", { 640, 480 } },
        { "KMZ-M100 USB2.0 Camera", { 640, 480 } },
        { "KMZ-N130 USB2.0 Camera", { 1280, 960 } },
        { "KMZ-I30 USB2.0 Camera ", { 1280, 1024 } },
        { "Any Camera", { 1280, 1024 } },
    };
    for (const auto& [name, size] : cases) {
        AddCamera(QString::fromUtf8(name), 320, 240);
        GstElement* filter = nullptr;
        ASSERT_EQ(graph.GetSpecCapDevice(&filter, QString::fromUtf8(name)), S_OK);
        EXPECT_EQ(VideoSize(graph), size) << name;
    }

    // The start-up scan keeps the first known model attached. None of these
    // streams JPEG (the demo camera does, but is no known model): no MJPG.
    AttachedCameraModel found = ScanAttachedCameras();
    EXPECT_EQ(found.m_model, 1);
    EXPECT_FALSE(found.m_bMjpg);
    EXPECT_FALSE(IsMjpgCamera());
    // A known model offering JPEG frames sets the flag wherever it is listed,
    // and it stays set once that camera is gone.
    AddCapsCamera(QStringLiteral("KMZ-M90 USB2.0 Camera"),
        "image/jpeg, width=(int)640, height=(int)480, framerate=(fraction)30/1");
    found = ScanAttachedCameras();
    EXPECT_EQ(found.m_model, 1);
    EXPECT_TRUE(IsMjpgCamera());
    RemoveAllSimDevices();
    found = ScanAttachedCameras();
    EXPECT_EQ(found.m_model, -1);
    EXPECT_EQ(GetAttachedCameraModel().m_model, -1);
    EXPECT_TRUE(IsMjpgCamera());

    // The odd CCD camera gets its size only when chosen by name.
    RemoveAllSimDevices();
    EnableDemoCamera(false);
    const QString ccd = QStringLiteral("Vendor USB2_CCD_5.01M_YF Camera");
    AddCamera(ccd, 320, 240);
    GstElement* filter = nullptr;
    ASSERT_EQ(graph.GetSpecCapDevice(&filter, ccd), S_OK);
    EXPECT_EQ(VideoSize(graph), QSize(868, 650));
    ASSERT_EQ(graph.GetDefaultCapDevice(&filter), S_OK);
    EXPECT_EQ(graph.DeviceName(), ccd);
    EXPECT_EQ(VideoSize(graph), QSize(1280, 1024));
}

TEST_F(Devices, KeepsAtMost256AndTheDialogShows200)
{
    for (int i = 0; i < 299; ++i)
        AddCamera(QStringLiteral("Camera %1").arg(i), 160, 120);
    graph.EnumDevices();
    EXPECT_EQ(graph.DeviceCount(), 256);
    EXPECT_EQ(graph.DeviceNameAt(255), QStringLiteral("Camera 254"));
    CChooseDeviceDlg dialog(&graph, nullptr);
    EXPECT_EQ(dialog.DeviceBox()->count(), 200);
}

TEST_F(Devices, ChoosingAnotherCameraRebuildsTheLivePreview)
{
    AddCamera(QStringLiteral("Small Camera"), 320, 240);
    QWidget view;
    ASSERT_TRUE(StartPreview(graph, DemoCameraName()));
    graph.SetParentWnd(&view, 0, 0, 1280, 1024);
    // A format chosen in the demo camera's longer list.
    graph.SetSelectedFormat(3);

    int calls = 0;
    QSize newSize;
    auto change = [&](int index, const QString& name) {
        ++calls;
        EXPECT_EQ(name, QStringLiteral("Small Camera"));
        unsigned w = 0, h = 0;
        EXPECT_EQ(graph.ChangeDevice(index, &w, &h), S_OK);
        newSize = QSize(int(w), int(h));
    };
    {
        CChooseDeviceDlg dialog(&graph, change);
        EXPECT_EQ(dialog.DeviceBox()->currentText(), DemoCameraName());
        dialog.accept(); // unchanged: nothing happens
    }
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(IsDeviceChosenByHand());
    {
        CChooseDeviceDlg dialog(&graph, change);
        dialog.DeviceBox()->setCurrentIndex(1);
        dialog.accept();
    }
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(IsDeviceChosenByHand());
    EXPECT_EQ(graph.SelectedDevice(), 1);
    EXPECT_EQ(graph.DeviceName(), QStringLiteral("Small Camera"));
    // The old size is asked for; the small camera offers neither it nor the
    // fallback, so its own size comes back.
    EXPECT_EQ(newSize, QSize(320, 240));
    ASSERT_TRUE(WaitFreshFrames(graph));
    EXPECT_EQ(ProcessedSize(graph), QSize(320, 240));
    EXPECT_EQ(graph.VideoWidget()->parentWidget(), &view);
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(Devices, DialogsSetTheFormatTheCameraAndTheProcessing)
{
    ASSERT_TRUE(BindCamera(graph, DemoCameraName()));
    WhenOpen<CFormatDlg>([](CFormatDlg* d) {
        d->SetSelectedIndex(3);
        d->accept();
    });
    ASSERT_EQ(graph.ShowFormatDialog(DemoCameraName(), nullptr), S_OK);
    EXPECT_EQ(graph.SelectedFormat(), 3);
    EXPECT_EQ(VideoSize(graph), QSize(1280, 1024));
    EXPECT_EQ(CFormatDlg::Describe(graph.Formats()[3]), QStringLiteral("1280 x 1024   MJPG   30 fps"));

    // Another camera's name binds that camera first; Cancel keeps its format.
    AddCamera(QStringLiteral("Other"), 352, 288);
    WhenOpen<CFormatDlg>([](CFormatDlg* d) { d->reject(); });
    ASSERT_EQ(graph.ShowFormatDialog(QStringLiteral("Other"), nullptr), S_OK);
    EXPECT_EQ(graph.DeviceName(), QStringLiteral("Other"));
    EXPECT_EQ(VideoSize(graph), QSize(352, 288));

    ASSERT_TRUE(BindCamera(graph, DemoCameraName()));
    graph.BuildPreviewGraph();
    // The camera's controls by their place in the list, clamped to their range.
    CDevicePropertiesDlg camera(graph.DeviceElement(), nullptr);
    camera.Apply(0, 40);
    camera.Apply(1, 500);
    camera.Apply(3, 0);
    int brightness = 0, contrast = 0;
    gboolean vignetting = TRUE;
    g_object_get(graph.DeviceElement(), "brightness", &brightness, "contrast", &contrast, "vignetting",
        &vignetting, nullptr);
    EXPECT_EQ(brightness, 40);
    EXPECT_EQ(contrast, 200);
    EXPECT_FALSE(vignetting);
    EXPECT_EQ(camera.Controls()[0].value, 40);
    camera.RestoreDefaults();
    g_object_get(graph.DeviceElement(), "brightness", &brightness, nullptr);
    EXPECT_EQ(brightness, 0);

    // The processing dialog shows and sets the element's state.
    graph.SetBinary(1, 99);
    graph.SetFlipVertical(1);
    WhenOpen<CProcessPropertiesDlg>([](CProcessPropertiesDlg* d) {
        EXPECT_TRUE(d->EnableBox()->isChecked());
        EXPECT_TRUE(d->FlipBox()->isChecked());
        EXPECT_TRUE(d->BinaryBox()->isChecked());
        EXPECT_EQ(d->LevelSlider()->value(), 99);
        EXPECT_FALSE(d->GrayBox()->isChecked());
        d->GrayBox()->setChecked(true);
        d->LevelSlider()->setValue(120);
        d->RgbBox()->setChecked(true);
        d->GainSlider(2)->setValue(30);
        d->FlipBox()->setChecked(false);
        d->reject();
    });
    ASSERT_EQ(graph.ShowProcessProperties(), S_OK);
    int on = 0, level = 0, r = -1, g = -1, b = -1;
    graph.GetGray(&on);
    EXPECT_EQ(on, 1);
    graph.GetBinary(&on, &level);
    EXPECT_EQ(level, 120);
    graph.GetFlipVertical(&on);
    EXPECT_EQ(on, 0);
    graph.GetRgbGain(&on, &r, &g, &b);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(b, 30);
    EXPECT_EQ(r, 0);

    WhenOpen<CDevicePropertiesDlg>([](CDevicePropertiesDlg* d) {
        EXPECT_EQ(d->Controls().size(), 8);
        d->Apply(2, 150);
        d->reject();
    });
    ASSERT_EQ(graph.ShowDeviceProperties(), S_OK);
    int saturation = 0;
    g_object_get(graph.DeviceElement(), "saturation", &saturation, nullptr);
    EXPECT_EQ(saturation, 150);
}
