#include "app/CSaveOverlayGroup.h"

#include <QCheckBox>
#include <QGridLayout>

CSaveOverlayGroup::CSaveOverlayGroup(QWidget* parent)
    : QGroupBox(tr("Burn into the picture"), parent)
    , m_chkMeasure(new QCheckBox(tr("Measurement"), this))
    , m_chkRuler(new QCheckBox(tr("Ruler"), this))
    , m_chkScale(new QCheckBox(tr("Scale"), this))
    , m_chkTime(new QCheckBox(tr("Date"), this))
    , m_chkTitle(new QCheckBox(tr("Title"), this))
{
    m_chkMeasure->setObjectName(QStringLiteral("bMeasure"));
    m_chkRuler->setObjectName(QStringLiteral("bRuler"));
    m_chkScale->setObjectName(QStringLiteral("bScale"));
    m_chkTime->setObjectName(QStringLiteral("bTime"));
    m_chkTitle->setObjectName(QStringLiteral("bTitle"));
    auto* layout = new QGridLayout(this);
    layout->addWidget(m_chkMeasure, 0, 0);
    layout->addWidget(m_chkRuler, 0, 1);
    layout->addWidget(m_chkScale, 0, 2);
    layout->addWidget(m_chkTime, 1, 0);
    layout->addWidget(m_chkTitle, 1, 1);
}

SaveOverlay CSaveOverlayGroup::Overlay() const
{
    return { m_chkMeasure->isChecked(), m_chkRuler->isChecked(), m_chkScale->isChecked(),
        m_chkTime->isChecked(), m_chkTitle->isChecked() };
}

void CSaveOverlayGroup::SetOverlay(const SaveOverlay& overlay)
{
    m_chkMeasure->setChecked(overlay.measure);
    m_chkRuler->setChecked(overlay.ruler);
    m_chkScale->setChecked(overlay.scale);
    m_chkTime->setChecked(overlay.time);
    m_chkTitle->setChecked(overlay.title);
}
