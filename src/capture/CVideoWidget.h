#pragma once

#include <QImage>
#include <QWidget>

#include <memory>

class CFrameMailbox;

// The video window: shows the newest frame of its mailbox stretched over the
// widget. Mouse input passes through to the widget below (its owner), so the
// measuring shapes still get it.
class CVideoWidget : public QWidget
{
    Q_OBJECT
public:
    explicit CVideoWidget(std::shared_ptr<CFrameMailbox> mailbox, QWidget* parent = nullptr);
    ~CVideoWidget() override;

    // The frame shown last, and how many were shown (tests, diagnostics).
    QImage CurrentFrame() const { return m_frame; }
    int FramesShown() const { return m_framesShown; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::shared_ptr<CFrameMailbox> m_mailbox;
    QImage m_frame;
    int m_framesShown = 0;
};
