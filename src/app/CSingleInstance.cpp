#include "app/CSingleInstance.h"

#include "platform/DebugLog.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>

#include <limits>
#include <unistd.h>

namespace {

constexpr int kConnectMs = 1000;
constexpr int kAnswerMs = 2000;
constexpr int kLockMs = 5000;
constexpr int kRetryMs = 300;
// How long a copy that does not answer gets to end, as one being restarted does.
constexpr int kEndingMs = 3000;
const QByteArray kActivate = QByteArrayLiteral("activate\n");
const QByteArray kAnswer = QByteArrayLiteral("shown\n");

} // namespace

CSingleInstance::CSingleInstance(QObject* parent)
    : QObject(parent)
{
}

CSingleInstance::~CSingleInstance()
{
    Release();
}

QString CSingleInstance::ServerName()
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || !QDir(folder).exists())
        folder = QDir::tempPath();
    // The uid keeps users apart even in a shared temporary folder.
    return QDir(folder).filePath(
        QStringLiteral("Oculix-%1-%2").arg(geteuid()).arg(QLatin1String(kMutexName)));
}

bool CSingleInstance::Acquire()
{
    if (m_server)
        return true;
    const QString name = ServerName();
    // listen() replaces whatever socket file is there, so asking and
    // listening happen under a lock: two copies started together cannot both
    // find nobody and both listen.
    QLockFile lock(name + QStringLiteral(".lock"));
    if (!lock.tryLock(kLockMs))
        qCWarning(lcApp) << "instance lock not taken:" << lock.error();
    m_bNoAnswer = false;
    if (TellRunningCopy(name))
        return false;
    if (QFileInfo::exists(name)) {
        // Nobody answered: a copy that is just ending (a restart starts the
        // new copy before the old one lets go), one that crashed, or one that
        // hangs and would still write the settings.
        if (LivingHolder(name) == 0) {
            QThread::msleep(kRetryMs);
            if (TellRunningCopy(name))
                return false;
        }
        QElapsedTimer ending;
        ending.start();
        while (LivingHolder(name) != 0 && ending.elapsed() < kEndingMs)
            QThread::msleep(kRetryMs);
        if (const qint64 holder = LivingHolder(name)) {
            qCWarning(lcApp) << "the first copy (process" << holder << ") does not answer";
            m_bNoAnswer = true;
            return false;
        }
        if (QFileInfo::exists(name))
            qCInfo(lcApp) << "taking over the stale instance socket" << name;
    }
    QLocalServer::removeServer(name);
    auto* server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(name)) {
        // Not being able to guard is no reason to refuse to run.
        qCWarning(lcApp) << "single instance unavailable:" << server->errorString();
        delete server;
        return true;
    }
    m_server = server;
    QFile pid(name + QStringLiteral(".pid"));
    if (!pid.open(QIODevice::WriteOnly | QIODevice::Truncate) || pid.write(QByteArray::number(getpid())) <= 0)
        qCWarning(lcApp) << "cannot name this copy's process beside the instance socket:"
                         << pid.errorString();
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                if (!socket->canReadLine())
                    return;
                if (socket->readLine() == kActivate) {
                    socket->write(kAnswer);
                    socket->flush();
                    emit activationRequested();
                }
                socket->disconnectFromServer();
            });
        }
    });
    return true;
}

bool CSingleInstance::TellRunningCopy(const QString& name)
{
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(kConnectMs))
        return false;
    socket.write(kActivate);
    socket.waitForBytesWritten(kConnectMs);
    // Only a copy whose event loop runs answers; a listening socket alone
    // may belong to one on its way out.
    while (!socket.canReadLine() && socket.waitForReadyRead(kAnswerMs)) { }
    return socket.canReadLine() && socket.readLine() == kAnswer;
}

qint64 CSingleInstance::LivingHolder(const QString& name)
{
    QFile file(name + QStringLiteral(".pid"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    bool ok = false;
    const qint64 pid = file.read(32).trimmed().toLongLong(&ok);
    if (!ok || pid <= 0 || pid == getpid() || pid > std::numeric_limits<pid_t>::max())
        return 0;
    // A number reused by another program, or a copy that ended and was not
    // yet collected by its parent, holds nothing.
    const QString proc = QStringLiteral("/proc/%1").arg(pid);
    if (QFileInfo(proc + QStringLiteral("/exe")).canonicalFilePath()
        != QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath())
        return 0;
    QFile stat(proc + QStringLiteral("/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.readAll();
    const qsizetype end = line.lastIndexOf(')');
    if (end < 0 || end + 2 >= line.size() || line[end + 2] == 'Z' || line[end + 2] == 'X')
        return 0;
    return pid;
}

bool CSingleInstance::IsOwner() const
{
    return m_server != nullptr;
}

void CSingleInstance::Release()
{
    if (!m_server)
        return;
    const QString name = m_server->fullServerName();
    m_server->close();
    delete m_server;
    m_server = nullptr;
    QFile pid(name + QStringLiteral(".pid"));
    if (pid.open(QIODevice::ReadOnly) && pid.read(32).trimmed() == QByteArray::number(getpid())) {
        pid.close();
        pid.remove();
    }
}
