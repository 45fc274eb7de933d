#include "PipeWireRig.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kStartTimeoutMs = 10000;

} // namespace

QStringList PipeWireRig::MissingTools()
{
    QStringList missing;
    for (const char* tool : { "dbus-daemon", "pipewire", "wireplumber", "pw-cli", "gst-launch-1.0" })
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
            missing << QString::fromLatin1(tool);
    QProcess inspect;
    inspect.start(QStringLiteral("gst-inspect-1.0"), { QStringLiteral("pipewiresink") });
    if (!inspect.waitForFinished(10000) || inspect.exitCode() != 0)
        missing << QStringLiteral("GStreamer's pipewiresink (gstreamer1.0-pipewire)");
    return missing;
}

PipeWireRig::PipeWireRig()
{
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("no temporary folder");
        return;
    }
    // PipeWire's clients find the daemon through these; a developer's own
    // session must not be reached.
    SetEnv("XDG_RUNTIME_DIR", QFile::encodeName(m_dir.path()));
    SetEnv("PIPEWIRE_RUNTIME_DIR", {});
    SetEnv("PIPEWIRE_REMOTE", {});

    // Our child like the others, so that it dies with this process too.
    m_bus = Spawn(QStringLiteral("dbus-daemon"),
        { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1"),
            QStringLiteral("--address=unix:path=%1/bus").arg(m_dir.path()) },
        QStringLiteral("bus.address"));
    QFile printed(m_dir.filePath(QStringLiteral("bus.address")));
    QByteArray address;
    for (QDeadlineTimer deadline(kStartTimeoutMs); m_bus && !deadline.hasExpired(); QThread::msleep(10))
        if (printed.open(QIODevice::ReadOnly)) {
            address = printed.readLine().trimmed();
            printed.close();
            if (!address.isEmpty())
                break;
        }
    if (address.isEmpty()) {
        m_error = QStringLiteral("dbus-daemon did not start");
        return;
    }
    SetEnv("DBUS_SESSION_BUS_ADDRESS", address);

    m_pipewire = Spawn(QStringLiteral("pipewire"), {}, QStringLiteral("pipewire.log"));
    const QString socket = m_dir.filePath(QStringLiteral("pipewire-0"));
    for (QDeadlineTimer deadline(kStartTimeoutMs); !QFile::exists(socket) && !deadline.hasExpired();)
        QThread::msleep(10);
    if (!m_pipewire || !QFile::exists(socket)) {
        m_error = QStringLiteral("pipewire did not start");
        return;
    }
    m_wireplumber = Spawn(QStringLiteral("wireplumber"), {}, QStringLiteral("wireplumber.log"));
    if (!m_wireplumber || !WaitForWirePlumber(kStartTimeoutMs))
        m_error = QStringLiteral("wireplumber did not start");
}

PipeWireRig::~PipeWireRig()
{
    for (const auto& [pid, description] : m_cameras)
        Stop(pid);
    Stop(m_wireplumber);
    Stop(m_pipewire);
    Stop(m_bus);
    for (const auto& [name, value] : m_savedEnv)
        if (value)
            qputenv(name.constData(), *value);
        else
            qunsetenv(name.constData());
}

void PipeWireRig::SetEnv(const char* name, const QByteArray& value)
{
    if (!m_savedEnv.count(name))
        m_savedEnv[name]
            = qEnvironmentVariableIsSet(name) ? std::make_unique<QByteArray>(qgetenv(name)) : nullptr;
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

pid_t PipeWireRig::Spawn(const QString& program, const QStringList& arguments, const QString& log)
{
    const QByteArray path = QFile::encodeName(QStandardPaths::findExecutable(program));
    const QByteArray logPath = QFile::encodeName(m_dir.filePath(log));
    if (path.isEmpty())
        return 0;
    std::vector<QByteArray> storage { path };
    for (const QString& a : arguments)
        storage.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& a : storage)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid != 0)
        return pid < 0 ? 0 : pid;
    // The child, until exec: only calls that are safe after fork. A test
    // that crashes takes its daemons and cameras with it.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent)
        ::_exit(127);
    const int in = ::open("/dev/null", O_RDONLY);
    const int out = ::open(logPath.constData(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (in < 0 || out < 0)
        ::_exit(127);
    ::dup2(in, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(out, STDERR_FILENO);
    ::execv(argv[0], argv.data());
    ::_exit(127);
}

void PipeWireRig::Stop(pid_t pid)
{
    if (pid <= 0)
        return;
    ::kill(pid, SIGTERM);
    for (QDeadlineTimer deadline(3000);;) {
        const pid_t done = ::waitpid(pid, nullptr, WNOHANG);
        if (done == pid || done < 0)
            return;
        if (deadline.hasExpired()) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, nullptr, 0);
            return;
        }
        QThread::msleep(5);
    }
}

QString PipeWireRig::PwCli(const QStringList& arguments) const
{
    QProcess cli;
    cli.start(QStringLiteral("pw-cli"), arguments);
    cli.waitForFinished(5000);
    return QString::fromUtf8(cli.readAllStandardOutput());
}

bool PipeWireRig::WaitForWirePlumber(int timeoutMs)
{
    for (QDeadlineTimer deadline(timeoutMs); !deadline.hasExpired(); QThread::msleep(20))
        if (PwCli({ QStringLiteral("ls"), QStringLiteral("Client") })
                .contains(QLatin1String("application.name = \"WirePlumber\"")))
            return true;
    return false;
}

bool PipeWireRig::WaitForNode(const QString& description, bool present, int timeoutMs)
{
    const QString line = QStringLiteral("node.description = \"%1\"").arg(description);
    for (QDeadlineTimer deadline(timeoutMs); !deadline.hasExpired(); QThread::msleep(20))
        if (PwCli({ QStringLiteral("ls"), QStringLiteral("Node") }).contains(line) == present)
            return true;
    return false;
}

pid_t PipeWireRig::StartCamera(const QString& description, const QString& caps, const QString& source)
{
    if (!IsRunning())
        return 0;
    m_cameraError.clear();
    QStringList pipeline { QStringLiteral("videotestsrc"), QStringLiteral("is-live=true") };
    pipeline << source.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    pipeline << QStringLiteral("!") << caps << QStringLiteral("!") << QStringLiteral("pipewiresink")
             << QStringLiteral("mode=provide")
             // Quoted whole for gst-launch, the name again for the structure.
             << QStringLiteral("stream-properties=\"p,media.class=Video/Source,node.description=\\\"%1\\\"\"")
                    .arg(description);
    const pid_t pid = Spawn(QStringLiteral("gst-launch-1.0"), pipeline, description + QStringLiteral(".log"));
    if (!pid || !WaitForNode(description, true, kStartTimeoutMs)) {
        m_cameraError = QStringLiteral("camera %1 did not come up").arg(description);
        Stop(pid);
        return 0;
    }
    m_cameras[pid] = description;
    return pid;
}

void PipeWireRig::StopCamera(pid_t pid)
{
    const auto it = m_cameras.find(pid);
    if (it == m_cameras.end())
        return;
    const QString description = it->second;
    m_cameras.erase(it);
    Stop(pid);
    WaitForNode(description, false, kStartTimeoutMs);
}
