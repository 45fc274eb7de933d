#pragma once

#include "calibration/GraticuleDetector.h"

#include <QDialog>
#include <QImage>
#include <QRect>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

// "Detect from micrometer": finds a stage micrometer's ticks in the current
// picture, shows the ticks it used over the picture and the pixel size with
// its uncertainty, and lets the user accept it or not. The calibration dialog
// turns an accepted result into the calibration record.
class CGraticuleDlg : public QDialog
{
    Q_OBJECT

public:
    // `rulerBox`, in picture pixels, is offered as the region to search.
    CGraticuleDlg(const QImage& picture, const QRect& rulerBox, QWidget* parent = nullptr);

    // Looks for the micrometer with the division value and region as set.
    void Detect();
    const GraticuleFit& Fit() const { return m_fit; }
    // The division value typed, in micrometres (0 when it is not a number).
    double DivisionUm() const;
    void SetDivisionMm(const QString& text);
    void SetInsideRuler(bool inside);
    QString ShownResult() const;
    bool CanAccept() const;

private:
    void ShowPreview();

    QImage m_picture;
    QRect m_rulerBox;
    GraticuleFit m_fit;
    QLineEdit* m_edDivision = nullptr;
    QCheckBox* m_chInsideRuler = nullptr;
    QLabel* m_lbPreview = nullptr;
    QLabel* m_lbResult = nullptr;
    QPushButton* m_btAccept = nullptr;
};
