#include "app/CStageDrag.h"

#include "app/CMeasureDoc.h"
#include "capture/SimCameraSource.h"

#include <QMouseEvent>
#include <QWidget>

CStageDrag::CStageDrag(CMeasureDoc& document, QWidget* window)
    : QObject(window)
    , m_document(document)
    , m_window(window)
{
    window->installEventFilter(this);
}

bool CStageDrag::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_window)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton) {
            m_dragging = event->type() == QEvent::MouseButtonPress;
            m_last = mouse->position();
        }
        return false;
    }
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!m_dragging || !(mouse->buttons() & Qt::RightButton) || !m_document.IsLive())
            return false;
        const int pictureWidth = m_document.GetImageSize().width();
        if (pictureWidth <= 0 || m_window->width() <= 0)
            return false;
        // Window pixels to the picture's, at the zoom shown.
        const double scale = double(m_window->width()) / pictureWidth;
        const QPointF moved = (mouse->position() - m_last) / scale;
        if (!MoveSimStage(m_document.GetGraph().DeviceElement(), -moved))
            return false;
        m_last = mouse->position();
        return true;
    }
    default:
        return false;
    }
}
