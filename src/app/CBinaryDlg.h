#pragma once

#include <QDialog>

class QCheckBox;
class QSlider;

// "&Binary": switches binarisation on or off and sets its slider, 0 to 255.
// The document sends 255 minus the slider as the threshold, so moving the
// slider right makes more of the picture white.
class CBinaryDlg : public QDialog
{
    Q_OBJECT

public:
    CBinaryDlg(bool on, int slider, QWidget* parent = nullptr);

    bool IsOn() const;
    int Slider() const;

private:
    QCheckBox* m_chkOn;
    QSlider* m_slider;
};
