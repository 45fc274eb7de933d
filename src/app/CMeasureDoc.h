#pragma once

#include "app/CDocument.h"
#include "app/SaveSettings.h"
#include "capture/COverlayWorker.h"
#include "capture/CXCapGraph.h"
#include "capture/ILiveDocument.h"
#include "image/FCObjImage.h"
#include "image/ProcessSwitches.h"
#include "measure/ParticleAnalyzer.h"
#include "ui/CParticleResultsDlg.h"
#include "ui/IMeasureDocument.h"

#include <QByteArray>
#include <QPointer>
#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class CCmdUI;
class CGVLElemMgr;
class CLiveFocus;
class CRulerSettingDlg;
class CShapeHistory;
class QWidget;

// One measuring document: the live document, which shows the camera, or a
// picture document, which holds one still picture (a capture or a file).
// Both own their shapes. The settings are read when the document is made and
// written back when it goes, so the last document closed wins.
//
// Threads: everything runs on the user-interface thread except the overlay
// worker of the live document (COverlayWorker), which redraws the shapes
// every 30 ms into the buffer the processing element does not read, then
// publishes it.
class CMeasureDoc : public CDocument, public IMeasureDocument, public ILiveDocument
{
    Q_OBJECT

public:
    // The zoom index of 100 %, where shape coordinates are picture pixels.
    static constexpr int kZoomActualSize = 4;

    // openingFile: made for a picture file, so it never opens the camera.
    // settingsFile: empty takes the process's settings file.
    explicit CMeasureDoc(bool openingFile, const QString& settingsFile = QString());
    ~CMeasureDoc() override;

    // The process's live document, or null.
    static CMeasureDoc* GetLiveDocument();

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    // A picture document of a picture the program made; an unusable one is
    // told in a message box, as an unreadable file is.
    bool OnNewPicture(const QImage& picture) override;

    // IMeasureDocument
    CGVLElemMgr& GetElemMgr() override { return *m_pElemMgr; }
    int GetCurrentTool() const override { return m_nCurTool; }
    bool IsLive() const override { return m_bLive; }
    int GetDisplayMode() const override { return m_nDisplayMode; }
    const FCObjImage* GetPicture() const override;
    int GetZoomIndex() const override { return m_nZoom; }
    QSize GetImageSize() const override { return QSize(m_nImageWidth, m_nImageHeight); }
    CRulerSettingDlg* GetCalibrationDialog() override { return m_pCalibrationDlg.get(); }
    CShapeHistory* GetHistory() override { return m_pHistory.get(); }
    void OnVideoDoubleClick() override;
    // The live frame while the video runs, else the picture.
    QImage GetMeasuringPicture() override;

    // The view's part of becoming live: builds and runs the preview into
    // videoOwner, allocates the overlay buffers, starts the worker. False
    // (nothing started) without a camera or while another document is live.
    bool StartLive(QWidget* videoOwner);
    bool HasCamera() const { return m_bHasCamera; }
    // The document was to become live and no camera was there.
    bool FoundNoCamera() const { return m_bFoundNoCamera; }
    bool IsPreviewRunning() const { return m_bPreviewRunning; }
    bool HasImage() const { return m_bHasImage; }
    // ILiveDocument: what the record, interval and colour-gain dialogs use.
    CXCapGraph& GetGraph() override { return m_graph; }
    QWidget* GetVideoOwner() override { return m_videoOwner; }
    uchar* const* GetOverlayPointer() override { return m_overlay.PublishedPointer(); }
    void ReadBackState() override;
    void UpdateLiveView() override;
    ProcessSwitches& LiveSwitches() override { return m_switches; }
    QString GetSettingsFile() const override { return m_settingsFile; }
    // The live frame size for the live document, else the picture's.
    QSize QueryImageSize();

    void SetZoomIndex(int index);
    void SetCurrentTool(int tool) { m_nCurTool = tool; }
    bool IsSolidCrossLine() const { return m_bCrossSolid; }
    bool IsDashedCrossLine() const { return m_bCrossDashed; }
    bool IsFlipped() const { return m_switches.flip; }
    bool IsMirrored() const { return m_switches.mirror; }
    bool IsProcessingEnabled() const { return m_bProcessEnabled; }
    const ProcessSwitches& GetSwitches() const { return m_switches; }
    bool IsCalibrationShown() const { return m_bCalibrationShown; }
    const FCObjImage& GetUnprocessedImage() const { return m_unprocessed; }

    // Drawing commands may run: pictures only at 100 %, the live video when
    // paused, or running with processing on at 100 %, so shape coordinates
    // stay picture pixels.
    bool CanDraw() const;

    // Hot plug, from the application's device watcher. A pulled camera of
    // the live document leaves it paused on the last frame; the same camera
    // plugged back in runs the preview again.
    void OnCameraUnplugged(const QString& name);
    void OnCameraPlugged(const QString& name);
    bool IsCameraLost() const { return m_bCameraLost; }

    // Commands, callable directly (tests) or through the command route.
    void Pause();
    void Preview();
    void ToggleCalibration();
    void ToggleSolidCrossLine();
    void ToggleDashedCrossLine();
    // An operation without parameters on or off (see ProcessOperations.h).
    void ToggleOperation(ProcessOp op);
    void ToggleProcessEnable();
    // on/off with the dialog's slider position; the level used is 255 - slider.
    void SetBinary(bool on, int slider);
    void ExportData();
    // The new-document path of the application, which makes a picture
    // document from the live frame.
    static void CaptureToNewDocument();

    // Saving pictures (CMeasureDocSave.cpp). The drop-down variants of the
    // save buttons burn the shapes in whatever the options say, or nothing.
    enum class SaveVariant { Settings, PlusMeasure, OnlyImage };
    // The save routine: grabs the frame of a running live document, then
    // CPictureSaver burns the chosen overlay into a copy of the picture,
    // enlarges it at saving resolutions 2 and 3 of the running live document,
    // writes it (replacing any old file only once the new one is whole), keeps
    // the calibration (and the shapes when not burnt in) as XMP data in JPEG,
    // PNG and TIFF files, and gives ".jpg" files the summary texts. Failures
    // are told in message boxes; true when the picture was written, and
    // `whole` true when its measurements were kept too.
    bool SaveImage(
        const QString& path, const SaveOverlay& overlay, const SaveTexts& texts, bool* whole = nullptr);
    // "Analyze &Particles...": counts and sizes the particles of the picture
    // (the live one's next frame without the shapes), adds each outline as a
    // polygon shape, one undo step for all, and shows the results window.
    // Returns how many were found; -1 when there was no picture.
    int AnalyzeParticles(const ParticleOptions& options);
    // The shapes as an ImageJ ROI set (or one .roi); false, told in a
    // message box, when there is none or the file cannot be written.
    bool ExportRois(const QString& path);
    // Adds the ROIs of an ImageJ ROI set or .roi file as shapes, one undo
    // step; what Oculix has no shape for is told. Returns how many shapes
    // were made, -1 (told) for a file that is no ROI file.
    int ImportRois(const QString& path);
    // The results window of the last analysis while it is open.
    CParticleResultsDlg* GetParticleResults() const { return m_particleResults; }
    // "&Save": the name comes from the "Save" section; tells where the
    // picture went when all of it was kept, then advances "Suffix". Returns
    // the path.
    QString QuickSave(SaveVariant variant = SaveVariant::Settings);
    // The quick save without the message, for interval capture.
    QString SilentQuickSave(SaveVariant variant = SaveVariant::Settings, bool* whole = nullptr);
    // "Save &As...": CSaveAsDlg, then the save routine.
    void SaveAs(SaveVariant variant = SaveVariant::Settings);
    // 1, 2 or 3 ("1280*1024", "1600*1200", "2048*1536"); anything else is 1.
    int GetSaveResolution() const { return m_nSaveResolution; }
    void SetSaveResolution(int resolution);
    // Shapes an opened picture carried as data, made into elements once the
    // view (and with it the ruler, element 0) exists. Returns how many.
    int RestoreStoredShapes();

    // The overlay worker is running (tests).
    bool IsOverlayWorkerRunning() const { return m_overlay.IsRunning(); }
    // Overlay workers of all documents that have not ended yet.
    static int RunningOverlayWorkers() { return COverlayWorker::Running(); }
    // How many overlays the worker has published (tests, diagnostics).
    unsigned OverlaysDrawn() const { return m_overlay.OverlaysDrawn(); }
    // How many passes the worker has made, drawn or not (tests).
    unsigned OverlayPasses() const { return m_overlay.Passes(); }

    // Asks for the CSV path with the proposed name (no extension); empty
    // cancels. Replaceable as a whole (tests); returns the previous one.
    using ExportDialogHandler = std::function<QString(QWidget* parent, const QString& proposedName)>;
    static ExportDialogHandler SetExportDialogHandler(ExportDialogHandler handler);

    // "Snap to &Edges", for every document, kept in the program's own user
    // settings (CMeasureDocSnap.cpp). Off until the user turns it on.
    static bool SnapToEdges();
    static void SetSnapToEdges(bool on);
    // What the shapes snap to: the picture, or for the live document the
    // frame under the overlay; null while snapping is off.
    QImage SnapPicture() const;
    // Focus peaking and live focus stacking (CMeasureDocFocus.cpp).
    CLiveFocus& LiveFocus() { return *m_liveFocus; }

signals:
    // The frame size or the zoom changed: the view lays itself out again.
    void layoutNeeded();

private:
    void ReadSettings();
    void MapSaveCommands();
    void MapSnapCommand();
    void MapParticlesCommand();
    // The live document's next frame, with or without the shapes blended in.
    bool GrabLiveFrame(FCObjImage& frame, bool withShapes);
    void ReadMeasurementXmp(const QString& path);
    void WriteSettings() const;
    void MapCommands();
    void MapTool(int id, int tool);
    void MapToggle(int id, ProcessOp op);
    void UpdateTool(CCmdUI& ui, int tool) const;
    void UpdateCameraCommand(CCmdUI& ui, bool needsRunning) const;
    void DeleteAll();
    // "&Undo" and "&Redo": the shapes and calibration of a step, repainted,
    // and the calibration dialog shows them.
    void MapHistoryCommands();
    void StepHistory(bool back);
    void ReapplyPicture();
    // The record (32902), interval capture (32903) and "&Rgb" (32914) dialogs.
    void MapCaptureDialogs();
    void MapFocusCommands();
    void OnRecord();
    void OnIntervalCapture();
    void OnRgb();
    // CMeasureDocCorrection.cpp
    void OnFlatField();
    void OnWhiteBalance();
    // The rectangle white balance is taken from: the selected one, else the
    // last; null without one.
    QRect WhiteBalanceRegion() const;
    void OnBinaryCommand();
    void OnMeasureSetting();
    void OnChangeDevice();
    void OnVideoResolution();
    void OnFullScreen();
    void AfterGraphRebuilt();
    void RepaintOverlayWindow();
    QWidget* DialogParent() const;
    // The current frame of the graph into picture (24 bits); false when the
    // camera has given no frame yet.
    bool Snapshot(FCObjImage& picture);
    bool SnapshotFromLive();
    // The document's picture from now on, also as the unprocessed one.
    void TakePicture(FCObjImage picture);

    // The worker's view of this document's frames.
    COverlayWorker::Frames OverlayFrames();
    // Switches the overlay off at the processing element, then stops the
    // worker, which waits until no frame reads its buffers.
    void StopOverlayWorker();
    void StopLive();

    std::unique_ptr<CGVLElemMgr> m_pElemMgr;
    // Its steps copy the manager's shapes; it goes before the manager.
    std::unique_ptr<CShapeHistory> m_pHistory;
    QPointer<CParticleResultsDlg> m_particleResults;
    CXCapGraph m_graph;
    QString m_settingsFile;
    QPointer<QWidget> m_videoOwner;

    int m_nCurTool = 0;
    bool m_bCrossSolid = false;
    bool m_bCrossDashed = false;
    bool m_bProcessEnabled = true;
    ProcessSwitches m_switches;
    int m_nCameraType = 1;
    int m_nDisplayMode = 2;
    QString m_strDevice;
    int m_nZoom = kZoomActualSize;
    int m_nImageWidth = 1280;
    int m_nImageHeight = 1024;
    bool m_bOpeningFile = false;
    std::atomic<bool> m_bLive { false };
    bool m_bHasCamera = false;
    bool m_bFoundNoCamera = false;
    bool m_bCameraLost = false;
    std::atomic<bool> m_bPreviewRunning { false };
    bool m_bHasImage = false;
    FCObjImage m_image;
    FCObjImage m_unprocessed;

    // Draws the element manager's shapes for the graph's processing element;
    // made after, and so ended before, what it reads.
    COverlayWorker m_overlay { *m_pElemMgr, OverlayFrames() };

    std::unique_ptr<CRulerSettingDlg> m_pCalibrationDlg;
    // Acts on m_graph; ended before it.
    std::unique_ptr<CLiveFocus> m_liveFocus;
    bool m_bCalibrationShown = false;

    int m_nSaveResolution = 1;
    QByteArray m_storedShapes;

    // At most one live document in the process; only the user-interface
    // thread reads or writes it.
    static inline CMeasureDoc* s_pLiveDocument = nullptr;
};
