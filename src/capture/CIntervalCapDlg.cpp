#include "capture/CIntervalCapDlg.h"

#include "capture/CDialogTimers.h"
#include "capture/ILiveDocument.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

struct FieldRule
{
    const char* label;
    int minimum;
    int maximum;
    int fallback; // what a bad text turns into
    const char* message; // shown above the maximum
};

// The images message names 1000 while the field takes up to 15000.
const FieldRule kRules[] = {
    { QT_TRANSLATE_NOOP("CIntervalCapDlg", "Wait (sec)"), 0, 100, 0,
        QT_TRANSLATE_NOOP("CIntervalCapDlg", "Please input an integer between 0 and 100!") },
    { QT_TRANSLATE_NOOP("CIntervalCapDlg", "Interval (sec)"), 1, 100, 1,
        QT_TRANSLATE_NOOP("CIntervalCapDlg", "Please input an integer between 1 and 100!") },
    { QT_TRANSLATE_NOOP("CIntervalCapDlg", "Images"), 1, 15000, 5,
        QT_TRANSLATE_NOOP("CIntervalCapDlg", "Please input an integer between 1 and 1000!") },
};

bool AllDigits(const QString& text)
{
    return !text.isEmpty()
        && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

} // namespace

CIntervalCapDlg::CIntervalCapDlg(ILiveDocument* document, std::function<void()> quickSave, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
    , m_quickSave(std::move(quickSave))
    , m_timers(new CDialogTimers([this](int id) { OnTimer(id); }, this))
    , m_current(new QLabel(this))
    , m_fileName(new QLabel(this))
    , m_number(new QLabel(this))
    , m_btnStart(new QPushButton(tr("Start"), this))
    , m_btnStop(new QPushButton(tr("Stop"), this))
{
    setWindowTitle(tr("Interval capture"));
    auto* form = new QFormLayout;
    const int initial[] = { m_wait, m_interval, m_images };
    for (int f = Wait; f <= Images; ++f) {
        auto* edit = new QLineEdit(QString::number(initial[f]), this);
        edit->setMaxLength(8);
        m_edits[f] = edit;
        auto* up = new QToolButton(this);
        auto* down = new QToolButton(this);
        up->setArrowType(Qt::UpArrow);
        down->setArrowType(Qt::DownArrow);
        up->setAutoRepeat(true);
        down->setAutoRepeat(true);
        const Field field = Field(f);
        connect(up, &QToolButton::clicked, this, [this, field] { Step(field, 1); });
        connect(down, &QToolButton::clicked, this, [this, field] { Step(field, -1); });
        connect(edit, &QLineEdit::textEdited, this, [this, field] { Validate(field); });
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        row->addWidget(edit, 1);
        row->addWidget(up);
        row->addWidget(down);
        form->addRow(tr(kRules[f].label), row);
    }
    form->addRow(tr("Current"), m_current);
    form->addRow(tr("File Name"), m_fileName);
    form->addRow(tr("No"), m_number);
    m_fileName->setMinimumWidth(220);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_btnStart);
    buttons->addWidget(m_btnStop);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    connect(m_btnStart, &QPushButton::clicked, this, &CIntervalCapDlg::OnStart);
    connect(m_btnStop, &QPushButton::clicked, this, &CIntervalCapDlg::OnStop);
    m_btnStart->setAutoDefault(false);
    m_btnStop->setAutoDefault(false);
    ShowRunning(false);
}

CIntervalCapDlg::~CIntervalCapDlg() = default;

int CIntervalCapDlg::Minimum(Field field)
{
    return kRules[field].minimum;
}

int CIntervalCapDlg::Maximum(Field field)
{
    return kRules[field].maximum;
}

void CIntervalCapDlg::SetFieldText(Field field, const QString& text)
{
    m_edits[field]->setText(text);
    Validate(field);
}

QString CIntervalCapDlg::FieldText(Field field) const
{
    return m_edits[field]->text();
}

int CIntervalCapDlg::Value(Field field) const
{
    return m_edits[field]->text().toInt();
}

void CIntervalCapDlg::Step(Field field, int steps)
{
    const int v = std::clamp(Value(field) + steps, Minimum(field), Maximum(field));
    m_edits[field]->setText(QString::number(v));
}

// Runs on every change of a field's text.
void CIntervalCapDlg::Validate(Field field)
{
    QLineEdit* edit = m_edits[field];
    const FieldRule& rule = kRules[field];
    const QString text = edit->text();
    bool tooLarge = false;
    bool reset = !AllDigits(text);
    if (!reset) {
        bool ok = false;
        const qlonglong v = text.toLongLong(&ok);
        tooLarge = !ok || v > rule.maximum;
        // A zero where zero is not allowed becomes the default, silently.
        reset = tooLarge || (v == 0 && rule.minimum > 0);
    }
    if (!reset)
        return;
    edit->setText(QString::number(rule.fallback));
    edit->setSelection(0, 8);
    if (tooLarge)
        MessageBox(tr(rule.message), windowTitle(), MB_OK | MB_ICONWARNING);
}

void CIntervalCapDlg::OnStart()
{
    if (!m_document)
        return;
    m_imageCounter = 0;
    // A countdown stopped half-way starts from the top again.
    m_waitCounter = 0;
    m_wait = Value(Wait);
    m_interval = std::max(1, Value(Interval));
    m_images = std::max(1, Value(Images));
    m_timers->KillTimer(kTimerCountdown);
    m_timers->KillTimer(kTimerCapture);
    if (m_wait != 0)
        m_timers->SetTimer(kTimerCountdown, 1000);
    else
        m_timers->SetTimer(kTimerCapture, m_interval * 1000);
    ShowRunning(true);
}

void CIntervalCapDlg::OnTimer(int id)
{
    if (id == kTimerCountdown) {
        if (m_waitCounter == m_wait - 1) {
            m_waitCounter = 0;
            m_current->setText(QStringLiteral("0"));
            m_timers->KillTimer(kTimerCountdown);
            m_timers->SetTimer(kTimerCapture, m_interval * 1000);
        } else {
            ++m_waitCounter;
            m_current->setNum(m_wait - m_waitCounter);
        }
        return;
    }
    if (id != kTimerCapture)
        return;
    if (m_imageCounter == m_images || !m_document) {
        m_timers->KillTimer(kTimerCapture);
        m_imageCounter = 0;
        ClearTexts();
        ShowRunning(false);
        return;
    }
    ++m_imageCounter;
    m_number->setNum(m_imageCounter);
    if (m_quickSave)
        m_quickSave();
    // The save moved the running number on: this is the next picture's name.
    m_fileName->setText(NextFileName());
}

QString CIntervalCapDlg::NextFileName() const
{
    const QString file = m_document->GetSettingsFile();
    return SettingsKeys::ReadString(SettingsKeys::SavePrefix, file)
        + QString::number(SettingsKeys::ReadInt(SettingsKeys::SaveSuffix, file))
        + (SettingsKeys::ReadInt(SettingsKeys::SaveBmp, file) ? QStringLiteral(".bmp") : QStringLiteral(".jpg"));
}

void CIntervalCapDlg::OnStop()
{
    m_timers->KillTimer(kTimerCapture);
    m_timers->KillTimer(kTimerCountdown);
    m_imageCounter = 0;
    ClearTexts();
    ShowRunning(false);
}

void CIntervalCapDlg::OnDocumentClosed()
{
    OnStop();
    m_document = nullptr;
    m_btnStart->setEnabled(false);
    reject();
}

void CIntervalCapDlg::ClearTexts()
{
    m_current->clear();
    m_fileName->clear();
    m_number->clear();
}

void CIntervalCapDlg::ShowRunning(bool running)
{
    m_btnStart->setEnabled(!running && m_document);
    m_btnStop->setEnabled(running);
    for (QLineEdit* e : m_edits)
        e->setEnabled(!running);
}

bool CIntervalCapDlg::IsRunning() const
{
    return m_timers->IsRunning(kTimerCapture) || m_timers->IsRunning(kTimerCountdown);
}

QString CIntervalCapDlg::CurrentText() const
{
    return m_current->text();
}

QString CIntervalCapDlg::FileNameText() const
{
    return m_fileName->text();
}

QString CIntervalCapDlg::NumberText() const
{
    return m_number->text();
}
