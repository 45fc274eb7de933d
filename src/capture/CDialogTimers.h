#pragma once

#include <QObject>

#include <functional>
#include <map>

// Numbered timers for a dialog (SetTimer / KillTimer / a tick per id), as the
// record and interval dialogs count in them. A manual clock lets a test move
// time on instead of waiting for it.
class CDialogTimers : public QObject
{
public:
    explicit CDialogTimers(std::function<void(int id)> onTick, QObject* parent = nullptr);

    // Starts or restarts timer id with that period.
    void SetTimer(int id, int periodMs);
    void KillTimer(int id);
    bool IsRunning(int id) const { return m_timers.count(id) != 0; }

    // From now on ticks come only from Advance (tests).
    void UseManualClock();
    // Moves the manual clock on, delivering every tick that falls due in
    // time order (a tick may set or kill timers).
    void Advance(int ms);
    // Milliseconds on this clock: the manual one, or a monotonic one.
    qint64 Now() const;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Timer
    {
        int period = 0;
        int qtId = 0;
        qint64 due = 0; // manual clock
    };
    std::function<void(int)> m_onTick;
    std::map<int, Timer> m_timers;
    bool m_manual = false;
    qint64 m_now = 0;
};
