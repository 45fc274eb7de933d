#pragma once

#include "app/SaveSettings.h"

#include <QGroupBox>

class QCheckBox;

// The five burn-in choices of both save dialogs.
class CSaveOverlayGroup : public QGroupBox
{
    Q_OBJECT

public:
    explicit CSaveOverlayGroup(QWidget* parent = nullptr);

    SaveOverlay Overlay() const;
    void SetOverlay(const SaveOverlay& overlay);

private:
    QCheckBox* m_chkMeasure;
    QCheckBox* m_chkRuler;
    QCheckBox* m_chkScale;
    QCheckBox* m_chkTime;
    QCheckBox* m_chkTitle;
};
