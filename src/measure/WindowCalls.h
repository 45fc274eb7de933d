#pragma once

#include <QEvent>
#include <QRect>

class QObject;

// The engine's calls on its window (the manager's m_hWnd), made as Qt events
// so that the engine needs no widget: the window, a QObject of the user
// interface, does the painting. Every call accepts a null window and does
// nothing then. On the window's thread an event is delivered before the call
// returns; from another thread it is queued to the window's thread.

// The user message the ruler sends after it changed the calibration, so that
// an open calibration dialog refreshes its values.
inline constexpr QEvent::Type kCalibrationChangedEvent = QEvent::Type(QEvent::User + 100);
inline constexpr QEvent::Type kRepaintRequestEvent = QEvent::Type(QEvent::User + 101);

// Asks the window to repaint Rect() at its next paint, or all of itself when
// Rect() is null.
class RepaintRequestEvent : public QEvent
{
public:
    explicit RepaintRequestEvent(const QRect& rect = QRect())
        : QEvent(kRepaintRequestEvent)
        , m_rect(rect)
    {
    }
    RepaintRequestEvent* clone() const override { return new RepaintRequestEvent(*this); }

    const QRect& Rect() const { return m_rect; }
    bool WholeWindow() const { return m_rect.isNull(); }

private:
    QRect m_rect;
};

// Repaint the whole window, or the rectangle (nothing for an empty one).
void InvalidateWindow(QObject* window);
void InvalidateWindow(QObject* window, const QRect& rect);

// Deliver kCalibrationChangedEvent to the window.
void SendCalibrationChanged(QObject* window);
