#include "ui/CMosaicPanel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

CMosaicPanel::CMosaicPanel(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("mosaicPanel"));
    setMinimumSize(160, 120);
    setToolTip(tr("Wheel to zoom, drag to pan, double-click to see all of it"));
}

void CMosaicPanel::SetMosaic(
    const QImage& picture, const QRectF& area, const QRectF& covered, const QRectF& field, bool lost)
{
    m_picture = picture;
    m_area = area;
    m_covered = covered;
    m_field = field;
    m_lost = lost;
    update();
}

void CMosaicPanel::SetText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    update();
}

int CMosaicPanel::TextLine() const
{
    return fontMetrics().height() + 4;
}

QRectF CMosaicPanel::PictureRoom() const
{
    const int line = TextLine();
    return QRectF(rect()).adjusted(4, 4, -4, -4 - line);
}

QRectF CMosaicPanel::ShownArea() const
{
    // The field may lie beyond what is built yet: both stay in view.
    const QRectF all = m_covered.united(m_field);
    const QRectF room = PictureRoom();
    if (m_zoom <= 1.0 || all.isEmpty() || room.isEmpty())
        return all;
    // The room's shape at the fitted scale, m_zoom times closer.
    const double fit = std::min(room.width() / all.width(), room.height() / all.height());
    const QSizeF size = room.size() / (fit * m_zoom);
    return QRectF(m_centre - QPointF(size.width(), size.height()) / 2, size);
}

QPointF CMosaicPanel::PlaneAt(QPointF pixel) const
{
    const QRectF shown = ShownArea();
    const QRectF room = PictureRoom();
    const double scale = std::min(room.width() / shown.width(), room.height() / shown.height());
    return shown.center() + (pixel - room.center()) / scale;
}

void CMosaicPanel::KeepInView()
{
    const QRectF all = m_covered.united(m_field);
    m_centre = QPointF(
        std::clamp(m_centre.x(), all.left(), all.right()), std::clamp(m_centre.y(), all.top(), all.bottom()));
}

void CMosaicPanel::wheelEvent(QWheelEvent* event)
{
    const QRectF all = m_covered.united(m_field);
    const QRectF room = PictureRoom();
    if (m_picture.isNull() || all.isEmpty() || room.isEmpty() || m_area.isEmpty())
        return;
    const double fit = std::min(room.width() / all.width(), room.height() / all.height());
    // Closer than two screen pixels to a pixel of the reduced picture shows nothing more.
    const double finest = std::max(1.0, 2.0 * (m_picture.width() / m_area.width()) / fit);
    const double zoom = std::clamp(m_zoom * std::pow(1.25, event->angleDelta().y() / 120.0), 1.0, finest);
    if (zoom == m_zoom)
        return;
    // The point under the pointer stays there.
    const QRectF before = ShownArea();
    const QPointF at = PlaneAt(event->position());
    m_centre = at + (before.center() - at) * (m_zoom / zoom);
    m_zoom = zoom;
    KeepInView();
    update();
}

void CMosaicPanel::mousePressEvent(QMouseEvent* event)
{
    m_dragFrom = event->position();
}

void CMosaicPanel::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton) || m_zoom <= 1.0)
        return;
    m_centre -= PlaneAt(event->position()) - PlaneAt(m_dragFrom);
    m_dragFrom = event->position();
    KeepInView();
    update();
}

void CMosaicPanel::mouseDoubleClickEvent(QMouseEvent*)
{
    m_zoom = 1.0;
    update();
}

void CMosaicPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    const int line = TextLine();
    const QRectF room = PictureRoom();
    const QRectF shown = ShownArea();
    if (!m_picture.isNull() && shown.width() > 0 && shown.height() > 0 && !room.isEmpty()) {
        const double scale = std::min(room.width() / shown.width(), room.height() / shown.height());
        const QPointF corner = room.center() - QPointF(shown.width(), shown.height()) * scale / 2;
        const auto place = [&](const QRectF& r) {
            return QRectF(corner + (r.topLeft() - shown.topLeft()) * scale, r.size() * scale);
        };
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setClipRect(place(shown));
        painter.drawImage(place(m_area), m_picture);
        // Zoomed in, the field may reach past the picture's room.
        painter.setClipRect(room.adjusted(-2, -2, 2, 2));
        painter.setPen(QPen(m_lost ? QColor(230, 40, 40) : QColor(40, 220, 60), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(place(m_field));
        painter.setClipping(false);
    }
    painter.setPen(m_lost ? QColor(200, 30, 30) : palette().color(QPalette::WindowText));
    painter.drawText(QRectF(4, height() - line, width() - 8, line), Qt::AlignLeft | Qt::AlignVCenter, m_text);
}
