#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The real program in a process of its own, headless, with a home, data,
// configuration and runtime folder shared by the copies of one test. Its
// start-up traces go to stderr, which the tests read.
class ProgramHome
{
public:
    ProgramHome() { EXPECT_TRUE(dir.isValid()); }

    QProcessEnvironment Environment() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", dir.path());
        env.insert("XDG_RUNTIME_DIR", dir.path());
        env.insert("XDG_CONFIG_HOME", dir.filePath("config"));
        env.insert("OCULIX_DATA_DIR", dir.filePath("data"));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("QT_LOGGING_RULES", "oculix.app.info=true");
        // Without a camera start-up stops at a message box; the simulated one
        // lets it run through.
        env.insert("OCULIX_DEMO_CAMERA", "1");
        return env;
    }

    QString path() const { return dir.path(); }
    QString filePath(const QString& name) const { return dir.filePath(name); }

private:
    QTemporaryDir dir;
};

class ProgramProcess
{
public:
    ProgramProcess(const ProgramHome& home, const QStringList& arguments = {})
    {
        process.setProcessEnvironment(home.Environment());
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.start(QStringLiteral(OCULIX_PROGRAM_FILE), arguments);
    }
    ~ProgramProcess()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(5000);
        }
    }

    // Waits until stderr holds text; false after timeoutMs or when the
    // program ended without it.
    bool WaitForLog(const QString& text, int timeoutMs = 30000)
    {
        QElapsedTimer timer;
        timer.start();
        while (!log.contains(text)) {
            if (timer.elapsed() > timeoutMs)
                return false;
            if (process.state() == QProcess::NotRunning) {
                log += QString::fromLocal8Bit(process.readAllStandardError());
                return log.contains(text);
            }
            process.waitForReadyRead(100);
            log += QString::fromLocal8Bit(process.readAllStandardError());
        }
        return true;
    }

    bool WaitForExit(int timeoutMs = 30000)
    {
        const bool ended = process.waitForFinished(timeoutMs);
        log += QString::fromLocal8Bit(process.readAllStandardError());
        return ended;
    }

    QProcess process;
    QString log;
};
