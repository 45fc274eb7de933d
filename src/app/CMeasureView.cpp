#include "app/CMeasureView.h"

#include "app/CChildFrame.h"
#include "app/CDocTemplate.h"
#include "app/CMainFrame.h"
#include "app/CMeasureDoc.h"
#include "app/CNoCameraHint.h"
#include "app/CStageDrag.h"
#include "app/CommandTable.h"
#include "capture/SimCameraSource.h"
#include "capture/SimDeviceProvider.h"
#include "measure/CGVLElemMgr.h"
#include "platform/DebugLog.h"
#include "ui/CGVLWnd.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

const QColor kMarginGray(0x80, 0x80, 0x80);

} // namespace

CMeasureView::CMeasureView(CMeasureDoc& document, QWidget* parent)
    : QAbstractScrollArea(parent)
    , CView(document)
    , m_document(document)
    , m_pOverlayWnd(new CGVLWnd(document, viewport()))
{
    setObjectName(QStringLiteral("MeasureView"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // Painting only the margins leaves nothing to erase.
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    m_pOverlayWnd->setObjectName(QStringLiteral("OverlayWnd"));
    m_pOverlayWnd->setProperty("controlId", CGVLWnd::kControlId);
    m_pOverlayWnd->AttachToManager();
    document.GetElemMgr().CreateShape(ShapeType::Ruler);
    document.RestoreStoredShapes();
    m_pOverlayWnd->show();
    new CStageDrag(document, m_pOverlayWnd);

    connect(&document, &CMeasureDoc::layoutNeeded, this, [this] { Layout(); });
    MapCommand(ID_ZOOM, [this] {
        if (auto* frame = qobject_cast<CMainFrame*>(window()))
            m_document.SetZoomIndex(frame->GetZoomIndex());
    });
}

CMeasureView::~CMeasureView()
{
    // The overlay window goes with the view; the document must not reach it.
    m_pOverlayWnd->DetachFromManager();
}

std::unique_ptr<CDocTemplate> CMeasureView::CreateDocTemplate()
{
    return std::make_unique<CDocTemplate>(
        QStringLiteral("Measure"),
        [](CDocTemplate::Origin origin) {
            return std::make_unique<CMeasureDoc>(origin != CDocTemplate::Origin::New);
        },
        [](CDocument& document) -> QWidget* {
            return new CMeasureView(static_cast<CMeasureDoc&>(document));
        });
}

QSize CMeasureView::DisplayedSize(const QSize& image, int zoomIndex)
{
    if (zoomIndex < 0 || zoomIndex > 9)
        return QSize(0, 0);
    return CGVLWnd::DisplayedSize(image, zoomIndex);
}

void CMeasureView::OnInitialUpdate()
{
    if (m_document.HasCamera() && !CMeasureDoc::GetLiveDocument())
        m_document.StartLive(m_pOverlayWnd);
    if (m_document.FoundNoCamera() && !IsDemoCameraEnabled())
        m_pNoCamera = new CNoCameraHint([this] { UseSimulatedCamera(); }, viewport());
    Layout();
    // The calibration dialog exists, hidden, from the start; the first
    // command shows it with the ruler.
    m_document.ToggleCalibration();
}

void CMeasureView::Layout()
{
    const QSize image = m_document.QueryImageSize();
    m_displayed = DisplayedSize(image, m_document.GetZoomIndex());

    const QSize client = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, m_displayed.width() - client.width()));
    horizontalScrollBar()->setPageStep(client.width());
    verticalScrollBar()->setRange(0, std::max(0, m_displayed.height() - client.height()));
    verticalScrollBar()->setPageStep(client.height());
    m_ptOffset = QPoint(client.width() > m_displayed.width() ? (client.width() - m_displayed.width()) / 2 : 0,
        client.height() > m_displayed.height() ? (client.height() - m_displayed.height()) / 2 : 0);
    qCDebug(lcApp, "rect:%d, %d, %d, %d", 0, 0, client.width(), client.height());

    PlaceOverlayWindow();
    if (m_pNoCamera) {
        m_pNoCamera->adjustSize();
        const QSize hint = m_pNoCamera->size().boundedTo(client);
        m_pNoCamera->setGeometry(
            QRect(QPoint((client.width() - hint.width()) / 2, (client.height() - hint.height()) / 2), hint));
        m_pNoCamera->raise();
        m_pNoCamera->show();
    }
    if (m_document.IsLive()) {
        m_document.GetGraph().SetParentWnd(m_pOverlayWnd, 0, 0, m_displayed.width(), m_displayed.height());
        qCDebug(lcApp, "display %d, %d", m_displayed.width(), m_displayed.height());
        qCDebug(lcApp, "pic %d, %d ,%d, %d", m_pOverlayWnd->x(), m_pOverlayWnd->geometry().bottom(),
            image.width(), image.height());
    }
    // The shapes see picture coordinates relative to the picture's corner.
    const QPoint origin(client.width() > image.width() ? 0 : m_ptOffset.x(),
        client.height() > image.height() ? 0 : m_ptOffset.y());
    m_document.GetElemMgr().SetOrigin(origin);
    viewport()->update();
}

void CMeasureView::PlaceOverlayWindow()
{
    const QPoint scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    m_pOverlayWnd->setGeometry(QRect(m_ptOffset - scroll, m_displayed));
    m_pOverlayWnd->raise();
    m_pOverlayWnd->show();
}

void CMeasureView::UseSimulatedCamera()
{
    EnableDemoCamera(true);
    auto* frame = qobject_cast<CMainFrame*>(window());
    if (!frame || !frame->RouteCommand(ID_FILE_NEW) || !CMeasureDoc::GetLiveDocument())
        return;
    m_pNoCamera->deleteLater();
    m_pNoCamera = nullptr;
    for (QWidget* w = parentWidget(); w; w = w->parentWidget()) {
        if (auto* child = qobject_cast<CChildFrame*>(w)) {
            QMetaObject::invokeMethod(child, &QWidget::close, Qt::QueuedConnection);
            break;
        }
    }
}

void CMeasureView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    Layout();
}

void CMeasureView::scrollContentsBy(int, int)
{
    const QPoint scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    m_document.GetElemMgr().SetOrigin(-scroll);
    PlaceOverlayWindow();
    viewport()->update();
}

void CMeasureView::paintEvent(QPaintEvent*)
{
    QPainter dc(viewport());
    const QRect client = viewport()->rect();
    const QRect image(
        m_ptOffset - QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value()), m_displayed);
    for (const QRect& margin : QRegion(client) - QRegion(image))
        dc.fillRect(margin, kMarginGray);
}

void CMeasureView::keyPressEvent(QKeyEvent* event)
{
    // On the simulated stage the arrows look further over the slide, as the
    // stage's knobs would: a tenth of the field a press, half with Shift.
    QPointF direction;
    switch (event->key()) {
    case Qt::Key_Left:
        direction = { -1, 0 };
        break;
    case Qt::Key_Right:
        direction = { 1, 0 };
        break;
    case Qt::Key_Up:
        direction = { 0, -1 };
        break;
    case Qt::Key_Down:
        direction = { 0, 1 };
        break;
    default:
        break;
    }
    // On the simulated relief Page Up / Page Down turn the focus knob.
    const int focusStep = event->key() == Qt::Key_PageUp ? 2 : event->key() == Qt::Key_PageDown ? -2 : 0;
    if (focusStep && m_document.IsLive()
        && FocusSimCamera(m_document.GetGraph().DeviceElement(), focusStep)) {
        event->accept();
        return;
    }
    if (!direction.isNull() && m_document.IsLive()) {
        const QSize field = m_document.GetImageSize();
        const double share = event->modifiers() & Qt::ShiftModifier ? 0.5 : 0.1;
        const QPointF step(direction.x() * share * field.width(), direction.y() * share * field.height());
        if (MoveSimStage(m_document.GetGraph().DeviceElement(), step)) {
            event->accept();
            return;
        }
    }
    QAbstractScrollArea::keyPressEvent(event);
}
