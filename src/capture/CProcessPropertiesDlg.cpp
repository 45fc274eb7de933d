#include "capture/CProcessPropertiesDlg.h"

#include "capture/ICamProcess.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

namespace {

// Gains as the RGB dialog keeps them.
constexpr int kMaxGain = 63;

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

    auto* switches = new QGroupBox(tr("Processing"), this);
    auto* form = new QFormLayout(switches);
    m_flip = new QCheckBox(tr("Flip &Vertical"), switches);
    m_mirror = new QCheckBox(tr("Flip &Horizontal"), switches);
    m_gray = new QCheckBox(tr("&Gray"), switches);
    m_negative = new QCheckBox(tr("&Negative"), switches);
    m_binary = new QCheckBox(tr("&Binary"), switches);
    m_level = MakeSlider(255, switches);
    m_emboss = new QCheckBox(tr("&Emboss"), switches);
    m_sharpen = new QCheckBox(tr("&Sharpen"), switches);
    for (QCheckBox* box : { m_flip, m_mirror, m_gray, m_negative })
        form->addRow(box);
    form->addRow(m_binary, WithValue(m_level, switches));
    form->addRow(m_emboss);
    form->addRow(m_sharpen);
    layout->addWidget(switches);

    auto* gains = new QGroupBox(tr("RGB gain"), this);
    auto* gainForm = new QFormLayout(gains);
    m_rgb = new QCheckBox(tr("&Apply the gains"), gains);
    gainForm->addRow(m_rgb);
    const QString names[3] = { tr("Red:"), tr("Green:"), tr("Blue:") };
    for (int c = 0; c < 3; ++c) {
        m_gain[c] = MakeSlider(kMaxGain, gains);
        gainForm->addRow(names[c], WithValue(m_gain[c], gains));
    }
    layout->addWidget(gains);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    Load();

    connect(m_enable, &QCheckBox::toggled, this, [this](bool on) { m_process->SetProcessEnable(on); });
    connect(m_flip, &QCheckBox::toggled, this, [this](bool on) { m_process->SetFlipVertical(on); });
    connect(m_mirror, &QCheckBox::toggled, this, [this](bool on) { m_process->SetFlipHorizontal(on); });
    connect(m_gray, &QCheckBox::toggled, this, [this](bool on) { m_process->SetGray(on); });
    connect(m_negative, &QCheckBox::toggled, this, [this](bool on) { m_process->SetNegative(on); });
    connect(m_binary, &QCheckBox::toggled, this, &CProcessPropertiesDlg::ApplyBinary);
    connect(m_level, &QSlider::valueChanged, this, &CProcessPropertiesDlg::ApplyBinary);
    connect(m_emboss, &QCheckBox::toggled, this, [this](bool on) { m_process->SetEmboss(on); });
    connect(m_sharpen, &QCheckBox::toggled, this, [this](bool on) { m_process->SetSharpen(on); });
    connect(m_rgb, &QCheckBox::toggled, this, &CProcessPropertiesDlg::ApplyRgb);
    for (QSlider* s : m_gain)
        connect(s, &QSlider::valueChanged, this, &CProcessPropertiesDlg::ApplyRgb);
}

void CProcessPropertiesDlg::Load()
{
    int on = 0;
    int level = 128;
    int r = 0, g = 0, b = 0;
    auto set = [](QCheckBox* box, int value) {
        const QSignalBlocker block(box);
        box->setChecked(value != 0);
    };
    m_process->GetProcessEnable(&on);
    set(m_enable, on);
    m_process->GetFlipVertical(&on);
    set(m_flip, on);
    m_process->GetFlipHorizontal(&on);
    set(m_mirror, on);
    m_process->GetGray(&on);
    set(m_gray, on);
    m_process->GetNegative(&on);
    set(m_negative, on);
    m_process->GetBinary(&on, &level);
    set(m_binary, on);
    m_level->setValue(std::clamp(level, 0, 255));
    m_process->GetEmboss(&on);
    set(m_emboss, on);
    m_process->GetSharpen(&on);
    set(m_sharpen, on);
    m_process->GetRgbGain(&on, &r, &g, &b);
    set(m_rgb, on);
    const int values[3] = { r, g, b };
    for (int c = 0; c < 3; ++c)
        m_gain[c]->setValue(std::clamp(values[c], 0, kMaxGain));
}

void CProcessPropertiesDlg::ApplyBinary()
{
    m_process->SetBinary(m_binary->isChecked(), m_level->value());
}

void CProcessPropertiesDlg::ApplyRgb()
{
    m_process->SetRgbGain(m_rgb->isChecked(), m_gain[0]->value(), m_gain[1]->value(), m_gain[2]->value());
}
