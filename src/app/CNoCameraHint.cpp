#include "app/CNoCameraHint.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

CNoCameraHint::CNoCameraHint(std::function<void()> useSimulated, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("NoCameraHint"));
    setAutoFillBackground(true);
    auto* title = new QLabel(tr("No camera found"), this);
    QFont bold = title->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    title->setFont(bold);
    auto* text
        = new QLabel(tr("Connect a USB microscope camera: it is found as soon as it is plugged in, and "
                        "\"New Preview\" then shows its video. Cameras that other programs reach through "
                        "PipeWire are listed too.\n\nYou can also try measuring with the simulated "
                        "camera."),
            this);
    text->setWordWrap(true);
    auto* button = new QPushButton(tr("Use the Simulated Camera"), this);
    button->setObjectName(QStringLiteral("UseSimulatedCamera"));
    connect(
        button, &QPushButton::clicked, this, [useSimulated = std::move(useSimulated)] { useSimulated(); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(12);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(button, 0, Qt::AlignLeft);
    setMaximumWidth(460);
}
