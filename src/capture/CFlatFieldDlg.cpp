#include "capture/CFlatFieldDlg.h"

#include "capture/CFlatFieldStore.h"
#include "capture/CXCapGraph.h"
#include "capture/ILiveDocument.h"
#include "platform/MessageBox.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int kPollMs = 50;
// The frames of a slow camera: 8 frames at 2 per second, and some to spare.
constexpr int kMaxPolls = 10000 / kPollMs;

} // namespace

CFlatFieldDlg::CFlatFieldDlg(ILiveDocument* document, QWidget* parent)
    : QDialog(parent)
    , m_document(document)
    , m_status(new QLabel(this))
    , m_take(new QPushButton(tr("&Take Blank Field"), this))
    , m_enable(new QCheckBox(tr("&Correct the shading"), this))
    , m_poll(new QTimer(this))
{
    setWindowTitle(tr("Flat-Field"));
    auto* help
        = new QLabel(tr("Move to an empty area of the slide, or take the slide away, keep the light as "
                        "for the specimen, then take the blank field. It is kept for this camera and "
                        "resolution and used again whenever they match."),
            this);
    help->setWordWrap(true);
    help->setMinimumWidth(420);
    m_status->setObjectName(QStringLiteral("flatFieldStatus"));
    m_status->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(help);
    layout->addWidget(m_status);
    layout->addWidget(m_take);
    layout->addWidget(m_enable);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_take, &QPushButton::clicked, this, &CFlatFieldDlg::OnTake);
    connect(m_enable, &QCheckBox::toggled, this, &CFlatFieldDlg::OnEnable);
    m_poll->setInterval(kPollMs);
    connect(m_poll, &QTimer::timeout, this, &CFlatFieldDlg::OnPoll);
    {
        const QSignalBlocker block(m_enable);
        m_enable->setChecked(CFlatFieldStore().Enabled());
    }
    UpdateStatus();
}

QString CFlatFieldDlg::StatusText() const
{
    return m_status->text();
}

void CFlatFieldDlg::UpdateStatus()
{
    CXCapGraph& graph = m_document->GetGraph();
    int width = 0;
    int height = 0;
    graph.GetStateA(&width, &height);
    if (width <= 0 || height <= 0) {
        m_status->setText(tr("No picture from the camera yet."));
        return;
    }
    const bool kept = !CFlatFieldStore().Blank(graph.CameraKey(), unsigned(width), unsigned(height)).isNull();
    m_status->setText(kept ? tr("A blank field is kept for this camera at %1 x %2.").arg(width).arg(height)
                           : tr("No blank field is kept for this camera at %1 x %2.").arg(width).arg(height));
    m_enable->setEnabled(kept);
}

void CFlatFieldDlg::OnTake()
{
    m_take->setEnabled(false);
    m_status->setText(tr("Taking the blank field..."));
    m_document->GetGraph().CaptureBlank(kBlankFrames);
    m_polls = 0;
    m_poll->start();
}

void CFlatFieldDlg::OnPoll()
{
    CXCapGraph& graph = m_document->GetGraph();
    const QImage blank = graph.CapturedBlank();
    if (blank.isNull() && ++m_polls < kMaxPolls)
        return;
    m_poll->stop();
    m_take->setEnabled(true);
    if (blank.isNull()) {
        graph.CaptureBlank(0);
        UpdateStatus();
        MessageBox(tr("No frames came from the camera; the blank field was not taken."), windowTitle(),
            MB_OK | MB_ICONWARNING);
        return;
    }
    const CFlatFieldStore store;
    QString error;
    if (!store.Save(graph.CameraKey(), blank, &error)) {
        UpdateStatus();
        MessageBox(
            tr("The blank field cannot be kept: %1").arg(error), windowTitle(), MB_OK | MB_ICONWARNING);
        return;
    }
    store.SetEnabled(true);
    UpdateStatus();
    {
        const QSignalBlocker block(m_enable);
        m_enable->setChecked(true);
    }
    if (!graph.ApplyStoredFlatField())
        MessageBox(tr("The blank field is black in a colour and cannot correct the picture."), windowTitle(),
            MB_OK | MB_ICONWARNING);
}

void CFlatFieldDlg::OnEnable(bool on)
{
    CFlatFieldStore().SetEnabled(on);
    m_document->GetGraph().ApplyStoredFlatField();
}
