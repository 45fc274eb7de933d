#include "capture/CDialogTimers.h"

#include <QDeadlineTimer>
#include <QTimerEvent>

#include <algorithm>

CDialogTimers::CDialogTimers(std::function<void(int)> onTick, QObject* parent)
    : QObject(parent)
    , m_onTick(std::move(onTick))
{
}

void CDialogTimers::SetTimer(int id, int periodMs)
{
    KillTimer(id);
    Timer t;
    t.period = std::max(1, periodMs);
    if (m_manual)
        t.due = m_now + t.period;
    else
        t.qtId = startTimer(t.period, Qt::PreciseTimer);
    m_timers[id] = t;
}

void CDialogTimers::KillTimer(int id)
{
    auto it = m_timers.find(id);
    if (it == m_timers.end())
        return;
    if (it->second.qtId)
        killTimer(it->second.qtId);
    m_timers.erase(it);
}

void CDialogTimers::UseManualClock()
{
    for (auto& [id, t] : m_timers) {
        if (t.qtId)
            killTimer(t.qtId);
        t.qtId = 0;
        t.due = m_now + t.period;
    }
    m_manual = true;
}

void CDialogTimers::Advance(int ms)
{
    const qint64 end = m_now + ms;
    for (;;) {
        // The earliest due timer; equal times go by id, as a message queue would.
        auto next = m_timers.end();
        for (auto it = m_timers.begin(); it != m_timers.end(); ++it)
            if (it->second.due <= end && (next == m_timers.end() || it->second.due < next->second.due))
                next = it;
        if (next == m_timers.end())
            break;
        m_now = next->second.due;
        next->second.due += next->second.period;
        m_onTick(next->first);
    }
    m_now = end;
}

qint64 CDialogTimers::Now() const
{
    if (m_manual)
        return m_now;
    return QDeadlineTimer::current().deadline();
}

void CDialogTimers::timerEvent(QTimerEvent* event)
{
    for (const auto& [id, t] : m_timers)
        if (t.qtId == event->timerId()) {
            const int tick = id;
            m_onTick(tick);
            return;
        }
}
