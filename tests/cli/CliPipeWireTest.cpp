#include "CliSupport.h"
#include "PipeWireRigSuite.h"
#include "RequiredTools.h"
#include "TestFiles.h"

#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

// Cameras a real PipeWire offers, through the command line. One rig serves
// the suite; each test starts the cameras it streams from.

namespace {

const QString kCaps640 = QStringLiteral("video/x-raw,format=YUY2,width=640,height=480,framerate=30/1");

class CliPipeWire : public PipeWireRigSuite<CliFixture>
{
protected:
    void TearDown() override
    {
        for (pid_t pid : m_cameras)
            s_rig->StopCamera(pid);
    }

    pid_t Camera(
        const QString& name, const QString& caps, const QString& source = QStringLiteral("pattern=smpte"))
    {
        const pid_t pid = s_rig->StartCamera(name, caps, source);
        EXPECT_NE(pid, 0) << s_rig->Error().toStdString();
        m_cameras.push_back(pid);
        return pid;
    }
    void Unplug(pid_t pid)
    {
        s_rig->StopCamera(pid);
        m_cameras.erase(std::remove(m_cameras.begin(), m_cameras.end(), pid), m_cameras.end());
    }

    std::vector<pid_t> m_cameras;
};

QString LastLine(const QString& text)
{
    return text.trimmed().section(QLatin1Char('\n'), -1);
}

} // namespace

// Each camera with the name the chooser shows, its source and the format its
// node offers, in the form --format takes.
TEST_F(CliPipeWire, ListsEachCameraWithItsFormats)
{
    Camera(QStringLiteral("Rig Scope One"), kCaps640);
    Camera(QStringLiteral("Rig Scope Two"),
        QStringLiteral("video/x-raw,format=I420,width=1280,height=720,framerate=15/1"));
    const CliRun run = Run({ "devices", "--json" }, false);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    const QJsonArray list = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QStringList found;
    for (const QJsonValue& v : list) {
        const QJsonObject camera = v.toObject();
        QStringList formats;
        for (const QJsonValue& f : camera[QStringLiteral("formats")].toArray())
            formats << f.toObject()[QStringLiteral("argument")].toString();
        found << camera[QStringLiteral("name")].toString() + QLatin1Char(' ')
                + camera[QStringLiteral("api")].toString() + QLatin1Char(' ')
                + formats.join(QLatin1Char(','));
    }
    EXPECT_EQ(found.join(QLatin1Char('|')).toStdString(),
        "Rig Scope One pipewire 640x480@30:YUY2|Rig Scope Two pipewire 1280x720@15:I420");
}

// The picture is the camera's, chosen by its name; a camera taken away is
// gone from the list, and back again it serves pictures again.
TEST_F(CliPipeWire, SnapshotHasTheCamerasColourAndTheCameraComesBack)
{
    const QString colour = QStringLiteral("pattern=solid-color foreground-color=0xff2060c0");
    const pid_t first = Camera(QStringLiteral("Rig Solid"), kCaps640, colour);
    Camera(QStringLiteral("Rig Bars"), kCaps640);
    auto snapshotColour = [&](const QString& file) {
        const CliRun run = Run({ "snapshot", "--device", "Rig Solid", Path(file) }, false);
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        const QImage picture(Path(file));
        EXPECT_EQ(picture.size(), QSize(640, 480));
        return picture.isNull() ? QColor() : picture.pixelColor(320, 240);
    };
    auto near = [](const QColor& c) {
        return std::abs(c.red() - 0x20) <= 3 && std::abs(c.green() - 0x60) <= 3
            && std::abs(c.blue() - 0xc0) <= 3;
    };
    const QColor before = snapshotColour(QStringLiteral("before.png"));
    EXPECT_TRUE(near(before)) << before.name().toStdString();

    Unplug(first);
    EXPECT_ONE_ERROR(Run({ "snapshot", "--device", "Rig Solid", Path("gone.png") }, false), 1,
        "no camera named \"Rig Solid\" (cameras: Rig Bars)");
    Camera(QStringLiteral("Rig Solid"), kCaps640, colour);
    const QColor after = snapshotColour(QStringLiteral("after.png"));
    EXPECT_TRUE(near(after)) << after.name().toStdString();
}

// PipeWire keeps the stream of a node that went away waiting: the device
// watcher's word ends it, as a pulled camera's read error does, with the
// frames so far in a file that plays.
TEST_F(CliPipeWire, ARecordingWhoseCameraGoesAwayKeepsThePlayableFramesAndFails)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    const pid_t camera = Camera(QStringLiteral("Rig Recorded"), kCaps640);
    QProcess* p = Start({ "record", "--device", "Rig Recorded", "--seconds", "60", Path("clip.avi") }, false);
    QString err;
    QElapsedTimer clock;
    clock.start();
    while (!err.contains(QLatin1String("Recording: 1 s")) && clock.elapsed() < 20000
        && p->state() != QProcess::NotRunning) {
        p->waitForReadyRead(100);
        err += QString::fromUtf8(p->readAllStandardError());
    }
    ASSERT_TRUE(err.contains(QLatin1String("Recording: 1 s"))) << err.toStdString();
    Unplug(camera);
    CliRun run = Finish(p, 30000);
    run.err.prepend(err);
    EXPECT_EQ(run.code, 1) << run.err.toStdString();
    EXPECT_EQ(LastLine(run.err).toStdString(),
        QStringLiteral("oculix-cli: recording to %1 failed: The camera stopped sending pictures. It may have "
                       "been unplugged. The frames recorded so far are kept in %1.")
            .arg(Path("clip.avi"))
            .toStdString());
    EXPECT_GE(PlayableFrames(Path("clip.avi")), 20);
    EXPECT_EQ(Files(), QStringList({ "clip.avi" })) << "nothing half-written beside it";
}
