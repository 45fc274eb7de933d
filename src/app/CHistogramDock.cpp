#include "app/CHistogramDock.h"

#include "capture/CVideoWidget.h"
#include "capture/CXCapGraph.h"
#include "ui/CHistogramPanel.h"

#include <QEvent>
#include <QTimer>

CHistogramDock::CHistogramDock(std::function<std::vector<LiveGraph>()> liveGraphs, QWidget* parent)
    : QDockWidget(parent)
    , m_liveGraphs(std::move(liveGraphs))
    , m_panel(new CHistogramPanel(this))
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("histogramDock"));
    setWidget(m_panel);
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea | Qt::BottomDockWidgetArea);
    setWindowTitle(tr("Histogram"));
    m_timer->setInterval(200);
    connect(m_timer, &QTimer::timeout, this, &CHistogramDock::Refresh);
    connect(m_panel, &CHistogramPanel::flashClippingToggled, this, &CHistogramDock::Refresh);
    connect(this, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible)
            m_timer->start();
        else
            m_timer->stop();
        Refresh();
    });
}

CHistogramDock::~CHistogramDock()
{
    disconnect(this, &QDockWidget::visibilityChanged, this, nullptr);
    m_timer->stop();
}

void CHistogramDock::Refresh()
{
    const bool showing = isVisible();
    std::optional<FrameHistogram> shown;
    for (const LiveGraph& live : m_liveGraphs()) {
        const bool wanted = showing && live.active;
        live.graph->KeepHistograms(wanted);
        // The warning flashes only in the picture whose histogram shows.
        if (CVideoWidget* video = live.graph->VideoWidget())
            video->SetClippingShown(wanted && m_panel->FlashClipping());
        FrameHistogram histogram;
        if (wanted && live.graph->LastHistogram(&histogram))
            shown = histogram;
    }
    m_panel->SetHistogram(shown);
}

void CHistogramDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        setWindowTitle(tr("Histogram"));
    QDockWidget::changeEvent(event);
}
