#include "capture/CRgbDlg.h"

#include "capture/CXCapGraph.h"
#include "capture/ILiveDocument.h"
#include "image/ProcessSwitches.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <climits>

namespace {

const char* const kColumns = QT_TRANSLATE_NOOP("CRgbDlg", "No.,35;Name,130;Red,50;Green,50;Blue,50");

// The platform's _wtoi: blanks, a sign, then digits as far as they go; no
// number gives 0.
int TextToInt(const QString& text)
{
    int i = 0;
    const int n = int(text.size());
    while (i < n && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
        ++i;
    bool negative = false;
    if (i < n && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    long long value = 0;
    for (; i < n && text[i] >= u'0' && text[i] <= u'9'; ++i)
        value = std::min<long long>(value * 10 + (text[i].unicode() - u'0'), 1LL + INT_MAX);
    value = negative ? -value : value;
    return int(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

int* Gain(ProcessSwitches& s, int channel)
{
    return channel == 0 ? &s.red : channel == 1 ? &s.green : &s.blue;
}

} // namespace

CRgbDlg::CRgbDlg(ILiveDocument* document, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
    , m_enable(new QCheckBox(tr("Enable"), this))
    , m_list(new QTreeWidget(this))
    , m_name(new QLineEdit(this))
    , m_btnAdd(new QPushButton(tr("Add"), this))
    , m_btnApply(new QPushButton(tr("Apply"), this))
    , m_btnDelete(new QPushButton(tr("Delete"), this))
    , m_btnAdvanced(new QPushButton(tr("Advanced ->"), this))
    , m_panel(new QWidget(this))
{
    setWindowTitle(tr("Rgb adjustment"));
    const ProcessSwitches& s = m_document->LiveSwitches();
    auto* grid = new QGridLayout;
    const char* const names[] = { QT_TR_NOOP("Red"), QT_TR_NOOP("Green"), QT_TR_NOOP("Blue") };
    for (int c = 0; c < 3; ++c) {
        m_sliders[c] = new QSlider(Qt::Horizontal, this);
        m_sliders[c]->setRange(0, 63);
        m_values[c] = new QLabel(this);
        m_values[c]->setMinimumWidth(24);
        const int value = *Gain(const_cast<ProcessSwitches&>(s), c);
        m_sliders[c]->setValue(value);
        m_values[c]->setText(QString::asprintf("%d", m_sliders[c]->value()));
        grid->addWidget(new QLabel(tr(names[c]), this), c, 0);
        grid->addWidget(m_sliders[c], c, 1);
        grid->addWidget(m_values[c], c, 2);
        connect(m_sliders[c], &QSlider::valueChanged, this, [this, c](int v) { OnSlider(c, v); });
    }

    // The list's columns: "title,width" pairs separated by ';'.
    QStringList titles;
    QList<int> widths;
    for (const QString& column : tr(kColumns).split(QLatin1Char(';'))) {
        titles << column.section(QLatin1Char(','), 0, 0);
        widths << column.section(QLatin1Char(','), 1, 1).toInt();
    }
    m_list->setColumnCount(int(titles.size()));
    m_list->setHeaderLabels(titles);
    for (int i = 0; i < widths.size(); ++i)
        m_list->setColumnWidth(i, widths[i]);
    m_list->setRootIsDecorated(false);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setSortingEnabled(true);
    m_list->sortByColumn(-1, Qt::AscendingOrder);
    m_list->setMinimumHeight(120);

    m_btnAdd->setToolTip(tr("Add current rgb values to list"));
    m_btnApply->setToolTip(tr("Apply selected item to camera parameter"));
    m_btnDelete->setToolTip(tr("Delete selected item from list"));
    m_name->setPlaceholderText(tr("Name"));
    auto* panel = new QHBoxLayout(m_panel);
    panel->setContentsMargins(0, 0, 0, 0);
    panel->addWidget(m_name, 1);
    panel->addWidget(m_btnAdd);
    panel->addWidget(m_btnApply);
    panel->addWidget(m_btnDelete);
    m_panel->setFixedHeight(kAdvancedHeight - 8);
    m_panel->hide();

    auto* advancedRow = new QHBoxLayout;
    advancedRow->addStretch(1);
    advancedRow->addWidget(m_btnAdvanced);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_enable);
    layout->addLayout(grid);
    layout->addWidget(m_list, 1);
    layout->addLayout(advancedRow);
    layout->addWidget(m_panel);
    for (QPushButton* b : { m_btnAdd, m_btnApply, m_btnDelete, m_btnAdvanced })
        b->setAutoDefault(false);

    connect(m_enable, &QCheckBox::toggled, this, &CRgbDlg::OnEnable);
    connect(m_btnAdd, &QPushButton::clicked, this, &CRgbDlg::OnAdd);
    connect(m_btnApply, &QPushButton::clicked, this, &CRgbDlg::OnApply);
    connect(m_btnDelete, &QPushButton::clicked, this, &CRgbDlg::OnDelete);
    connect(m_btnAdvanced, &QPushButton::clicked, this, &CRgbDlg::OnAdvanced);

    {
        const QSignalBlocker block(m_enable);
        m_enable->setChecked(s.rgb);
    }
    EnableControls(s.rgb);
    LoadList();
    resize(360, 0);
    m_baseHeight = sizeHint().height();
    setFixedHeight(m_baseHeight);
}

CRgbDlg::~CRgbDlg() = default;

void CRgbDlg::EnableControls(bool on)
{
    for (int c = 0; c < 3; ++c) {
        m_sliders[c]->setEnabled(on);
        m_values[c]->setEnabled(on);
    }
    for (QWidget* w : std::initializer_list<QWidget*> { m_btnAdd, m_btnApply, m_btnDelete, m_list })
        w->setEnabled(on);
}

void CRgbDlg::SendGains()
{
    const ProcessSwitches& s = m_document->LiveSwitches();
    m_document->GetGraph().SetRgbGain(s.rgb ? 1 : 0, s.red, s.green, s.blue);
}

void CRgbDlg::OnEnable(bool on)
{
    m_document->LiveSwitches().rgb = on;
    SendGains();
    EnableControls(on);
}

void CRgbDlg::OnSlider(int channel, int position)
{
    *Gain(m_document->LiveSwitches(), channel) = position;
    m_values[channel]->setText(QString::asprintf("%d", position));
    SendGains();
}

void CRgbDlg::OnAdd()
{
    const QString name = m_name->text();
    if (name.isEmpty())
        return;
    const ProcessSwitches& s = m_document->LiveSwitches();
    const bool sorting = m_list->isSortingEnabled();
    m_list->setSortingEnabled(false);
    auto* row = new QTreeWidgetItem(m_list);
    row->setText(ColNo, QString::number(m_list->topLevelItemCount() - 1));
    row->setText(ColName, name);
    row->setText(ColRed, QString::number(s.red));
    row->setText(ColGreen, QString::number(s.green));
    row->setText(ColBlue, QString::number(s.blue));
    m_list->setSortingEnabled(sorting);
}

void CRgbDlg::OnApply()
{
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    if (selected.isEmpty())
        return;
    // Of several selected rows the last one in the list wins.
    QTreeWidgetItem* last = selected.front();
    for (QTreeWidgetItem* item : selected)
        if (m_list->indexOfTopLevelItem(item) > m_list->indexOfTopLevelItem(last))
            last = item;
    for (int c = 0; c < 3; ++c)
        m_sliders[c]->setValue(TextToInt(last->text(ColRed + c)));
    SendGains();
}

void CRgbDlg::OnDelete()
{
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    if (selected.isEmpty()) {
        MessageBox(tr("Select One item first"), tr("Hint"), MB_OK);
        return;
    }
    qDeleteAll(selected);
    SaveList();
    LoadList();
}

void CRgbDlg::OnAdvanced()
{
    m_advancedShown = !m_advancedShown;
    m_panel->setVisible(m_advancedShown);
    m_btnAdvanced->setText(m_advancedShown ? tr("Advanced <-") : tr("Advanced ->"));
    setFixedHeight(m_baseHeight + (m_advancedShown ? kAdvancedHeight : 0));
}

void CRgbDlg::LoadList()
{
    using namespace SettingsKeys;
    const QString file = m_document->GetSettingsFile();
    const bool sorting = m_list->isSortingEnabled();
    m_list->setSortingEnabled(false);
    m_list->clear();
    const int total = ReadInt(RgbGainTotal, file);
    for (int i = 0; i < total; ++i) {
        auto* row = new QTreeWidgetItem(m_list);
        row->setText(ColNo, QString::number(i));
        row->setText(ColName, ReadString(RgbGainName(i), file));
        row->setText(ColRed, ReadString(RgbGainRed(i), file));
        row->setText(ColGreen, ReadString(RgbGainGreen(i), file));
        row->setText(ColBlue, ReadString(RgbGainBlue(i), file));
    }
    m_list->setSortingEnabled(sorting);
}

// Keys of rows beyond the new count stay in the file.
void CRgbDlg::SaveList()
{
    using namespace SettingsKeys;
    const QString file = m_document->GetSettingsFile();
    const int rows = m_list->topLevelItemCount();
    WriteInt(RgbGainTotal, rows, file);
    for (int i = 0; i < rows; ++i) {
        const QTreeWidgetItem* row = m_list->topLevelItem(i);
        WriteString(RgbGainName(i), row->text(ColName), file);
        WriteString(RgbGainRed(i), row->text(ColRed), file);
        WriteString(RgbGainGreen(i), row->text(ColGreen), file);
        WriteString(RgbGainBlue(i), row->text(ColBlue), file);
    }
}

void CRgbDlg::done(int result)
{
    ProcessSwitches& s = m_document->LiveSwitches();
    s.rgb = m_enable->isChecked();
    for (int c = 0; c < 3; ++c)
        *Gain(s, c) = m_sliders[c]->value();
    SendGains();
    SaveList();
    QDialog::done(result);
}
