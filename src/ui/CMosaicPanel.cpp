#include "ui/CMosaicPanel.h"

#include <QPainter>

#include <algorithm>

CMosaicPanel::CMosaicPanel(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("mosaicPanel"));
    setMinimumSize(160, 120);
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

void CMosaicPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    const int line = fontMetrics().height() + 4;
    const QRectF room = QRectF(rect()).adjusted(4, 4, -4, -4 - line);
    // The field may lie beyond what is built yet: both stay in view.
    const QRectF shown = m_covered.united(m_field);
    if (!m_picture.isNull() && shown.width() > 0 && shown.height() > 0 && !room.isEmpty()) {
        const double scale = std::min(room.width() / shown.width(), room.height() / shown.height());
        const QPointF corner = room.center() - QPointF(shown.width(), shown.height()) * scale / 2;
        const auto place = [&](const QRectF& r) {
            return QRectF(corner + (r.topLeft() - shown.topLeft()) * scale, r.size() * scale);
        };
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setClipRect(place(shown));
        painter.drawImage(place(m_area), m_picture);
        painter.setClipping(false);
        painter.setPen(QPen(m_lost ? QColor(230, 40, 40) : QColor(40, 220, 60), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(place(m_field));
    }
    painter.setPen(m_lost ? QColor(200, 30, 30) : palette().color(QPalette::WindowText));
    painter.drawText(QRectF(4, height() - line, width() - 8, line), Qt::AlignLeft | Qt::AlignVCenter, m_text);
}
