#include "measure/WindowCalls.h"

#include <QCoreApplication>
#include <QObject>
#include <QThread>

#include <memory>

namespace {

// Takes the event: sent at once on the window's thread, else posted there
// (Qt deletes a posted event after delivery, or with a window that went).
void Deliver(QObject* window, std::unique_ptr<QEvent> event)
{
    if (QThread::currentThread() == window->thread())
        QCoreApplication::sendEvent(window, event.get());
    else
        QCoreApplication::postEvent(window, event.release());
}

} // namespace

void InvalidateWindow(QObject* window)
{
    if (window)
        Deliver(window, std::make_unique<RepaintRequestEvent>());
}

void InvalidateWindow(QObject* window, const QRect& rect)
{
    if (window && !rect.isEmpty())
        Deliver(window, std::make_unique<RepaintRequestEvent>(rect));
}

void SendCalibrationChanged(QObject* window)
{
    if (window)
        Deliver(window, std::make_unique<QEvent>(kCalibrationChangedEvent));
}
