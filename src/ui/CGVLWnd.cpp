#include "ui/CGVLWnd.h"

#include "image/FCObjImage.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "measure/GdiPainter.h"
#include "measure/WindowCalls.h"
#include "platform/DebugLog.h"
#include "ui/CInputTextDlg.h"
#include "ui/CRulerSettingDlg.h"
#include "ui/IMeasureDocument.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>

// Resources of a static library are registered by hand, outside any namespace.
static void InitCursorResources()
{
    Q_INIT_RESOURCE(cursors);
}

namespace {

const QColor kGrayBrush(128, 128, 128);

QCursor LoadCursor(const char* path)
{
    static const bool registered = (InitCursorResources(), true);
    Q_UNUSED(registered);
    const QPixmap image(QString::fromLatin1(path));
    // Both images put the working point in their middle.
    return image.isNull() ? QCursor(Qt::CrossCursor) : QCursor(image, 15, 15);
}

} // namespace

CGVLWnd::CGVLWnd(IMeasureDocument& document, QWidget* view)
    : QWidget(view)
    , m_document(document)
    , m_hDrawCursor(LoadCursor(":/cursors/draw.png"))
    , m_hMoveCursor(LoadCursor(":/cursors/move.png"))
{
    // Every mouse move goes to the elements, pressed or not.
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CGVLWnd::AttachToManager()
{
    m_document.GetElemMgr().SetWindow(this, CInputTextDlg::AskTextWithDialog);
}

void CGVLWnd::DetachFromManager()
{
    m_document.GetElemMgr().SetWindow(nullptr, nullptr);
}

QSize CGVLWnd::DisplayedSize(const QSize& picture, int zoomIndex)
{
    const auto scale = [zoomIndex](int v) {
        switch (zoomIndex) {
        case 0:
            return v * 5 / 2;
        case 1:
            return v * 2;
        case 2:
            return v * 3 / 2;
        case 3:
            return v * 5 / 4;
        case 5:
            return v * 3 / 4;
        case 6:
            return v * 2 / 3;
        case 7:
            return v / 2;
        case 8:
            return v / 3;
        case 9:
            return v / 4;
        default:
            return v;
        }
    };
    return QSize(scale(picture.width()), scale(picture.height()));
}

unsigned CGVLWnd::MouseFlags(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    unsigned flags = 0;
    if (buttons & Qt::LeftButton)
        flags |= 0x1;
    if (buttons & Qt::RightButton)
        flags |= 0x2;
    if (modifiers & Qt::ShiftModifier)
        flags |= 0x4;
    if (modifiers & Qt::ControlModifier)
        flags |= 0x8;
    if (buttons & Qt::MiddleButton)
        flags |= 0x10;
    return flags;
}

bool CGVLWnd::ShowsPicture() const
{
    const int mode = m_document.GetDisplayMode();
    if (mode != 2 && !(mode == 1 && !m_document.IsLive()))
        return false;
    const FCObjImage* picture = m_document.GetPicture();
    return picture && picture->IsValidImage();
}

void CGVLWnd::paintEvent(QPaintEvent* event)
{
    QPainter dc(this);
    if (!ShowsPicture()) {
        // The live video, when there is one, lies over this in its own child window.
        dc.fillRect(rect(), kGrayBrush);
        m_bGrayPainted = true;
        return;
    }
    m_bGrayPainted = false;
    Gdi::ResetDC(dc);
    const FCObjImage& picture = *m_document.GetPicture();
    const QSize size = DisplayedSize(QSize(picture.Width(), picture.Height()), m_document.GetZoomIndex());
    qCDebug(lcMeasure, "Drawrect:w=%d,h=%d", size.width(), size.height());
    const QRect area(QPoint(0, 0), size);
    dc.drawImage(area, picture.ToQImage());
    // The window may be larger than the picture while the view lays out.
    const QRegion margin = QRegion(rect()) - area;
    for (const QRect& r : margin)
        dc.fillRect(r, kGrayBrush);
    // Qt paints only the region asked for anyway; told so, the manager also
    // passes by the elements that cannot reach it.
    dc.setClipRegion(event->region());
    m_document.GetElemMgr().DrawAll(dc, size.width(), size.height());
}

void CGVLWnd::UpdateCursor()
{
    if (m_document.IsLive()) {
        unsetCursor();
        return;
    }
    const int tool = m_document.GetCurrentTool();
    if (ToolShowsDrawCursor(tool))
        setCursor(m_hDrawCursor);
    else if (tool == CGVLShape::kToolMove)
        setCursor(m_hMoveCursor);
    else
        setCursor(Qt::ArrowCursor);
}

void CGVLWnd::enterEvent(QEnterEvent* event)
{
    UpdateCursor();
    QWidget::enterEvent(event);
}

void CGVLWnd::mousePressEvent(QMouseEvent* event)
{
    const unsigned flags = MouseFlags(event->buttons(), event->modifiers());
    const QPoint point = event->position().toPoint();
    CGVLElemMgr& mgr = m_document.GetElemMgr();
    const int tool = m_document.GetCurrentTool();
    if (event->button() == Qt::LeftButton) {
        mgr.OnLButtonDown(flags, point, tool);
        // The text's dialog ran inside the press; its release may never come here.
        if (tool == CGVLShape::kToolText)
            CommitEdit();
    } else if (event->button() == Qt::RightButton) {
        mgr.OnRButtonDown(flags, point, tool);
        CommitEdit();
    }
    // The mouse belongs to this window; the view behind it does not see it.
    event->accept();
}

void CGVLWnd::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_document.GetElemMgr().OnLButtonUp(MouseFlags(event->buttons(), event->modifiers()),
            event->position().toPoint(), m_document.GetCurrentTool());
        CommitEdit();
    }
    event->accept();
}

void CGVLWnd::mouseMoveEvent(QMouseEvent* event)
{
    UpdateCursor();
    m_document.GetElemMgr().OnMouseMove(MouseFlags(event->buttons(), event->modifiers()),
        event->position().toPoint(), m_document.GetCurrentTool());
    event->accept();
}

void CGVLWnd::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The second press of a double click is a double click only, as on the
    // platform the shapes were designed for; the release still follows.
    if (event->button() == Qt::LeftButton && m_document.IsLive())
        m_document.OnVideoDoubleClick();
    event->accept();
}

void CGVLWnd::CommitEdit()
{
    if (CShapeHistory* history = m_document.GetHistory())
        history->Commit();
}

bool CGVLWnd::event(QEvent* event)
{
    if (event->type() == kRepaintRequestEvent) {
        const auto* request = static_cast<const RepaintRequestEvent*>(event);
        if (request->WholeWindow())
            update();
        else
            update(request->Rect());
        return true;
    }
    if (event->type() == kCalibrationChangedEvent) {
        if (CRulerSettingDlg* dialog = m_document.GetCalibrationDialog())
            dialog->Recompute();
        return true;
    }
    return QWidget::event(event);
}
