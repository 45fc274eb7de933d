#pragma once

#include <QImage>
#include <QWidget>

#include <memory>

class CFrameMailbox;

// The video window: shows the newest frame of its mailbox stretched over the
// widget. Mouse input passes through to the widget below (its owner), so the
// measuring shapes still get it. A paint scales only the pixels it repaints
// straight from the frame's buffer into a picture of the widget's size, which
// the painter then copies unscaled.
class CVideoWidget : public QWidget
{
    Q_OBJECT
public:
    explicit CVideoWidget(std::shared_ptr<CFrameMailbox> mailbox, QWidget* parent = nullptr);
    ~CVideoWidget() override;

    // The frame shown last, and how many were shown (tests, diagnostics).
    QImage CurrentFrame() const { return m_frame; }
    int FramesShown() const { return m_framesShown; }

    // Clipped pixels flash over the picture (bright red, dark blue).
    void SetClippingShown(bool on);
    bool ClippingShown() const { return m_clipping; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::shared_ptr<CFrameMailbox> m_mailbox;
    QImage m_frame;
    // The part of the frame a paint shows, as shown; reused from paint to paint.
    QImage m_shown;
    int m_framesShown = 0;
    bool m_clipping = false;
};
