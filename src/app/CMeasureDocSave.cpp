// Saving pictures: the quick save, the save-as dialog and the save routine
// they share, the saving resolution, and the measurements kept as XMP data in
// the file and restored when it is opened again.
#include "app/CCmdUI.h"
#include "app/CMeasureDoc.h"
#include "app/CResolutionDlg.h"
#include "app/CSaveAsDlg.h"
#include "app/CSaveOptionDlg.h"
#include "app/CommandTable.h"
#include "capture/GrabPicture.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CPictureSaver.h"
#include "measure/CShapeHistory.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"
#include "platform/AppPaths.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Long enough for a camera at one frame a second; one that sends nothing for
// this long has stopped.
constexpr auto kFrameWait = std::chrono::seconds(2);

SaveOverlay ApplyVariant(SaveOverlay overlay, CMeasureDoc::SaveVariant variant)
{
    switch (variant) {
    case CMeasureDoc::SaveVariant::PlusMeasure:
        overlay.measure = true;
        break;
    case CMeasureDoc::SaveVariant::OnlyImage:
        overlay = SaveOverlay {};
        break;
    case CMeasureDoc::SaveVariant::Settings:
        break;
    }
    return overlay;
}

} // namespace

void CMeasureDoc::MapSaveCommands()
{
    using V = SaveVariant;
    MapCommand(ID_FILE_SAVE, [this] { QuickSave(); });
    MapCommand(ID_FILE_SAVE_PLUS_MEASURE, [this] { QuickSave(V::PlusMeasure); });
    MapCommand(ID_FILE_SAVE_ONLY_IMAGE, [this] { QuickSave(V::OnlyImage); });
    MapCommand(ID_FILE_SAVE_AS, [this] { SaveAs(); });
    MapCommand(ID_FILE_SAVE_AS_ONLY_IMAGE, [this] { SaveAs(V::OnlyImage); });
    MapCommand(ID_FILE_SAVE_AS_PLUS_MEASURE, [this] { SaveAs(V::PlusMeasure); });
    for (int id : { ID_FILE_SAVE, ID_FILE_SAVE_PLUS_MEASURE, ID_FILE_SAVE_ONLY_IMAGE, ID_FILE_SAVE_AS,
             ID_FILE_SAVE_AS_ONLY_IMAGE, ID_FILE_SAVE_AS_PLUS_MEASURE })
        MapUpdate(id, [this](CCmdUI& ui) { ui.Enable(m_bHasImage); });
    MapCommand(ID_SAVE_OPTION, [this] {
        CSaveOptionDlg dialog(m_settingsFile, DialogParent());
        dialog.exec();
    });
    // The saving resolution belongs to the live document, whichever is active.
    MapCommand(ID_SAVE_RESOLUTION, [] {
        CMeasureDoc* live = GetLiveDocument();
        if (!live)
            return;
        CResolutionDlg dialog(live->m_nSaveResolution, live->DialogParent());
        if (dialog.exec() == QDialog::Accepted)
            live->SetSaveResolution(dialog.Resolution());
    });
    MapUpdate(ID_SAVE_RESOLUTION, [this](CCmdUI& ui) { UpdateCameraCommand(ui, false); });
}

void CMeasureDoc::SetSaveResolution(int resolution)
{
    m_nSaveResolution = resolution >= 1 && resolution <= 3 ? resolution : 1;
}

QString CMeasureDoc::QuickSave(SaveVariant variant)
{
    bool whole = false;
    const QString path = SilentQuickSave(variant, &whole);
    // A save that lost something has said so; it does not claim success.
    if (whole)
        MessageBox(tr("Picture has successfully saved to") + QStringLiteral("  ") + path, tr("Hint"));
    return path;
}

QString CMeasureDoc::SilentQuickSave(SaveVariant variant, bool* whole)
{
    QuickSaveSettings s = QuickSaveSettings::Read(m_settingsFile);
    const QString folder = s.Folder(CurrentAppPaths().m_pictureFolder);
    if (!QDir().mkpath(folder))
        qCWarning(lcApp) << "cannot create the picture folder" << folder;
    const QString path = s.PathIn(folder);
    SaveImage(path, ApplyVariant(s.overlay, variant), { s.title, {}, s.author, {} }, whole);
    // The running number moves on whatever the outcome.
    SettingsKeys::WriteInt(SettingsKeys::SaveSuffix, s.suffix + 1, m_settingsFile);
    return path;
}

void CMeasureDoc::SaveAs(SaveVariant variant)
{
    const QString name = GetPathName().isEmpty() ? GetTitle() : QFileInfo(GetPathName()).completeBaseName();
    CSaveAsDlg dialog(
        m_settingsFile, name,
        [this](const QString& path, const SaveOverlay& overlay, const SaveTexts& texts) {
            SaveImage(path, overlay, texts);
        },
        DialogParent());
    if (variant != SaveVariant::Settings)
        dialog.SetOverlay(ApplyVariant(SaveAsSettings::Read(m_settingsFile).overlay, variant));
    dialog.exec();
}

bool CMeasureDoc::GrabLiveFrame(FCObjImage& frame, bool withShapes)
{
    // Without the shapes the frame is one the processing element passed with
    // processing off, so without the overlay. The grabber's last frame may
    // have passed before the switch: blended, or, right after such a grab,
    // left unprocessed; the next one is waited for.
    int processing = 1;
    m_graph.GetProcessEnable(&processing);
    if (!withShapes)
        m_graph.SetProcessEnable(0);
    const bool grabbed = GrabNextPicture(m_graph, frame, kFrameWait);
    m_graph.SetProcessEnable(processing);
    return grabbed;
}

bool CMeasureDoc::SaveImage(
    const QString& path, const SaveOverlay& overlay, const SaveTexts& texts, bool* whole)
{
    if (whole)
        *whole = false;
    const bool running = m_bLive && m_bPreviewRunning;
    if (running) {
        FCObjImage frame;
        if (!GrabLiveFrame(frame, overlay.measure)) {
            // Not the picture of some earlier moment instead.
            qCWarning(lcApp) << "no frame from the camera to save as" << path;
            MessageBox(tr("Save image failed."), tr("Save"), MB_OK | MB_ICONWARNING);
            return false;
        }
        m_image = std::move(frame);
        m_bHasImage = true;
    }

    qCDebug(lcApp) << "save image" << path;
    CPictureSaver saver(*m_pElemMgr, overlay, texts);
    // The larger saving resolutions apply to the running live picture.
    if (running)
        saver.SetEnlargement(m_nSaveResolution);
    const bool saved = saver.Save(m_image, path);
    if (!saved) {
        qCWarning(lcApp) << "save failed:" << saver.ErrorString();
        MessageBox(tr("Save image failed."), tr("Save"), MB_OK | MB_ICONWARNING);
    }
    if (saver.XmpFailed()) {
        qCWarning(lcApp) << "could not keep the measurements in" << path << ":" << saver.XmpError();
        MessageBox(
            tr("the picture was saved but its measurements could not be kept: %1").arg(saver.XmpError()),
            tr("Save"), MB_OK | MB_ICONWARNING);
    }
    if (whole)
        *whole = saved && !saver.XmpFailed();
    if (saver.SummaryFailed())
        MessageBox(tr("Failed to write JPEG file Summary information!"), tr("Save"), MB_OK | MB_ICONWARNING);
    return saved;
}

void CMeasureDoc::ReadMeasurementXmp(const QString& path)
{
    MeasurementXmp::Stored stored = MeasurementXmp::Read(path);
    if (stored.invalidUnit)
        MessageBox(tr("this picture's calibration is not valid; the current calibration is used"), tr("Open"),
            MB_OK | MB_ICONWARNING);
    CalibrationRecord unit = m_pElemMgr->GetUnit();
    stored.ApplyTo(unit);
    m_pElemMgr->SetUnit(unit);
    m_storedShapes = std::move(stored.shapes);
    // Shapes follow the ruler, element 0: with the view made before the file
    // is read they come now, else the view asks for them.
    bool hasRuler = false;
    {
        const auto lock = m_pElemMgr->Lock();
        hasRuler = !m_pElemMgr->m_arShape.empty();
    }
    if (hasRuler)
        RestoreStoredShapes();
}

int CMeasureDoc::RestoreStoredShapes()
{
    const QByteArray json = std::exchange(m_storedShapes, {});
    const ShapesRead read = json.isEmpty() ? ShapesRead {} : ReadShapesJson(*m_pElemMgr, json);
    if (const QString note = read.Note(); !note.isEmpty())
        MessageBox(tr("Some measurements of this picture are not shown: %1").arg(note), tr("Open"),
            MB_OK | MB_ICONWARNING);
    // The document as opened, ruler and all, is where undo stops.
    m_pHistory->Reset();
    return read.made;
}
