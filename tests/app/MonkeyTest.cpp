// The whole program driven at random: commands of the command table with
// their dialogs answered at random, mouse gestures with every tool, zoom,
// pause, documents opened and closed, restarts. The run is reproducible from
// its seed: OCULIX_MONKEY_SEED and OCULIX_MONKEY_ACTIONS choose it, and a
// failure, a crash, a sanitizer report or a hang prints the seed and the
// actions so far.
#include "MeasureFrameFixture.h"
#include "app/CommandTable.h"
#include "platform/MessageBox.h"
#include "ui/CRulerSettingDlg.h"

#include <QDesktopServices>
#include <QDialog>
#include <QFileInfo>
#include <QImage>
#include <QPointer>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

// One run per build, each from its own seed, so that the suite tries 5,000
// different actions in all; the sanitizers' run is sized to stay near a
// minute.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kDefaultActions = 1000;
constexpr unsigned kDefaultSeed = 7919;
#else
constexpr int kDefaultActions = 4000;
constexpr unsigned kDefaultSeed = 1318;
#endif

// The actions so far, one a line, kept as one text so that a signal handler
// can write it without allocating.
std::string g_journal;

void WriteJournal()
{
    static const char header[] = "\n== monkey actions so far (last one was running):\n";
    [[maybe_unused]] auto n = ::write(2, header, sizeof header - 1);
    n = ::write(2, g_journal.data(), g_journal.size());
}

// Prints the journal on a crash, then lets the handler that was there before
// (the sanitizer's, or the default) do its work.
class CrashJournal
{
public:
    CrashJournal()
    {
        struct sigaction action
        {
        };
        action.sa_handler = &CrashJournal::OnSignal;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &action, &s_previous[i]);
#if defined(__SANITIZE_ADDRESS__)
        __sanitizer_set_death_callback(&WriteJournal);
#endif
    }
    ~CrashJournal()
    {
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &s_previous[i], nullptr);
#if defined(__SANITIZE_ADDRESS__)
        __sanitizer_set_death_callback(nullptr);
#endif
    }

private:
    static constexpr int kSignals[] { SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL };
    static inline struct sigaction s_previous[std::size(kSignals)];
    static void OnSignal(int signal)
    {
        WriteJournal();
        for (std::size_t i = 0; i < std::size(kSignals); ++i)
            if (kSignals[i] == signal)
                sigaction(signal, &s_previous[i], nullptr);
        std::raise(signal);
    }
};

// Aborts with the journal when no action finishes for a minute: a dialog
// nobody answers or a wait without end.
class HangWatch
{
public:
    HangWatch()
        : m_thread([this] { Watch(); })
    {
    }
    ~HangWatch()
    {
        {
            std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }
    void Progress() { ++m_progress; }

private:
    void Watch()
    {
        std::unique_lock lock(m_mutex);
        int seen = -1;
        while (!m_wake.wait_for(lock, std::chrono::seconds(60), [this] { return m_stop; })) {
            if (m_progress == seen) {
                static const char text[] = "\n== monkey: no progress for 60 s, a hang\n";
                [[maybe_unused]] auto n = ::write(2, text, sizeof text - 1);
                std::abort();
            }
            seen = m_progress;
        }
    }

    std::atomic<int> m_progress { 0 };
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stop = false;
    std::thread m_thread;
};

// Receives the URLs the program hands to the desktop (the manual, the
// picture folder), which would otherwise start a viewer outside the test.
class UrlSink : public QObject
{
    Q_OBJECT
public:
    int opened = 0;
public slots:
    void open(const QUrl&) { ++opened; }
};

unsigned EnvNumber(const char* name, unsigned fallback)
{
    bool ok = false;
    const unsigned value = qEnvironmentVariable(name).toUInt(&ok);
    return ok ? value : fallback;
}

} // namespace

// The program with the simulated camera, its message boxes and modal
// dialogs answered (at random, or as a test tells), and a journal of what
// was done.
class Monkey : public MeasureFrameTest
{
protected:
    enum Answer { Accept, Reject, Close, AnyAnswer };

    void SetUp() override
    {
        QDir::setCurrent(home.path()); // file dialogs accepted as proposed write here
        g_journal.clear();
        CMeasureApp::SetRestartLauncher([](const QString&, const QProcessEnvironment&) { return true; });
        QDesktopServices::setUrlHandler(QStringLiteral("file"), &urls, "open");
        QObject::connect(&answerer, &QTimer::timeout, [this] { AnswerModal(); });
        answerer.start(5);
    }
    void TearDown() override
    {
        answerer.stop();
        if (HasFailure())
            WriteJournal();
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        CMeasureApp::SetRestartLauncher({});
        MeasureFrameTest::TearDown();
        QDir::setCurrent(savedDir);
    }

    // What the event loop does between two user actions, closed windows'
    // deferred deletion included.
    static void Idle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void Note(const QString& line) { g_journal.append(line.toStdString()).append("\n"); }

    // Answers the modal widget on top; the answer is queued so that this
    // timer is free again for a dialog the answer itself opens.
    void AnswerModal()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) {
            seenModal = nullptr;
            return;
        }
        if (modal == queuedFor)
            return;
        if (modal != seenModal) {
            seenModal = modal;
            tries = 0;
            modalsSeen << QString::fromLatin1(modal->metaObject()->className());
        }
        // A dialog that will not go (a file dialog accepted with nothing
        // chosen) is cancelled, and after that hidden with a failure.
        Answer answer = ++tries > 3 ? Reject : nextAnswer;
        if (answer == AnyAnswer)
            answer = Answer(std::uniform_int_distribution(0, 2)(answerRng));
        Note(QStringLiteral("  answer %1 \"%2\" %3")
                 .arg(QString::fromLatin1(modal->metaObject()->className()), modal->windowTitle(),
                     QStringList { "accept", "reject", "close" }.at(answer)));
        queuedFor = modal;
        QMetaObject::invokeMethod(
            modal,
            [this, modal, answer] {
                queuedFor = nullptr;
                auto* dialog = qobject_cast<QDialog*>(modal);
                if (tries > 6) {
                    ADD_FAILURE() << "a modal " << modal->metaObject()->className() << " does not close";
                    modal->hide();
                } else if (dialog && answer == Accept)
                    dialog->accept();
                else if (dialog && answer == Reject)
                    dialog->reject();
                else
                    modal->close();
            },
            Qt::QueuedConnection);
    }

    int AnswerBox(const MessageBoxRequest& request)
    {
        std::vector<int> answers { IDOK };
        switch (request.flags & 0xF) {
        case MB_OKCANCEL:
            answers = { IDOK, IDCANCEL };
            break;
        case MB_YESNOCANCEL:
            answers = { IDYES, IDNO, IDCANCEL };
            break;
        case MB_YESNO:
            answers = { IDYES, IDNO };
            break;
        default:
            break;
        }
        const int answer = nextAnswer == AnyAnswer
            ? answers[std::uniform_int_distribution<std::size_t>(0, answers.size() - 1)(answerRng)]
            : answers.back();
        Note(QStringLiteral("  box \"%1\" -> %2").arg(request.text.left(80)).arg(answer));
        boxes << request.text;
        return answer;
    }

    // Small pictures of each kind the program opens, one that cannot be read
    // and one that is not there.
    QStringList WritePictures()
    {
        QImage image(48, 36, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x * 5, y * 7, (x ^ y) * 8));
        QStringList paths;
        for (const char* name : { "a.bmp", "b.png", "c.jpg" }) {
            paths << home.filePath(QString::fromLatin1(name));
            EXPECT_TRUE(image.save(paths.back()));
        }
        paths << home.filePath("broken.png") << home.filePath("missing.bmp");
        QFile broken(paths[3]);
        EXPECT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write("\x89PNG\r\n\x1a\n garbage") > 0);
        return paths;
    }

    std::mt19937 answerRng;
    Answer nextAnswer = AnyAnswer;
    QStringList modalsSeen;
    QStringList boxes;
    UrlSink urls;
    ScopedMessageBoxHandler boxAnswerer { [this](const MessageBoxRequest& r) { return AnswerBox(r); } };

private:
    QTimer answerer;
    QPointer<QWidget> seenModal;
    QPointer<QWidget> queuedFor;
    int tries = 0;
    const QString savedDir = QDir::currentPath();
};

TEST_F(Monkey, RandomActionsOverTheWholeProgram)
{
    const unsigned seed = EnvNumber("OCULIX_MONKEY_SEED", kDefaultSeed);
    const int count = int(EnvNumber("OCULIX_MONKEY_ACTIONS", kDefaultActions));
    std::printf("monkey: OCULIX_MONKEY_SEED=%u OCULIX_MONKEY_ACTIONS=%d\n", seed, count);
    std::fflush(stdout);
    Note(QStringLiteral("seed %1, %2 actions").arg(seed).arg(count));
    std::mt19937 rng(seed);
    answerRng.seed(seed + 1);
    CrashJournal crashJournal;
    HangWatch hangWatch;
    const QStringList pictures = WritePictures();
    Start();
    ASSERT_FALSE(HasFatalFailure());

    // Commands that end the program (exit, and the language commands that
    // restart it) are a restart of their own below; everything else in the
    // table is fair game, the desktop's viewers caught by the URL sink.
    std::vector<int> commands;
    std::vector<int> ending { ID_APP_EXIT, ID_LANGUAGE_ENGLISH, ID_LANGUAGE_FRENCH, ID_LANGUAGE_CHINESE };
    for (const CommandInfo& info : Commands())
        if (std::ranges::count(ending, info.id) == 0)
            commands.push_back(info.id);
    const int tools[] { ID_MEASURE_POINT, ID_MEASURE_LINE, ID_MEASURE_ANGLE, ID_MEASURE_RECT,
        ID_MEASURE_POLYGON, ID_MEASURE_CIRCLE, ID_MEASURE_TRICIRCLE, ID_MEASURE_COUNTING, ID_MEASURE_ARROW,
        ID_MEASURE_TEXT, ID_MEASURE_MOVE, ID_MEASURE_DELETE, ID_MEASURE_CALIBRATION };
    const auto pick = [&rng](auto& range) {
        return range[std::uniform_int_distribution<std::size_t>(0, std::size(range) - 1)(rng)];
    };
    const auto chance = [&rng](int percent) { return std::uniform_int_distribution(0, 99)(rng) < percent; };
    int ran = 0;
    const auto route = [&](int id) {
        Note(QStringLiteral("command %1").arg(id));
        ran += frame->RouteCommand(id);
    };

    // A few presses, moves and releases of either button over the active
    // view's overlay, some of them a little outside it.
    const auto gesture = [&] {
        CMeasureView* view = ActiveView();
        QPointer<QWidget> wnd = view ? view->GetOverlayWnd() : nullptr;
        if (!wnd)
            return;
        const QSize size = wnd->size();
        const auto point = [&] {
            return QPoint(std::uniform_int_distribution(-20, size.width() + 20)(rng),
                std::uniform_int_distribution(-20, size.height() + 20)(rng));
        };
        const auto send = [&](QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
            if (!wnd)
                return;
            QMouseEvent event(type, QPointF(at), QPointF(wnd->mapToGlobal(at)), button, held, Qt::NoModifier);
            QApplication::sendEvent(wnd, &event);
        };
        const int steps = std::uniform_int_distribution(1, 5)(rng);
        for (int step = 0; step < steps; ++step) {
            const QPoint from = point();
            const QPoint to = chance(70) ? from
                    + QPoint(std::uniform_int_distribution(-150, 150)(rng),
                        std::uniform_int_distribution(-150, 150)(rng))
                                         : from;
            switch (std::uniform_int_distribution(0, 4)(rng)) {
            case 0: // a drag
            case 1:
                Note(
                    QStringLiteral("  drag %1,%2 %3,%4").arg(from.x()).arg(from.y()).arg(to.x()).arg(to.y()));
                send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
                for (QPoint at : { from, (from + to) / 2, to })
                    send(QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
                send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
                break;
            case 2: // a click
                Note(QStringLiteral("  click %1,%2").arg(from.x()).arg(from.y()));
                send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
                send(QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
                break;
            case 3: // a double click
                Note(QStringLiteral("  double click %1,%2").arg(from.x()).arg(from.y()));
                send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
                send(QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
                send(QEvent::MouseButtonDblClick, from, Qt::LeftButton, Qt::LeftButton);
                send(QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
                break;
            default: // the right button, or a move with no button held
                Note(QStringLiteral("  right %1,%2 move %3,%4")
                         .arg(from.x())
                         .arg(from.y())
                         .arg(to.x())
                         .arg(to.y()));
                send(QEvent::MouseButtonPress, from, Qt::RightButton, Qt::RightButton);
                send(QEvent::MouseButtonRelease, from, Qt::RightButton, Qt::NoButton);
                send(QEvent::MouseMove, to, Qt::NoButton, Qt::NoButton);
                break;
            }
        }
    };

    for (int action = 0; action < count && !HasFatalFailure(); ++action) {
        Note(QStringLiteral("#%1").arg(action));
        const int kind = std::uniform_int_distribution(0, 99)(rng);
        if (kind < 40) {
            route(pick(commands));
        } else if (kind < 70) {
            route(pick(tools));
            gesture();
        } else if (kind < 78) {
            // Half of the time back to 100 %, where the live video can be drawn on.
            const int index = chance(50)
                ? CMeasureDoc::kZoomActualSize
                : std::uniform_int_distribution(0, frame->GetZoomBox()->count() - 1)(rng);
            Note(QStringLiteral("zoom %1").arg(index));
            frame->GetZoomBox()->setCurrentIndex(index);
            emit frame->GetZoomBox()->activated(index);
        } else if (kind < 82) {
            route(chance(50) ? ID_CAMERA_PAUSE : ID_CAMERA_PREVIEW);
        } else if (kind < 85) {
            route(ID_FILE_NEW);
        } else if (kind < 89) {
            route(ID_FILE_CLOSE);
        } else if (kind < 93) {
            const QString picture = pick(pictures);
            Note(QStringLiteral("open %1").arg(picture));
            app->OpenDocumentFile(picture);
        } else if (kind < 96) {
            const auto children = frame->GetChildFrames();
            if (!children.empty()) {
                const std::size_t index
                    = std::uniform_int_distribution<std::size_t>(0, children.size() - 1)(rng);
                Note(QStringLiteral("activate child %1").arg(index));
                frame->GetMdiArea()->setActiveSubWindow(children[index]);
            }
        } else if (kind < 99) {
            const int ms = std::uniform_int_distribution(5, 60)(rng);
            Note(QStringLiteral("wait %1 ms").arg(ms));
            WaitFor([] { return false; }, ms);
        } else if (chance(30)) {
            // The program ends and starts again, camera and all.
            route(pick(ending));
            Note(QStringLiteral("restart"));
            ASSERT_TRUE(WaitFor([&] { return !frame->isVisible(); }, 5000)) << "the frame stays";
            app->ExitInstance(0);
            app.reset();
            Start();
        }
        Idle();
        ASSERT_EQ(QApplication::activeModalWidget(), nullptr) << "a dialog outlived its command";
        ASSERT_NE(app->GetMainFrame(), nullptr);
        ASSERT_TRUE(frame->isVisible());
        std::size_t documents = 0;
        for (const auto& docTemplate : app->GetDocTemplates())
            documents += docTemplate->GetDocuments().size();
        ASSERT_EQ(documents, frame->GetChildFrames().size());
        hangWatch.Progress();
    }
    std::printf("monkey: %d actions, %d enabled commands run, %lld modal dialogs and %lld message boxes "
                "answered\n",
        count, ran, static_cast<long long>(modalsSeen.size()), static_cast<long long>(boxes.size()));
}

// Every command of the table, triggered once with its visible effect or its
// dialog (answered with Cancel). The rows run in order on the live document,
// with four pictures open behind it; the commands that end the program come
// last, each followed by a new start.
TEST_F(Monkey, EveryCommandOfTheTableHasItsEffect)
{
    nextAnswer = Reject;
    const QStringList pictures = WritePictures();
    Start();
    ASSERT_FALSE(HasFatalFailure());
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(app->OpenDocumentFile(pictures[i]), nullptr);
    ASSERT_NE(app->OpenDocumentFile(pictures[0]), nullptr); // the fourth recent file is the first again
    QStringList recent = app->GetRecentFiles();
    ASSERT_EQ(recent.size(), 3);
    ASSERT_TRUE(QFile::copy(pictures[1], home.filePath("d.png")));
    ASSERT_NE(app->OpenDocumentFile(home.filePath("d.png")), nullptr);
    recent = app->GetRecentFiles();
    ASSERT_EQ(recent.size(), kRecentFileCount);

    const auto documents = [&] { return int(frame->GetChildFrames().size()); };
    const auto saved = [&] { return int(QDir(home.filePath("data/Images")).entryList(QDir::Files).size()); };
    const auto checked = [&](int id) { return [this, id] { return frame->QueryCommand(id).IsChecked(); }; };
    const auto drawLine = [&] {
        frame->RouteCommand(ID_MEASURE_LINE);
        Drag(ActiveView()->GetOverlayWnd(), QPoint(40, 40), QPoint(140, 90));
        return ShapeTypes(*live).size() > 1;
    };
    // The outcomes, each checked right after the command ran.
    using Effect = std::function<void(int id)>;
    const auto shows = [&](const char* dialog) -> Effect {
        return [&, dialog](int id) {
            const qsizetype before = modalsSeen.size();
            EXPECT_TRUE(frame->RouteCommand(id));
            ASSERT_GT(modalsSeen.size(), before) << "no dialog";
            EXPECT_EQ(modalsSeen[before].toStdString(), dialog);
        };
    };
    const auto changes = [&](std::function<int()> count, int by) -> Effect {
        return [=, this](int id) {
            const int before = count();
            EXPECT_TRUE(frame->RouteCommand(id));
            EXPECT_EQ(count(), before + by);
        };
    };
    const auto flips = [&](std::function<bool()> state) -> Effect {
        return [=, this](int id) {
            const bool before = state();
            EXPECT_TRUE(frame->RouteCommand(id));
            EXPECT_NE(state(), before);
            EXPECT_TRUE(frame->RouteCommand(id));
            EXPECT_EQ(state(), before);
        };
    };
    const auto makes = [&](std::function<bool()> state) -> Effect {
        return [=, this](int id) {
            EXPECT_TRUE(frame->RouteCommand(id));
            EXPECT_TRUE(state());
        };
    };
    const auto opensRecent = [&](int index) -> Effect {
        return [&, index](int id) {
            const QString name = QFileInfo(recent[index]).fileName();
            EXPECT_TRUE(frame->RouteCommand(id));
            EXPECT_EQ(ActiveDoc()->GetTitle(), name);
        };
    };
    const auto hidesBar = [&](int id) {
        QWidget* bar = id == ID_VIEW_STATUS_BAR ? static_cast<QWidget*>(frame->statusBar())
                                                : static_cast<QWidget*>(frame->FindToolBar(id));
        ASSERT_NE(bar, nullptr);
        flips([bar] { return bar->isHidden(); })(id);
        EXPECT_TRUE(frame->QueryCommand(id).IsChecked());
    };
    const auto tool = [&](int id) { makes(checked(id))(id); };
    const auto ends = [&](int id) {
        EXPECT_TRUE(frame->RouteCommand(id));
        EXPECT_TRUE(WaitFor([&] { return !frame->isVisible(); }, 5000));
        EXPECT_EQ(app->GetRestartFlag(), id != ID_APP_EXIT);
        app->ExitInstance(0);
        app.reset();
        Start(false);
    };
    const auto fullScreen = [&] { return live->GetGraph().IsFullScreen(); };
    const auto arranged = [&](int id) {
        frame->GetChildFrames().front()->showMaximized();
        makes([&] { return frame->GetMdiArea()->viewMode() == QMdiArea::SubWindowView; })(id);
    };

    const std::pair<int, Effect> rows[] {
        // A new preview only while there is no live document.
        { ID_FILE_CLOSE,
            [&](int id) {
                changes(documents, -1)(id);
                Idle();
                EXPECT_EQ(CMeasureDoc::GetLiveDocument(), nullptr);
            } },
        { ID_FILE_NEW,
            [&](int id) {
                changes(documents, +1)(id);
                live = CMeasureDoc::GetLiveDocument();
                ASSERT_NE(live, nullptr);
                EXPECT_TRUE(WaitFor([&] { return HasFrame(*live); }, 30000));
            } },
        { ID_FILE_OPEN, shows("DlgSelectFile") },
        { ID_PROCESS_FOCUS_STACK, shows("DlgSelectFile") },
        { ID_FILE_SAVE, changes(saved, +1) },
        { ID_FILE_SAVE_PLUS_MEASURE, changes(saved, +1) },
        { ID_FILE_SAVE_ONLY_IMAGE, changes(saved, +1) },
        { ID_FILE_SAVE_AS, shows("CSaveAsDlg") },
        { ID_FILE_SAVE_AS_ONLY_IMAGE, shows("CSaveAsDlg") },
        { ID_FILE_SAVE_AS_PLUS_MEASURE, shows("CSaveAsDlg") },
        { ID_SAVE_OPTION, shows("CSaveOptionDlg") },
        { ID_SAVE_RESOLUTION, shows("CResolutionDlg") },
        { ID_FILE_MRU_FILE1, opensRecent(0) },
        { ID_FILE_MRU_FILE1 + 1, opensRecent(1) },
        { ID_FILE_MRU_FILE1 + 2, opensRecent(2) },
        { ID_FILE_MRU_FILE1 + 3, opensRecent(3) },
        { ID_FILE_OPEN_PICTURE_FOLDER, changes([&] { return urls.opened; }, +1) },
        { ID_HELP_MANUAL, changes([&] { return urls.opened + int(boxes.size()); }, +1) },
        { ID_HELP_CONTENT,
            [&](int id) {
                const int before = int(modalsSeen.size() + boxes.size()) + urls.opened + documents();
                EXPECT_FALSE(frame->RouteCommand(id)) << "no action";
                EXPECT_EQ(int(modalsSeen.size() + boxes.size()) + urls.opened + documents(), before);
            } },
        { ID_APP_ABOUT, shows("CAboutDlg") },
        { ID_FILE_PRINT_PREVIEW, shows("QPrintPreviewDialog") },
        { ID_WINDOW_CASCADE, arranged },
        { ID_WINDOW_TILE_HORZ, arranged },
        { ID_WINDOW_TILE_VERT, arranged },
        { ID_VIEW_TOOLBAR, hidesBar },
        { ID_VIEW_MEASUREBAR, hidesBar },
        { ID_VIEW_PROCESSBAR, hidesBar },
        { ID_VIEW_PRINTHELPBAR, hidesBar },
        { ID_VIEW_STATUS_BAR, hidesBar },
        { ID_VIEW_HISTOGRAM, flips(checked(ID_VIEW_HISTOGRAM)) },
        { ID_VIEW_FULLSCREEN, flips(fullScreen) },
        { ID_CAMERA_FULLSCREEN, flips(fullScreen) },
        { ID_VIEW_CROSSLINE, flips(checked(ID_VIEW_CROSSLINE)) },
        { ID_VIEW_DASHED_CROSSLINE, flips(checked(ID_VIEW_DASHED_CROSSLINE)) },
        { ID_MEASURE_SNAP_EDGES, flips(checked(ID_MEASURE_SNAP_EDGES)) },
        { ID_ZOOM,
            [&](int id) {
                frame->GetZoomBox()->setCurrentIndex(CMeasureDoc::kZoomActualSize);
                makes([&] { return live->GetZoomIndex() == CMeasureDoc::kZoomActualSize; })(id);
            } },
        { ID_CAMERA_CAPTURE, changes(documents, +1) },
        { ID_CAMERA_PAUSE, makes([&] { return !live->IsPreviewRunning(); }) },
        { ID_CAMERA_PREVIEW, makes([&] { return live->IsPreviewRunning(); }) },
        { ID_CAMERA_RECORD, shows("CRecordDlg") },
        { ID_CAMERA_INTERVAL, shows("CIntervalCapDlg") },
        { ID_VIDEO_DEVICE, shows("CChooseDeviceDlg") },
        { ID_VIDEO_RESOLUTION, shows("CFormatDlg") },
        { ID_VIDEO_PROPERTIES, shows("CDevicePropertiesDlg") },
        { ID_VIDEO_ADJUST, shows("CDevicePropertiesDlg") },
        { ID_VIDEO_FLAT_FIELD, shows("CFlatFieldDlg") },
        { ID_VIDEO_FOCUS_PEAKING, flips(checked(ID_VIDEO_FOCUS_PEAKING)) },
        { ID_VIDEO_PEAKING_COLOR, shows("QColorDialog") },
        // Started, then cancelled: nothing is kept.
        { ID_VIDEO_FOCUS_STACK, makes(checked(ID_VIDEO_FOCUS_STACK)) },
        { ID_VIDEO_FOCUS_STACK_CANCEL, changes(documents, 0) },
        { ID_VIDEO_MOSAIC, flips(checked(ID_VIDEO_MOSAIC)) },
        { ID_PROCESS_FLIP, flips(checked(ID_PROCESS_FLIP)) },
        { ID_PROCESS_MIRROR, flips(checked(ID_PROCESS_MIRROR)) },
        { ID_PROCESS_GRAY, flips(checked(ID_PROCESS_GRAY)) },
        { ID_PROCESS_NEGATIVE, flips(checked(ID_PROCESS_NEGATIVE)) },
        { ID_PROCESS_EMBOSS, flips(checked(ID_PROCESS_EMBOSS)) },
        { ID_PROCESS_SHARPEN, flips(checked(ID_PROCESS_SHARPEN)) },
        { ID_PROCESS_ENABLE, flips(checked(ID_PROCESS_ENABLE)) },
        { ID_PROCESS_BINARY, shows("CBinaryDlg") },
        { ID_PROCESS_RGB, shows("CRgbDlg") },
        { ID_PROCESS_PROPERTIES, shows("CProcessPropertiesDlg") },
        { ID_PROCESS_STITCH, shows("DlgSelectFile") },
        { ID_MEASURE_MOVE, tool },
        { ID_MEASURE_POINT, tool },
        { ID_MEASURE_LINE, tool },
        { ID_MEASURE_ANGLE, tool },
        { ID_MEASURE_RECT, tool },
        { ID_MEASURE_CIRCLE, tool },
        { ID_MEASURE_TRICIRCLE, tool },
        { ID_MEASURE_POLYGON, tool },
        { ID_MEASURE_COUNTING, tool },
        { ID_MEASURE_ARROW, tool },
        { ID_MEASURE_TEXT, tool },
        { ID_MEASURE_DELETE, tool },
        { ID_MEASURE_EXPORT,
            [&](int id) {
                ASSERT_TRUE(drawLine());
                shows("QFileDialog")(id);
            } },
        { ID_EDIT_UNDO, changes([&] { return int(ShapeTypes(*live).size()); }, -1) },
        { ID_EDIT_REDO, changes([&] { return int(ShapeTypes(*live).size()); }, +1) },
        { ID_MEASURE_SNAP_EDGES, flips(checked(ID_MEASURE_SNAP_EDGES)) },
        { ID_MEASURE_DELETE_ALL, makes([&] { return ShapeTypes(*live) == std::vector<int> { 9 }; }) },
        // No rectangle left to balance on: a box says what to draw.
        { ID_VIDEO_WHITE_BALANCE, changes([&] { return int(boxes.size()); }, +1) },
        { ID_MEASURE_CALIBRATION, flips([&] { return live->GetCalibrationDialog()->isVisible(); }) },
        { ID_MEASURE_SETTING, shows("CMeasureColorDlg") },
        { ID_MEASURE_PARTICLES, shows("CParticlesDlg") },
        { ID_MEASURE_EXPORT_ROIS,
            [&](int id) {
                ASSERT_TRUE(drawLine());
                shows("QFileDialog")(id);
            } },
        { ID_MEASURE_IMPORT_ROIS, shows("QFileDialog") },
        { ID_LANGUAGE_FRENCH, ends },
        { ID_LANGUAGE_CHINESE, ends },
        { ID_LANGUAGE_ENGLISH, ends },
        { ID_APP_EXIT, ends },
    };
    std::set<int> covered;
    for (const auto& [id, effect] : rows) {
        SCOPED_TRACE(id);
        covered.insert(id);
        if ((live = CMeasureDoc::GetLiveDocument()))
            frame->GetMdiArea()->setActiveSubWindow(FrameOf(live));
        effect(id);
        Idle();
        ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
    }
    std::set<int> all;
    for (const CommandInfo& info : Commands())
        all.insert(info.id);
    EXPECT_EQ(covered, all);
}

#include "MonkeyTest.moc"
