#include "ui/CHistogramPanel.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

CHistogramPanel::CHistogramPanel(QWidget* parent)
    : QWidget(parent)
    , m_log(new QCheckBox(this))
    , m_flash(new QCheckBox(this))
    , m_clipped(new QLabel(this))
{
    setObjectName(QStringLiteral("histogramPanel"));
    m_log->setObjectName(QStringLiteral("histogramLog"));
    m_flash->setObjectName(QStringLiteral("histogramFlash"));
    m_clipped->setObjectName(QStringLiteral("histogramClipped"));
    auto* row = new QHBoxLayout;
    row->addWidget(m_log);
    row->addWidget(m_flash);
    row->addStretch();
    row->addWidget(m_clipped);
    auto* column = new QVBoxLayout(this);
    column->addStretch(1);
    column->addLayout(row);
    setMinimumSize(260, 150);
    connect(m_log, &QCheckBox::toggled, this, qOverload<>(&QWidget::update));
    connect(m_flash, &QCheckBox::toggled, this, &CHistogramPanel::flashClippingToggled);
    Retranslate();
}

void CHistogramPanel::SetHistogram(const std::optional<FrameHistogram>& histogram)
{
    m_histogram = histogram;
    m_clipped->setText(ClippedText());
    update();
}

bool CHistogramPanel::LogScale() const
{
    return m_log->isChecked();
}

void CHistogramPanel::SetLogScale(bool on)
{
    m_log->setChecked(on);
}

bool CHistogramPanel::FlashClipping() const
{
    return m_flash->isChecked();
}

void CHistogramPanel::SetFlashClipping(bool on)
{
    m_flash->setChecked(on);
}

QString CHistogramPanel::ClippedText() const
{
    if (!m_histogram)
        return tr("No live picture");
    return tr("Clipped: %1 % bright, %2 % dark")
        .arg(100 * m_histogram->OverexposedShare(), 0, 'f', 1)
        .arg(100 * m_histogram->UnderexposedShare(), 0, 'f', 1);
}

double CHistogramPanel::Height(std::uint32_t count, std::uint32_t largest, bool logScale)
{
    if (count == 0 || largest == 0)
        return 0;
    const double h
        = logScale ? std::log1p(double(count)) / std::log1p(double(largest)) : double(count) / largest;
    return std::min(1.0, h);
}

QRect CHistogramPanel::PlotRect() const
{
    const int bottom = m_log->geometry().top() - 6;
    return QRect(6, 6, width() - 12, std::max(10, bottom - 6));
}

void CHistogramPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect plot = PlotRect();
    painter.fillRect(plot, QColor(24, 24, 24));
    if (!m_histogram || m_histogram->samples == 0)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    const bool log = LogScale();
    // One scale for all four, so the channels compare; the end bins hold
    // the clipped samples and would flatten everything else.
    std::uint32_t largest = 0;
    for (const FrameHistogram::Counts* counts :
        { &m_histogram->red, &m_histogram->green, &m_histogram->blue, &m_histogram->luma })
        largest = std::max(largest, *std::max_element(counts->begin() + 1, counts->end() - 1));
    struct Curve
    {
        const FrameHistogram::Counts* counts;
        QColor colour;
    };
    const Curve curves[] = { { &m_histogram->red, QColor(230, 60, 60, 150) },
        { &m_histogram->green, QColor(60, 200, 60, 150) }, { &m_histogram->blue, QColor(70, 110, 240, 150) },
        { &m_histogram->luma, QColor(235, 235, 235, 200) } };
    for (const Curve& curve : curves) {
        QPainterPath path(QPointF(plot.left(), plot.bottom()));
        for (int v = 0; v < 256; ++v) {
            const double x = plot.left() + (v + 0.5) * plot.width() / 256.0;
            path.lineTo(x, plot.bottom() - Height((*curve.counts)[v], largest, log) * plot.height());
        }
        path.lineTo(plot.right(), plot.bottom());
        painter.setPen(curve.colour);
        painter.drawPath(path);
    }
}

void CHistogramPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        Retranslate();
    QWidget::changeEvent(event);
}

void CHistogramPanel::Retranslate()
{
    m_log->setText(tr("&Log scale"));
    m_flash->setText(tr("Flash &clipped"));
    m_flash->setToolTip(tr("Clipped pixels flash in the live picture: bright ones red, dark ones blue"));
    m_clipped->setText(ClippedText());
}
