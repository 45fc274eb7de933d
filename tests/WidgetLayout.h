#pragma once

// What a user would see wrong in a dialog as drawn: a control outside the
// window, two controls over each other, a text cut off by its control, a
// text control drawn as one flat colour.
#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include <string>
#include <vector>

// Empty when the dialog (shown, laid out, `shot` its grab) has none of these
// faults, else the first one found.
inline std::string LayoutFault(QWidget& dialog, const QImage& shot)
{
    const auto isControl = [](const QWidget* w) {
        return qobject_cast<const QAbstractButton*>(w) || qobject_cast<const QLabel*>(w)
            || qobject_cast<const QLineEdit*>(w) || qobject_cast<const QAbstractSpinBox*>(w)
            || qobject_cast<const QComboBox*>(w) || qobject_cast<const QAbstractSlider*>(w);
    };
    const auto textOf = [](const QWidget* w) {
        if (const auto* label = qobject_cast<const QLabel*>(w))
            return label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(w))
            return button->text();
        return QString();
    };
    const auto name = [&textOf](const QWidget* w) {
        return (QString::fromLatin1(w->metaObject()->className()) + " '" + w->objectName() + "' " + textOf(w))
            .toStdString();
    };
    const auto rectOf
        = [&dialog](const QWidget* w) { return QRect(w->mapTo(&dialog, QPoint(0, 0)), w->size()); };

    // Controls as the user meets them: not the parts inside another control.
    std::vector<QWidget*> controls;
    for (QWidget* w : dialog.findChildren<QWidget*>()) {
        if (!isControl(w) || !w->isVisibleTo(&dialog))
            continue;
        bool part = false;
        for (QWidget* up = w->parentWidget(); up && up != &dialog; up = up->parentWidget())
            part = part || isControl(up);
        if (!part)
            controls.push_back(w);
    }
    const qreal scale = shot.devicePixelRatio();
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const QWidget* w = controls[i];
        const QRect r = rectOf(w);
        if (!dialog.rect().contains(r))
            return name(w) + " lies outside the window";
        for (std::size_t k = i + 1; k < controls.size(); ++k)
            if (r.intersects(rectOf(controls[k])))
                return name(w) + " lies over " + name(controls[k]);
        const QString text = textOf(w);
        const QSize need
            = QFontMetrics(w->font()).size(Qt::TextShowMnemonic, text.isEmpty() ? QStringLiteral("X") : text);
        const auto* label = qobject_cast<const QLabel*>(w);
        const bool wraps = label && label->wordWrap();
        if (r.height() < need.height() || (!wraps && r.width() < need.width()))
            return name(w) + " cuts its text off";
        if (text.isEmpty())
            continue;
        const QRect px
            = QRectF(QPointF(r.topLeft()) * scale, QSizeF(r.size()) * scale).toRect() & shot.rect();
        const QRgb first = shot.pixel(px.topLeft());
        bool drawn = false;
        for (int y = px.top(); y <= px.bottom() && !drawn; ++y)
            for (int x = px.left(); x <= px.right() && !drawn; ++x)
                drawn = shot.pixel(x, y) != first;
        if (!drawn)
            return name(w) + " shows nothing";
    }
    return controls.empty() ? "no controls" : "";
}
