#include "app/CMosaicDock.h"

#include "app/CMeasureDoc.h"
#include "app/IDocumentHost.h"
#include "capture/LiveMosaic.h"
#include "image/Stitcher.h"
#include "measure/CGVLElemMgr.h"
#include "ui/CMosaicPanel.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// Often enough to hand the worker a frame as soon as it is free at 30 fps.
constexpr int kMosaicPollMs = 10;

} // namespace

CMosaicDock::CMosaicDock(QWidget* parent)
    : QDockWidget(parent)
    , m_panel(new CMosaicPanel)
    , m_stop(new QPushButton)
    , m_cancel(new QPushButton)
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("mosaicDock"));
    // Closing it would lose the mosaic: Stop and Cancel say what happens to it.
    setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea | Qt::BottomDockWidgetArea);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->addWidget(m_panel, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_stop);
    buttons->addWidget(m_cancel);
    column->addLayout(buttons);
    setWidget(content);
    connect(m_stop, &QPushButton::clicked, this, [this] { Stop(); });
    connect(m_cancel, &QPushButton::clicked, this, &CMosaicDock::Cancel);
    m_timer->setInterval(kMosaicPollMs);
    connect(m_timer, &QTimer::timeout, this, &CMosaicDock::Poll);
    Retranslate();
}

CMosaicDock::~CMosaicDock()
{
    m_timer->stop();
    if (m_live)
        m_live->GetGraph().KeepCleanFrames(CMeasureDoc::SnapToEdges());
}

bool CMosaicDock::Start(CMeasureDoc* live)
{
    if (Running() || !live || !live->IsLive() || !live->IsPreviewRunning())
        return false;
    m_live = live;
    m_unit = live->GetElemMgr().GetUnit();
    // The frames without the shapes drawn over them.
    live->GetGraph().KeepCleanFrames(true);
    m_mosaic = std::make_unique<LiveMosaic>();
    m_lastFrame = -1;
    m_shownTracked = -1;
    m_panel->SetMosaic({}, {}, {}, {}, false);
    m_panel->SetText(tr("Move the stage slowly over the specimen"));
    show();
    raise();
    m_timer->start();
    return true;
}

void CMosaicDock::Poll()
{
    if (!m_mosaic)
        return;
    if (m_live && m_live->IsPreviewRunning() && m_mosaic->Ready()) {
        CXCapGraph& graph = m_live->GetGraph();
        int frames = 0;
        if (graph.GetStateB(&frames) == 0 && frames != m_lastFrame) {
            const QImage frame = graph.CleanFrame();
            const QSize size = m_mosaic->State().frameSize;
            if (!frame.isNull() && (size.isEmpty() || frame.size() == size) && m_mosaic->Offer(frame))
                m_lastFrame = frames;
        }
    }
    const LiveMosaic::Status status = m_mosaic->State();
    if (status.tracked == m_shownTracked)
        return;
    m_shownTracked = status.tracked;
    const LiveMosaic::Preview shown = m_mosaic->Shown();
    m_panel->SetMosaic(shown.picture, shown.area, shown.covered,
        QRectF(status.field, QSizeF(status.frameSize)), status.lost);
    m_panel->SetText(status.lost ? tr("Lost: move back over covered ground")
                                 : tr("Tracking; fields in the mosaic: %1").arg(status.tiles));
}

CDocument* CMosaicDock::Stop()
{
    if (!m_mosaic)
        return nullptr;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Stitcher& stitcher = m_mosaic->Close();
    const QImage picture = stitcher.Count() > 0 ? stitcher.Compose() : QImage();
    QApplication::restoreOverrideCursor();
    const CalibrationRecord unit = m_live ? m_live->GetElemMgr().GetUnit() : m_unit;
    End();
    IDocumentHost* host = IDocumentHost::Instance();
    if (picture.isNull() || !host)
        return nullptr;
    CDocument* document = host->OpenPictureDocument(picture, tr("Live Mosaic %1").arg(++m_finished));
    // The mosaic is in the live picture's pixels, so its calibration holds.
    if (auto* doc = qobject_cast<CMeasureDoc*>(document))
        doc->GetElemMgr().SetUnit(unit);
    return document;
}

void CMosaicDock::Cancel()
{
    if (m_mosaic)
        End();
}

void CMosaicDock::End()
{
    m_timer->stop();
    m_mosaic.reset();
    if (m_live)
        m_live->GetGraph().KeepCleanFrames(CMeasureDoc::SnapToEdges());
    m_live = nullptr;
    hide();
}

void CMosaicDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        Retranslate();
    QDockWidget::changeEvent(event);
}

void CMosaicDock::Retranslate()
{
    setWindowTitle(tr("Mosaic"));
    m_stop->setText(tr("&Stop"));
    m_stop->setToolTip(tr("Open the mosaic as a picture"));
    m_cancel->setText(tr("&Cancel"));
    m_cancel->setToolTip(tr("Throw the mosaic away"));
}
