#pragma once

#include "image/FrameHistogram.h"

#include <QWidget>

#include <optional>

class QCheckBox;
class QLabel;

// The live histogram: red, green, blue and luma curves over 256 levels, on a
// linear or logarithmic scale, and the share of clipped samples.
class CHistogramPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CHistogramPanel(QWidget* parent = nullptr);

    // A frame's histogram; none: no live picture (the curves are cleared).
    void SetHistogram(const std::optional<FrameHistogram>& histogram);
    bool HasHistogram() const { return m_histogram.has_value(); }

    bool LogScale() const;
    void SetLogScale(bool on);
    // Whether clipped pixels should flash in the live picture.
    bool FlashClipping() const;
    void SetFlashClipping(bool on);
    QString ClippedText() const;

    // A count's height as a share of the plot, 0 to 1, against the largest
    // count shown: in proportion, or on a logarithmic scale where one sample
    // is already visible.
    static double Height(std::uint32_t count, std::uint32_t largest, bool logScale);

signals:
    void flashClippingToggled(bool on);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Retranslate();
    QRect PlotRect() const;

    std::optional<FrameHistogram> m_histogram;
    QCheckBox* m_log;
    QCheckBox* m_flash;
    QLabel* m_clipped;
};
