#include "capture/CVideoWidget.h"

#include "capture/CFrameMailbox.h"

#include <QEvent>
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

void CVideoWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (m_frame.isNull()) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    painter.drawImage(rect(), m_frame);
}
