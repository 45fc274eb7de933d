#pragma once

#include "image/ProcessSwitches.h"

#include <QDialog>

#include <array>
#include <vector>

class ICamProcess;
class QCheckBox;
class QSlider;

// The processing bar's settings: every switch of the processing element with
// the parameters of its operation, applied as it changes. One check box for
// each operation of ProcessOperations.h, with a slider for each parameter.
class CProcessPropertiesDlg : public QDialog
{
    Q_OBJECT
public:
    CProcessPropertiesDlg(ICamProcess* process, QWidget* parent = nullptr);

    QCheckBox* EnableBox() const { return m_enable; }
    QCheckBox* Box(ProcessOp op) const { return m_boxes[std::size_t(op)]; }
    QSlider* Slider(ProcessOp op, int parameter) const
    {
        return m_sliders[std::size_t(op)][std::size_t(parameter)];
    }

    QCheckBox* FlipBox() const { return Box(ProcessOp::Flip); }
    QCheckBox* GrayBox() const { return Box(ProcessOp::Gray); }
    QCheckBox* BinaryBox() const { return Box(ProcessOp::Binary); }
    QSlider* LevelSlider() const { return Slider(ProcessOp::Binary, 0); }
    QCheckBox* RgbBox() const { return Box(ProcessOp::Rgb); }
    QSlider* GainSlider(int channel) const { return Slider(ProcessOp::Rgb, channel); }

private:
    void Load();
    // Hands the operation's box and sliders to the element.
    void Apply(ProcessOp op);

    ICamProcess* m_process;
    QCheckBox* m_enable;
    std::array<QCheckBox*, kProcessOpCount> m_boxes {};
    std::array<std::vector<QSlider*>, kProcessOpCount> m_sliders;
};
