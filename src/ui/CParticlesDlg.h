#pragma once

#include "measure/ParticleAnalyzer.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

// "Analyze Particles": the threshold (a range of gray levels, or an
// automatic one with the particles' side) and the limits of what counts.
class CParticlesDlg : public QDialog
{
    Q_OBJECT

public:
    explicit CParticlesDlg(const ParticleOptions& options, QWidget* parent = nullptr);

    ParticleOptions Options() const;

    // The widgets, for driving the dialog without a user.
    QComboBox* MethodBox() const { return m_method; }
    QSpinBox* LowBox() const { return m_low; }
    QSpinBox* HighBox() const { return m_high; }
    QCheckBox* WatershedBox() const { return m_watershed; }

private:
    void UpdateRange();

    QComboBox* m_method;
    QSpinBox* m_low;
    QSpinBox* m_high;
    QCheckBox* m_dark;
    QDoubleSpinBox* m_minArea;
    QDoubleSpinBox* m_maxArea;
    QDoubleSpinBox* m_minCircularity;
    QDoubleSpinBox* m_maxCircularity;
    QCheckBox* m_excludeEdges;
    QCheckBox* m_includeHoles;
    QCheckBox* m_watershed;
};
