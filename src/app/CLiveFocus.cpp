#include "app/CLiveFocus.h"

#include "app/CMeasureDoc.h"
#include "app/IDocumentHost.h"
#include "image/LiveFocusStack.h"
#include "measure/CGVLElemMgr.h"
#include "platform/AppPaths.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"

#include <QApplication>
#include <QColorDialog>
#include <QMainWindow>
#include <QStatusBar>
#include <QTimer>

namespace {

// The coverage tint: what is already sharp somewhere in the series.
constexpr QRgb kCoverageColour = qRgb(0, 160, 255);

} // namespace

CLiveFocus::CLiveFocus(CMeasureDoc& document)
    : m_document(document)
    , m_timer(new QTimer(this))
{
    // Often enough to follow the video while the fusion keeps up; a frame
    // offered while the last is still being fused is dropped anyway.
    m_timer->setInterval(40);
    connect(m_timer, &QTimer::timeout, this, &CLiveFocus::Tick);
}

CLiveFocus::~CLiveFocus()
{
    if (m_stack)
        CancelStack();
    if (m_peaking)
        SetPeaking(false);
}

QRgb CLiveFocus::PeakingColor() const
{
    const int rgb = SettingsKeys::ReadInt(SettingsKeys::FocusPeakingColor, CurrentAppPaths().m_settingsFile);
    return 0xff000000u | (unsigned(rgb) & 0xffffffu);
}

void CLiveFocus::SetPeaking(bool on)
{
    m_peaking = on;
    m_document.GetGraph().SetFocusPeaking(on, PeakingColor());
    if (!on)
        ShowStatus(QString());
    UpdateTimer();
}

void CLiveFocus::ChoosePeakingColor()
{
    const QColor chosen = QColorDialog::getColor(
        QColor(PeakingColor()), QApplication::activeWindow(), tr("Focus Peaking Color"));
    if (!chosen.isValid())
        return;
    SettingsKeys::WriteInt(
        SettingsKeys::FocusPeakingColor, int(chosen.rgb() & 0xffffffu), CurrentAppPaths().m_settingsFile);
    if (m_peaking)
        m_document.GetGraph().SetFocusPeaking(true, PeakingColor());
}

void CLiveFocus::StartStack()
{
    if (m_stack)
        return;
    m_stack = std::make_unique<LiveFocusStack>();
    m_lastFrame = -1;
    m_shownCoverage = QImage();
    // The frames before the overlay: the shapes are no part of the specimen.
    m_document.GetGraph().KeepCleanFrames(true);
    ShowStatus(tr("Focus stacking: sweep the focus through the specimen, then choose Focus Stack again."));
    UpdateTimer();
}

void CLiveFocus::EndStack()
{
    m_stack->Finish();
    CXCapGraph& graph = m_document.GetGraph();
    graph.SetCoverage(QImage(), 0);
    graph.KeepCleanFrames(CMeasureDoc::SnapToEdges());
    UpdateTimer();
}

void CLiveFocus::CancelStack()
{
    if (!m_stack)
        return;
    EndStack();
    m_stack.reset();
    UpdateTimer();
    ShowStatus(tr("Focus stacking cancelled."));
}

CDocument* CLiveFocus::FinishStack()
{
    if (!m_stack)
        return nullptr;
    EndStack();
    const std::unique_ptr<LiveFocusStack> stack = std::move(m_stack);
    UpdateTimer();
    ShowStatus(QString());
    const QImage fused = stack->Result();
    IDocumentHost* host = IDocumentHost::Instance();
    if (fused.isNull() || !host) {
        const QString why = stack->ErrorString();
        MessageBox(why.isEmpty() ? tr("No frame reached the focus stack: the camera sent none.")
                                 : tr("The focus stack could not be made: %1").arg(why),
            tr("Focus Stack"), MB_OK | MB_ICONWARNING);
        return nullptr;
    }
    if (!stack->ErrorString().isEmpty())
        MessageBox(tr("Some frames were left out of the focus stack: %1").arg(stack->ErrorString()),
            tr("Focus Stack"), MB_OK | MB_ICONWARNING);
    // Both in the live picture's geometry: its calibration holds for them.
    const CalibrationRecord unit = m_document.GetElemMgr().GetUnit();
    const auto open = [&](const QImage& picture, const QString& title) {
        CDocument* document = host->OpenPictureDocument(picture, title);
        if (auto* measure = qobject_cast<CMeasureDoc*>(document))
            measure->GetElemMgr().SetUnit(unit);
        return document;
    };
    static int stacks = 0;
    const int number = ++stacks;
    CDocument* document = open(fused, tr("Live Stack %1").arg(number));
    open(stack->DepthPicture(), tr("Live Stack %1 Depth").arg(number));
    return document;
}

int CLiveFocus::StackSeen() const
{
    return m_stack ? m_stack->Seen() : 0;
}

int CLiveFocus::StackKept() const
{
    return m_stack ? m_stack->Kept() : 0;
}

bool CLiveFocus::StackBusy() const
{
    return m_stack && m_stack->Busy();
}

void CLiveFocus::UpdateTimer()
{
    if (m_peaking || m_stack)
        m_timer->start();
    else
        m_timer->stop();
}

void CLiveFocus::Tick()
{
    CXCapGraph& graph = m_document.GetGraph();
    if (m_stack) {
        int frames = 0;
        graph.GetStateB(&frames);
        if (frames != m_lastFrame && !m_stack->Busy()) {
            const QImage frame = graph.CleanFrame();
            if (!frame.isNull() && m_stack->Offer(frame))
                m_lastFrame = frames;
        }
        const QImage coverage = m_stack->Coverage();
        if (!coverage.isNull() && coverage != m_shownCoverage) {
            m_shownCoverage = coverage;
            graph.SetCoverage(coverage, kCoverageColour);
        }
    }
    if (m_peaking) {
        const double sharpness = graph.LastSharpness();
        if (sharpness >= 0.0)
            ShowStatus(tr("Sharpness: %1").arg(sharpness, 0, 'f', 1));
    }
}

void CLiveFocus::ShowStatus(const QString& text) const
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* window = qobject_cast<QMainWindow*>(widget)) {
            if (text.isEmpty())
                window->statusBar()->clearMessage();
            else
                window->statusBar()->showMessage(text, 2000);
        }
}
