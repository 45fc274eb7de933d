#include "capture/CRecordDlg.h"

#include "CaptureTestSupport.h"
#include "FakeLiveDocument.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "capture/CDialogTimers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <sys/resource.h>

namespace {

const QString kRecordDlgCamera = QStringLiteral("Record Dialog Camera");

// Which buttons are on: Browse, Start, Pause, Stop.
std::string Buttons(const CRecordDlg& d)
{
    std::string s;
    for (const QPushButton* b : { d.BrowseButton(), d.StartButton(), d.PauseButton(), d.StopButton() })
        s += b->isEnabled() ? '1' : '0';
    return s;
}

class RecordDialog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        AddCapsCamera(kRecordDlgCamera, kSmallCameraCaps);
        ASSERT_TRUE(StartPreview(graph, kRecordDlgCamera));
        document = std::make_unique<FakeLiveDocument>(graph, dir.filePath(QStringLiteral("Setting.ini")));
        overlay.assign(320 * 240 * 3, 1);
        document->m_overlay = overlay.data();
        dialog = std::make_unique<CRecordDlg>(document.get());
        dialog->Timers().UseManualClock();
        previous = CRecordDlg::SetBrowseHandler([this](QWidget*, const QString& name) {
            proposed = name;
            return chosen;
        });
    }
    void TearDown() override
    {
        dialog.reset();
        CRecordDlg::SetBrowseHandler(previous);
        graph.StopGraph();
    }

    // Recording time passes on both clocks: frames really flow, the dialog's
    // timer ticks on the manual clock.
    void Record(int ms)
    {
        Pump(ms);
        dialog->Timers().Advance(ms);
    }

    SimCameraScope cameras;
    MessageCollector messages;
    QTemporaryDir dir;
    std::vector<uchar> overlay; // outlives the graph's frames
    CXCapGraph graph;
    std::unique_ptr<FakeLiveDocument> document;
    std::unique_ptr<CRecordDlg> dialog;
    CRecordDlg::BrowseHandler previous;
    QString chosen;
    QString proposed;
};

} // namespace

TEST(RecordNames, DefaultNameFromLocalTimeAndCaseSensitiveExtension)
{
    EXPECT_EQ(CRecordDlg::DefaultFileName(QDateTime(QDate(2018, 7, 5), QTime(9, 5, 3))),
        QStringLiteral("201875953.avi"));
    EXPECT_EQ(CRecordDlg::DefaultFileName(QDateTime(QDate(2026, 12, 31), QTime(23, 59, 0))),
        QStringLiteral("2026123123590.avi"));
    EXPECT_EQ(CRecordDlg::DefaultFileName(QDateTime()), QStringLiteral("000-1-1-1.avi"));
    EXPECT_EQ(CRecordDlg::WithAviExtension(QStringLiteral("/v/clip.AVI")), QStringLiteral("/v/clip.AVI.avi"));
    EXPECT_EQ(CRecordDlg::WithAviExtension(QStringLiteral("/v/clip.avi")), QStringLiteral("/v/clip.avi"));
    EXPECT_EQ(CRecordDlg::WithAviExtension(QStringLiteral("/v/clip")), QStringLiteral("/v/clip.avi"));
}

// Start, Pause, Start, Stop: the enable pattern and state line of each step,
// Stop locked until the sixth tick, one file holding both stretches, and the
// preview back with processing and overlay afterwards.
TEST_F(RecordDialog, StartPauseResumeStopMakesOnePlayableFile)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    EXPECT_EQ(Buttons(*dialog), "1000");
    chosen.clear();
    dialog->OnBrowse();
    EXPECT_EQ(Buttons(*dialog), "1000") << "cancelled";
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Start to record"));
    EXPECT_TRUE(proposed.endsWith(QStringLiteral(".avi")));

    const QString file = dir.filePath(QStringLiteral("clip.AVI"));
    chosen = file;
    dialog->OnBrowse();
    EXPECT_EQ(dialog->RecordPath(), file + QStringLiteral(".avi"));
    EXPECT_EQ(dialog->PathText(), dialog->RecordPath());
    EXPECT_EQ(Buttons(*dialog), "1100");

    CameraFrameLog log(graph.DeviceElement());
    ASSERT_TRUE(log.IsAttached());
    dialog->OnStart();
    EXPECT_EQ(Buttons(*dialog), "0010");
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Recording"));
    EXPECT_TRUE(graph.IsRecordGraph());
    EXPECT_EQ(document->m_readBacks, 1);
    EXPECT_EQ(document->m_viewUpdates, 1);
    QStringList states;
    for (int tick = 1; tick <= 5; ++tick) {
        Record(1000 / 5);
        dialog->Timers().Advance(1000 - 1000 / 5);
        states << dialog->StateText();
    }
    EXPECT_EQ(states.last(), QStringLiteral("Recording....."));
    EXPECT_EQ(states.first(), QStringLiteral("Recording."));
    EXPECT_EQ(Buttons(*dialog), "0010") << "Stop stays locked for six ticks";
    Record(1000);
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Recording......"));
    EXPECT_EQ(Buttons(*dialog), "0011");
    dialog->Timers().Advance(1000);
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Recording.")) << "the dots start over";
    EXPECT_TRUE(dialog->InfoText().startsWith(QStringLiteral("00:00:07")))
        << dialog->InfoText().toStdString();
    EXPECT_TRUE(dialog->InfoText().contains(QStringLiteral("B"))) << "the file's size";

    dialog->OnPause();
    EXPECT_EQ(Buttons(*dialog), "0101");
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Record paused"));
    Pump(2500);
    dialog->Timers().Advance(5000);
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Record paused")) << "no ticks while paused";

    dialog->OnStart();
    EXPECT_EQ(Buttons(*dialog), "0011") << "resumed: Stop stays usable";
    EXPECT_TRUE(graph.IsRecordGraph());
    EXPECT_EQ(document->m_readBacks, 1) << "resuming does not rebuild";
    Record(800);
    dialog->OnStop();
    EXPECT_EQ(Buttons(*dialog), "1000");
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Record stoped"));
    EXPECT_FALSE(dialog->IsStarted());
    EXPECT_FALSE(graph.IsRecordGraph());
    EXPECT_EQ(document->m_readBacks, 2);
    int on = 0;
    graph.GetProcessEnable(&on);
    EXPECT_EQ(on, 1);
    EXPECT_TRUE(WaitFreshFrames(graph)) << "the preview is back";
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);

    // One file, holding the stream's time with the pause left out: the camera
    // sent nothing while paused, and its timestamps went on where they stopped.
    const auto runs = log.Runs();
    ASSERT_GE(runs.size(), 1u);
    ExpectPauseLeftOut(runs[0]);
    EXPECT_NEAR(PlayableFrames(dialog->RecordPath()), RecordedFrames(runs[0]), 1)
        << runs[0].size() << " frames sent";
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList({ "clip.AVI.avi" }));
}

// A name that only the appended extension makes was never confirmed by the
// file dialog: replacing it is asked.
TEST_F(RecordDialog, AppendedNameThatExistsIsReplacedOnlyWhenConfirmed)
{
    const QString existing = dir.filePath(QStringLiteral("take.AVI.avi"));
    QFile f(existing);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("keep me");
    f.close();
    chosen = dir.filePath(QStringLiteral("take.AVI"));
    {
        ScopedMessageBoxHandler no([](const MessageBoxRequest&) { return int(IDNO); });
        dialog->OnBrowse();
    }
    EXPECT_TRUE(dialog->RecordPath().isEmpty());
    EXPECT_EQ(Buttons(*dialog), "1000");
    {
        ScopedMessageBoxHandler yes([](const MessageBoxRequest&) { return int(IDYES); });
        dialog->OnBrowse();
    }
    EXPECT_EQ(dialog->RecordPath(), existing);
    EXPECT_EQ(Buttons(*dialog), "1100");
}

// Closing the dialog mid-recording finishes the file; so does the live
// document going away, which closes the dialog.
TEST_F(RecordDialog, ClosingTheDialogOrTheDocumentFinishesTheFile)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    CameraFrameLog log(graph.DeviceElement());
    ASSERT_TRUE(log.IsAttached());
    chosen = dir.filePath(QStringLiteral("closed.avi"));
    dialog->OnBrowse();
    dialog->OnStart();
    ASSERT_TRUE(WaitFreshFrames(graph, 20, 10000));
    dialog->reject();
    EXPECT_FALSE(graph.IsRecordGraph());
    auto runs = log.Runs();
    ASSERT_GE(runs.size(), 1u);
    EXPECT_NEAR(PlayableFrames(chosen), RecordedFrames(runs[0]), 1);

    chosen = dir.filePath(QStringLiteral("gone.avi"));
    dialog->OnBrowse();
    dialog->OnStart();
    ASSERT_TRUE(WaitFreshFrames(graph, 20, 10000));
    QObject::connect(document.get(), &QObject::destroyed, dialog.get(), &CRecordDlg::OnDocumentClosed);
    document.reset();
    EXPECT_FALSE(dialog->IsStarted());
    dialog->Timers().Advance(3000);
    dialog->OnStart(); // nothing to act on any more
    graph.StopGraph(); // what the document's teardown does
    runs = log.Runs(); // no preview after the document went
    EXPECT_NEAR(PlayableFrames(chosen), RecordedFrames(runs.back()), 1);
}

namespace {

// A folder whose file system holds only a few hundred kilobytes: a tmpfs
// where the test may mount one, else the same limit on the size of any file
// this process writes (the writer then fails as on a full disk).
class SmallFileSystem
{
public:
    SmallFileSystem(const QString& folder, int kilobytes)
        : m_folder(folder)
    {
        QDir().mkpath(folder);
        m_mounted = QProcess::execute(QStringLiteral("mount"),
                        { QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                            QStringLiteral("size=%1k").arg(kilobytes), QStringLiteral("tmpfs"), folder })
            == 0;
        if (!m_mounted) {
            getrlimit(RLIMIT_FSIZE, &m_saved);
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit small { rlim_t(kilobytes) * 1024, m_saved.rlim_max };
            setrlimit(RLIMIT_FSIZE, &small);
        }
    }
    // Before anything else writes or reads the results.
    void Lift()
    {
        if (m_mounted)
            return;
        setrlimit(RLIMIT_FSIZE, &m_saved);
        m_saved = {};
    }
    ~SmallFileSystem()
    {
        if (m_mounted)
            QProcess::execute(QStringLiteral("umount"), { m_folder });
        else if (m_saved.rlim_max)
            setrlimit(RLIMIT_FSIZE, &m_saved);
    }
    bool Mounted() const { return m_mounted; }

private:
    QString m_folder;
    bool m_mounted = false;
    rlimit m_saved {};
};

} // namespace

// A camera pulled out mid-recording and a disk that fills up: the user is
// told why, the dialog shows the recording ended and offers Stop, and the
// file plays up to where it ended.
TEST_F(RecordDialog, PulledCameraAndFullDiskLeaveAPlayableFile)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    chosen = dir.filePath(QStringLiteral("pulled.avi"));
    dialog->OnBrowse();
    SetSimCameraFault(kRecordDlgCamera, SimCameraFault { 45, 0, 0 });
    dialog->OnStart();
    ASSERT_TRUE(PumpUntil([&] { return !messages.Texts().isEmpty(); }, 10000));
    dialog->Timers().Advance(1000);
    EXPECT_EQ(messages.Texts(), QStringList({ CXCapGraph::kCameraLostMessage }));
    EXPECT_EQ(dialog->StateText(), QStringLiteral("Record stoped"));
    EXPECT_TRUE(dialog->InfoText().startsWith(QStringLiteral("ended at")))
        << dialog->InfoText().toStdString();
    EXPECT_EQ(Buttons(*dialog), "0001");
    EXPECT_NEAR(PlayableFrames(chosen), 45, 6);
    ClearSimCameraFaults();
    dialog->OnStop();
    EXPECT_TRUE(WaitFreshFrames(graph)) << "plugged in again, the preview is back";

    messages.Clear();
    SmallFileSystem disk(dir.filePath(QStringLiteral("small")), 256);
    chosen = dir.filePath(QStringLiteral("small/full.avi"));
    dialog->OnBrowse();
    dialog->OnStart();
    ASSERT_TRUE(PumpUntil([&] { return !messages.Texts().isEmpty(); }, 15000)) << "the disk never filled";
    dialog->Timers().Advance(1000);
    disk.Lift();
    EXPECT_EQ(messages.Texts(), QStringList({ CXCapGraph::kRecordWriteMessage }));
    EXPECT_EQ(Buttons(*dialog), "0001");
    const qint64 size = QFileInfo(chosen).size();
    EXPECT_GT(size, 200 * 1024);
    // Frames of the small picture take some 10 to 20 kB each.
    const int frames = PlayableFrames(chosen);
    EXPECT_GT(frames, 8) << (disk.Mounted() ? "tmpfs" : "file size limit");
    dialog->OnStop();
    EXPECT_TRUE(WaitFreshFrames(graph)) << "the preview carries on";
}

// The child half of the next test: records into the file the environment
// names until it is killed.
TEST_F(RecordDialog, DISABLED_ChildRecordsUntilKilled)
{
    chosen = qEnvironmentVariable("OCULIX_RECORD_UNTIL_KILLED");
    ASSERT_FALSE(chosen.isEmpty());
    dialog->OnBrowse();
    dialog->OnStart();
    for (;;)
        Pump(1000);
}

namespace {

// The bytes of all video packets ffprobe finds in the file.
qint64 PacketBytes(const QString& file)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
        QStringLiteral("-v error -select_streams v:0 -show_entries packet=size -of csv=p=0").split(' ')
            << file);
    ffprobe.waitForFinished(30000);
    qint64 sum = 0;
    for (const QByteArray& line : ffprobe.readAllStandardOutput().split('\n'))
        sum += line.trimmed().toLongLong();
    return sum;
}

} // namespace

// A program killed outright (SIGKILL) writes no index and no final sizes,
// but every chunk the multiplexer handed over is in the file and plays; only
// the frames still queued in the process are lost.
TEST(RecordKilled, EverythingWrittenBeforeSigkillPlays)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("killed.avi"));
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("OCULIX_RECORD_UNTIL_KILLED"), file);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(),
        { QStringLiteral("--gtest_filter=RecordDialog.DISABLED_ChildRecordsUntilKilled"),
            QStringLiteral("--gtest_also_run_disabled_tests") });
    ASSERT_TRUE(child.waitForStarted());
    ASSERT_TRUE(PumpUntil([&] { return QFileInfo(file).size() > 400 * 1024; }, 30000))
        << "the child never recorded: " << child.readAll().toStdString();
    child.kill();
    ASSERT_TRUE(child.waitForFinished(10000));
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
    const qint64 size = QFileInfo(file).size();
    EXPECT_GT(PlayableFrames(file), 15);
    // Headers and chunk framing aside, the packets are the file.
    EXPECT_GT(PacketBytes(file), size * 9 / 10) << size;
}
