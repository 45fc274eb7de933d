#include "app/CExitSignalWatcher.h"

#include "platform/DebugLog.h"

#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The handler may only write to a descriptor; the notifier reads the other end.
int g_fds[2] = { -1, -1 };

} // namespace

CExitSignalWatcher::CExitSignalWatcher(QObject* parent)
    : QObject(parent)
{
    if (g_fds[0] != -1) {
        qCWarning(lcApp) << "a signal watcher already exists";
        return;
    }
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, g_fds) != 0) {
        qCWarning(lcApp) << "no socket pair for SIGTERM/SIGINT:" << strerror(errno);
        g_fds[0] = g_fds[1] = -1;
        return;
    }
    struct sigaction action
    {
    };
    action.sa_handler = &CExitSignalWatcher::Handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, &m_oldTerm);
    sigaction(SIGINT, &action, &m_oldInt);

    m_notifier = new QSocketNotifier(g_fds[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &CExitSignalWatcher::ReadSignal);
}

CExitSignalWatcher::~CExitSignalWatcher()
{
    if (!m_notifier)
        return;
    sigaction(SIGTERM, &m_oldTerm, nullptr);
    sigaction(SIGINT, &m_oldInt, nullptr);
    delete m_notifier;
    ::close(g_fds[0]);
    ::close(g_fds[1]);
    g_fds[0] = g_fds[1] = -1;
}

void CExitSignalWatcher::Handler(int signalNumber)
{
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    const int saved = errno;
    [[maybe_unused]] const ssize_t written = ::write(g_fds[0], &byte, 1);
    errno = saved;
}

void CExitSignalWatcher::ReadSignal()
{
    unsigned char byte = 0;
    while (::read(g_fds[1], &byte, 1) == 1)
        emit exitRequested(byte);
}
