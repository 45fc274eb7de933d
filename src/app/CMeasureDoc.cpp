// The document's lifetime, its settings and its picture; the live video and
// the wiring of its overlay worker are in CMeasureDocLive.cpp, the commands
// in CMeasureDocCommands.cpp.
#include "app/CMeasureDoc.h"

#include "app/CLiveFocus.h"
#include "capture/CameraModels.h"
#include "capture/GrabPicture.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "measure/WindowCalls.h"
#include "platform/AppPaths.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"
#include "ui/CRulerSettingDlg.h"

#include <QApplication>
#include <QWidget>

CMeasureDoc::CMeasureDoc(bool openingFile, const QString& settingsFile)
    : m_pElemMgr(std::make_unique<CGVLElemMgr>())
    , m_settingsFile(settingsFile.isEmpty() ? CurrentAppPaths().m_settingsFile : settingsFile)
    , m_bOpeningFile(openingFile)
{
    ReadSettings();
    // Undo goes back as far as the calibration the settings gave.
    m_pHistory = std::make_unique<CShapeHistory>(*m_pElemMgr);
    m_liveFocus = std::make_unique<CLiveFocus>(*this);
    if (!s_pLiveDocument && !m_bOpeningFile) {
        m_graph.SetDeviceName(m_strDevice);
        if (m_graph.InitGraph() == S_OK) {
            m_strDevice = m_graph.DeviceName();
            m_bHasCamera = true;
            m_graph.EnumFormats();
            m_graph.SetUseStoredFlatField(true);
        } else {
            m_bFoundNoCamera = true;
        }
    }
    MapCommands();
    MapSaveCommands();
    MapHistoryCommands();
}

CMeasureDoc::~CMeasureDoc()
{
    m_liveFocus.reset();
    StopLive();
    m_pCalibrationDlg.reset();
    WriteSettings();
}

CMeasureDoc* CMeasureDoc::GetLiveDocument()
{
    return s_pLiveDocument;
}

void CMeasureDoc::ReadSettings()
{
    const SettingsKeys::DocumentSettings s = SettingsKeys::ReadDocumentSettings(m_settingsFile);
    // No operation depends on the camera type; it is kept so that it goes
    // back into the file as it came.
    m_nCameraType = s.m_cameraType;
    m_strDevice = s.m_device;
    m_nZoom = s.m_curSel;
    m_switches.flip = s.m_bFlip != 0;
    m_switches.mirror = s.m_bMirror != 0;
    m_pElemMgr->SetUnit({ s.m_rtUnit, s.m_dcxPerPixel, s.m_dcyPerPixel, s.m_dcxReal, s.m_dcyReal });
    const ColorRecord color {
        .m_ctCoord = s.m_ctCoord, .m_ctRuler = s.m_ctRuler, .m_ctAdjust = s.m_ctAdjust, .m_ctText = s.m_ctText
    };
    m_pElemMgr->SetAppearance({ color, s.m_precision, s.m_fontSize, s.m_fontBackground });
}

void CMeasureDoc::WriteSettings() const
{
    SettingsKeys::DocumentSettings s;
    s.m_cameraType = m_nCameraType;
    s.m_displayMode = m_nDisplayMode;
    // Once the user picked a camera by hand, only the live document speaks
    // for it: a picture document's copy was read before the change and would
    // put the old camera back if it happened to close last.
    s.m_device = IsDeviceChosenByHand() && !m_bHasCamera
        ? SettingsKeys::ReadString(SettingsKeys::VideoDevice, m_settingsFile)
        : m_strDevice;
    s.m_curSel = m_nZoom;
    s.m_bFlip = m_switches.flip ? 1 : 0;
    s.m_bMirror = m_switches.mirror ? 1 : 0;
    const CalibrationRecord unit = m_pElemMgr->GetUnit();
    s.m_dcxPerPixel = unit.m_dcxPerPixel;
    s.m_dcyPerPixel = unit.m_dcyPerPixel;
    s.m_rtUnit = unit.m_rtUnit;
    s.m_dcxReal = unit.m_dcxReal;
    s.m_dcyReal = unit.m_dcyReal;
    const CGVLElemMgr::Appearance look = m_pElemMgr->GetAppearance();
    s.m_ctAdjust = look.color.m_ctAdjust;
    s.m_ctCoord = look.color.m_ctCoord;
    s.m_ctRuler = look.color.m_ctRuler;
    s.m_ctText = look.color.m_ctText;
    s.m_precision = look.precision;
    s.m_fontSize = look.fontSize;
    s.m_fontBackground = look.fontBackground;
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
    if (!s_pLiveDocument)
        return true;
    return SnapshotFromLive();
}

bool CMeasureDoc::SnapshotFromLive()
{
    FCObjImage frame;
    if (!s_pLiveDocument->Snapshot(frame)) {
        MessageBox(tr("The camera has not delivered a picture yet. Try again in a moment."), tr("Capture"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    TakePicture(std::move(frame));
    return true;
}

void CMeasureDoc::TakePicture(FCObjImage picture)
{
    m_image = std::move(picture);
    m_unprocessed = m_image;
    m_nImageWidth = m_image.Width();
    m_nImageHeight = m_image.Height();
    m_bHasImage = true;
}

bool CMeasureDoc::OnOpenDocument(const QString& path)
{
    FCObjImage picture;
    if (!picture.Load(path) || !picture.ConvertTo24Bit()) {
        MessageBox(tr("Cannot open the picture %1:\n%2").arg(path, picture.ErrorString()), tr("Open"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    TakePicture(std::move(picture));
    SetPathName(path);
    ReadMeasurementXmp(path);
    return true;
}

bool CMeasureDoc::OnNewPicture(const QImage& source)
{
    FCObjImage picture;
    if (!picture.FromQImage(source) || !picture.ConvertTo24Bit()) {
        MessageBox(tr("Cannot open the picture %1:\n%2").arg(GetTitle(), picture.ErrorString()), tr("Open"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    TakePicture(std::move(picture));
    return true;
}

const FCObjImage* CMeasureDoc::GetPicture() const
{
    // A running live document shows the video, not its last frozen frame.
    if (!m_bHasImage || (m_bLive && m_bPreviewRunning))
        return nullptr;
    return &m_image;
}

QImage CMeasureDoc::GetMeasuringPicture()
{
    if (m_bLive && m_bPreviewRunning) {
        FCObjImage frame;
        return Snapshot(frame) ? frame.ToQImage() : QImage();
    }
    return IMeasureDocument::GetMeasuringPicture();
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

void CMeasureDoc::RepaintOverlayWindow()
{
    InvalidateWindow(m_pElemMgr->GetWindow());
}

QWidget* CMeasureDoc::DialogParent() const
{
    if (auto* wnd = qobject_cast<QWidget*>(m_pElemMgr->GetWindow()))
        return wnd->window();
    return QApplication::activeWindow();
}
