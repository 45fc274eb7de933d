#include "capture/CVideoWidget.h"

#include "capture/CFrameMailbox.h"
#include "capture/DisplayScaler.h"

#include <QDateTime>
#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

CVideoWidget::CVideoWidget(std::shared_ptr<CFrameMailbox> mailbox, QWidget* parent)
    : QWidget(parent)
    , m_mailbox(std::move(mailbox))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    if (m_mailbox)
        m_mailbox->SetReceiver(this);
}

CVideoWidget::~CVideoWidget()
{
    if (m_mailbox)
        m_mailbox->SetReceiver(nullptr);
}

bool CVideoWidget::event(QEvent* event)
{
    if (m_mailbox)
        m_mailbox->Acquire();
    if (event->type() == CFrameMailbox::EventType()) {
        const QImage frame = m_mailbox ? m_mailbox->Take() : QImage();
        if (!frame.isNull()) {
            m_frame = frame;
            ++m_framesShown;
            update();
        }
        return true;
    }
    return QWidget::event(event);
}

void CVideoWidget::SetClippingShown(bool on)
{
    if (on == m_clipping)
        return;
    m_clipping = on;
    update();
}

void CVideoWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (m_frame.isNull()) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    // Only what shows is computed: at a large zoom the widget is far bigger
    // than the part of it in view.
    const QRect part = event->rect() & visibleRegion().boundingRect();
    if (part.isEmpty())
        return;
    if (m_shown.width() < part.width() || m_shown.height() < part.height())
        m_shown = QImage(part.size().expandedTo(m_shown.size()), QImage::Format_RGB32);
    const QRect piece(QPoint(0, 0), part.size());
    ScaleBgrInto(m_frame, size(), part, m_shown);
    // On for 400 ms, off for 400: the frames' repaints carry the flashing.
    if (m_clipping && QDateTime::currentMSecsSinceEpoch() / 400 % 2 == 0)
        MarkClipped(m_shown, piece, qRgb(255, 0, 0), qRgb(0, 0, 255));
    painter.drawImage(part.topLeft(), m_shown, piece);
}
