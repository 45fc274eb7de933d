#pragma once

#include <QEvent>

class QRect;
class QWidget;

// The two window calls the engine makes on the overlay window. This is the one
// place in the engine that touches a widget; every call accepts a null window
// and does nothing then.

// The user message the ruler sends after it changed the calibration, so that
// an open calibration dialog refreshes its values.
inline constexpr QEvent::Type kCalibrationChangedEvent = QEvent::Type(QEvent::User + 100);

// Repaint the whole window, or the rectangle, at the next paint. From another
// thread than the window's the request is queued to the window's thread.
void InvalidateWindow(QWidget* window);
void InvalidateWindow(QWidget* window, const QRect& rect);

// Deliver kCalibrationChangedEvent to the window now (queued when called from
// another thread).
void SendCalibrationChanged(QWidget* window);
