#include "app/CSingleInstance.h"

#include "platform/DebugLog.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>

#include <unistd.h>

namespace {

constexpr int kConnectMs = 1000;
constexpr int kAnswerMs = 2000;
constexpr int kLockMs = 5000;
constexpr int kRetryMs = 300;
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
    if (TellRunningCopy(name))
        return false;
    if (QFileInfo::exists(name)) {
        // Nobody answered: a copy that is just ending (a restart starts the
        // new copy before the old one lets go), or one that crashed.
        QThread::msleep(kRetryMs);
        if (TellRunningCopy(name))
            return false;
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

bool CSingleInstance::IsOwner() const
{
    return m_server != nullptr;
}

void CSingleInstance::Release()
{
    if (!m_server)
        return;
    m_server->close();
    delete m_server;
    m_server = nullptr;
}
