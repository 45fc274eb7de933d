#pragma once

#include <QDialog>

class CXCapGraph;

// The full-screen window of the live video: black, frameless, covering the
// screen. Escape, a double click or closing it returns the video to its
// owner through the graph's ToggleFullScreen.
class CDlgFullScreen : public QDialog
{
    Q_OBJECT
public:
    explicit CDlgFullScreen(CXCapGraph* graph, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Leave();
    CXCapGraph* m_graph;
};
