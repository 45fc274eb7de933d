#include "app/CMeasureDoc.h"

#include "app/AppLanguage.h"
#include "app/CBinaryDlg.h"
#include "app/CMeasureApp.h"
#include "app/CommandTable.h"
#include "calibration/CMeasureColorDlg.h"
#include "calibration/CRulerSettingDlg.h"
#include "capture/CChooseDeviceDlg.h"
#include "capture/GrabPicture.h"
#include "image/ProcessChain.h"
#include "measure/CGVLElemMgr.h"
#include "measure/WindowCalls.h"
#include "platform/AppPaths.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QWidget>

#include <algorithm>
#include <cstring>

namespace {

// At most one live document in the process; only the user-interface thread
// reads or writes it.
CMeasureDoc* g_liveDocument = nullptr;
std::atomic<int> g_runningWorkers { 0 };

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
    const CMeasureApp* app = CMeasureApp::Instance();
    return app && app->GetLanguage() == InterfaceLanguage::French;
}

} // namespace

CMeasureDoc::CMeasureDoc(bool openingFile, const QString& settingsFile)
    : m_pElemMgr(std::make_unique<CGVLElemMgr>())
    , m_settingsFile(settingsFile.isEmpty() ? CurrentAppPaths().m_settingsFile : settingsFile)
    , m_bOpeningFile(openingFile)
{
    ReadSettings();
    if (!g_liveDocument && !m_bOpeningFile) {
        m_graph.SetDeviceName(m_strDevice);
        if (m_graph.InitGraph() == S_OK) {
            m_strDevice = m_graph.DeviceName();
            m_bHasCamera = true;
            m_graph.EnumFormats();
        }
    }
    MapCommands();
}

CMeasureDoc::~CMeasureDoc()
{
    StopLive();
    m_pCalibrationDlg.reset();
    WriteSettings();
}

CMeasureDoc* CMeasureDoc::GetLiveDocument()
{
    return g_liveDocument;
}

void CMeasureDoc::ReadSettings()
{
    const SettingsKeys::DocumentSettings s = SettingsKeys::ReadDocumentSettings(m_settingsFile);
    m_nCameraType = s.m_cameraType;
    m_strDevice = s.m_device;
    m_nZoom = s.m_curSel;
    m_switches.flip = s.m_bFlip != 0;
    m_switches.mirror = s.m_bMirror != 0;
    const auto lock = m_pElemMgr->Lock();
    m_pElemMgr->m_unit.m_dcxPerPixel = s.m_dcxPerPixel;
    m_pElemMgr->m_unit.m_dcyPerPixel = s.m_dcyPerPixel;
    m_pElemMgr->m_unit.m_rtUnit = s.m_rtUnit;
    m_pElemMgr->m_unit.m_dcxReal = s.m_dcxReal;
    m_pElemMgr->m_unit.m_dcyReal = s.m_dcyReal;
    m_pElemMgr->m_color.m_ctAdjust = s.m_ctAdjust;
    m_pElemMgr->m_color.m_ctCoord = s.m_ctCoord;
    m_pElemMgr->m_color.m_ctRuler = s.m_ctRuler;
    m_pElemMgr->m_color.m_ctText = s.m_ctText;
    m_pElemMgr->m_nPrecision = s.m_precision;
    m_pElemMgr->m_nFontSize = s.m_fontSize;
    m_pElemMgr->m_nFontBackground = s.m_fontBackground;
}

void CMeasureDoc::WriteSettings() const
{
    SettingsKeys::DocumentSettings s;
    s.m_cameraType = m_nCameraType;
    s.m_displayMode = m_nDisplayMode;
    s.m_device = m_strDevice;
    s.m_curSel = m_nZoom;
    s.m_bFlip = m_switches.flip ? 1 : 0;
    s.m_bMirror = m_switches.mirror ? 1 : 0;
    {
        const auto lock = m_pElemMgr->Lock();
        s.m_dcxPerPixel = m_pElemMgr->m_unit.m_dcxPerPixel;
        s.m_dcyPerPixel = m_pElemMgr->m_unit.m_dcyPerPixel;
        s.m_rtUnit = m_pElemMgr->m_unit.m_rtUnit;
        s.m_dcxReal = m_pElemMgr->m_unit.m_dcxReal;
        s.m_dcyReal = m_pElemMgr->m_unit.m_dcyReal;
        s.m_ctAdjust = m_pElemMgr->m_color.m_ctAdjust;
        s.m_ctCoord = m_pElemMgr->m_color.m_ctCoord;
        s.m_ctRuler = m_pElemMgr->m_color.m_ctRuler;
        s.m_ctText = m_pElemMgr->m_color.m_ctText;
        s.m_precision = m_pElemMgr->m_nPrecision;
        s.m_fontSize = m_pElemMgr->m_nFontSize;
        s.m_fontBackground = m_pElemMgr->m_nFontBackground;
    }
    if (!SettingsKeys::WriteDocumentSettings(s, m_settingsFile))
        qCWarning(lcApp) << "could not write the document settings to" << m_settingsFile;
}

// ---------------------------------------------------------------- documents

bool CMeasureDoc::OnNewDocument()
{
    if (m_bHasCamera) {
        // The document that is about to become live.
        SetTitle(tr("Video"));
        m_bHasImage = true;
        return true;
    }
    if (!g_liveDocument)
        return true;
    return SnapshotFromLive();
}

bool CMeasureDoc::SnapshotFromLive()
{
    CMeasureDoc* live = g_liveDocument;
    if (!live->Snapshot(m_image)) {
        MessageBox(tr("The camera has not delivered a picture yet. Try again in a moment."), tr("Capture"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    m_nImageWidth = m_image.Width();
    m_nImageHeight = m_image.Height();
    m_unprocessed = m_image;
    m_bHasImage = true;
    return true;
}

bool CMeasureDoc::OnOpenDocument(const QString& path)
{
    FCObjImage picture;
    if (!picture.Load(path) || !picture.ConvertTo24Bit()) {
        MessageBox(tr("Cannot open the picture %1:\n%2").arg(path, picture.ErrorString()), tr("Open"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    m_image = std::move(picture);
    m_unprocessed = m_image;
    m_nImageWidth = m_image.Width();
    m_nImageHeight = m_image.Height();
    m_bHasImage = true;
    SetPathName(path);
    return true;
}

const FCObjImage* CMeasureDoc::GetPicture() const
{
    // A running live document shows the video, not its last frozen frame.
    if (!m_bHasImage || (m_bLive && m_bPreviewRunning))
        return nullptr;
    return &m_image;
}

bool CMeasureDoc::Snapshot(FCObjImage& picture)
{
    return GrabPicture(m_graph, picture);
}

QSize CMeasureDoc::QueryImageSize()
{
    if (m_bLive) {
        unsigned width = 0, height = 0;
        if (m_graph.GetVideoSize(&width, &height) == S_OK && width && height) {
            m_nImageWidth = int(width);
            m_nImageHeight = int(height);
        }
    }
    return GetImageSize();
}

void CMeasureDoc::SetZoomIndex(int index)
{
    m_nZoom = index;
    m_nCurTool = 0;
    emit layoutNeeded();
}

// ---------------------------------------------------------------- live video

bool CMeasureDoc::StartLive(QWidget* videoOwner)
{
    if (!m_bHasCamera || g_liveDocument)
        return false;
    g_liveDocument = this;
    m_graph.BuildPreviewGraph();
    if (m_graph.RunGraph() != S_OK) {
        g_liveDocument = nullptr;
        m_graph.ReleaseAll();
        m_bHasCamera = false;
        return false;
    }
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    m_nImageWidth = int(width);
    m_nImageHeight = int(height);
    m_graph.SetParentWnd(videoOwner, 0, 0, int(width), int(height));
    m_graph.SetStreamErrorHandler([this](const QString&) {
        // The graph is down: the view shows the last frozen frame, if any.
        StopOverlayWorker();
        m_bPreviewRunning = false;
        RepaintOverlayWindow();
    });
    AllocateOverlays(width, height);
    m_graph.SetProcessEnable(1);
    m_graph.SetOverlay(1, &m_pCurrentOverlay);
    ReadBackState();
    m_bPreviewRunning = true;
    m_bLive = true;
    StartOverlayWorker();
    return true;
}

void CMeasureDoc::AllocateOverlays(unsigned width, unsigned height)
{
    // 1,1,1 marks pixels no shape covers.
    const std::size_t bytes = CGVLElemMgr::BitsStride(int(width)) * height;
    m_overlayA.assign(bytes, 1);
    m_overlayB.assign(bytes, 1);
    m_nOverlayWidth = width;
    m_nOverlayHeight = height;
    std::atomic_ref<uchar*>(m_pCurrentOverlay).store(m_overlayA.data());
}

void CMeasureDoc::StartOverlayWorker()
{
    if (m_overlayThread.joinable())
        return;
    {
        std::lock_guard lock(m_stopMutex);
        m_bStopOverlay = false;
    }
    // Counted from its start, so it is never missed between start and first run.
    ++g_runningWorkers;
    m_overlayThread = std::thread([this] { MakeElemOverlay(); });
}

void CMeasureDoc::StopOverlayWorker()
{
    if (m_overlayThread.joinable()) {
        {
            std::lock_guard lock(m_stopMutex);
            m_bStopOverlay = true;
        }
        m_stopCv.notify_all();
        m_overlayThread.join();
    }
    // No frame reads the buffers after this, so they may be freed or resized.
    if (m_graph.HasProcess())
        m_graph.SetOverlay(0, &m_pCurrentOverlay);
    for (const std::vector<uchar>* buffer : { &m_overlayA, &m_overlayB })
        if (!buffer->empty())
            m_graph.WaitOverlayUnused(buffer->data());
}

int CMeasureDoc::RunningOverlayWorkers()
{
    return g_runningWorkers;
}

void CMeasureDoc::MakeElemOverlay()
{
    unsigned counter = 0;
    std::unique_lock lock(m_stopMutex);
    while (!m_bStopOverlay) {
        lock.unlock();
        if (m_bLive && m_bPreviewRunning && !m_overlayA.empty()) {
            unsigned width = 0, height = 0;
            m_graph.GetVideoSize(&width, &height);
            // The buffers are reallocated with the worker stopped; a size
            // that no longer matches waits for that.
            if (width == m_nOverlayWidth && height == m_nOverlayHeight) {
                ++counter;
                uchar* target = (counter % 2 == 0) ? m_overlayB.data() : m_overlayA.data();
                m_graph.WaitOverlayUnused(target);
                m_pElemMgr->DrawToBits(target, int(width), int(height));
                std::atomic_ref<uchar*>(m_pCurrentOverlay).store(target);
                ++m_nOverlayCount;
            }
        }
        lock.lock();
        m_stopCv.wait_for(
            lock, std::chrono::milliseconds(kOverlayPeriodMs), [this] { return m_bStopOverlay; });
    }
    --g_runningWorkers;
}

void CMeasureDoc::StopLive()
{
    if (g_liveDocument != this) {
        StopOverlayWorker();
        return;
    }
    StopOverlayWorker();
    m_graph.SetStreamErrorHandler({});
    m_graph.StopGraph();
    m_graph.DestroyGraph();
    m_graph.ReleaseAll();
    g_liveDocument = nullptr;
    m_bLive = false;
    m_bPreviewRunning = false;
    m_overlayA.clear();
    m_overlayB.clear();
    m_pCurrentOverlay = nullptr;
}

// The flips are pushed before they are read, so the document's survive a
// rebuild; every other switch comes from the processing element.
void CMeasureDoc::ReadBackState()
{
    int on = 0, level = 0, a = 0, b = 0, c = 0;
    if (m_graph.GetProcessEnable(&on) == S_OK)
        m_bProcessEnabled = on != 0;
    m_graph.SetFlipVertical(m_switches.flip ? 1 : 0);
    if (m_graph.GetFlipVertical(&on) == S_OK)
        m_switches.flip = on != 0;
    m_graph.SetFlipHorizontal(m_switches.mirror ? 1 : 0);
    if (m_graph.GetFlipHorizontal(&on) == S_OK)
        m_switches.mirror = on != 0;
    if (m_graph.GetGray(&on) == S_OK)
        m_switches.gray = on != 0;
    if (m_graph.GetNegative(&on) == S_OK)
        m_switches.negative = on != 0;
    if (m_graph.GetEmboss(&on) == S_OK)
        m_switches.emboss = on != 0;
    if (m_graph.GetSharpen(&on) == S_OK)
        m_switches.sharpen = on != 0;
    m_graph.GetStateA(&a, &b);
    if (m_graph.GetBinary(&on, &level) == S_OK) {
        m_switches.binary = on != 0;
        m_switches.binaryLevel = level;
    }
    if (m_graph.GetRgbGain(&on, &a, &b, &c) == S_OK) {
        m_switches.rgb = on != 0;
        m_switches.red = a;
        m_switches.green = b;
        m_switches.blue = c;
    }
    m_graph.GetStateB(&a);
}

void CMeasureDoc::Pause()
{
    if (!m_bLive || !m_bPreviewRunning)
        return;
    m_bPreviewRunning = false;
    if (Snapshot(m_image)) {
        m_unprocessed = m_image;
        m_bHasImage = true;
    }
    m_graph.PauseGraph();
    m_graph.ShowVideoWindow(0);
    RepaintOverlayWindow();
}

void CMeasureDoc::Preview()
{
    if (!m_bLive || m_bPreviewRunning)
        return;
    m_bPreviewRunning = true;
    m_graph.StopGraph();
    m_graph.RunGraph();
    m_graph.ShowVideoWindow(1);
}

void CMeasureDoc::OnVideoDoubleClick()
{
    if (m_bLive && m_bPreviewRunning)
        OnFullScreen();
}

void CMeasureDoc::OnFullScreen()
{
    m_graph.ToggleFullScreen();
}

void CMeasureDoc::OnChangeDevice()
{
    CChooseDeviceDlg dialog(
        &m_graph,
        [this](int index, const QString& name) {
            StopOverlayWorker();
            unsigned width = 0, height = 0;
            m_graph.ChangeDevice(index, &width, &height);
            m_strDevice = name;
            AfterGraphRebuilt();
        },
        DialogParent());
    dialog.exec();
}

void CMeasureDoc::OnVideoResolution()
{
    if (m_graph.ShowFormatDialog(m_graph.DeviceName(), DialogParent()) != S_OK)
        return;
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    StopOverlayWorker();
    m_graph.ChangeResolution(width, height);
    AfterGraphRebuilt();
}

// After the graph was rebuilt at a possibly new size: new buffers, the
// processing element told again, the worker back, the view laid out.
void CMeasureDoc::AfterGraphRebuilt()
{
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    m_nImageWidth = int(width);
    m_nImageHeight = int(height);
    AllocateOverlays(width, height);
    m_graph.SetProcessEnable(1);
    m_graph.SetOverlay(1, &m_pCurrentOverlay);
    ReadBackState();
    m_bLive = true;
    m_bPreviewRunning = true;
    StartOverlayWorker();
    emit layoutNeeded();
}

void CMeasureDoc::CaptureToNewDocument()
{
    if (CMeasureApp* app = CMeasureApp::Instance())
        app->OnFileNew();
}

// ---------------------------------------------------------------- commands

bool CMeasureDoc::CanDraw() const
{
    if (!m_bLive)
        return m_bHasImage && m_nZoom == kZoomActualSize;
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

void CMeasureDoc::MapToggle(int id, bool ProcessSwitches::*flag, int (CXCapGraph::*apply)(int))
{
    MapCommand(id, [this, flag, apply] {
        m_switches.*flag = !(m_switches.*flag);
        if (m_bLive)
            (m_graph.*apply)(m_switches.*flag ? 1 : 0);
        else
            ReapplyPicture();
    });
    MapUpdate(id, [this, flag](CCmdUI& ui) {
        ui.Enable(m_bLive || m_image.IsValidImage());
        ui.SetCheck(m_switches.*flag);
    });
}

void CMeasureDoc::UpdateCameraCommand(CCmdUI& ui, bool needsRunning) const
{
    const CMeasureDoc* live = g_liveDocument;
    ui.Enable(live && (!needsRunning || live->IsPreviewRunning()));
}

void CMeasureDoc::MapCommands()
{
    MapTool(ID_MEASURE_POINT, 1);
    MapTool(ID_MEASURE_LINE, 2);
    MapTool(ID_MEASURE_ANGLE, 3);
    MapTool(ID_MEASURE_RECT, 4);
    MapTool(ID_MEASURE_POLYGON, 5);
    MapTool(ID_MEASURE_CIRCLE, 6);
    MapTool(ID_MEASURE_TRICIRCLE, 7);
    MapTool(ID_MEASURE_MOVE, CGVLElemMgr::kToolMove);
    MapTool(ID_MEASURE_DELETE, CGVLElemMgr::kToolDeleteOne);
    MapTool(ID_MEASURE_COUNTING, CGVLElemMgr::kToolCounting);
    MapTool(ID_MEASURE_ARROW, CGVLElemMgr::kToolArrow);
    MapTool(ID_MEASURE_TEXT, CGVLElemMgr::kToolText);
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

    MapCommand(ID_PROCESS_FLIP, [this] { ToggleFlip(); });
    MapUpdate(ID_PROCESS_FLIP, [this](CCmdUI& ui) {
        ui.Enable(m_bLive || m_image.IsValidImage());
        ui.SetCheck(m_switches.flip);
    });
    MapCommand(ID_PROCESS_MIRROR, [this] { ToggleMirror(); });
    MapUpdate(ID_PROCESS_MIRROR, [this](CCmdUI& ui) {
        ui.Enable(m_bLive || m_image.IsValidImage());
        ui.SetCheck(m_switches.mirror);
    });
    MapToggle(ID_PROCESS_GRAY, &ProcessSwitches::gray, &CXCapGraph::SetGray);
    MapToggle(ID_PROCESS_NEGATIVE, &ProcessSwitches::negative, &CXCapGraph::SetNegative);
    MapToggle(ID_PROCESS_EMBOSS, &ProcessSwitches::emboss, &CXCapGraph::SetEmboss);
    MapToggle(ID_PROCESS_SHARPEN, &ProcessSwitches::sharpen, &CXCapGraph::SetSharpen);
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
        if (CMeasureDoc* live = g_liveDocument)
            live->Pause();
    });
    MapUpdate(ID_CAMERA_PAUSE, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
    MapCommand(ID_CAMERA_PREVIEW, [] {
        if (CMeasureDoc* live = g_liveDocument)
            live->Preview();
    });
    MapUpdate(ID_CAMERA_PREVIEW, [](CCmdUI& ui) {
        const CMeasureDoc* live = g_liveDocument;
        ui.Enable(live && !live->IsPreviewRunning());
    });
    const auto onLive = [](void (CMeasureDoc::*command)()) {
        return [command] {
            if (CMeasureDoc* live = g_liveDocument)
                (live->*command)();
        };
    };
    MapCommand(ID_VIEW_FULLSCREEN, onLive(&CMeasureDoc::OnFullScreen));
    MapCommand(ID_CAMERA_FULLSCREEN, onLive(&CMeasureDoc::OnFullScreen));
    MapCommand(ID_VIDEO_DEVICE, onLive(&CMeasureDoc::OnChangeDevice));
    MapCommand(ID_VIDEO_RESOLUTION, onLive(&CMeasureDoc::OnVideoResolution));
    MapCommand(ID_VIDEO_PROPERTIES, [] {
        if (CMeasureDoc* live = g_liveDocument)
            live->m_graph.ShowDeviceProperties();
    });
    MapCommand(ID_VIDEO_ADJUST, [] {
        if (CMeasureDoc* live = g_liveDocument)
            live->m_graph.ShowProcessProperties();
    });
    for (int id : { ID_VIEW_FULLSCREEN, ID_CAMERA_FULLSCREEN, ID_VIDEO_DEVICE, ID_VIDEO_RESOLUTION,
             ID_VIDEO_PROPERTIES, ID_VIDEO_ADJUST })
        MapUpdate(id, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
}

void CMeasureDoc::DeleteAll()
{
    m_nCurTool = CGVLElemMgr::kToolDeleteAll;
    m_pElemMgr->DeleteAll();
    m_nCurTool = 0;
    RepaintOverlayWindow();
}

void CMeasureDoc::ToggleSolidCrossLine()
{
    m_bCrossSolid = !m_bCrossSolid;
    if (m_bCrossSolid)
        m_bCrossDashed = false;
    {
        const auto lock = m_pElemMgr->Lock();
        m_pElemMgr->m_bCrossSolid = m_bCrossSolid;
        m_pElemMgr->m_bCrossDashed = m_bCrossDashed;
    }
    RepaintOverlayWindow();
}

void CMeasureDoc::ToggleDashedCrossLine()
{
    m_bCrossDashed = !m_bCrossDashed;
    if (m_bCrossDashed)
        m_bCrossSolid = false;
    {
        const auto lock = m_pElemMgr->Lock();
        m_pElemMgr->m_bCrossSolid = m_bCrossSolid;
        m_pElemMgr->m_bCrossDashed = m_bCrossDashed;
    }
    RepaintOverlayWindow();
}

void CMeasureDoc::ToggleFlip()
{
    m_switches.flip = !m_switches.flip;
    if (m_bLive)
        m_graph.SetFlipVertical(m_switches.flip ? 1 : 0);
    else
        ReapplyPicture();
}

void CMeasureDoc::ToggleMirror()
{
    m_switches.mirror = !m_switches.mirror;
    if (m_bLive)
        m_graph.SetFlipHorizontal(m_switches.mirror ? 1 : 0);
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

void CMeasureDoc::RepaintOverlayWindow()
{
    InvalidateWindow(m_pElemMgr->m_hWnd);
}

QWidget* CMeasureDoc::DialogParent() const
{
    if (QWidget* wnd = m_pElemMgr->m_hWnd)
        return wnd->window();
    return QApplication::activeWindow();
}
