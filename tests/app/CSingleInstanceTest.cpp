#include "app/CSingleInstance.h"

#include "app/ProgramProcess.h"

#include <QFileInfo>

#include <csignal>
#include <unistd.h>

namespace {

const QString kStarted = QStringLiteral("started in");

} // namespace

TEST(Instance, SecondCopyBringsTheFirstForwardAndEnds)
{
    ProgramHome home;
    ProgramProcess first(home);
    ASSERT_TRUE(first.WaitForLog(kStarted)) << first.log.toStdString();

    ProgramProcess second(home, { "/slides/a.bmp" });
    ASSERT_TRUE(second.WaitForExit()) << second.log.toStdString();
    EXPECT_EQ(second.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.process.exitCode(), 0);
    EXPECT_FALSE(second.log.contains(kStarted));
    EXPECT_TRUE(second.log.contains("another copy runs")) << second.log.toStdString();

    EXPECT_TRUE(first.WaitForLog("a second copy started: brought to the front", 10000))
        << first.log.toStdString();
    EXPECT_EQ(first.process.state(), QProcess::Running);

    // The first copy ends as from the window, and frees the name for the next.
    first.process.terminate();
    ASSERT_TRUE(first.WaitForExit());
    EXPECT_EQ(first.process.exitCode(), 0) << first.log.toStdString();
    ProgramProcess third(home);
    EXPECT_TRUE(third.WaitForLog(kStarted)) << third.log.toStdString();
}

TEST(Instance, SocketLeftByACrashedCopyDoesNotBlockTheNext)
{
    ProgramHome home;
    ProgramProcess crashed(home);
    ASSERT_TRUE(crashed.WaitForLog(kStarted)) << crashed.log.toStdString();
    crashed.process.kill();
    ASSERT_TRUE(crashed.WaitForExit());

    const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    const QString socket = CSingleInstance::ServerName();
    saved.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", saved);
    ASSERT_TRUE(QFileInfo::exists(socket)) << "the crash should leave its socket";

    ProgramProcess next(home);
    EXPECT_TRUE(next.WaitForLog(kStarted)) << next.log.toStdString();
    EXPECT_TRUE(next.log.contains("taking over the stale instance socket"));
}

// A first copy that hangs (stopped) still holds the name: the second starts
// no program of its own and tells the user; once the first is gone, the
// next copy takes over its socket.
TEST(Instance, HangingFirstCopyKeepsTheNameAndTheUserIsTold)
{
    ProgramHome home;
    ProgramProcess first(home);
    ASSERT_TRUE(first.WaitForLog(kStarted)) << first.log.toStdString();
    ASSERT_EQ(::kill(pid_t(first.process.processId()), SIGSTOP), 0);

    ProgramProcess second(home);
    EXPECT_TRUE(second.WaitForLog("another copy runs and does not answer: told the user", 20000))
        << second.log.toStdString();
    EXPECT_FALSE(second.log.contains(kStarted)) << second.log.toStdString();
    second.process.kill();
    ASSERT_TRUE(second.WaitForExit());
    EXPECT_FALSE(second.log.contains(kStarted)) << second.log.toStdString();

    first.process.kill();
    ::kill(pid_t(first.process.processId()), SIGCONT);
    ASSERT_TRUE(first.WaitForExit());
    ProgramProcess next(home);
    EXPECT_TRUE(next.WaitForLog(kStarted)) << next.log.toStdString();
}

TEST(Instance, NameIsPerUserInTheRuntimeFolder)
{
    const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", "/");
    const QString name = CSingleInstance::ServerName();
    EXPECT_EQ(name, QStringLiteral("/Oculix-%1-{1AB792D6-EAF2-3267-9A84-91356G1127A4}").arg(geteuid()));
    qputenv("XDG_RUNTIME_DIR", "/no/such/folder");
    EXPECT_TRUE(CSingleInstance::ServerName().startsWith(QDir::tempPath() + "/Oculix-"));
    saved.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", saved);
}
