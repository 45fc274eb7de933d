#pragma once

#include "capture/CaptureFormat.h"
#include "capture/HResult.h"
#include "capture/ICamProcess.h"

#include <QImage>
#include <QPointer>
#include <QRgb>
#include <QString>
#include <QStringList>

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class CCamProcess;
class FlatField;
struct FrameHistogram;
class CFrameMailbox;
class CVideoWidget;
class QObject;
class QWidget;

// The live-video pipeline of the live document: a camera, the processing
// element and the video window, in one of two topologies.
//
// Preview: camera -> (format filter) -> decode / convert to BGR -> "Smart Tee"
//          -> "VKT CamProcess" -> "Grabber" (keeps the last frame) -> "VM renderer"
// Record:  camera -> (format filter) -> decode / convert to BGR -> "VKT CamProcess"
//          -> "Smart Tee" -> JPEG encoder -> "AVI Mux" -> "File Writer"
//                         -> "VM renderer"
//
// Threads: every operation runs on the user-interface thread, except
// GetVideoSize and WaitOverlayUnused, which any thread may call. Failures are
// shown through MessageBox() with the caption "Error!".
//
// The sources are split by concern: CXCapGraph.cpp (life of the pipeline,
// run states, teardown, processing switches), CXCapGraphBuild.cpp (the two
// topologies), CXCapGraphStream.cpp (grabber, renderer samples, bus errors),
// CXCapGraphWindow.cpp (video window, full screen, dialogs) and
// CXCapGraphDevices.cpp (listing and binding cameras).
//
// As an ICamProcess it stands for the processing element: every call goes
// to the element, E_FAIL while there is none.
class CXCapGraph : public ICamProcess
{
public:
    static constexpr int kMaxDevices = 256;
    static constexpr unsigned kFallbackHeight = 960;
    static constexpr int kMaxNameChars = 255;

    // Shown when the running camera stops with an error (unplugged, broken).
    static const QString kCameraLostMessage;
    // Shown when the camera fails before its first frame (busy, broken).
    static const QString kCameraStartMessage;
    // Shown when the record file cannot be written any more.
    static const QString kRecordWriteMessage;
    // Shown for any other error of the running pipeline.
    static const QString kStreamErrorMessage;

    CXCapGraph();
    virtual ~CXCapGraph();
    CXCapGraph(const CXCapGraph&) = delete;
    CXCapGraph& operator=(const CXCapGraph&) = delete;

    // Creates the pipeline, chooses the device by the stored name (or the
    // first one) and adds it.
    int InitGraph();
    // The same for a device bound beforehand (BindDeviceByIndex).
    int InitGraphForBoundDevice();
    // The bound device's capabilities into the format list.
    void EnumFormats();
    void BuildPreviewGraph();
    void BuildRecordGraph();
    int RunGraph();
    int PauseGraph();
    // While recording, ends the file properly (end of stream) before stopping.
    int StopGraph();

    // Places the video window inside owner at that rectangle (owner null: a
    // window of its own).
    int SetParentWnd(QWidget* owner, int x, int y, int width, int height);
    int ShowVideoWindow(int on);
    // Moves the video into the dialog, full screen with its aspect kept, and
    // back to the owner at its saved size. A null dialog uses a window of the
    // graph's own (CDlgFullScreen).
    int ToggleFullScreen(QWidget* dialog = nullptr);
    bool IsFullScreen() const { return m_fullScreen != 0; }
    // Any thread.
    int GetVideoSize(unsigned* width, unsigned* height) const;
    int ChangeResolution(unsigned width, unsigned height);
    int ShowFormatDialog(const QString& deviceName, QWidget* parent);
    int ShowDeviceProperties();
    int ShowProcessProperties();

    void SetDeviceName(const QString& name);
    void GetDeviceName(QString* name) const;
    QString DeviceName() const { return m_deviceName; }
    void SetRecordFileName(const QString& path);
    QString RecordFileName() const { return m_recordFile; }

    // Teardown before a rebuild: everything but the pipeline and the device.
    void DestroyGraph();
    // Full release.
    void ReleaseAll();

    // The processing element's operations; E_FAIL while there is none.
    int SetProcessEnable(int on) override;
    int SetOperation(ProcessOp op, const ProcessSwitches& values) override;
    // overlayPointer: see CCamProcess for how the owner publishes buffers.
    // The overlay is expected at the current video size.
    int SetOverlay(int on, uchar* const* overlayPointer) override;
    int GetProcessEnable(int* on) override;
    int GetOperation(ProcessOp op, ProcessSwitches* values) override;
    int GetStateA(int* width, int* height) override;
    int GetStateB(int* frames) override;
    // Any thread: returns once no frame reads this overlay buffer.
    void WaitOverlayUnused(const uchar* buffer) const;
    // The frames as processed but without the overlay, kept while asked for
    // (see CCamProcess); they outlast a rebuild of the pipeline.
    void KeepCleanFrames(bool on);
    QImage CleanFrame() const;
    // The processing element's flat-field correction (see CCamProcess); it
    // outlasts a rebuild of the pipeline.
    void SetFlatField(std::shared_ptr<const FlatField> field);
    // The blank field kept for this camera and size (CFlatFieldStore), set
    // whenever the camera starts while the store's switch is on; off by
    // default, for the program's live documents only.
    void SetUseStoredFlatField(bool on) { m_useStoredFlatField = on; }
    // Sets the kept correction for the current camera and size now, or none
    // when the switch is off or nothing is kept; true when one was set.
    bool ApplyStoredFlatField();
    // The key the camera's settings are kept under (CCameraControlStore).
    QString CameraKey() const;
    // Averaging a blank field from the next frames (see CCamProcess).
    void CaptureBlank(unsigned frames);
    QImage CapturedBlank() const;
    // Each frame's histogram, kept while asked for (see CCamProcess).
    void KeepHistograms(bool on);
    bool LastHistogram(FrameHistogram* histogram) const;
    // Focus peaking on each frame, and the last frame's sharpness (see
    // CCamProcess).
    void SetFocusPeaking(bool on, QRgb colour);
    double LastSharpness() const;
    void SetCoverage(const QImage& coverage, QRgb colour);

    // The grabber's last frame: with a null buffer, *size becomes the bytes
    // needed (width * height * 3); with a buffer of at least *size bytes, the
    // frame is copied in, rows bottom-up and unpadded. E_POINTER without a
    // grabber (no preview built, or recording), E_FAIL before the first frame.
    long GetCurrentBuffer(long* size, uchar* buffer);
    // Waits at most `timeout` until the grabber holds a frame the processing
    // element counted after `frames` (a GetStateB value): read after changing
    // a switch, a frame processed with the change. False when none came in
    // time, at once after the stream failed, and without a grabber.
    bool WaitGrabbedAfter(int frames, std::chrono::milliseconds timeout);

    // Devices.
    void EnumDevices();
    int GetSpecCapDevice(GstElement** filter, const QString& name);
    int GetDefaultCapDevice(GstElement** filter);
    int BindDeviceByIndex(int index);
    int BindDeviceByName(const QString& name);
    void SelectCurrentDevice();
    int DeviceCount() const { return m_deviceCount; }
    QString DeviceNameAt(int index) const;
    int SelectedDevice() const { return m_selectedDevice; }
    void SetSelectedDevice(int index) { m_selectedDevice = index; }

    // The graph's part of a device change, in order: stop, teardown, full
    // release, enumerate again, bind the index, initialise for it, its
    // formats, preview at the current size and run. The new size comes back.
    int ChangeDevice(int index, unsigned* width, unsigned* height);

    // Hot plug. A removed device that is the bound one takes the pipeline
    // down as a camera failure does (recording finished, message, error
    // handler), unless its read error did so already; true when it was the
    // bound one. Reconnect binds the device of the kept name again after it
    // came back and runs the preview at the size it had.
    bool OnDeviceRemoved(const QString& name);
    int Reconnect();
    // Whether the last failure of the stream left a finished, playable
    // recording of the frames so far.
    bool RecordingFinishedOnError() const { return m_recordingFinishedOnError; }

    const std::vector<CaptureFormat>& Formats() const { return m_formats; }
    int SelectedFormat() const { return m_selectedFormat; }
    void SetSelectedFormat(int index) { m_selectedFormat = index; }

    bool IsGraphReady() const { return m_graphReady != 0; }
    bool IsRecordGraph() const { return m_fileSink != nullptr; }
    bool HasProcess() const { return m_process != nullptr; }
    CVideoWidget* VideoWidget() const;

    // Called after a running pipeline stopped on an error and was taken
    // down, once its message was shown: the document updates its state.
    void SetStreamErrorHandler(std::function<void(const QString& message)> handler);

    // The pipeline and the bound device's element, for diagnostics and tests.
    GstElement* Pipeline() const { return m_graph; }
    GstElement* DeviceElement() const { return m_device; }
    GstDevice* BoundDevice() const { return m_boundDevice; }

private:
    int InitPipeline();
    int AddDevice();
    int Bind(GstDevice* device, GstElement** filter);
    void ReleaseDeviceList();
    // Steps both topologies share: the processing element (failure: its
    // topology's message) and the camera's capture pin.
    bool MakeProcessElement(const QString& failure);
    bool HasCapturePin();
    // A format list and a selected format in it; nothing is built otherwise.
    bool CanBuild() const;
    // Sets the source format for the next build; false when nothing to build.
    bool ChooseDeviceFormat(bool preview);
    // Source -> caps filter -> decoder -> converter -> BGR; returns the last
    // element, or null.
    GstElement* AddSourceChain();
    GstElement* MakeRenderer();
    GstElement* Make(const char* factory, const char* name);
    bool Add(GstElement* element);
    void RemoveDownstream();
    void SetNull();
    bool FinishRecording();
    void OnStreamError(const QString& text, const QString& debug, const QString& source);
    void Fail(const QString& message, const QString& details = {});
    void EnsureVideoWidget(QWidget* owner);
    void ClearLastFrame();

    static GstBusSyncReply BusSync(GstBus* bus, GstMessage* message, gpointer self);
    static GstPadProbeReturn GrabberProbe(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstFlowReturn RendererSample(GstAppSink* sink, gpointer self);

    // Pipeline.
    GstElement* m_graph = nullptr;
    GstElement* m_device = nullptr; // "Cap"
    GstDevice* m_boundDevice = nullptr;
    GstElement* m_tee = nullptr;
    GstElement* m_grabber = nullptr;
    GstElement* m_renderer = nullptr;
    GstElement* m_processElement = nullptr;
    GstElement* m_fileSink = nullptr;
    GstElement* m_firstAfterDevice = nullptr;
    ICamProcess* m_process = nullptr; // the element's interface while it exists
    std::shared_ptr<CCamProcess> m_processState;
    bool m_useStoredFlatField = false;
    GstCaps* m_sourceCaps = nullptr; // format chosen for the next build

    // Devices.
    std::vector<GstDevice*> m_devices;
    QStringList m_deviceNames;
    int m_deviceCount = 0;
    int m_selectedDevice = 0;
    QString m_deviceName;
    std::atomic<bool> m_deviceBound { false };

    // Sizes and formats.
    std::atomic<unsigned> m_width { 0 };
    std::atomic<unsigned> m_height { 0 };
    std::vector<CaptureFormat> m_formats;
    int m_selectedFormat = 0;
    CaptureFormat m_currentFormat; // the device's format as last set
    bool m_hasCurrentFormat = false;
    int m_graphReady = 0;
    QString m_recordFile;

    // Video window.
    QPointer<QWidget> m_owner;
    std::shared_ptr<CFrameMailbox> m_mailbox;
    QPointer<CVideoWidget> m_videoWidget;
    QPointer<QWidget> m_fullScreenDialog;
    QPointer<QWidget> m_ownFullScreen;
    int m_fullScreen = 0;
    int m_savedWidth = 0;
    int m_savedHeight = 0;

    // Grabber.
    std::mutex m_frameMutex;
    std::condition_variable m_frameCv; // a frame grabbed, or the stream failed
    GstBuffer* m_lastBuffer = nullptr;
    unsigned m_lastBufferFrame = 0; // the element's count when it was grabbed
    bool m_streamFailed = false; // since the last run
    unsigned m_grabberWidth = 0;
    unsigned m_grabberHeight = 0;

    // Bus.
    std::unique_ptr<QObject> m_bridge; // runs bus news on the UI thread
    std::mutex m_busMutex;
    std::condition_variable m_busCv;
    bool m_eosSeen = false;
    bool m_errorSeen = false;
    bool m_handlingError = false;
    bool m_recordingFinishedOnError = false;
    int m_framesAtRun = 0; // frames processed when the graph was last run
    std::function<void(const QString&)> m_errorHandler;
};
