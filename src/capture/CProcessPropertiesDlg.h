#pragma once

#include <QDialog>

class ICamProcess;
class QCheckBox;
class QSlider;

// The processing bar's settings: every switch of the processing element,
// applied as it changes: processing on/off, the flips, gray, negative, binary
// with its level, emboss, sharpen, and the RGB gains.
class CProcessPropertiesDlg : public QDialog
{
    Q_OBJECT
public:
    CProcessPropertiesDlg(ICamProcess* process, QWidget* parent = nullptr);

    QCheckBox* EnableBox() const { return m_enable; }
    QCheckBox* FlipBox() const { return m_flip; }
    QCheckBox* MirrorBox() const { return m_mirror; }
    QCheckBox* GrayBox() const { return m_gray; }
    QCheckBox* NegativeBox() const { return m_negative; }
    QCheckBox* BinaryBox() const { return m_binary; }
    QSlider* LevelSlider() const { return m_level; }
    QCheckBox* EmbossBox() const { return m_emboss; }
    QCheckBox* SharpenBox() const { return m_sharpen; }
    QCheckBox* RgbBox() const { return m_rgb; }
    QSlider* GainSlider(int channel) const { return m_gain[channel]; }

private:
    void Load();
    void ApplyBinary();
    void ApplyRgb();

    ICamProcess* m_process;
    QCheckBox* m_enable;
    QCheckBox* m_flip;
    QCheckBox* m_mirror;
    QCheckBox* m_gray;
    QCheckBox* m_negative;
    QCheckBox* m_binary;
    QSlider* m_level;
    QCheckBox* m_emboss;
    QCheckBox* m_sharpen;
    QCheckBox* m_rgb;
    QSlider* m_gain[3];
};
