#include "capture/CDlgFullScreen.h"

#include <QCloseEvent>
#include <QKeyEvent>

CDlgFullScreen::CDlgFullScreen(std::function<void()> onLeave, QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::FramelessWindowHint)
    , m_onLeave(std::move(onLeave))
{
    setWindowTitle(tr("Full Screen"));
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::black);
    setPalette(pal);
    setAutoFillBackground(true);
}

void CDlgFullScreen::Leave()
{
    if (m_onLeave)
        m_onLeave();
}

void CDlgFullScreen::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        Leave();
        return;
    }
    QDialog::keyPressEvent(event);
}

void CDlgFullScreen::mouseDoubleClickEvent(QMouseEvent*)
{
    Leave();
}

void CDlgFullScreen::closeEvent(QCloseEvent* event)
{
    Leave();
    event->accept();
}
