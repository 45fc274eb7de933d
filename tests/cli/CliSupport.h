#pragma once

#include "image/FCObjImage.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>

// One run of the oculix-cli executable.
struct CliRun
{
    int code = -1;
    QString out;
    QString err;
};

// Runs oculix-cli as a script would, with its own data folder (so the
// user's settings are never touched) and, when asked, a file-size limit
// that plays a full disk.
class CliFixture : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(home.isValid()); }

    QProcessEnvironment Environment(bool demo) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("OCULIX_DATA_DIR"), home.filePath(QStringLiteral("data")));
        env.remove(QStringLiteral("OCULIX_DEMO_CAMERA"));
        if (demo)
            env.insert(QStringLiteral("OCULIX_DEMO_CAMERA"), QStringLiteral("1"));
        return env;
    }

    // fileSizeLimit > 0: writes beyond that many bytes fail as on a full disk.
    QProcess* Start(const QStringList& args, bool demo = true, long fileSizeLimit = 0)
    {
        auto* p = new QProcess;
        m_processes.emplace_back(p);
        p->setProcessEnvironment(Environment(demo));
        if (fileSizeLimit > 0)
            p->setChildProcessModifier([fileSizeLimit] {
                std::signal(SIGXFSZ, SIG_IGN);
                const rlimit limit { rlim_t(fileSizeLimit), rlim_t(fileSizeLimit) };
                setrlimit(RLIMIT_FSIZE, &limit);
            });
        p->start(QStringLiteral(OCULIX_CLI), args);
        return p;
    }

    static CliRun Finish(QProcess* p, int timeoutMs = 120000)
    {
        CliRun run;
        if (!p->waitForFinished(timeoutMs)) {
            p->kill();
            p->waitForFinished();
            run.err = QStringLiteral("<timed out>");
            return run;
        }
        run.code = p->exitStatus() == QProcess::NormalExit ? p->exitCode() : -p->exitCode() - 1000;
        run.out = QString::fromUtf8(p->readAllStandardOutput());
        run.err = QString::fromUtf8(p->readAllStandardError());
        return run;
    }

    CliRun Run(const QStringList& args, bool demo = true, long fileSizeLimit = 0)
    {
        return Finish(Start(args, demo, fileSizeLimit));
    }

    QString Path(const QString& name) const { return work.filePath(name); }
    // Every file in the work folder, hidden ones too: nothing half-written stays.
    QStringList Files() const
    {
        return QDir(work.path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    QTemporaryDir home;
    QTemporaryDir work;

private:
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

// "oculix-cli: ..." on one line, nothing else.
inline bool IsOneErrorLine(const QString& err)
{
    return err.startsWith(QStringLiteral("oculix-cli: ")) && err.count(QLatin1Char('\n')) == 1
        && err.endsWith(QLatin1Char('\n'));
}

// Evaluates run once: it is often the run itself.
#define EXPECT_ONE_ERROR(run, code_, fragment)                                                               \
    do {                                                                                                     \
        const CliRun oneError_ = (run);                                                                      \
        EXPECT_EQ(oneError_.code, (code_)) << oneError_.err.toStdString();                                   \
        EXPECT_TRUE(IsOneErrorLine(oneError_.err)) << oneError_.err.toStdString();                           \
        EXPECT_TRUE(oneError_.err.contains(QString(fragment))) << oneError_.err.toStdString();               \
    } while (0)
