#include "ui/CMeasureColorDlg.h"

#include "measure/CGVLElemMgr.h"
#include "ui/CColorSelectComboBox.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

CColorSelectComboBox* ColorList(const char* name)
{
    auto* list = new CColorSelectComboBox;
    list->setObjectName(QString::fromLatin1(name));
    list->FillPalette();
    return list;
}

QComboBox* TextList(const char* name, std::initializer_list<const char*> items)
{
    auto* list = new QComboBox;
    list->setObjectName(QString::fromLatin1(name));
    for (const char* item : items)
        list->addItem(QString::fromLatin1(item));
    return list;
}

// Selects position `index`, or nothing when the list has no such position.
void Select(QComboBox* list, int index)
{
    list->setCurrentIndex(index >= 0 && index < list->count() ? index : -1);
}

void Take(const QComboBox* list, int& value, int offset)
{
    if (list->currentIndex() >= 0)
        value = list->currentIndex() + offset;
}

} // namespace

CMeasureColorDlg::CMeasureColorDlg(QWidget* parent)
    : QDialog(parent)
    , m_cbMeasure(ColorList("measurement"))
    , m_cbPoint(ColorList("point"))
    , m_cbText(ColorList("text"))
    , m_cbCoord(ColorList("coordinate"))
    , m_cbPrecision(TextList("precision", { "1", "2", "3", "4", "5" }))
    , m_cbFontSize(TextList("fontSize", { "Small", "Medium", "Big" }))
    , m_cbFontBackground(TextList("fontBackground", { "Transparent", "Gray" }))
{
    setWindowTitle(QCoreApplication::translate("CMeasureColorDlg", "Measure Setting"));

    auto* colors = new QGroupBox(QCoreApplication::translate("CMeasureColorDlg", "Measure Color"));
    auto* colorForm = new QFormLayout(colors);
    colorForm->addRow(QCoreApplication::translate("CMeasureColorDlg", "Measurement"), m_cbMeasure);
    colorForm->addRow(QCoreApplication::translate("CMeasureColorDlg", "Point"), m_cbPoint);
    colorForm->addRow(QCoreApplication::translate("CMeasureColorDlg", "Text"), m_cbText);
    // The coordinate colour keeps its list, out of sight.
    m_cbCoord->setParent(colors);
    m_cbCoord->hide();

    auto* others = new QGroupBox(QCoreApplication::translate("CMeasureColorDlg", "Others"));
    auto* otherForm = new QFormLayout(others);
    otherForm->addRow(QCoreApplication::translate("CMeasureColorDlg", "Precision"), m_cbPrecision);
    otherForm->addRow(QCoreApplication::translate("CMeasureColorDlg", "Font Size"), m_cbFontSize);
    otherForm->addRow(
        QCoreApplication::translate("CMeasureColorDlg", "Font \nBackground"), m_cbFontBackground);

    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(
        QCoreApplication::translate("CMeasureColorDlg", "OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("ok"));
    ok->setDefault(true);
    buttons
        ->addButton(QCoreApplication::translate("CMeasureColorDlg", "Cancel"), QDialogButtonBox::RejectRole)
        ->setObjectName(QStringLiteral("cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &CMeasureColorDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CMeasureColorDlg::reject);

    auto* groups = new QHBoxLayout;
    groups->addWidget(colors);
    groups->addWidget(others);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addWidget(buttons);
    UpdateControls();
}

void CMeasureColorDlg::ReadFrom(const CGVLElemMgr& mgr)
{
    const CGVLElemMgr::Appearance look = mgr.GetAppearance();
    m_nTextColor = look.color.m_ctText;
    m_nMeasureColor = look.color.m_ctRuler;
    m_nCoordColor = look.color.m_ctCoord;
    m_nPointColor = look.color.m_ctAdjust;
    m_nPrecision = look.precision;
    m_nFontSize = look.fontSize;
    m_nFontBackground = look.fontBackground;
}

void CMeasureColorDlg::WriteTo(CGVLElemMgr& mgr) const
{
    const ColorRecord color { .m_ctCoord = m_nCoordColor,
        .m_ctRuler = m_nMeasureColor,
        .m_ctAdjust = m_nPointColor,
        .m_ctText = m_nTextColor };
    mgr.SetAppearance({ color, m_nPrecision, m_nFontSize, m_nFontBackground });
}

void CMeasureColorDlg::UpdateControls()
{
    Select(m_cbText, m_nTextColor);
    Select(m_cbMeasure, m_nMeasureColor);
    Select(m_cbCoord, m_nCoordColor);
    Select(m_cbPoint, m_nPointColor);
    Select(m_cbPrecision, m_nPrecision - 1);
    Select(m_cbFontSize, m_nFontSize - 1);
    Select(m_cbFontBackground, m_nFontBackground - 1);
}

void CMeasureColorDlg::accept()
{
    Take(m_cbText, m_nTextColor, 0);
    Take(m_cbMeasure, m_nMeasureColor, 0);
    Take(m_cbCoord, m_nCoordColor, 0);
    Take(m_cbPoint, m_nPointColor, 0);
    Take(m_cbPrecision, m_nPrecision, 1);
    Take(m_cbFontSize, m_nFontSize, 1);
    Take(m_cbFontBackground, m_nFontBackground, 1);
    QDialog::accept();
}

bool CMeasureColorDlg::Edit(CGVLElemMgr& mgr, QWidget* parent)
{
    CMeasureColorDlg dialog(parent);
    dialog.ReadFrom(mgr);
    dialog.UpdateControls();
    if (dialog.exec() != QDialog::Accepted)
        return false;
    dialog.WriteTo(mgr);
    return true;
}
