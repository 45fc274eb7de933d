#pragma once

#include <QDialog>

class CColorSelectComboBox;
class CGVLElemMgr;
class QComboBox;

// "Measure Setting": the colours, decimals, label size and label background
// of the measurement drawings. Modal; OK writes back, Cancel changes nothing.
class CMeasureColorDlg : public QDialog
{
    Q_OBJECT

public:
    explicit CMeasureColorDlg(QWidget* parent = nullptr);

    // The document's measurement-settings command: a fresh dialog with the
    // manager's values; on OK the values go back into the manager and the
    // overlay window repaints. True when OK was pressed.
    static bool Edit(CGVLElemMgr& mgr, QWidget* parent = nullptr);

    // The manager's seven values into the dialog, and back.
    void ReadFrom(const CGVLElemMgr& mgr);
    void WriteTo(CGVLElemMgr& mgr) const;

    // Selects each list's entry for the values.
    void UpdateControls();

    // Palette indices and the three settings (1-based).
    int m_nTextColor = 1;
    int m_nMeasureColor = 1;
    int m_nCoordColor = 1;
    int m_nPointColor = 1;
    int m_nPrecision = 1;
    int m_nFontSize = 1;
    int m_nFontBackground = 1;

public slots:
    // Takes the lists' selections; a list without a selection (its value was
    // out of range) keeps the value it was given.
    void accept() override;

private:
    CColorSelectComboBox* m_cbMeasure;
    CColorSelectComboBox* m_cbPoint;
    CColorSelectComboBox* m_cbText;
    CColorSelectComboBox* m_cbCoord;
    QComboBox* m_cbPrecision;
    QComboBox* m_cbFontSize;
    QComboBox* m_cbFontBackground;
};
