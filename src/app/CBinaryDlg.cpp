#include "app/CBinaryDlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

CBinaryDlg::CBinaryDlg(bool on, int slider, QWidget* parent)
    : QDialog(parent)
    , m_chkOn(new QCheckBox(tr("Binary"), this))
    , m_slider(new QSlider(Qt::Horizontal, this))
{
    setWindowTitle(tr("Binary image"));
    m_chkOn->setChecked(on);
    m_slider->setRange(0, 255);
    m_slider->setValue(slider);
    auto* value = new QLabel(QString::number(slider), this);
    value->setMinimumWidth(30);
    connect(m_slider, &QSlider::valueChanged, value, [value](int v) { value->setNum(v); });

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Level"), this));
    row->addWidget(m_slider, 1);
    row->addWidget(value);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_chkOn);
    layout->addLayout(row);
    layout->addWidget(buttons);
    setMinimumWidth(320);
}

bool CBinaryDlg::IsOn() const
{
    return m_chkOn->isChecked();
}

int CBinaryDlg::Slider() const
{
    return m_slider->value();
}
