#include "MeasureFrameFixture.h"
#include "TestFiles.h"
#include "WidgetLayout.h"
#include "app/CFolderEdit.h"
#include "app/CResolutionDlg.h"
#include "app/CSaveAsDlg.h"
#include "app/CSaveOptionDlg.h"
#include "app/CommandTable.h"
#include "capture/GrabPicture.h"
#include "capture/SimCameraSource.h"
#include "image/FCObjImage.h"
#include "image/PictureXmp.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"
#include "platform/PrivateProfile.h"

#include <QBuffer>
#include <QCheckBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>
#include <QUrl>

#include <gst/gst.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <sys/resource.h>
#include <thread>

namespace {

QString WritePicture(const QString& path, int width = 320, int height = 240)
{
    // Noise, so that no file type squeezes it into a few bytes.
    std::minstd_rand noise(7);
    FCObjImage picture(width, height, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.SetPixelColor(x, y, qRgb(int(noise() % 256), int(noise() % 256), int(noise() % 256)));
    EXPECT_TRUE(picture.Save(path));
    return path;
}

QByteArray Csv(CMeasureDoc& doc)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    doc.GetElemMgr().WriteCsv(buffer);
    return buffer.data();
}

void Write(const QString& file, const char* section, const char* key, const QString& value)
{
    ASSERT_TRUE(WritePrivateProfileString(QLatin1String(section), QLatin1String(key), value, file));
}

qint64 SizeOfFile(const QString& path)
{
    return QFileInfo(path).size();
}

QSize SizeOf(const QString& path)
{
    FCObjImage picture;
    return picture.Load(path) ? QSize(picture.Width(), picture.Height()) : QSize();
}

// Records what the desktop is asked to open.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

// A file-size limit stands in for a full disk while it lives.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_previous = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = m_saved;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        std::signal(SIGXFSZ, m_previous);
    }

private:
    rlimit m_saved {};
    void (*m_previous)(int) = nullptr;
};

} // namespace

class SavePictureTest : public MeasureFrameTest
{
protected:
    void TearDown() override
    {
        MeasureFrameTest::TearDown();
        ClearSimCameraFaults();
    }

    // The program with one picture document open and active.
    CMeasureDoc* OpenPicture()
    {
        Start(false, { WritePicture(home.filePath("source.png")) });
        CMeasureDoc* doc = ActiveDoc();
        EXPECT_NE(doc, nullptr);
        return doc;
    }

    // The live video's current frame as the screen shows it (null before the first).
    static QImage CurrentFrame(CMeasureDoc& live)
    {
        FCObjImage picture;
        return GrabPicture(live.GetGraph(), picture)
            ? picture.ToQImage().convertToFormat(QImage::Format_RGB32)
            : QImage();
    }

    // Turns the camera's drift and noise off and waits until its frames are
    // all alike, so that saves taken at different moments show one frame.
    static QImage SteadyFrame(CMeasureDoc& live)
    {
        g_object_set(live.GetGraph().DeviceElement(), "drift", FALSE, "noise", FALSE, nullptr);
        QImage steady;
        const bool settled = WaitFor(
            [&] {
                steady = CurrentFrame(live);
                QTest::qWait(150);
                return !steady.isNull() && CurrentFrame(live) == steady;
            },
            10000);
        return settled ? steady : QImage();
    }
};

// Ctrl+S names the file from the "Save" section: folder with or without a
// trailing "/", the picture folder when it is empty, "Suffix" from 0 and one
// up after every save, success or not, and the success message only after one.
TEST_F(SavePictureTest, QuickSaveNamesNumbersAndReportsEverySave)
{
    CMeasureDoc* doc = OpenPicture();
    ASSERT_NE(doc, nullptr);
    const QString ini = SettingsFile();
    messages.clear();

    // No "FilePath", no "Suffix": the picture folder and 0.
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_SAVE));
    const QString first = home.filePath("data/Images/0.jpg");
    EXPECT_EQ(messages, QStringList { "Picture has successfully saved to  " + first });
    EXPECT_EQ(SizeOf(first), QSize(320, 240));
    EXPECT_EQ(GetPrivateProfileString("Save", "Suffix", "", ini), "1");

    const QString pics = home.filePath("pics");
    Write(ini, "Save", "Prefix", "slide");
    Write(ini, "Save", "bBmp", "1");
    for (const QString& folder : { pics, pics + "/" }) {
        messages.clear();
        Write(ini, "Save", "FilePath", folder);
        Write(ini, "Save", "Suffix", "7");
        EXPECT_EQ(doc->SilentQuickSave(), pics + "/slide7.bmp");
        EXPECT_TRUE(messages.isEmpty()) << "the silent save tells nothing";
        EXPECT_EQ(SizeOf(pics + "/slide7.bmp"), QSize(320, 240));
        EXPECT_EQ(GetPrivateProfileString("Save", "Suffix", "", ini), "8");
    }

    // A folder that cannot be made: the failure, no claim of success, and
    // the number still moves on.
    ASSERT_TRUE(WriteAll(home.filePath("plain-file"), "x"));
    Write(ini, "Save", "FilePath", home.filePath("plain-file/sub"));
    messages.clear();
    doc->QuickSave();
    EXPECT_EQ(messages, QStringList { "Save image failed." });
    EXPECT_EQ(GetPrivateProfileString("Save", "Suffix", "", ini), "9");
}

// Shapes, the ruler and the title go into the file only as chosen; the
// document keeps its clean picture.
TEST_F(SavePictureTest, BurnInFollowsTheChoicesAndLeavesTheDocumentClean)
{
    CMeasureDoc* doc = OpenPicture();
    ASSERT_NE(doc, nullptr);
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(20, 100), QPoint(300, 100));
    const QRgb clean = doc->GetPicture()->GetPixelColor(150, 100);

    const QString plain = home.filePath("plain.bmp");
    const QString measured = home.filePath("measured.bmp");
    ASSERT_TRUE(doc->SaveImage(plain, {}, {}));
    ASSERT_TRUE(doc->SaveImage(measured, { true, false, false, false, false }, {}));
    FCObjImage a, b;
    ASSERT_TRUE(a.Load(plain) && b.Load(measured));
    EXPECT_EQ(a.GetPixelColor(150, 100), clean);
    EXPECT_NE(b.GetPixelColor(150, 100), clean);
    EXPECT_EQ(doc->GetPicture()->GetPixelColor(150, 100), clean);
    EXPECT_TRUE(messages.isEmpty());

    // The summary goes into ".jpg" files only, not ".JPG" ones.
    ASSERT_TRUE(doc->SaveImage(home.filePath("lower.jpg"), {}, { "T", "", "", "" }));
    ASSERT_TRUE(doc->SaveImage(home.filePath("upper.JPG"), {}, { "T", "", "", "" }));
    EXPECT_EQ(ReadAll(home.filePath("lower.jpg")).mid(24, 6), QByteArray("Exif\0\0", 6));
    EXPECT_FALSE(ReadAll(home.filePath("upper.JPG")).contains(QByteArray("Exif\0\0", 6)));
}

// 5,500 shapes, far more than one JPEG segment holds, come back whole from a
// JPEG and a PNG. A save that cannot keep them says so and claims no success,
// and a picture's invalid calibration is said and not used.
TEST_F(SavePictureTest, ManyShapesSurviveAndWhatCannotBeKeptIsSaid)
{
    CMeasureDoc* doc = OpenPicture();
    ASSERT_NE(doc, nullptr);
    QByteArray shapes = "[";
    for (int i = 0; i < 5000; ++i)
        shapes
            += "[11," + QByteArray::number(i % 300 + 10) + "," + QByteArray::number(i / 300 * 12 + 10) + "],";
    for (int i = 0; i < 500; ++i)
        shapes += "[2," + QByteArray::number(i % 300) + ",5," + QByteArray::number(i % 300 + 20) + ",200],";
    shapes.back() = ']';
    ASSERT_EQ(ShapesFromJson(doc->GetElemMgr(), shapes), 5500);
    const QByteArray csv = Csv(*doc);
    for (const char* name : { "many.jpg", "many.png" }) {
        SCOPED_TRACE(name);
        const QString path = home.filePath(QLatin1String(name));
        ASSERT_TRUE(doc->SaveImage(path, {}, {}));
        auto* reopened = static_cast<CMeasureDoc*>(app->OpenDocumentFile(path));
        ASSERT_NE(reopened, nullptr);
        EXPECT_EQ(ShapeTypes(*reopened).size(), 5501u);
        EXPECT_EQ(Csv(*reopened), csv);
    }
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();

    // Room for the picture, not for its measurements.
    const QString ini = home.filePath("data/Setting.ini");
    Write(ini, "Save", "FilePath", home.filePath("quick"));
    ASSERT_TRUE(QDir().mkpath(home.filePath("quick")));
    const QString first = doc->SilentQuickSave();
    const rlim_t pictureOnly
        = rlim_t(SizeOfFile(first)) - rlim_t(PictureXmp::Read(first).value("Shapes").size());
    messages.clear();
    QString second;
    {
        const FullDisk full(pictureOnly + 4096);
        second = doc->QuickSave();
    }
    ASSERT_EQ(messages.size(), 1) << messages.join('\n').toStdString();
    EXPECT_TRUE(messages[0].startsWith("the picture was saved but its measurements could not be kept: "))
        << messages[0].toStdString();
    EXPECT_TRUE(SizeOf(second).isValid());

    // A stranger's calibration: a unit of -7 and a size that is no number.
    const QString strange = WritePicture(home.filePath("strange.jpg"));
    ASSERT_TRUE(
        PictureXmp::Write(strange, { { "Unit", "-7" }, { "XPerPixel", "nan" }, { "YPerPixel", "1" } }));
    const CalibrationRecord before = doc->GetElemMgr().GetUnit();
    messages.clear();
    auto* opened = static_cast<CMeasureDoc*>(app->OpenDocumentFile(strange));
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(
        messages, QStringList { "this picture's calibration is not valid; the current calibration is used" });
    EXPECT_EQ(opened->GetElemMgr().m_unit.m_dcxPerPixel, before.m_dcxPerPixel);
}

// The measurements survive as data: an "only image" PNG or JPEG opened again
// has the calibration and the line, whose CSV row matches the original's; a
// BMP keeps nothing and says nothing.
TEST_F(SavePictureTest, CalibrationAndShapesSurviveTheRoundTrip)
{
    CMeasureDoc* doc = OpenPicture();
    ASSERT_NE(doc, nullptr);
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(20, 50), QPoint(257, 180));
    doc->GetElemMgr().SetUnit({ 0, 1.2345678, 2.5, 10.0, 10.0 });
    const QByteArray csv = Csv(*doc);
    ASSERT_TRUE(csv.contains(" um")) << csv.toStdString();

    for (const char* name : { "round.png", "round.jpg", "round.tif" }) {
        SCOPED_TRACE(name);
        const QString path = home.filePath(QLatin1String(name));
        ASSERT_TRUE(doc->SaveImage(path, {}, {}));
        auto* reopened = static_cast<CMeasureDoc*>(app->OpenDocumentFile(path));
        ASSERT_NE(reopened, nullptr);
        EXPECT_EQ(ShapeTypes(*reopened), (std::vector<int> { 9, 2 }));
        EXPECT_EQ(Csv(*reopened), csv);
        EXPECT_DOUBLE_EQ(reopened->GetElemMgr().m_unit.m_dcxPerPixel, 1.2345678);
    }

    // Burnt in, the shapes are pixels only; the calibration is still kept.
    const QString burnt = home.filePath("burnt.png");
    ASSERT_TRUE(doc->SaveImage(burnt, { true, false, false, false, false }, {}));
    EXPECT_FALSE(PictureXmp::Read(burnt).contains("Shapes"));
    auto* burntDoc = static_cast<CMeasureDoc*>(app->OpenDocumentFile(burnt));
    ASSERT_NE(burntDoc, nullptr);
    EXPECT_EQ(ShapeTypes(*burntDoc), std::vector<int> { 9 });
    EXPECT_EQ(burntDoc->GetElemMgr().m_unit.m_rtUnit, 0);

    const QString bmp = home.filePath("round.bmp");
    ASSERT_TRUE(doc->SaveImage(bmp, {}, {}));
    auto* bmpDoc = static_cast<CMeasureDoc*>(app->OpenDocumentFile(bmp));
    ASSERT_NE(bmpDoc, nullptr);
    EXPECT_EQ(ShapeTypes(*bmpDoc), std::vector<int> { 9 });
    EXPECT_NE(bmpDoc->GetElemMgr().m_unit.m_dcxPerPixel, 1.2345678);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

// A disk that fills up during a save over an existing picture: the failure
// box, and the old file byte for byte as it was.
TEST_F(SavePictureTest, FullDiskKeepsTheOldFile)
{
    CMeasureDoc* doc = OpenPicture();
    ASSERT_NE(doc, nullptr);
    for (const char* name : { "old.bmp", "old.jpg", "old.png" }) {
        SCOPED_TRACE(name);
        const QString path = home.filePath(QLatin1String(name));
        ASSERT_TRUE(WriteAll(path, QByteArray(1000, 'k')));
        messages.clear();
        {
            const FullDisk full(1024);
            doc->SaveImage(path, {}, {});
        }
        EXPECT_EQ(ReadAll(path), QByteArray(1000, 'k'));
        ASSERT_FALSE(messages.isEmpty());
        EXPECT_EQ(messages.front(), "Save image failed.");
    }
}

// The running live video at saving resolution 3 gives 2048 x 1536 whatever
// the camera's frame size, 2 gives 1600 x 1200, 1 the frame as it is; the
// resolution dialog offers the three choices.
TEST_F(SavePictureTest, SavingResolutionOfTheLiveVideo)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    EXPECT_EQ(live->GetSaveResolution(), 1);
    const QSize frameSize = live->QueryImageSize();
    const std::pair<int, QSize> cases[] = { { 3, { 2048, 1536 } }, { 2, { 1600, 1200 } }, { 1, frameSize } };
    for (const auto& [resolution, size] : cases) {
        live->SetSaveResolution(resolution);
        const QString path = home.filePath(QStringLiteral("live%1.png").arg(resolution));
        ASSERT_TRUE(live->SaveImage(path, {}, {}));
        EXPECT_EQ(SizeOf(path), size) << resolution;
    }
    live->SetSaveResolution(7);
    EXPECT_EQ(live->GetSaveResolution(), 1);

    CResolutionDlg dialog(3);
    const auto choices = dialog.findChildren<QRadioButton*>();
    ASSERT_EQ(choices.size(), 3);
    EXPECT_EQ(choices[0]->text(), "1280*1024");
    EXPECT_EQ(choices[2]->text(), "2048*1536");
    EXPECT_EQ(dialog.Resolution(), 3);
    choices[1]->setChecked(true);
    EXPECT_EQ(dialog.Resolution(), 2);
}

// A rescaled save enlarges the frame's top-left 1280 x 960. The calibration
// kept with it is per saved pixel; shapes are kept only burnt in, and of
// them only what lies in the saved part, where it lay. Every frame alike
// (drift and noise off), so that saves at two resolutions show one frame.
TEST_F(SavePictureTest, RescaledSaveScalesTheCalibrationAndKeepsOnlyTheSavedPart)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    ASSERT_EQ(live->QueryImageSize(), QSize(1280, 1024));
    ASSERT_FALSE(SteadyFrame(*live).isNull());
    live->GetElemMgr().SetUnit({ 0, 1.25, 2.0, 10.0, 10.0 });
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 200), QPoint(500, 200));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 1000), QPoint(500, 1000));
    ASSERT_EQ(ShapeTypes(*live), (std::vector<int> { 9, 2, 2 }));

    const QString exiftool = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    for (const auto& [resolution, size] : { std::pair { 2, QSize(1600, 1200) }, { 3, QSize(2048, 1536) } }) {
        SCOPED_TRACE(resolution);
        live->SetSaveResolution(resolution);
        const QString path = home.filePath(QStringLiteral("rescaled%1.png").arg(resolution));
        ASSERT_TRUE(live->SaveImage(path, {}, {}));
        EXPECT_EQ(SizeOf(path), size);
        const double x = 1.25 * 1280 / size.width(), y = 2.0 * 960 / size.height();
        const MeasurementXmp::Stored stored = MeasurementXmp::Read(path);
        ASSERT_TRUE(stored.unit.has_value());
        EXPECT_DOUBLE_EQ(stored.unit->m_dcxPerPixel, x);
        EXPECT_DOUBLE_EQ(stored.unit->m_dcyPerPixel, y);
        EXPECT_TRUE(stored.shapes.isEmpty());
        auto* reopened = static_cast<CMeasureDoc*>(app->OpenDocumentFile(path));
        ASSERT_NE(reopened, nullptr);
        EXPECT_EQ(ShapeTypes(*reopened), std::vector<int> { 9 });
        EXPECT_DOUBLE_EQ(reopened->GetElemMgr().m_unit.m_dcxPerPixel, x);
        EXPECT_DOUBLE_EQ(reopened->GetElemMgr().m_unit.m_dcyPerPixel, y);
        if (exiftool.isEmpty())
            continue;
        QProcess tool;
        tool.start(exiftool, { "-j", "-XMP-oculix:all", path });
        ASSERT_TRUE(tool.waitForFinished(60000));
        const QJsonObject tags
            = QJsonDocument::fromJson(tool.readAllStandardOutput()).array().at(0).toObject();
        EXPECT_DOUBLE_EQ(tags.value("XPerPixel").toDouble(), x);
        EXPECT_DOUBLE_EQ(tags.value("YPerPixel").toDouble(), y);
        EXPECT_FALSE(tags.contains("Shapes"));
    }

    // Burnt in, the rescaled picture is the frame's top-left 1280 x 960 with
    // its shapes, enlarged: the line inside it, none of the one below.
    const SaveOverlay burntIn { true, false, false, false, false };
    const QString whole = home.filePath("whole.png"), burnt = home.filePath("burnt.png");
    live->SetSaveResolution(1);
    ASSERT_TRUE(live->SaveImage(whole, burntIn, {}));
    live->SetSaveResolution(3);
    ASSERT_TRUE(live->SaveImage(burnt, burntIn, {}));
    const QImage frameShot = QImage(whole).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(frameShot.size(), QSize(1280, 1024));
    for (const int y : { 200, 1000 })
        ASSERT_EQ(QColor(frameShot.pixel(300, y)), QColor(Qt::white)) << "the line at " << y;
    const QImage expected
        = frameShot.copy(0, 0, 1280, 960).scaled(2048, 1536, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage saved = QImage(burnt).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(saved.size(), expected.size());
    int far = 0;
    for (int y = 0; y < saved.height(); ++y)
        for (int x = 0; x < saved.width(); ++x) {
            const QRgb p = saved.pixel(x, y), q = expected.pixel(x, y);
            far += std::abs(qRed(p) - qRed(q)) > 8 || std::abs(qGreen(p) - qGreen(q)) > 8
                || std::abs(qBlue(p) - qBlue(q)) > 8;
        }
    EXPECT_EQ(far, 0);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
}

namespace {

// Pixels of two pictures of one size that differ.
int Differing(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return -1;
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            n += a.pixel(x, y) != b.pixel(x, y);
    return n;
}

QImage Saved(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_RGB32);
}

} // namespace

// The running video shows the shapes and the processing; a picture saved
// from it without the shapes burnt in is the camera's frame alone, pixel for
// pixel, by the save routine and by the "only image" quick save alike. Burnt
// in, the shapes and the processing are there. Processing stays on.
TEST_F(SavePictureTest, LiveSaveWithoutShapesIsTheCameraPictureAlone)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    const QImage camera = SteadyFrame(*live);
    ASSERT_FALSE(camera.isNull());
    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_NEGATIVE));
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 200), QPoint(500, 200));
    const QRgb white = qRgb(255, 255, 255);
    const QRgb negated = qRgb(255 - qRed(camera.pixel(50, 50)), 255 - qGreen(camera.pixel(50, 50)),
        255 - qBlue(camera.pixel(50, 50)));
    const auto shown = [&] {
        const QImage now = CurrentFrame(*live);
        return now.pixel(300, 200) == white && now.pixel(50, 50) == negated;
    };
    ASSERT_NE(camera.pixel(300, 200), white);
    ASSERT_TRUE(WaitFor(shown, 10000)) << "the video shows the line and the negative";

    const QString plain = home.filePath("plain.png");
    ASSERT_TRUE(live->SaveImage(plain, {}, {}));
    EXPECT_EQ(Differing(Saved(plain), camera), 0);

    const QString ini = SettingsFile();
    Write(ini, "Save", "FilePath", home.filePath("pics"));
    Write(ini, "Save", "bBmp", "1");
    Write(ini, "Save", "bMeasure", "1");
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_SAVE_ONLY_IMAGE));
    EXPECT_EQ(Differing(Saved(home.filePath("pics/0.bmp")), camera), 0);

    const QString burnt = home.filePath("burnt.png");
    ASSERT_TRUE(live->SaveImage(burnt, { true, false, false, false, false }, {}));
    const QImage withShapes = Saved(burnt);
    ASSERT_EQ(withShapes.size(), camera.size());
    EXPECT_EQ(withShapes.pixel(300, 200), white);
    EXPECT_EQ(withShapes.pixel(50, 50), negated);

    int processing = 0;
    live->GetGraph().GetProcessEnable(&processing);
    EXPECT_EQ(processing, 1);
    EXPECT_TRUE(WaitFor(shown, 10000));
    EXPECT_EQ(messages.join('\n'), "Picture has successfully saved to  " + home.filePath("pics/0.bmp"));
}

// A camera at five frames a second still saves its picture without the
// shapes. One that stops sending saves nothing and says so; so does one that
// fails while the save waits, and the failure is told as well. Processing is
// back on after each.
TEST_F(SavePictureTest, LiveSaveFromASlowStoppedOrFailingCamera)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    CXCapGraph& graph = live->GetGraph();
    const QImage camera = SteadyFrame(*live);
    ASSERT_FALSE(camera.isNull());
    ASSERT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    Drag(ActiveView()->GetOverlayWnd(), QPoint(100, 200), QPoint(500, 200));
    ASSERT_TRUE(WaitFor([&] { return CurrentFrame(*live).pixel(300, 200) == qRgb(255, 255, 255); }, 10000));
    const QString name = graph.DeviceName();
    const auto processing = [&] {
        int on = 0;
        graph.GetProcessEnable(&on);
        return on;
    };
    const auto frames = [&] {
        int n = 0;
        graph.GetStateB(&n);
        return n;
    };

    // Saved right after a frame came, the next is a fifth of a second away.
    SetSimCameraFault(name, SimCameraFault { 0, 1, 200 });
    const int fast = frames();
    ASSERT_TRUE(WaitFor([&] { return frames() >= fast + 2; }, 10000));
    const int last = frames();
    ASSERT_TRUE(WaitFor([&] { return frames() != last; }, 10000));
    const QString slow = home.filePath("slow.png");
    ASSERT_TRUE(live->SaveImage(slow, {}, {}));
    EXPECT_EQ(Differing(Saved(slow), camera), 0);
    EXPECT_EQ(processing(), 1);
    EXPECT_EQ(messages.join('\n').toStdString(), "");

    // Every frame half a minute late: once the last one on its way is in,
    // the camera has stopped.
    SetSimCameraFault(name, SimCameraFault { 0, 1, 30000 });
    ASSERT_TRUE(WaitFor(
        [&] {
            const int before = frames();
            QTest::qWait(500);
            return frames() == before;
        },
        10000));
    const QString stopped = home.filePath("stopped.png");
    EXPECT_FALSE(live->SaveImage(stopped, {}, {}));
    EXPECT_FALSE(QFileInfo::exists(stopped));
    EXPECT_EQ(messages.join('\n').toStdString(), "Save image failed.");
    EXPECT_EQ(processing(), 1);

    // The read error of a pulled camera arrives while the save waits.
    messages.clear();
    GstElement* device = graph.DeviceElement();
    std::thread pull([device] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        GError* error = g_error_new_literal(
            GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ, "Could not read from resource.");
        gst_element_post_message(
            device, gst_message_new_error(GST_OBJECT(device), error, "No such device (19)"));
        g_error_free(error);
    });
    const QString failed = home.filePath("failed.png");
    const bool saved = live->SaveImage(failed, {}, {});
    pull.join();
    EXPECT_FALSE(saved);
    EXPECT_FALSE(QFileInfo::exists(failed));
    EXPECT_EQ(processing(), 1);
    ASSERT_TRUE(WaitFor([&] { return !live->IsPreviewRunning(); }, 10000));
    EXPECT_EQ(messages.join('\n'), "Save image failed.\n" + CXCapGraph::kCameraLostMessage);
}

// Save-as: the type is the last checked of the six, an empty folder keeps the
// dialog open, an existing file is replaced only on Yes, and the "SaveAs"
// keys are written back.
TEST_F(SavePictureTest, SaveAsDialogAsksBeforeReplacing)
{
    struct Check
    {
        std::array<bool, 6> checked;
        const char* ext;
    };
    const Check checks[] = { { { false, false, false, false, false, false }, ".bmp" },
        { { true, false, false, false, false, false }, ".bmp" },
        { { false, true, false, false, false, false }, ".jpg" },
        { { false, false, true, false, false, false }, ".png" },
        { { false, false, false, true, false, false }, ".pcx" },
        { { true, true, false, false, true, false }, ".tif" },
        { { true, false, false, false, false, true }, ".tga" } };
    for (const Check& c : checks)
        EXPECT_EQ(CSaveAsDlg::ExtensionForChecks(c.checked), QLatin1String(c.ext));

    const QString ini = home.filePath("Setting.ini");
    ASSERT_TRUE(WriteAll(ini, "[SaveAs]\nTitle=Old title\nbMeasure=1\n"));
    QStringList saved;
    const auto save = [&](const QString& path, const SaveOverlay& overlay, const SaveTexts& texts) {
        saved << path;
        EXPECT_TRUE(overlay.measure);
        EXPECT_EQ(texts.title, "Old title");
        EXPECT_EQ(texts.subject, "Cells");
    };
    int answer = IDNO;
    QStringList asked;
    const ScopedMessageBoxHandler box([&](const MessageBoxRequest& request) {
        asked << request.caption + ": " + request.text;
        return answer;
    });

    CSaveAsDlg empty(ini, "pic", save);
    empty.accept();
    EXPECT_EQ(asked, QStringList { "Hint: Please select folder for the saving file." });
    EXPECT_NE(empty.result(), QDialog::Accepted);

    const QString folder = home.filePath("out");
    QDir().mkpath(folder);
    ASSERT_TRUE(WriteAll(folder + "/pic.png", "old"));
    for (int reply : { IDNO, IDYES }) {
        asked.clear();
        saved.clear();
        answer = reply;
        CSaveAsDlg dialog(ini, "pic", save);
        CFolderEdit::SetBrowser([&](QWidget*, const QString&) { return folder + "/"; });
        dialog.findChild<QPushButton*>("browse")->click();
        CFolderEdit::SetBrowser({});
        dialog.findChild<QRadioButton*>("png")->setChecked(true);
        dialog.findChild<QLineEdit*>("subject")->setText("Cells");
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted) << "closed either way";
        EXPECT_EQ(asked, QStringList { "Save As: pic.png already existed. Want to replace it?" });
        EXPECT_EQ(saved, reply == IDYES ? QStringList { folder + "/pic.png" } : QStringList {});
    }
    EXPECT_EQ(GetPrivateProfileString("SaveAs", "FilePath", "", ini), folder + "/");
    EXPECT_EQ(GetPrivateProfileString("SaveAs", "Subject", "", ini), "Cells");
    EXPECT_EQ(GetPrivateProfileString("SaveAs", "bMeasure", "", ini), "1");

    // A new name is saved at once.
    asked.clear();
    saved.clear();
    CSaveAsDlg fresh(ini, "new", save);
    fresh.findChild<QLineEdit*>("subject")->setText("Cells");
    fresh.accept();
    EXPECT_TRUE(asked.isEmpty());
    EXPECT_EQ(saved, QStringList { folder + "/new.jpg" });
}

// The options dialog shows the "Save" section and writes it back; an empty
// folder is refused. "Open Picture Folder" opens the folder on the desktop.
TEST_F(SavePictureTest, SaveOptionsAndPictureFolder)
{
    const QString ini = home.filePath("Setting.ini");
    ASSERT_TRUE(WriteAll(ini, "[Save]\r\nPrefix=cell\r\nSuffix=41\r\nbBmp=1\r\nbRuler=1\r\n"));
    {
        CSaveOptionDlg dialog(ini);
        EXPECT_EQ(dialog.findChild<QLineEdit*>("prefix")->text(), "cell");
        EXPECT_EQ(dialog.findChild<QSpinBox*>("suffix")->value(), 41);
        EXPECT_TRUE(dialog.findChild<QRadioButton*>("bmp")->isChecked());
        EXPECT_TRUE(dialog.findChild<QCheckBox*>("bRuler")->isChecked());
        dialog.accept();
        EXPECT_EQ(messages, QStringList { "Please select folder for the saving file." });
        dialog.findChild<QSpinBox*>("suffix")->setValue(0);
        dialog.findChild<QRadioButton*>("jpg")->setChecked(true);
        dialog.findChild<QLineEdit*>("folder")->setText("/tmp/x");
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
    }
    EXPECT_EQ(ReadAll(ini).toStdString(),
        "[Save]\r\nPrefix=cell\r\nSuffix=0\r\nbBmp=0\r\nbRuler=1\r\nbMeasure=0\r\nbTime=0\r\nbTitle=0\r\n"
        "bScale=0\r\nAuthor=\r\nTitle=\r\nFilePath=/tmp/x\r\n");

    Start(false);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler("file", &catcher, "open");
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_OPEN_PICTURE_FOLDER));
    Write(SettingsFile(), "Save", "FilePath", home.filePath("mine"));
    ASSERT_TRUE(frame->RouteCommand(ID_FILE_OPEN_PICTURE_FOLDER));
    QDesktopServices::unsetUrlHandler("file");
    EXPECT_EQ(catcher.urls,
        (QList<QUrl> { QUrl::fromLocalFile(home.filePath("data/Images/")),
            QUrl::fromLocalFile(home.filePath("mine")) }));
}

// Both dialogs as a user sees them, saved for a look when
// OCULIX_SCREENSHOT_DIR names a folder (run under xvfb-run).
TEST_F(SavePictureTest, DialogsScreenshot)
{
    const QString ini = home.filePath("Setting.ini");
    ASSERT_TRUE(WriteAll(ini,
        "[Save]\nFilePath=/home/lab/pictures\nPrefix=slide\nSuffix=12\nbMeasure=1\nbTime=1\nTitle=Liver x40\n"
        "[SaveAs]\nFilePath=/home/lab/pictures\nbMeasure=1\nbRuler=1\nTitle=Liver x40\nAuthor=QA\n"));
    CSaveOptionDlg options(ini);
    CSaveAsDlg saveAs(ini, "Image1", {});
    CResolutionDlg resolution(2);
    const std::pair<QWidget*, const char*> shots[] = { { &options, "save-option.png" },
        { &saveAs, "save-as.png" }, { &resolution, "save-resolution.png" } };
    for (const auto& [widget, name] : shots) {
        widget->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget)) << name;
        const QImage shot = widget->grab().toImage();
        EXPECT_EQ(LayoutFault(*widget, shot), "") << name;
        if (!qEnvironmentVariableIsEmpty("OCULIX_SCREENSHOT_DIR"))
            shot.save(
                QDir(qEnvironmentVariable("OCULIX_SCREENSHOT_DIR")).filePath(QString::fromLatin1(name)));
    }
}

#include "SavePictureTest.moc"
