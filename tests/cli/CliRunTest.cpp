// oculix-cli end to end: the executable with the simulated camera, as a
// script runs it.

#include "CliSupport.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "calibration/SvrFile.h"
#include "capture/CSimScene.h"
#include "image/PictureXmp.h"
#include "image/ProcessChain.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"
#include "platform/PrivateProfile.h"

#include <QBuffer>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>

namespace {

const QString kDemo = QStringLiteral("Simulated Microscope Camera");
const QStringList kSmall { QStringLiteral("--format"), QStringLiteral("640x480:YUY2") };

bool HasRealCamera()
{
    return !QDir(QStringLiteral("/dev")).entryList({ QStringLiteral("video*") }, QDir::System).isEmpty();
}

// Mean absolute difference of two 24-bit pictures of one size, per byte.
double MeanDifference(const FCObjImage& a, const FCObjImage& b)
{
    double sum = 0;
    for (int y = 0; y < a.Height(); ++y)
        for (int x = 0; x < a.Width(); ++x) {
            const QRgb p = a.GetPixelColor(x, y);
            const QRgb q = b.GetPixelColor(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q))
                + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * a.Width() * a.Height());
}

using CliUsage = CliFixture;
using CliDevices = CliFixture;
using CliSnapshot = CliFixture;
using CliRecord = CliFixture;
using CliTimelapse = CliFixture;

TEST_F(CliUsage, HelpForTheToolAndEachCommand)
{
    const CliRun main = Run({ "--help" });
    EXPECT_EQ(main.code, 0);
    for (const char* command : { "devices", "snapshot", "record", "timelapse", "measure", "calibrate",
             "particles", "rois", "stack", "stitch", "process" }) {
        EXPECT_TRUE(main.out.contains(QString::fromLatin1(command))) << command;
        for (const QStringList& args :
            { QStringList { command, "--help" }, QStringList { "help", command } }) {
            const CliRun help = Run(args);
            EXPECT_EQ(help.code, 0) << command;
            EXPECT_TRUE(help.out.contains(QStringLiteral("oculix-cli [options] %1").arg(command)))
                << help.out.toStdString();
            EXPECT_TRUE(help.err.isEmpty()) << help.err.toStdString();
        }
    }
    EXPECT_TRUE(Run({ "snapshot", "-h" }).out.contains("--process"));
    EXPECT_TRUE(Run({ "timelapse", "--help" }).out.contains("--interval"));
}

TEST_F(CliUsage, BadUsageIsExitTwoWithOneLine)
{
    struct Case
    {
        QStringList args;
        const char* fragment;
    };
    const QString out = Path("x.png");
    const Case cases[] = {
        { {}, "no command given" },
        { { "frobnicate" }, "unknown command \"frobnicate\"" },
        { { "snapshot", "--frobnicate", out }, "Unknown option 'frobnicate'" },
        { { "snapshot" }, "OUT is missing" },
        { { "snapshot", out, out }, "one OUT only" },
        { { "snapshot", Path("x.doc") }, "the extension names no picture type" },
        { { "snapshot", "--format", "640", out }, "bad format \"640\"" },
        { { "snapshot", "--process", "blur", out }, "unknown --process item \"blur\"" },
        { { "snapshot", "--format", "800x600", out }, "offers no format 800x600" },
        { { "record", "--seconds", "-1", Path("x.avi") }, "--seconds takes a number of seconds" },
        { { "record", "--seconds", "1", Path("x.mp4") }, "a recording is an .avi file" },
        { { "timelapse", "--interval", "1" }, "timelapse needs --interval and --count" },
        { { "timelapse", "--interval", "1", "--count", "0" },
            "--count takes a whole number from 1 to 15000" },
        { { "devices", "extra" }, "devices takes no arguments" },
        { { "snapshot", "--title", "t", out }, "--title applies to .jpg pictures only" },
        { { "measure", "--semicolon" }, "PICTURE is missing" },
        { { "measure", "--precision", "0", out }, "--precision takes a whole number from 1 to 5" },
        { { "calibrate", out }, "calibrate needs --division" },
        { { "calibrate", "--division", "0.01", out }, "bad --division \"0.01\"" },
        { { "calibrate", "--division", "10um", out, out }, "one PICTURE only" },
        { { "particles", "--threshold", "otsu" }, "PICTURE is missing" },
        { { "particles", "--threshold", "otsu", "--precision", "6", out },
            "--precision takes a whole number" },
        { { "particles", "--threshold", "otsu", "--min-circularity", "2", out },
            "--min-circularity takes a number" },
        { { "stitch", "-o", out }, "PICTURE is missing" },
        { { "stitch", out }, "stitch needs -o OUT" },
        { { "stitch", "-o", Path("x.doc"), out }, "the extension names no picture type" },
    };
    for (const Case& c : cases) {
        const CliRun run = Run(c.args);
        EXPECT_ONE_ERROR(run, 2, "");
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.fragment))) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains("--help")) << "usage errors point at the help";
    }
    EXPECT_TRUE(Files().isEmpty()) << Files().join(' ').toStdString();
}

TEST_F(CliDevices, ListsTheCamerasWithTheirFormats)
{
    for (bool byOption : { true, false }) {
        const CliRun text = byOption ? Run({ "devices", "--demo-camera" }, false) : Run({ "devices" }, true);
        EXPECT_EQ(text.code, 0) << text.err.toStdString();
        EXPECT_TRUE(text.out.contains(kDemo + "\n  640x480@30:YUY2\n")) << text.out.toStdString();
        EXPECT_TRUE(text.out.contains("  1280x1024@30:MJPG\n")) << text.out.toStdString();
    }
    const CliRun json = Run({ "devices", "--json" });
    ASSERT_EQ(json.code, 0);
    const QJsonArray list = QJsonDocument::fromJson(json.out.toUtf8()).array();
    QJsonObject demo;
    for (const QJsonValue& v : list)
        if (v.toObject()["name"].toString() == kDemo)
            demo = v.toObject();
    ASSERT_FALSE(demo.isEmpty()) << json.out.toStdString();
    const QJsonArray formats = demo["formats"].toArray();
    ASSERT_EQ(formats.size(), 6);
    EXPECT_EQ(formats[0].toObject()["argument"].toString(), "640x480@30:YUY2");
    EXPECT_EQ(formats[0].toObject()["width"].toInt(), 640);
    EXPECT_EQ(formats[3].toObject()["format"].toString(), "MJPG");

    if (HasRealCamera())
        GTEST_SKIP() << "a real camera is connected";
    const CliRun none = Run({ "devices" }, false);
    EXPECT_ONE_ERROR(none, 1, "no camera found");
    const CliRun noneJson = Run({ "devices", "--json" }, false);
    EXPECT_EQ(noneJson.code, 0);
    EXPECT_TRUE(QJsonDocument::fromJson(noneJson.out.toUtf8()).array().isEmpty());
}

TEST_F(CliSnapshot, PixelsAgreeWithTheProgramsProcessing)
{
    const CliRun raw
        = Run(QStringList { "snapshot", "--device", kDemo } + kSmall + QStringList { Path("raw.bmp") });
    ASSERT_EQ(raw.code, 0) << raw.err.toStdString();
    EXPECT_TRUE(raw.err.contains("Saved 640 x 480 picture")) << raw.err.toStdString();
    FCObjImage unprocessed;
    ASSERT_TRUE(unprocessed.Load(Path("raw.bmp")));
    ASSERT_EQ(unprocessed.Width(), 640);
    ASSERT_EQ(unprocessed.ColorBits(), 24);

    // Two snapshots differ by the sensor noise of another frame at most; a
    // wrong operation, order or level differs by far more.
    struct Case
    {
        const char* process;
        ProcessSwitches switches;
    };
    ProcessSwitches flipGray, negative, binary, rgb, all;
    flipGray.flip = flipGray.gray = true;
    negative.negative = negative.mirror = true;
    binary.binary = true;
    binary.binaryLevel = 90;
    rgb.rgb = true;
    rgb.red = 60;
    rgb.green = -40;
    rgb.blue = 0;
    all = flipGray;
    all.emboss = all.sharpen = true;
    const Case cases[] = {
        { "flip,gray", flipGray },
        { "negative,mirror", negative },
        { "binary=90", binary },
        { "rgb=60,-40,0", rgb },
        { "gray,flip,sharpen,emboss", all },
    };
    for (const Case& c : cases) {
        const CliRun run = Run(QStringList { "snapshot", "--quiet", "--process", c.process } + kSmall
            + QStringList { Path("p.png") });
        ASSERT_EQ(run.code, 0) << c.process << run.err.toStdString();
        EXPECT_TRUE(run.err.isEmpty()) << "--quiet: " << run.err.toStdString();
        FCObjImage processed;
        ASSERT_TRUE(processed.Load(Path("p.png"))) << c.process;
        ASSERT_TRUE(processed.ConvertTo24Bit());
        FCObjImage expected = unprocessed;
        RunProcessChain(unprocessed.GetMemStart(), expected.GetMemStart(), 640, 480, c.switches);
        const double agree = MeanDifference(processed, expected);
        // Sharpening and embossing lift the noise of a later frame most.
        EXPECT_LT(agree,
            c.switches.sharpen || c.switches.emboss ? 15.0
                : c.switches.binary                 ? 8.0
                                                    : 4.0)
            << c.process;
        EXPECT_GT(MeanDifference(processed, unprocessed), 3 * agree + 10) << c.process;
    }
    EXPECT_EQ(Files(), QStringList({ "p.png", "raw.bmp" }));
}

TEST_F(CliSnapshot, JpegSummaryReadsBack)
{
    REQUIRE_TOOL(HaveProgram("exiftool"), "exiftool (libimage-exiftool-perl)");
    const QString title = QStringLiteral("Probe 7 – Zellen, 40×");
    const CliRun run = Run(QStringList { "snapshot", "-q", "--title", title, "--subject", "slide", "--author",
                               "QA", "--comment", "line one" }
        + kSmall + QStringList { Path("s.jpg") });
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    QProcess exif;
    exif.start(QStringLiteral("exiftool"),
        { "-j", "-XPTitle", "-XPSubject", "-XPAuthor", "-XPComment", Path("s.jpg") });
    ASSERT_TRUE(exif.waitForFinished(30000));
    const QJsonObject tags = QJsonDocument::fromJson(exif.readAllStandardOutput()).array()[0].toObject();
    EXPECT_EQ(tags["XPTitle"].toString().trimmed(), title);
    EXPECT_EQ(tags["XPSubject"].toString().trimmed(), "slide");
    EXPECT_EQ(tags["XPAuthor"].toString().trimmed(), "QA");
    EXPECT_EQ(tags["XPComment"].toString().trimmed(), "line one");
    FCObjImage picture;
    EXPECT_TRUE(picture.Load(Path("s.jpg")));
    EXPECT_EQ(Files(), QStringList({ "s.jpg" }));
}

TEST_F(CliSnapshot, MissingCameraUnwritableFolderAndFullDisk)
{
    EXPECT_ONE_ERROR(Run({ "snapshot", "--device", "No Such Camera", Path("a.png") }), 1,
        "no camera named \"No Such Camera\" (cameras: ");
    if (!HasRealCamera())
        EXPECT_ONE_ERROR(Run({ "snapshot", Path("a.png") }, false), 1, "no camera found");
    EXPECT_ONE_ERROR(Run({ "snapshot", Path("missing/a.png") }), 1, "does not exist");
    // A folder the file system refuses, even to root.
    EXPECT_ONE_ERROR(
        Run({ "snapshot", "/proc/oculix-cli-test.png" }), 1, "cannot write /proc/oculix-cli-test.png");

    // A full disk after 64 KiB: the pictures are far bigger. The TIFF codec
    // ignores its failed writes; nothing may be left all the same.
    for (const char* name : { "full.png", "full.tif" }) {
        const CliRun full
            = Run(QStringList { "snapshot" } + kSmall + QStringList { Path(name) }, true, 64 * 1024);
        EXPECT_ONE_ERROR(full, 1, "cannot write " + Path(name) + ": no more room for the file");
        EXPECT_TRUE(Files().isEmpty()) << "nothing half-written: " << Files().join(' ').toStdString();
    }

    // An existing picture stays whole when its replacement fails.
    ASSERT_EQ(Run(QStringList { "snapshot", "-q" } + kSmall + QStringList { Path("keep.jpg") }).code, 0);
    const QByteArray before = [&] {
        QFile f(Path("keep.jpg"));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    ASSERT_GT(before.size(), 1000);
    EXPECT_EQ(
        Run(QStringList { "snapshot", "--format", "1600x1200", Path("keep.jpg") }, true, before.size() + 100)
            .code,
        1);
    QFile after(Path("keep.jpg"));
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), before);
    EXPECT_EQ(Files(), QStringList({ "keep.jpg" }));
}

class CliRecordFixture : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    }
};
using CliRecording = CliRecordFixture;

// The file plays every frame the progress counted: how many that is in three
// seconds depends on how fast this machine keeps up with the camera.
TEST_F(CliRecording, ThreeSecondsPlayWithEveryFrameCounted)
{
    const CliRun run
        = Run(QStringList { "record", "--seconds", "3" } + kSmall + QStringList { Path("clip.avi") });
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const QRegularExpression progress(QStringLiteral("Recording: (\\d) s, (\\d+) frames\n"));
    QRegularExpressionMatch last;
    for (auto it = progress.globalMatch(run.err); it.hasNext();)
        last = it.next();
    EXPECT_EQ(last.captured(1), "3") << run.err.toStdString();
    const int counted = last.captured(2).toInt();
    EXPECT_GT(counted, 0);
    const auto probe = ProbeVideo(Path("clip.avi"));
    EXPECT_EQ(probe.value("codec_name"), "mjpeg");
    EXPECT_EQ(probe.value("width"), "640");
    // Frames on their way when the count was printed are written too, and the
    // first frame stands in from the stream's start until it came. The
    // stream's time cannot exceed the time the recording took.
    const QRegularExpressionMatch took
        = QRegularExpression(QStringLiteral("Recorded (\\d+\\.\\d) s")).match(run.err);
    ASSERT_TRUE(took.hasMatch()) << run.err.toStdString();
    const int frames = probe.value("nb_read_frames").toInt();
    EXPECT_GE(frames, counted);
    EXPECT_LE(frames, int((took.captured(1).toDouble() + 0.05) * 30) + 1) << took.captured(0).toStdString();
    EXPECT_EQ(Files(), QStringList({ "clip.avi" }));
}

TEST_F(CliRecording, InterruptEndsAPlayableFile)
{
    QProcess* p = Start(QStringList { "record" } + kSmall + QStringList { Path("open.avi") });
    ASSERT_TRUE(p->waitForStarted());
    // Wait for the recording to run a second, then press Ctrl+C.
    QString err;
    QElapsedTimer timer;
    timer.start();
    while (!err.contains("Recording: 1 s") && timer.elapsed() < 60000 && p->state() == QProcess::Running) {
        p->waitForReadyRead(200);
        err += QString::fromUtf8(p->readAllStandardError());
    }
    ASSERT_TRUE(err.contains("Recording: 1 s")) << err.toStdString();
    EXPECT_FALSE(QFile::exists(Path("open.avi"))) << "the file takes its name when finished";
    ::kill(pid_t(p->processId()), SIGINT);
    const CliRun run = Finish(p);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_GT(ProbeVideo(Path("open.avi")).value("nb_read_frames").toInt(), 10);
    EXPECT_EQ(Files(), QStringList({ "open.avi" }));
}

TEST_F(CliRecording, FullDiskAndUnwritableFolderLeaveNoFile)
{
    const CliRun full
        = Run(QStringList { "record", "--seconds", "5" } + kSmall + QStringList { Path("full.avi") }, true,
            256 * 1024);
    EXPECT_ONE_ERROR(full, 1, "could not be written any further");
    EXPECT_TRUE(Files().isEmpty()) << Files().join(' ').toStdString();
    EXPECT_ONE_ERROR(Run({ "record", "--seconds", "1", Path("no/such/x.avi") }), 1, "does not exist");
}

// 4K frames go the whole way at their size, and a recording covers the time
// it took even when the encoder cannot keep up with the camera (frames repeat
// then, as the AVI's fixed rate needs).
TEST_F(CliRecording, FourKFramesKeepTheirSizeAndTheirTime)
{
    const CliRun shot = Run({ "snapshot", "-q", "--format", "3840x2160", Path("4k.bmp") });
    ASSERT_EQ(shot.code, 0) << shot.err.toStdString();
    EXPECT_EQ(QImageReader(Path("4k.bmp")).size(), QSize(3840, 2160));
    const CliRun run = Run({ "record", "--format", "3840x2160", "--seconds", "0.5", Path("4k.avi") });
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const auto probe = ProbeVideo(Path("4k.avi"));
    EXPECT_EQ(probe.value("width"), "3840");
    EXPECT_EQ(probe.value("height"), "2160");
    EXPECT_GE(probe.value("nb_read_frames").toInt(), 8) << run.err.toStdString();
}

TEST_F(CliTimelapse, PicturesAtTheIntervalNamedAsTheQuickSaveNamesThem)
{
    QElapsedTimer clock;
    clock.start();
    const CliRun run = Run(QStringList { "timelapse", "--interval", "1", "--count", "3", "--out", work.path(),
                               "--prefix", "slide" }
        + kSmall);
    const qint64 took = clock.elapsed();
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(Files(), QStringList({ "slide0.jpg", "slide1.jpg", "slide2.jpg" }));
    EXPECT_TRUE(run.err.contains("Picture 3/3: " + Path("slide2.jpg"))) << run.err.toStdString();
    // Picture k is due k intervals after the start: never sooner.
    EXPECT_GE(took, 3000);
    FCObjImage picture;
    ASSERT_TRUE(picture.Load(Path("slide1.jpg")));
    EXPECT_EQ(picture.Width(), 640);

    // The running number is the program's: stored back, and continued.
    const QString settings = home.filePath("data/Setting.ini");
    EXPECT_EQ(GetPrivateProfileInt("Save", "Suffix", -1, settings), 3);
    WritePrivateProfileString("Save", "Prefix", "set", settings);
    WritePrivateProfileString("Save", "FilePath", work.path(), settings);
    WritePrivateProfileString("Save", "bBmp", "1", settings);
    const CliRun fromSettings
        = Run(QStringList { "timelapse", "-q", "--interval", "0.2", "--count", "1" } + kSmall);
    ASSERT_EQ(fromSettings.code, 0) << fromSettings.err.toStdString();
    EXPECT_TRUE(QFile::exists(Path("set3.bmp"))) << Files().join(' ').toStdString();
    EXPECT_EQ(GetPrivateProfileInt("Save", "Suffix", -1, settings), 4);
}

TEST_F(CliTimelapse, WaitCountsDownAndAFullDiskStopsTheRun)
{
    QElapsedTimer clock;
    clock.start();
    const CliRun run = Run(QStringList { "timelapse", "--wait", "2", "--interval", "0.5", "--count", "1",
                               "--out", work.path(), "--prefix", "w" }
        + kSmall);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_GE(clock.elapsed(), 2500);
    EXPECT_TRUE(run.err.contains("Starting in 2 s\n")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("Starting in 1 s\n")) << run.err.toStdString();
    EXPECT_EQ(Files(), QStringList({ "w0.jpg" }));

    const CliRun full = Run(QStringList { "timelapse", "--interval", "0.2", "--count", "3", "--out",
                                work.path(), "--prefix", "f", "--bmp" }
            + kSmall,
        true, 64 * 1024);
    EXPECT_ONE_ERROR(full, 1, "cannot write " + Path("f1.bmp").toUtf8());
    EXPECT_EQ(Files(), QStringList({ "w0.jpg" })) << "nothing half-written";
}

// Pictures saved as the program saves them: the file, then the measurements
// kept in it by the same code the document's save runs.
class CliPictures : public CliFixture
{
protected:
    struct Saved
    {
        QByteArray comma;
        QByteArray semicolon;
    };

    Saved SaveMeasured(const QString& name, const QByteArray& shapes, const CalibrationRecord& unit)
    {
        CGVLElemMgr mgr;
        mgr.SetUnit(unit);
        mgr.SetAppearance({ .precision = kPrecision });
        mgr.CreateShape(ShapeType::Ruler);
        EXPECT_GT(ShapesFromJson(mgr, shapes), 0);
        SavePlain(name);
        QString error;
        EXPECT_TRUE(MeasurementXmp::Write(Path(name), mgr, true, 1.0, 1.0, &error)) << error.toStdString();
        Saved saved;
        for (QByteArray* csv : { &saved.comma, &saved.semicolon }) {
            QBuffer buffer(csv);
            buffer.open(QIODevice::WriteOnly);
            csv == &saved.comma ? mgr.WriteCsv(buffer) : mgr.WriteCsvSemicolon(buffer);
        }
        return saved;
    }

    void SavePlain(const QString& name, const QImage& image = QImage())
    {
        FCObjImage picture;
        QImage plain(320, 240, QImage::Format_RGB888);
        plain.fill(QColor(200, 200, 190));
        ASSERT_TRUE(picture.FromQImage(image.isNull() ? plain : image));
        ASSERT_TRUE(picture.Save(Path(name))) << name.toStdString();
    }

    static QByteArray Read(const QString& path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
    }

    // The precision the program's settings hold, not the default one.
    static constexpr int kPrecision = 3;
};
using CliMeasure = CliPictures;
using CliCalibrate = CliPictures;

TEST_F(CliMeasure, ReproducesTheProgramsExportPerPicture)
{
    QDir().mkpath(home.filePath("data"));
    WritePrivateProfileString("Measure", "Precision", "3", home.filePath("data/Setting.ini"));
    const Saved a = SaveMeasured("a.jpg",
        R"([{"points":[[220,30],[20,30]],"type":2},{"points":[[50,50],[150,50],[50,150]],"type":3},)"
        R"({"points":[[200,100],[240,100]],"type":6},{"points":[[10,10]],"type":1}])",
        { 0, 1.25, 1.3, 250, 260 });
    const Saved b = SaveMeasured("b.png",
        R"([{"points":[[30,30],[130,30],[30,90],[130,90]],"type":4},)"
        R"({"points":[[50,100],[150,100],[150,200],[70,180]],"type":5},)"
        R"({"points":[[100,10],[200,110],[100,210]],"type":7}])",
        { 1, 0.002, 0.002, 0.4, 0.4 });
    ASSERT_TRUE(a.comma.startsWith("No.,Type,Result,Unit\n1,Line distance,250.000, um\n"))
        << a.comma.toStdString();
    SavePlain("plain.png");
    SavePlain("plain.bmp");

    const CliRun one = Run({ "measure", Path("a.jpg") }, false);
    ASSERT_EQ(one.code, 0) << one.err.toStdString();
    EXPECT_EQ(one.out.toUtf8().toStdString(), a.comma.toStdString());
    EXPECT_TRUE(one.err.isEmpty()) << one.err.toStdString();

    const CliRun toFile = Run({ "measure", "--semicolon", Path("b.png"), "--csv", Path("b.csv") }, false);
    ASSERT_EQ(toFile.code, 0) << toFile.err.toStdString();
    EXPECT_TRUE(toFile.out.isEmpty());
    EXPECT_EQ(Read(Path("b.csv")).toStdString(), b.semicolon.toStdString());

    // --precision over the setting: the line of 250 um with five decimals.
    const CliRun precise = Run({ "measure", "--precision", "5", Path("a.jpg") }, false);
    ASSERT_EQ(precise.code, 0) << precise.err.toStdString();
    EXPECT_TRUE(precise.out.startsWith("No.,Type,Result,Unit\n1,Line distance,250.00000, um\n"))
        << precise.out.toStdString();

    const CliRun several = Run(
        { "measure", Path("a.jpg"), Path("plain.bmp"), Path("b.png"), "--csv", Path("all.csv") }, false);
    ASSERT_EQ(several.code, 0) << several.err.toStdString();
    EXPECT_EQ(Read(Path("all.csv")).toStdString(),
        ("File," + Path("a.jpg").toUtf8() + "\n" + a.comma + "\nFile," + Path("b.png").toUtf8() + "\n"
            + b.comma + "\n")
            .toStdString());
    EXPECT_TRUE(several.err.contains(Path("plain.bmp") + ": no measurements stored in this picture\n"))
        << several.err.toStdString();

    EXPECT_ONE_ERROR(
        Run({ "measure", Path("plain.png") }, false), 1, Path("plain.png") + ": no measurements stored");
    const CliRun none
        = Run({ "measure", Path("plain.png"), Path("plain.bmp"), "--csv", Path("n.csv") }, false);
    EXPECT_EQ(none.code, 1);
    EXPECT_TRUE(none.err.endsWith("oculix-cli: none of the pictures holds measurements\n"))
        << none.err.toStdString();
    EXPECT_ONE_ERROR(
        Run({ "measure", Path("a.jpg"), Path("gone.jpg") }, false), 1, "cannot read " + Path("gone.jpg"));
    // A full disk leaves no half table.
    EXPECT_ONE_ERROR(Run({ "measure", Path("a.jpg"), "--csv", Path("full.csv") }, false, 20), 1,
        "cannot write " + Path("full.csv") + ": no more room for the file");
    EXPECT_EQ(Files(), QStringList({ "a.jpg", "all.csv", "b.csv", "b.png", "plain.bmp", "plain.png" }));
}

// Pictures from strangers: an invalid calibration is said on stderr and the
// settings' is used; 20,000 shapes with some beyond reach are exported with
// a note; shapes that are all damaged are no measurements (exit 1).
TEST_F(CliMeasure, HostilePicturesAreReadWithAReasonOrRefused)
{
    SavePlain("strange.jpg");
    ASSERT_TRUE(PictureXmp::Write(Path("strange.jpg"),
        { { "Unit", "-7" }, { "XPerPixel", "nan" }, { "YPerPixel", "1" },
            { "Shapes", "[[2,10,10,150,10]]" } }));
    const CliRun strange = Run({ "measure", Path("strange.jpg") }, false);
    EXPECT_EQ(strange.code, 0) << strange.err.toStdString();
    EXPECT_EQ(strange.err.toStdString(),
        ("oculix-cli: " + Path("strange.jpg")
            + ": this picture's calibration is not valid; the current calibration is used\n")
            .toStdString());
    EXPECT_TRUE(strange.out.contains("1,Line distance,28.0, mm")) << strange.out.toStdString();

    QByteArray many = "[";
    for (int i = 0; i < 20000; ++i)
        many += "[11," + QByteArray::number(i % 300) + "," + QByteArray::number(i / 300) + "],";
    many += "[2,2147483647,0,5,5],[5,1,1,1e308,4,9,9]]";
    SavePlain("many.png");
    ASSERT_TRUE(PictureXmp::Write(Path("many.png"), { { "Shapes", QString::fromLatin1(many) } }));
    const CliRun large = Run({ "measure", Path("many.png") }, false);
    EXPECT_EQ(large.code, 0) << large.err.toStdString();
    EXPECT_EQ(large.out.count('\n'), 1) << "markers have no rows";
    EXPECT_ONE_ERROR(large, 0, "2 stored shapes were left out: 2 with coordinates beyond 100000 pixels");

    SavePlain("damaged.jpg");
    ASSERT_TRUE(PictureXmp::Write(Path("damaged.jpg"), { { "Shapes", "[[[[[[" } }));
    const CliRun damaged = Run({ "measure", Path("damaged.jpg") }, false);
    EXPECT_EQ(damaged.code, 1);
    EXPECT_TRUE(damaged.err.contains("1 damaged or of a kind this program does not know"))
        << damaged.err.toStdString();
    EXPECT_TRUE(damaged.err.contains("no measurements stored in this picture")) << damaged.err.toStdString();
}

TEST_F(CliCalibrate, FindsTheSimulatedCamerasPitchWithinItsUncertainty)
{
    // Frame 0 of the camera's 1280 x 1024 mode, with its noise, drift and
    // vignetting, straight and with the slide turned.
    const double truth = CSimScene::MicrometresPerPixel(1280);
    struct Case
    {
        const char* division;
        double rotation;
    };
    for (const Case& c : { Case { "0.01mm", 0.0 }, Case { "0.001cm", 25.0 } }) {
        CSimScene scene(1280, 1024);
        CSimScene::Controls controls;
        controls.rotation = c.rotation;
        scene.SetControls(controls);
        SavePlain("slide.png", scene.RenderRgb(0));
        const CliRun json = Run({ "calibrate", "--division", c.division, "--json", Path("slide.png"),
                                    "--save", Path("slide.svr") },
            false);
        ASSERT_EQ(json.code, 0) << c.division << json.err.toStdString();
        const QJsonObject result = QJsonDocument::fromJson(json.out.toUtf8()).object();
        EXPECT_EQ(result["unit"].toString(), "um") << json.out.toStdString();
        const double u = result["x_uncertainty"].toDouble();
        EXPECT_GT(u, 0);
        EXPECT_LT(u, 0.01);
        EXPECT_NEAR(result["x_per_pixel"].toDouble(), truth, u) << c.rotation;
        EXPECT_EQ(result["y_per_pixel"].toDouble(), result["x_per_pixel"].toDouble());
        EXPECT_EQ(result["y_uncertainty"].toDouble(), u);
        SvrData saved;
        ASSERT_EQ(SvrFile::Read(Path("slide.svr"), saved), SvrFile::Status::Ok);
        EXPECT_EQ(saved.m_strXPerPixel, "1.2500");
        EXPECT_EQ(saved.m_nUnit, 0);
    }
    const CliRun text = Run({ "calibrate", "--division", "10um", Path("slide.png") }, false);
    ASSERT_EQ(text.code, 0) << text.err.toStdString();
    EXPECT_TRUE(text.out.startsWith("1 px = 1.2500")) << text.out.toStdString();
    EXPECT_TRUE(text.out.contains(" µm ± 0.0")) << text.out.toStdString();

    // No micrometer: a failure, and no calibration file.
    SavePlain("blank.png");
    EXPECT_ONE_ERROR(
        Run({ "calibrate", "--division", "0.01mm", Path("blank.png"), "--save", Path("b.svr") }, false), 1,
        Path("blank.png") + ": No micrometer scale found: ");
    EXPECT_ONE_ERROR(Run({ "calibrate", "--division", "0.01mm", Path("gone.png") }, false), 1,
        "cannot read " + Path("gone.png"));
    EXPECT_EQ(Files(), QStringList({ "blank.png", "slide.png", "slide.svr" }));
}

} // namespace
