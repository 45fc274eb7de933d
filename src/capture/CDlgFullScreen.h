#pragma once

#include <QDialog>

#include <functional>

// The full-screen window of the live video: black, frameless, covering the
// screen. Escape, a double click or closing it asks its owner to take the
// video back; the dialog knows nothing of where the video came from.
class CDlgFullScreen : public QDialog
{
    Q_OBJECT
public:
    explicit CDlgFullScreen(std::function<void()> onLeave, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Leave();
    std::function<void()> m_onLeave;
};
