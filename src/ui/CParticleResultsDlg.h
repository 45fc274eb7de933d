#pragma once

#include "measure/ParticleAnalyzer.h"

#include <QDialog>
#include <QString>

class QLabel;
class QTableWidget;

// The particles found: a sortable table of their measures, a summary (count,
// mean area and its deviation, total area, area fraction), a histogram of
// their areas and the table's export as CSV. It closes by itself and deletes itself when closed.
class CParticleResultsDlg : public QDialog
{
    Q_OBJECT

public:
    // `unit`: the calibration's unit text, or "px"; `pictureArea` in its square.
    CParticleResultsDlg(std::vector<Particle> particles, const QString& unit, int precision,
        double pictureArea, QWidget* parent = nullptr);

    QTableWidget* Table() const { return m_table; }
    QLabel* Summary() const { return m_summary; }
    // Writes the table; false (and a message box) when the file cannot be written.
    bool ExportCsv(const QString& path);

private:
    void OnExport();

    std::vector<Particle> m_particles;
    QString m_unit;
    int m_precision;
    QTableWidget* m_table;
    QLabel* m_summary;
    QWidget* m_histogram;
};
