#include "capture/CDevicePropertiesDlg.h"

#include "capture/CCameraControlStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

// An integer control: a slider with a spin box showing the same value.
class CIntegerEditor : public QWidget
{
public:
    CIntegerEditor(const CameraControl& c, QWidget* parent)
        : QWidget(parent)
        , m_slider(new QSlider(Qt::Horizontal, this))
        , m_spin(new QSpinBox(this))
    {
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(0, 0, 0, 0);
        row->addWidget(m_slider, 1);
        row->addWidget(m_spin);
        m_spin->setKeyboardTracking(false);
        m_slider->setRange(c.minimum, c.maximum);
        m_slider->setSingleStep(c.step);
        m_spin->setRange(c.minimum, c.maximum);
        m_spin->setSingleStep(c.step);
        SetValue(c.value);
        QObject::connect(m_slider, &QSlider::valueChanged, m_spin, &QSpinBox::setValue);
        QObject::connect(m_spin, &QSpinBox::valueChanged, m_slider, &QSlider::setValue);
    }
    void SetValue(int v)
    {
        const QSignalBlocker a(m_slider);
        const QSignalBlocker b(m_spin);
        m_slider->setValue(v);
        m_spin->setValue(v);
    }
    QSlider* Slider() const { return m_slider; }

private:
    QSlider* m_slider;
    QSpinBox* m_spin;
};

} // namespace

CDevicePropertiesDlg::CDevicePropertiesDlg(
    GstElement* source, GstDevice* device, const QString& cameraKey, QWidget* parent)
    : QDialog(parent)
    , m_controls(std::make_unique<CCameraControls>(source, device))
    , m_cameraKey(cameraKey)
{
    setWindowTitle(tr("Video Properties"));
    auto* layout = new QVBoxLayout(this);
    auto* area = new QScrollArea(this);
    area->setWidgetResizable(true);
    auto* page = new QWidget(area);
    auto* form = new QFormLayout(page);
    area->setWidget(page);
    layout->addWidget(area, 1);

    m_shown = m_controls->IsAvailable() ? m_controls->Query() : QList<CameraControl>();
    for (int i = 0; i < m_shown.size(); ++i) {
        QWidget* editor = MakeEditor(i);
        m_editors.push_back(editor);
        form->addRow(
            m_shown[i].type == CameraControl::Type::Boolean || m_shown[i].type == CameraControl::Type::Button
                ? QString()
                : m_shown[i].name + QLatin1Char(':'),
            editor);
    }
    m_status = new QLabel(this);
    m_status->setWordWrap(true);
    if (!m_controls->IsAvailable())
        m_status->setText(tr("This camera offers no settings here. %1").arg(m_controls->Error()).trimmed());
    else if (m_shown.isEmpty())
        m_status->setText(tr("This camera offers no settings."));
    layout->addWidget(m_status);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* defaults = buttons->addButton(tr("&Default"), QDialogButtonBox::ResetRole);
    defaults->setEnabled(!m_shown.isEmpty());
    connect(defaults, &QPushButton::clicked, this, &CDevicePropertiesDlg::RestoreDefaults);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(460, std::min(640, page->sizeHint().height() + buttons->sizeHint().height() + 60));
    Refresh();
}

CDevicePropertiesDlg::~CDevicePropertiesDlg() = default;

QWidget* CDevicePropertiesDlg::MakeEditor(int row)
{
    const CameraControl& c = m_shown[row];
    switch (c.type) {
    case CameraControl::Type::Boolean: {
        auto* box = new QCheckBox(c.name, this);
        box->setChecked(c.value != 0);
        connect(box, &QCheckBox::toggled, this, [this, row](bool on) { Apply(row, on ? 1 : 0); });
        return box;
    }
    case CameraControl::Type::Menu: {
        auto* combo = new QComboBox(this);
        combo->addItems(c.menuItems);
        combo->setCurrentIndex(int(c.menuValues.indexOf(c.value)));
        connect(combo, &QComboBox::activated, this, [this, row](int index) {
            if (index >= 0 && index < m_shown[row].menuValues.size())
                Apply(row, m_shown[row].menuValues[index]);
        });
        return combo;
    }
    case CameraControl::Type::Button: {
        auto* button = new QPushButton(c.name, this);
        connect(button, &QPushButton::clicked, this, [this, row] { Apply(row, 1); });
        return button;
    }
    case CameraControl::Type::Integer:
        break;
    }
    auto* editor = new CIntegerEditor(c, this);
    connect(editor->Slider(), &QSlider::valueChanged, this, [this, row](int v) { Apply(row, v); });
    return editor;
}

void CDevicePropertiesDlg::Apply(int row, int value)
{
    if (row < 0 || row >= m_shown.size())
        return;
    const CameraControl& c = m_shown[row];
    if (c.type != CameraControl::Type::Button)
        value = std::clamp(value, c.minimum, c.maximum);
    if (m_controls->Set(c, value)) {
        m_status->clear();
        if (!m_cameraKey.isEmpty())
            CCameraControlStore().Remember(m_cameraKey, c, value);
    } else {
        m_status->setText(m_controls->Error());
    }
    // One control may switch others on or off (automatic exposure).
    Refresh();
}

void CDevicePropertiesDlg::RestoreDefaults()
{
    for (int i = 0; i < m_shown.size(); ++i)
        if (m_shown[i].type != CameraControl::Type::Button && !m_shown[i].readOnly)
            if (m_controls->Set(m_shown[i], m_shown[i].defaultValue) && !m_cameraKey.isEmpty())
                CCameraControlStore().Remember(m_cameraKey, m_shown[i], m_shown[i].defaultValue);
    Refresh();
}

void CDevicePropertiesDlg::Refresh()
{
    const QList<CameraControl> now = m_controls->IsAvailable() ? m_controls->Query() : QList<CameraControl>();
    for (int i = 0; i < m_shown.size() && i < m_editors.size(); ++i) {
        for (const CameraControl& n : now) {
            if (n.v4l2Id != m_shown[i].v4l2Id || n.property != m_shown[i].property)
                continue;
            m_shown[i].value = n.value;
            m_shown[i].inactive = n.inactive;
            break;
        }
        const CameraControl& c = m_shown[i];
        QWidget* editor = m_editors[i];
        editor->setEnabled(!c.inactive && !c.readOnly);
        const QSignalBlocker block(editor);
        if (auto* box = qobject_cast<QCheckBox*>(editor))
            box->setChecked(c.value != 0);
        else if (auto* combo = qobject_cast<QComboBox*>(editor))
            combo->setCurrentIndex(int(c.menuValues.indexOf(c.value)));
        else if (c.type == CameraControl::Type::Integer)
            static_cast<CIntegerEditor*>(editor)->SetValue(c.value);
    }
}
