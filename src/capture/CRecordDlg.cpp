#include "capture/CRecordDlg.h"

#include "capture/CDialogTimers.h"
#include "capture/CXCapGraph.h"
#include "capture/ILiveDocument.h"
#include "platform/MessageBox.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// The state line's strings 1 to 4.
const char* const kStateTexts[] = {
    QT_TRANSLATE_NOOP("CRecordDlg", "Start to record"),
    QT_TRANSLATE_NOOP("CRecordDlg", "Recording"),
    QT_TRANSLATE_NOOP("CRecordDlg", "Record paused"),
    QT_TRANSLATE_NOOP("CRecordDlg", "Record stoped"),
};

CRecordDlg::BrowseHandler& Browser()
{
    static CRecordDlg::BrowseHandler handler;
    return handler;
}

QString RunSaveDialog(QWidget* parent, const QString& defaultName)
{
    QFileDialog dialog(parent);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // "AVI Files(*.avi) | *.avi ||" in the toolkit's filter syntax.
    dialog.setNameFilter(QStringLiteral("AVI Files(*.avi)"));
    dialog.setDefaultSuffix(QStringLiteral("avi"));
    dialog.selectFile(defaultName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

QString Clock(qint64 ms)
{
    const qint64 s = ms / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(s / 3600, 2, 10, QLatin1Char('0'))
        .arg(s / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(s % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

CRecordDlg::CRecordDlg(ILiveDocument* document, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
    , m_timers(new CDialogTimers([this](int id) { OnTimer(id); }, this))
    , m_state(new QLabel(this))
    , m_path(new QLabel(this))
    , m_info(new QLabel(this))
    , m_btnBrowse(new QPushButton(tr("Browse"), this))
    , m_btnStart(new QPushButton(tr("Start"), this))
    , m_btnPause(new QPushButton(tr("Pause"), this))
    , m_btnStop(new QPushButton(tr("Stop"), this))
{
    setWindowTitle(tr("Record"));
    m_path->setMinimumWidth(360);
    m_path->setFrameShape(QFrame::StyledPanel);
    m_path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_info->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* status = new QHBoxLayout;
    status->addWidget(m_state, 1);
    status->addWidget(m_info);
    auto* file = new QHBoxLayout;
    file->addWidget(m_path, 1);
    file->addWidget(m_btnBrowse);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_btnStart);
    buttons->addWidget(m_btnPause);
    buttons->addWidget(m_btnStop);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(status);
    layout->addLayout(file);
    layout->addLayout(buttons);

    connect(m_btnBrowse, &QPushButton::clicked, this, &CRecordDlg::OnBrowse);
    connect(m_btnStart, &QPushButton::clicked, this, &CRecordDlg::OnStart);
    connect(m_btnPause, &QPushButton::clicked, this, &CRecordDlg::OnPause);
    connect(m_btnStop, &QPushButton::clicked, this, &CRecordDlg::OnStop);
    for (QPushButton* b : { m_btnBrowse, m_btnStart, m_btnPause, m_btnStop })
        b->setAutoDefault(false);

    m_btnBrowse->setEnabled(true);
    m_btnStart->setEnabled(false);
    m_btnPause->setEnabled(false);
    m_btnStop->setEnabled(false);
}

CRecordDlg::~CRecordDlg() = default;

QString CRecordDlg::DefaultFileName(const QDateTime& localTime)
{
    const bool ok = localTime.isValid();
    const QDate d = localTime.date();
    const QTime t = localTime.time();
    return QString::asprintf("%d%d%d%d%d%d.avi", ok ? d.year() : 0, ok ? d.month() : 0, ok ? d.day() : 0,
        ok ? t.hour() : -1, ok ? t.minute() : -1, ok ? t.second() : -1);
}

QString CRecordDlg::WithAviExtension(const QString& path)
{
    return path.endsWith(QLatin1String(".avi"), Qt::CaseSensitive) ? path : path + QLatin1String(".avi");
}

CRecordDlg::BrowseHandler CRecordDlg::SetBrowseHandler(BrowseHandler handler)
{
    BrowseHandler previous = std::move(Browser());
    Browser() = std::move(handler);
    return previous;
}

QString CRecordDlg::StateText() const
{
    return m_state->text();
}

QString CRecordDlg::PathText() const
{
    return m_path->text();
}

QString CRecordDlg::InfoText() const
{
    return m_info->text();
}

void CRecordDlg::SetState(int string, const QString& dots)
{
    m_state->setText(tr(kStateTexts[string - 1]) + dots);
}

void CRecordDlg::OnBrowse()
{
    const QString name = DefaultFileName(QDateTime::currentDateTime());
    const BrowseHandler& handler = Browser();
    QString path = handler ? handler(this, name) : RunSaveDialog(this, name);
    if (!path.isEmpty()) {
        const QString full = WithAviExtension(path);
        // The file dialog asked before replacing the name it returned; a name
        // that only the appended extension made was not asked about.
        if (full != path && QFileInfo::exists(full)
            && MessageBox(tr("%1 already existed. Want to replace it?").arg(full), tr("Record"),
                   MB_YESNO | MB_ICONQUESTION)
                != IDYES) {
            SetState(1);
            return;
        }
        m_recordPath = full;
        m_path->setText(m_recordPath);
        m_btnStart->setEnabled(true);
    }
    SetState(1);
}

void CRecordDlg::OnStart()
{
    if (!m_document || m_recordPath.isEmpty())
        return;
    CXCapGraph& graph = m_document->GetGraph();
    if (!m_started) {
        graph.StopGraph();
        graph.DestroyGraph();
        graph.SetRecordFileName(m_recordPath);
        graph.BuildRecordGraph();
        unsigned width = 0, height = 0;
        graph.GetVideoSize(&width, &height);
        graph.SetParentWnd(m_document->GetVideoOwner(), 0, 0, int(width), int(height));
        graph.SetProcessEnable(0);
        graph.RunGraph();
        m_document->ReadBackState();
        graph.SetOverlay(1, m_document->GetOverlayPointer());
        graph.SetProcessEnable(1);
        m_recordedMs = 0;
        m_ended = false;
    } else {
        graph.RunGraph();
    }
    m_btnBrowse->setEnabled(false);
    m_btnStart->setEnabled(false);
    m_btnPause->setEnabled(true);
    // The first start locks Stop until the timer's sixth tick.
    m_btnStop->setEnabled(m_started != 0);
    m_timers->SetTimer(kTimerRecord, kTickMs);
    m_running = true;
    m_runStart = m_timers->Now();
    m_document->UpdateLiveView();
    m_started = 1;
    SetState(2);
    ShowInfo();
}

void CRecordDlg::OnPause()
{
    if (!m_document)
        return;
    m_timers->KillTimer(kTimerRecord);
    m_recordedMs = RecordedMs();
    m_running = false;
    m_document->GetGraph().PauseGraph();
    m_btnBrowse->setEnabled(false);
    m_btnStart->setEnabled(true);
    m_btnPause->setEnabled(false);
    m_btnStop->setEnabled(true);
    SetState(3);
    ShowInfo();
}

void CRecordDlg::OnStop()
{
    m_timers->KillTimer(kTimerRecord);
    m_tick = 0;
    m_recordedMs = RecordedMs();
    m_running = false;
    if (m_document) {
        CXCapGraph& graph = m_document->GetGraph();
        graph.StopGraph();
        graph.DestroyGraph();
        graph.BuildPreviewGraph();
        unsigned width = 0, height = 0;
        graph.GetVideoSize(&width, &height);
        graph.SetParentWnd(m_document->GetVideoOwner(), 0, 0, int(width), int(height));
        graph.RunGraph();
        graph.SetProcessEnable(1);
        graph.SetOverlay(1, m_document->GetOverlayPointer());
        m_document->ReadBackState();
        m_document->UpdateLiveView();
    }
    m_started = 0;
    m_btnBrowse->setEnabled(true);
    m_btnStart->setEnabled(false);
    m_btnPause->setEnabled(false);
    m_btnStop->setEnabled(false);
    SetState(4);
    ShowInfo();
}

void CRecordDlg::OnTimer(int id)
{
    if (id != kTimerRecord)
        return;
    if (!GraphAlive()) {
        // The graph has shown why (camera gone, disk full) and finished what
        // it could of the file; Stop goes back to the preview.
        m_timers->KillTimer(kTimerRecord);
        m_recordedMs = RecordedMs();
        m_running = false;
        m_ended = true;
        m_btnPause->setEnabled(false);
        m_btnStart->setEnabled(false);
        m_btnStop->setEnabled(true);
        SetState(4);
        ShowInfo();
        return;
    }
    static const char* const kDots[] = { ".", "..", "...", "....", ".....", "......" };
    const QString dots = QLatin1String(kDots[m_tick % 6]);
    ++m_tick;
    if (m_tick > 5)
        m_btnStop->setEnabled(true);
    SetState(2, dots);
    ShowInfo();
    update();
}

void CRecordDlg::OnDocumentClosed()
{
    m_timers->KillTimer(kTimerRecord);
    m_running = false;
    m_started = 0;
    m_document = nullptr;
    QDialog::reject();
}

void CRecordDlg::reject()
{
    if (m_started)
        OnStop();
    QDialog::reject();
}

bool CRecordDlg::GraphAlive() const
{
    if (!m_document)
        return false;
    CXCapGraph& graph = m_document->GetGraph();
    if (!graph.Pipeline() || !graph.IsRecordGraph())
        return false;
    GstState state = GST_STATE_NULL, pending = GST_STATE_VOID_PENDING;
    gst_element_get_state(graph.Pipeline(), &state, &pending, 0);
    const GstState target = pending == GST_STATE_VOID_PENDING ? state : pending;
    return target >= GST_STATE_PAUSED;
}

qint64 CRecordDlg::RecordedMs() const
{
    return m_recordedMs + (m_running ? m_timers->Now() - m_runStart : 0);
}

void CRecordDlg::ShowInfo()
{
    if (m_recordPath.isEmpty())
        return;
    const QFileInfo file(m_recordPath);
    QString text = Clock(RecordedMs());
    if (file.exists())
        text += QStringLiteral("  ") + QLocale().formattedDataSize(file.size(), 1);
    if (m_ended)
        text = tr("ended at %1").arg(text);
    m_info->setText(text);
}
