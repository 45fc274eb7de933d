#include "capture/CFormatDlg.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

CFormatDlg::CFormatDlg(
    const std::vector<CaptureFormat>& formats, const CaptureFormat& current, QWidget* parent)
    : QDialog(parent)
    , m_list(new QListWidget(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Output size and format of the camera:"), this));
    layout->addWidget(m_list, 1);
    for (std::size_t i = 0; i < formats.size(); ++i) {
        m_list->addItem(Describe(formats[i]));
        if (formats[i] == current)
            m_list->setCurrentRow(int(i));
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    layout->addWidget(buttons);
    resize(340, 320);
}

int CFormatDlg::SelectedIndex() const
{
    return m_list->currentRow();
}

void CFormatDlg::SetSelectedIndex(int index)
{
    m_list->setCurrentRow(index);
}

QString CFormatDlg::Describe(const CaptureFormat& f)
{
    QString text = QStringLiteral("%1 x %2   %3").arg(f.width).arg(f.height).arg(f.fourcc);
    if (f.fpsNum > 0 && f.fpsDen > 0) {
        const double fps = double(f.fpsNum) / f.fpsDen;
        text += QStringLiteral("   %1 fps").arg(fps, 0, 'g', 4);
    }
    return text;
}
