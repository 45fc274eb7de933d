#pragma once

#include <QObject>

#include <csignal>

class QSocketNotifier;

// Turns SIGTERM and SIGINT into a Qt signal on the user-interface thread, so
// that they end the program the same orderly way as closing the window. One
// watcher at a time; the previous handlers come back when it is destroyed.
class CExitSignalWatcher : public QObject
{
    Q_OBJECT

public:
    explicit CExitSignalWatcher(QObject* parent = nullptr);
    ~CExitSignalWatcher() override;

    bool IsInstalled() const { return m_notifier != nullptr; }

signals:
    void exitRequested(int signalNumber);

private:
    static void Handler(int signalNumber);
    void ReadSignal();

    QSocketNotifier* m_notifier = nullptr;
    struct sigaction m_oldTerm
    {
    };
    struct sigaction m_oldInt
    {
    };
};
