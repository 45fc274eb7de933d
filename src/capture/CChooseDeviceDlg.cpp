#include "capture/CChooseDeviceDlg.h"

#include "capture/CXCapGraph.h"
#include "capture/CameraModels.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

CChooseDeviceDlg::CChooseDeviceDlg(CXCapGraph* graph, ChangeHandler onChange, QWidget* parent)
    : QDialog(parent)
    , m_graph(graph)
    , m_onChange(std::move(onChange))
    , m_devices(new QComboBox(this))
{
    setWindowTitle(tr("Video Capture Device"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Video capture device:"), this));
    layout->addWidget(m_devices);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CChooseDeviceDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    m_devices->setMinimumWidth(320);

    m_graph->EnumDevices();
    for (int i = 0; i < kMaxListed && i < m_graph->DeviceCount(); ++i) {
        const QString name = m_graph->DeviceNameAt(i);
        if (name.isEmpty())
            break;
        m_devices->addItem(name);
    }
    m_graph->SelectCurrentDevice();
    m_devices->setCurrentIndex(
        m_graph->SelectedDevice() < m_devices->count() ? m_graph->SelectedDevice() : 0);
}

void CChooseDeviceDlg::accept()
{
    const int index = m_devices->currentIndex();
    if (index >= 0 && index != m_graph->SelectedDevice()) {
        m_graph->SetSelectedDevice(index);
        SetDeviceChosenByHand(true);
        const QString name = m_devices->currentText();
        QDialog::accept();
        if (m_onChange)
            m_onChange(index, name);
        return;
    }
    QDialog::accept();
}
