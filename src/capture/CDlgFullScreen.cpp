#include "capture/CDlgFullScreen.h"

#include "capture/CXCapGraph.h"

#include <QCloseEvent>
#include <QKeyEvent>

CDlgFullScreen::CDlgFullScreen(CXCapGraph* graph, QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::FramelessWindowHint)
    , m_graph(graph)
{
    setWindowTitle(tr("Full Screen"));
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::black);
    setPalette(pal);
    setAutoFillBackground(true);
}

void CDlgFullScreen::Leave()
{
    if (m_graph && m_graph->IsFullScreen())
        m_graph->ToggleFullScreen(this);
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
