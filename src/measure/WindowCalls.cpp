#include "measure/WindowCalls.h"

#include <QCoreApplication>
#include <QRect>
#include <QThread>
#include <QWidget>

namespace {

bool OnWindowThread(const QWidget* window)
{
    return QThread::currentThread() == window->thread();
}

} // namespace

void InvalidateWindow(QWidget* window)
{
    if (!window)
        return;
    if (OnWindowThread(window))
        window->update();
    else
        QMetaObject::invokeMethod(
            window, [window] { window->update(); }, Qt::QueuedConnection);
}

void InvalidateWindow(QWidget* window, const QRect& rect)
{
    if (!window || rect.isEmpty())
        return;
    if (OnWindowThread(window))
        window->update(rect);
    else
        QMetaObject::invokeMethod(
            window, [window, rect] { window->update(rect); }, Qt::QueuedConnection);
}

void SendCalibrationChanged(QWidget* window)
{
    if (!window)
        return;
    if (OnWindowThread(window)) {
        QEvent event(kCalibrationChangedEvent);
        QCoreApplication::sendEvent(window, &event);
    } else {
        QCoreApplication::postEvent(window, new QEvent(kCalibrationChangedEvent));
    }
}
