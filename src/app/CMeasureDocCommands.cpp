#include "app/AppLanguage.h"
#include "app/CBinaryDlg.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "app/IDocumentHost.h"
#include "image/ProcessChain.h"
#include "image/ProcessOperations.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "platform/MessageBox.h"
#include "ui/CMeasureColorDlg.h"
#include "ui/CRulerSettingDlg.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>

#include <algorithm>

namespace {

CMeasureDoc::ExportDialogHandler& ExportDialog()
{
    static CMeasureDoc::ExportDialogHandler handler;
    return handler;
}

QString RunExportDialog(QWidget* parent, const QString& proposedName)
{
    QFileDialog dialog(
        parent, QCoreApplication::translate("CMeasureDoc", "Ex&port data").remove(QLatin1Char('&')));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(QStringLiteral("CSV Files(*.csv)"));
    dialog.setDefaultSuffix(QStringLiteral("csv"));
    dialog.selectFile(proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

bool UsesSemicolonExport()
{
    const IDocumentHost* host = IDocumentHost::Instance();
    return host && UsesSemicolonCsv(host->GetLanguageId());
}

} // namespace

bool CMeasureDoc::CanDraw() const
{
    // A picture document draws at 100 %, with or without a picture: without
    // a camera the first document is an empty one, and shapes still work there.
    if (!m_bLive)
        return m_nZoom == kZoomActualSize;
    return !m_bPreviewRunning || (m_bProcessEnabled && m_nZoom == kZoomActualSize);
}

void CMeasureDoc::UpdateTool(CCmdUI& ui, int tool) const
{
    ui.Enable(CanDraw());
    ui.SetCheck(m_nCurTool == tool);
}

void CMeasureDoc::MapTool(int id, int tool)
{
    MapCommand(id, [this, tool] { m_nCurTool = tool; });
    MapUpdate(id, [this, tool](CCmdUI& ui) { UpdateTool(ui, tool); });
}

void CMeasureDoc::MapToggle(int id, ProcessOp op)
{
    MapCommand(id, [this, op] { ToggleOperation(op); });
    MapUpdate(id, [this, op](CCmdUI& ui) {
        ui.Enable(m_bLive || m_image.IsValidImage());
        ui.SetCheck(m_switches.*Operation(op).on);
    });
}

// The rule the camera commands share: there must be a live document (a camera
// is attached and its preview window is open), whichever document is active;
// the commands that act on moving video (pause, full screen, the device,
// format, property and adjusting dialogs) also need the preview running,
// while capture works on the frozen picture too. Preview is the reverse:
// only while paused.
void CMeasureDoc::UpdateCameraCommand(CCmdUI& ui, bool needsRunning) const
{
    const CMeasureDoc* live = s_pLiveDocument;
    ui.Enable(live && (!needsRunning || live->IsPreviewRunning()));
}

void CMeasureDoc::MapCommands()
{
    for (const CommandInfo& command : Commands()) {
        if (command.tool != ToolCode::None)
            MapTool(command.id, int(command.tool));
    }
    MapSnapCommand();
    MapParticlesCommand();
    MapCommand(ID_MEASURE_DELETE_ALL, [this] { DeleteAll(); });
    MapUpdate(ID_MEASURE_DELETE_ALL, [this](CCmdUI& ui) { ui.Enable(CanDraw()); });

    MapCommand(ID_VIEW_CROSSLINE, [this] { ToggleSolidCrossLine(); });
    MapUpdate(ID_VIEW_CROSSLINE, [this](CCmdUI& ui) {
        ui.Enable();
        ui.SetCheck(m_bCrossSolid);
    });
    MapCommand(ID_VIEW_DASHED_CROSSLINE, [this] { ToggleDashedCrossLine(); });
    MapUpdate(ID_VIEW_DASHED_CROSSLINE, [this](CCmdUI& ui) {
        ui.Enable();
        ui.SetCheck(m_bCrossDashed);
    });

    // Operations with parameters have dialogs of their own: binary here, RGB
    // with the capture dialogs.
    for (const ProcessCommand& command : ProcessCommands())
        if (Operation(command.op).parameters.empty())
            MapToggle(command.id, command.op);
    MapCommand(ID_PROCESS_BINARY, [this] { OnBinaryCommand(); });
    MapUpdate(ID_PROCESS_BINARY, [this](CCmdUI& ui) { ui.Enable(m_bLive || m_image.IsValidImage()); });
    MapCommand(ID_PROCESS_ENABLE, [this] { ToggleProcessEnable(); });
    MapUpdate(ID_PROCESS_ENABLE, [this](CCmdUI& ui) {
        ui.Enable();
        ui.SetCheck(m_bProcessEnabled);
    });

    MapCommand(ID_MEASURE_CALIBRATION, [this] { ToggleCalibration(); });
    MapCommand(ID_MEASURE_SETTING, [this] { OnMeasureSetting(); });
    MapCommand(ID_MEASURE_EXPORT, [this] { ExportData(); });

    // The camera commands act on the live document, whichever is active.
    MapCommand(ID_CAMERA_CAPTURE, [] { CaptureToNewDocument(); });
    MapUpdate(ID_CAMERA_CAPTURE, [this](CCmdUI& ui) { UpdateCameraCommand(ui, false); });
    MapCommand(ID_CAMERA_PAUSE, [] {
        if (CMeasureDoc* live = s_pLiveDocument)
            live->Pause();
    });
    MapUpdate(ID_CAMERA_PAUSE, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
    MapCommand(ID_CAMERA_PREVIEW, [] {
        if (CMeasureDoc* live = s_pLiveDocument)
            live->Preview();
    });
    MapUpdate(ID_CAMERA_PREVIEW, [](CCmdUI& ui) {
        const CMeasureDoc* live = s_pLiveDocument;
        ui.Enable(live && !live->IsPreviewRunning());
    });
    const auto onLive = [](void (CMeasureDoc::*command)()) {
        return [command] {
            if (CMeasureDoc* live = s_pLiveDocument)
                (live->*command)();
        };
    };
    MapCommand(ID_VIEW_FULLSCREEN, onLive(&CMeasureDoc::OnFullScreen));
    MapCommand(ID_CAMERA_FULLSCREEN, onLive(&CMeasureDoc::OnFullScreen));
    MapCommand(ID_VIDEO_DEVICE, onLive(&CMeasureDoc::OnChangeDevice));
    MapCommand(ID_VIDEO_RESOLUTION, onLive(&CMeasureDoc::OnVideoResolution));
    // "&Adjust" and "Video &Properties" both open the camera's own settings;
    // the processing element's are a command of the processing bar.
    for (int id : { ID_VIDEO_PROPERTIES, ID_VIDEO_ADJUST })
        MapCommand(id, [] {
            if (CMeasureDoc* live = s_pLiveDocument)
                live->m_graph.ShowDeviceProperties();
        });
    MapCommand(ID_PROCESS_PROPERTIES, [] {
        if (CMeasureDoc* live = s_pLiveDocument)
            live->m_graph.ShowProcessProperties();
    });
    for (int id : { ID_VIEW_FULLSCREEN, ID_CAMERA_FULLSCREEN, ID_VIDEO_DEVICE, ID_VIDEO_RESOLUTION,
             ID_VIDEO_PROPERTIES, ID_VIDEO_ADJUST, ID_PROCESS_PROPERTIES })
        MapUpdate(id, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
    MapCaptureDialogs();
    MapFocusCommands();
}

void CMeasureDoc::DeleteAll()
{
    m_nCurTool = CGVLShape::kToolDeleteAll;
    m_pElemMgr->DeleteAll();
    m_nCurTool = 0;
    m_pHistory->Commit();
    RepaintOverlayWindow();
}

void CMeasureDoc::MapHistoryCommands()
{
    MapCommand(ID_EDIT_UNDO, [this] { StepHistory(true); });
    MapUpdate(ID_EDIT_UNDO, [this](CCmdUI& ui) { ui.Enable(m_pHistory->CanUndo()); });
    MapCommand(ID_EDIT_REDO, [this] { StepHistory(false); });
    MapUpdate(ID_EDIT_REDO, [this](CCmdUI& ui) { ui.Enable(m_pHistory->CanRedo()); });
}

void CMeasureDoc::StepHistory(bool back)
{
    if (!(back ? m_pHistory->Undo() : m_pHistory->Redo()))
        return;
    if (m_pCalibrationDlg)
        m_pCalibrationDlg->ReadRecord();
    RepaintOverlayWindow();
}

void CMeasureDoc::ToggleSolidCrossLine()
{
    m_bCrossSolid = !m_bCrossSolid;
    if (m_bCrossSolid)
        m_bCrossDashed = false;
    m_pElemMgr->SetCrossLines(m_bCrossSolid, m_bCrossDashed);
}

void CMeasureDoc::ToggleDashedCrossLine()
{
    m_bCrossDashed = !m_bCrossDashed;
    if (m_bCrossDashed)
        m_bCrossSolid = false;
    m_pElemMgr->SetCrossLines(m_bCrossSolid, m_bCrossDashed);
}

void CMeasureDoc::ToggleOperation(ProcessOp op)
{
    bool& on = m_switches.*Operation(op).on;
    on = !on;
    if (m_bLive)
        m_graph.SetOperation(op, m_switches);
    else
        ReapplyPicture();
}

void CMeasureDoc::ToggleProcessEnable()
{
    m_bProcessEnabled = !m_bProcessEnabled;
    if (m_bLive)
        m_graph.SetProcessEnable(m_bProcessEnabled ? 1 : 0);
}

void CMeasureDoc::SetBinary(bool on, int slider)
{
    m_switches.binary = on;
    m_switches.binaryLevel = 255 - std::clamp(slider, 0, 255);
    if (m_bLive)
        m_graph.SetBinary(on ? 1 : 0, m_switches.binaryLevel);
    else
        ReapplyPicture();
}

void CMeasureDoc::OnBinaryCommand()
{
    CBinaryDlg dialog(m_switches.binary, 255 - m_switches.binaryLevel, DialogParent());
    if (dialog.exec() == QDialog::Accepted)
        SetBinary(dialog.IsOn(), dialog.Slider());
}

// Operations never accumulate: the picture is rebuilt from its unprocessed copy.
void CMeasureDoc::ReapplyPicture()
{
    if (!m_unprocessed.IsValidImage() || !m_image.IsValidImage())
        return;
    RunProcessChain(m_unprocessed.GetMemStart(), m_image.GetMemStart(), unsigned(m_image.Width()),
        unsigned(m_image.Height()), m_switches);
    RepaintOverlayWindow();
}

void CMeasureDoc::ToggleCalibration()
{
    m_nCurTool = 0;
    CRulerSettingDlg::ToggleCalibration(*this, m_pCalibrationDlg, m_bCalibrationShown);
}

void CMeasureDoc::OnMeasureSetting()
{
    CMeasureColorDlg::Edit(*m_pElemMgr, DialogParent());
    RepaintOverlayWindow();
}

void CMeasureDoc::ExportData()
{
    {
        // The ruler alone (also after "Delete all"): no dialog, no file.
        const auto lock = m_pElemMgr->Lock();
        if (m_pElemMgr->m_arShape.size() <= 1)
            return;
    }
    const QString proposed = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddHHmmss"));
    const ExportDialogHandler& handler = ExportDialog();
    const QString path
        = handler ? handler(DialogParent(), proposed) : RunExportDialog(DialogParent(), proposed);
    if (path.isEmpty())
        return;
    // Safeguard: a file that cannot be opened or written is reported.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        MessageBox(tr("Cannot write the measurement data to %1:\n%2").arg(path, file.errorString()),
            tr("Export"), MB_OK | MB_ICONWARNING);
        return;
    }
    if (UsesSemicolonExport())
        m_pElemMgr->WriteCsvSemicolon(file);
    else
        m_pElemMgr->WriteCsv(file);
    file.close();
    if (file.error() != QFileDevice::NoError)
        MessageBox(tr("Cannot write the measurement data to %1:\n%2").arg(path, file.errorString()),
            tr("Export"), MB_OK | MB_ICONWARNING);
}

CMeasureDoc::ExportDialogHandler CMeasureDoc::SetExportDialogHandler(ExportDialogHandler handler)
{
    ExportDialogHandler previous = std::move(ExportDialog());
    ExportDialog() = std::move(handler);
    return previous;
}
