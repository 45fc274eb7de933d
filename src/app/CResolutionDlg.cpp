#include "app/CResolutionDlg.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

CResolutionDlg::CResolutionDlg(int resolution, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Set resolution"));
    auto* group = new QGroupBox(tr("Resolution of saved pictures"), this);
    auto* choices = new QVBoxLayout(group);
    const char* texts[] = { "1280*1024", "1600*1200", "2048*1536" };
    for (int i = 0; i < 3; ++i) {
        m_choices[i] = new QRadioButton(QString::fromLatin1(texts[i]), group);
        m_choices[i]->setObjectName(QStringLiteral("resolution%1").arg(i + 1));
        choices->addWidget(m_choices[i]);
    }
    m_choices[resolution >= 1 && resolution <= 3 ? resolution - 1 : 0]->setChecked(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(buttons);
    setMinimumWidth(260);
}

int CResolutionDlg::Resolution() const
{
    for (int i = 0; i < 3; ++i) {
        if (m_choices[i]->isChecked())
            return i + 1;
    }
    return 1;
}
