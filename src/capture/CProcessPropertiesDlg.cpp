#include "capture/CProcessPropertiesDlg.h"

#include "capture/ICamProcess.h"
#include "image/ProcessOperations.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QSlider* MakeSlider(int maximum, QWidget* parent)
{
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setRange(0, maximum);
    slider->setMinimumWidth(200);
    return slider;
}

// A slider followed by its value.
QWidget* WithValue(QSlider* slider, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(QString::number(slider->value()), box);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("000")));
    row->addWidget(slider, 1);
    row->addWidget(label);
    QObject::connect(slider, &QSlider::valueChanged, label, [label](int v) { label->setNum(v); });
    return box;
}

} // namespace

CProcessPropertiesDlg::CProcessPropertiesDlg(ICamProcess* process, QWidget* parent)
    : QDialog(parent)
    , m_process(process)
{
    setWindowTitle(tr("Real-time Processing"));
    auto* layout = new QVBoxLayout(this);
    m_enable = new QCheckBox(tr("&Enable realtime process"), this);
    layout->addWidget(m_enable);

    // Operations with at most one parameter share one group, in chain order;
    // one with several gets a group of its own after it.
    auto* switches = new QGroupBox(tr("Processing"), this);
    auto* form = new QFormLayout(switches);
    for (const ProcessOperation& op : kProcessOperations) {
        if (op.parameters.size() > 1)
            continue;
        QCheckBox* box = m_boxes[std::size_t(op.op)] = new QCheckBox(tr(op.label), switches);
        if (op.parameters.empty()) {
            form->addRow(box);
            continue;
        }
        QSlider* slider = MakeSlider(op.parameters[0].sliderMax, switches);
        m_sliders[std::size_t(op.op)].push_back(slider);
        form->addRow(box, WithValue(slider, switches));
    }
    layout->addWidget(switches);

    for (const ProcessOperation& op : kProcessOperations) {
        if (op.parameters.size() <= 1)
            continue;
        auto* group = new QGroupBox(tr(op.group), this);
        auto* groupForm = new QFormLayout(group);
        QCheckBox* box = m_boxes[std::size_t(op.op)] = new QCheckBox(tr(op.label), group);
        groupForm->addRow(box);
        for (const ProcessParameter& parameter : op.parameters) {
            QSlider* slider = MakeSlider(parameter.sliderMax, group);
            m_sliders[std::size_t(op.op)].push_back(slider);
            groupForm->addRow(tr(parameter.label), WithValue(slider, group));
        }
        layout->addWidget(group);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    Load();

    connect(m_enable, &QCheckBox::toggled, this, [this](bool on) { m_process->SetProcessEnable(on); });
    for (const ProcessOperation& op : kProcessOperations) {
        const ProcessOp id = op.op;
        connect(Box(id), &QCheckBox::toggled, this, [this, id] { Apply(id); });
        for (QSlider* slider : m_sliders[std::size_t(id)])
            connect(slider, &QSlider::valueChanged, this, [this, id] { Apply(id); });
    }
}

void CProcessPropertiesDlg::Load()
{
    int on = 0;
    m_process->GetProcessEnable(&on);
    {
        const QSignalBlocker block(m_enable);
        m_enable->setChecked(on != 0);
    }
    for (const ProcessOperation& op : kProcessOperations) {
        ProcessSwitches values;
        m_process->GetOperation(op.op, &values);
        QCheckBox* box = Box(op.op);
        {
            const QSignalBlocker block(box);
            box->setChecked(values.*op.on);
        }
        for (std::size_t k = 0; k < op.parameters.size(); ++k) {
            QSlider* slider = m_sliders[std::size_t(op.op)][k];
            slider->setValue(std::clamp(values.*op.parameters[k].value, 0, op.parameters[k].sliderMax));
        }
    }
}

void CProcessPropertiesDlg::Apply(ProcessOp op)
{
    const ProcessOperation& row = Operation(op);
    ProcessSwitches values;
    values.*row.on = Box(op)->isChecked();
    for (std::size_t k = 0; k < row.parameters.size(); ++k)
        values.*row.parameters[k].value = m_sliders[std::size_t(op)][k]->value();
    m_process->SetOperation(op, values);
}
