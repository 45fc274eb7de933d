#include "capture/CXCapGraph.h"

#include "capture/CCamProcess.h"
#include "capture/CCameraControlStore.h"
#include "capture/CDevicePropertiesDlg.h"
#include "capture/CDlgFullScreen.h"
#include "capture/CFormatDlg.h"
#include "capture/CFrameMailbox.h"
#include "capture/CProcessPropertiesDlg.h"
#include "capture/CVideoWidget.h"
#include "capture/CamProcessElement.h"
#include "capture/CameraModels.h"
#include "capture/GstInit.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

#include <QCoreApplication>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <gst/video/video.h>

#include <chrono>
#include <cmath>
#include <cstring>

const QString CXCapGraph::kCameraLostMessage
    = QStringLiteral("The camera stopped sending pictures. It may have been unplugged.");
const QString CXCapGraph::kCameraStartMessage
    = QStringLiteral("The camera could not be started. It may be in use by another program.");
const QString CXCapGraph::kRecordWriteMessage
    = QStringLiteral("The recording could not be written any further. Is the disk full?");
const QString CXCapGraph::kStreamErrorMessage = QStringLiteral("The live video stopped because of an error.");

namespace {

const QString kCaption = QStringLiteral("Error!");
constexpr unsigned kErrorFlags = MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND;
// How long stopping a recording waits for the file to be finished.
constexpr auto kEosTimeout = std::chrono::seconds(5);

QString DisplayName(GstDevice* device)
{
    gchar* name = gst_device_get_display_name(device);
    QString out = QString::fromUtf8(name);
    g_free(name);
    return out;
}

bool ElementIsOrContains(GstElement* parent, GstObject* child)
{
    for (GstObject* o = child; o; o = GST_OBJECT_PARENT(o))
        if (o == GST_OBJECT(parent))
            return true;
    return false;
}

} // namespace

CXCapGraph::CXCapGraph()
    : m_processState(std::make_shared<CCamProcess>())
    , m_recordFile(QDir::temp().filePath(QStringLiteral("temp.avi")))
    , m_mailbox(std::make_shared<CFrameMailbox>())
    , m_bridge(std::make_unique<QObject>())
{
    EnsureGStreamer();
}

CXCapGraph::~CXCapGraph()
{
    ReleaseAll();
    delete m_videoWidget.data();
    delete m_ownFullScreen.data();
    gst_caps_replace(&m_sourceCaps, nullptr);
}

void CXCapGraph::Fail(const QString& message, const QString& details)
{
    qCDebug(lcCapture) << "capture error:" << message << details;
    MessageBox(message, kCaption, kErrorFlags, details);
}

GstElement* CXCapGraph::Make(const char* factory, const char* name)
{
    return gst_element_factory_make(factory, name);
}

bool CXCapGraph::Add(GstElement* element)
{
    return m_graph && element && gst_bin_add(GST_BIN(m_graph), element);
}

// ---------------------------------------------------------------- the pipeline

int CXCapGraph::InitPipeline()
{
    if (m_graph)
        return S_OK;
    if (!EnsureGStreamer() || !(m_graph = gst_pipeline_new("graph"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create filter graph"));
        return E_FAIL;
    }
    gst_object_ref_sink(m_graph);
    GstBus* bus = gst_element_get_bus(m_graph);
    gst_bus_set_sync_handler(bus, &CXCapGraph::BusSync, this, nullptr);
    gst_object_unref(bus);
    return S_OK;
}

int CXCapGraph::AddDevice()
{
    if (!m_device || !gst_bin_add(GST_BIN(m_graph), m_device)) {
        Fail(QCoreApplication::translate("CXCapGraph", "Try to connect capture device failed."));
        return E_FAIL;
    }
    m_graphReady = 1;
    return S_OK;
}

int CXCapGraph::InitGraph()
{
    if (FAILED(InitPipeline()))
        return E_FAIL;
    GstElement* filter = nullptr;
    if (FAILED(GetSpecCapDevice(&filter, m_deviceName))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Try to find capture device failed."));
        return E_FAIL;
    }
    return AddDevice();
}

int CXCapGraph::InitGraphForBoundDevice()
{
    if (FAILED(InitPipeline()))
        return E_FAIL;
    return AddDevice();
}

void CXCapGraph::EnumFormats()
{
    m_formats.clear();
    if (!m_boundDevice)
        return;
    GstCaps* caps = gst_device_get_caps(m_boundDevice);
    m_formats = NormaliseCaps(caps);
    if (caps)
        gst_caps_unref(caps);
    if (!m_hasCurrentFormat && !m_formats.empty()) {
        // A camera starts in its first mode.
        m_currentFormat = m_formats.front();
        m_hasCurrentFormat = true;
    }
}

bool CXCapGraph::ChooseDeviceFormat(bool preview)
{
    gst_caps_replace(&m_sourceCaps, nullptr);
    if (m_formats.empty())
        return false;
    if (m_selectedFormat < 0 || m_selectedFormat >= int(m_formats.size())) {
        qCWarning(lcCapture) << "format index" << m_selectedFormat << "outside the list; taking 0";
        m_selectedFormat = 0;
    }
    const QString wanted = preview && IsMjpgCamera() ? QStringLiteral("MJPG")
                                                     : m_formats[std::size_t(m_selectedFormat)].fourcc;
    auto find = [&]() -> const CaptureFormat* {
        for (const CaptureFormat& f : m_formats)
            if (f.fourcc == wanted && f.width == m_width && f.height == m_height)
                return &f;
        return nullptr;
    };
    const CaptureFormat* match = find();
    if (!match && preview) {
        m_height = kFallbackHeight;
        match = find();
    }
    if (match) {
        m_currentFormat = *match;
        m_hasCurrentFormat = true;
        qCDebug(lcCapture, "%d, %d", int(match->width), int(match->height));
    }
    // Without a match the camera keeps the format it had.
    if (!m_hasCurrentFormat) {
        m_currentFormat = m_formats.front();
        m_hasCurrentFormat = true;
    }
    m_sourceCaps = CapsForFormat(m_currentFormat);
    if (preview) {
        // The size the camera really delivers wins.
        m_width = m_currentFormat.width;
        m_height = m_currentFormat.height;
    }
    return true;
}

GstElement* CXCapGraph::AddSourceChain()
{
    // The decoder and the converter stand in for the intelligent connect of
    // the camera's pin: whatever the camera sends becomes 24-bit BGR.
    GstElement* filter = Make("capsfilter", "Cap format");
    GstElement* decoder
        = m_currentFormat.mediaType == QLatin1String("image/jpeg") ? Make("jpegdec", "Decoder") : nullptr;
    GstElement* convert = Make("videoconvert", "Converter");
    GstElement* bgr = Make("capsfilter", "BGR");
    const bool needDecoder = m_currentFormat.mediaType == QLatin1String("image/jpeg");
    if (!filter || !convert || !bgr || (needDecoder && !decoder)) {
        for (GstElement* e : { filter, decoder, convert, bgr })
            if (e)
                gst_object_unref(gst_object_ref_sink(e));
        return nullptr;
    }
    g_object_set(filter, "caps", m_sourceCaps, nullptr);
    GstCaps* bgrCaps = gst_caps_from_string("video/x-raw, format=(string)BGR");
    g_object_set(bgr, "caps", bgrCaps, nullptr);
    gst_caps_unref(bgrCaps);
    gst_bin_add_many(GST_BIN(m_graph), filter, convert, bgr, nullptr);
    if (decoder)
        gst_bin_add(GST_BIN(m_graph), decoder);
    const bool linked = gst_element_link(m_device, filter)
        && (decoder ? gst_element_link_many(filter, decoder, convert, nullptr)
                    : gst_element_link(filter, convert))
        && gst_element_link(convert, bgr);
    m_firstAfterDevice = filter;
    return linked ? bgr : nullptr;
}

GstElement* CXCapGraph::MakeRenderer()
{
    GstElement* sink = Make("appsink", "VM renderer");
    if (!sink)
        return nullptr;
    // Drop at the display, never upstream: the newest frame is all it needs.
    GstCaps* caps = gst_caps_from_string("video/x-raw, format=(string)BGR");
    g_object_set(sink, "caps", caps, "max-buffers", 1u, "drop", TRUE, "sync", FALSE, "qos", FALSE,
        "emit-signals", FALSE, nullptr);
    gst_caps_unref(caps);
    GstAppSinkCallbacks callbacks {};
    callbacks.new_sample = &CXCapGraph::RendererSample;
    gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
    return sink;
}

void CXCapGraph::BuildPreviewGraph()
{
    if (m_formats.empty())
        return;
    // A build over a built graph would clash by name; start clean.
    if (m_processElement || m_tee || m_renderer)
        DestroyGraph();

    // 1. Tee, grabber, processing element.
    if (!(m_tee = Make("tee", "Smart Tee"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create smart tee"));
        return;
    }
    gst_object_ref_sink(m_tee);
    if (!(m_grabber = Make("capsfilter", "Grabber"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create SampleGrabber (is qedit.dll registered?)"));
        return;
    }
    gst_object_ref_sink(m_grabber);
    if (!(m_processElement = CreateCamProcessElement(m_processState, "VKT CamProcess"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create CamProcess (is OCULIXPro.dll registered?)"));
        return;
    }
    gst_object_ref_sink(m_processElement);
    m_process = m_processState.get();

    // 2. The camera's format.
    ChooseDeviceFormat(true);

    // 3-5.
    if (!Add(m_processElement)) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not put CamProcess filter in graph"));
        return;
    }
    GstPad* grabberOut = gst_element_get_static_pad(m_grabber, "src");
    if (!grabberOut) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not get sample grabber filter"));
        return;
    }
    GstCaps* mediaType = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGR", "width",
        G_TYPE_INT, int(m_width.load()), "height", G_TYPE_INT, int(m_height.load()), nullptr);
    if (!mediaType) {
        gst_object_unref(grabberOut);
        Fail(QCoreApplication::translate("CXCapGraph", "Could not set media type"));
        return;
    }
    g_object_set(m_grabber, "caps", mediaType, nullptr);
    gst_caps_unref(mediaType);
    m_grabberWidth = m_width;
    m_grabberHeight = m_height;

    // 6-7. Renderer, grabber and tee into the pipeline.
    if (!(m_renderer = MakeRenderer())) {
        gst_object_unref(grabberOut);
        Fail(QCoreApplication::translate("CXCapGraph", "Unable to make a VM7 renderer"));
        return;
    }
    gst_object_ref_sink(m_renderer);
    if (!Add(m_renderer)) {
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    if (!Add(m_grabber)) {
        gst_object_unref(grabberOut);
        Fail(QCoreApplication::translate("CXCapGraph", "Could not put sample grabber in graph"));
        return;
    }
    if (!Add(m_tee)) {
        gst_object_unref(grabberOut);
        Fail(QCoreApplication::translate("CXCapGraph", "Could not put smart tee in graph"));
        return;
    }

    // 8-9. Camera to tee; as with the platform's connect, a failure here is
    // not reported at once (the running pipeline reports it).
    GstPad* capturePin = m_device ? gst_element_get_static_pad(m_device, "src") : nullptr;
    if (!capturePin) {
        gst_object_unref(grabberOut);
        Fail(QCoreApplication::translate("CXCapGraph", "Find capture device failed."));
        return;
    }
    gst_object_unref(capturePin);
    GstElement* last = AddSourceChain();
    if (!last || !gst_element_link(last, m_tee))
        qCWarning(lcCapture) << "the camera could not be connected to the tee";

    // 10-13.
    GstPad* previewPin = gst_element_request_pad_simple(m_tee, "src_%u");
    if (!previewPin) {
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't get smarttee preview Pin"));
        return;
    }
    GstPad* processIn = gst_element_get_static_pad(m_processElement, "sink");
    if (!processIn) {
        gst_object_unref(previewPin);
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't find OCULIXPro filter's input pin"));
        return;
    }
    const bool teeLinked = GST_PAD_LINK_SUCCESSFUL(gst_pad_link(previewPin, processIn));
    gst_object_unref(processIn);
    gst_object_unref(previewPin);
    if (!teeLinked) {
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't connect OCULIXPro filter to capture filter"));
        return;
    }
    if (!gst_element_link(m_processElement, m_grabber)) {
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't connect sample grabber filter to OCULIXPro filter"));
        return;
    }
    if (!gst_element_link(m_grabber, m_renderer)) {
        gst_object_unref(grabberOut);
        Fail(QStringLiteral("Can't connect vm render to smarttee filter"));
        return;
    }

    // 14. Keep every frame that passes the grabber.
    gst_pad_add_probe(grabberOut, GST_PAD_PROBE_TYPE_BUFFER, &CXCapGraph::GrabberProbe, this, nullptr);
    gst_object_unref(grabberOut);
}

void CXCapGraph::BuildRecordGraph()
{
    if (m_formats.empty())
        return;
    if (m_processElement || m_tee || m_renderer)
        DestroyGraph();

    // 1-3. Processing element.
    if (!(m_processElement = CreateCamProcessElement(m_processState, "VKT CamProcess"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create CamProcess (is CamProcess.dll registered?)"));
        return;
    }
    gst_object_ref_sink(m_processElement);
    m_process = m_processState.get();
    ChooseDeviceFormat(false);
    if (!Add(m_processElement)) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not put OculixPro filter in graph"));
        return;
    }

    // 4. Camera to the processing element.
    GstPad* capturePin = m_device ? gst_element_get_static_pad(m_device, "src") : nullptr;
    if (!capturePin) {
        Fail(QCoreApplication::translate("CXCapGraph", "Find capture device failed."));
        return;
    }
    gst_object_unref(capturePin);
    GstPad* processIn = gst_element_get_static_pad(m_processElement, "sink");
    if (!processIn) {
        Fail(QStringLiteral("Can't find OculixPro filter's input pin"));
        return;
    }
    gst_object_unref(processIn);
    GstElement* last = AddSourceChain();
    if (!last || !gst_element_link(last, m_processElement)) {
        Fail(QStringLiteral("Can't connect OculixPro filter to capture filter"));
        return;
    }

    // 5-7. Tee after the processing element.
    if (!(m_tee = Make("tee", "Smart Tee"))) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create smart tee"));
        return;
    }
    gst_object_ref_sink(m_tee);
    if (!Add(m_tee)) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not put smart tee in graph"));
        return;
    }
    if (!gst_element_link(m_processElement, m_tee)) {
        Fail(QStringLiteral("Can't connect smart tee filter to camprocess filter"));
        return;
    }
    GstPad* capturePad = gst_element_request_pad_simple(m_tee, "src_%u");
    if (!capturePad) {
        Fail(QStringLiteral("Can't get smart tee filter's capture pin"));
        return;
    }
    GstPad* previewPad = gst_element_request_pad_simple(m_tee, "src_%u");
    if (!previewPad) {
        gst_object_unref(capturePad);
        Fail(QStringLiteral("Can't get smart tee filter's preview pin"));
        return;
    }
    auto releasePads = [&] {
        gst_object_unref(capturePad);
        gst_object_unref(previewPad);
    };

    // 8-9. The compressor, fed at a fixed frame rate as the AVI file needs.
    GstElement* queue = Make("queue", "Capture queue");
    GstElement* rate = Make("videorate", "Frame rate");
    GstElement* rateCaps = Make("capsfilter", "Fixed rate");
    GstElement* encoder = Make("jpegenc", "Compressor");
    if (!queue || !rate || !rateCaps || !encoder || !Add(queue) || !Add(rate) || !Add(rateCaps)
        || !Add(encoder)) {
        releasePads();
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create compressor "));
        return;
    }
    int fpsNum = m_currentFormat.fpsNum;
    int fpsDen = m_currentFormat.fpsDen;
    if (fpsNum <= 0 || fpsDen <= 0) {
        fpsNum = 30;
        fpsDen = 1;
    }
    GstCaps* fixed
        = gst_caps_new_simple("video/x-raw", "framerate", GST_TYPE_FRACTION, fpsNum, fpsDen, nullptr);
    g_object_set(rateCaps, "caps", fixed, nullptr);
    gst_caps_unref(fixed);
    g_object_set(queue, "max-size-buffers", 30u, "max-size-bytes", 0u, "max-size-time", guint64(0), nullptr);
    if (GstPad* in = gst_element_get_static_pad(encoder, "sink"))
        gst_object_unref(in);
    else
        Fail(QStringLiteral("Can't get cmp pin in"));
    GstPad* queueIn = gst_element_get_static_pad(queue, "sink");
    const bool encoderLinked = GST_PAD_LINK_SUCCESSFUL(gst_pad_link(capturePad, queueIn))
        && gst_element_link_many(queue, rate, rateCaps, encoder, nullptr);
    gst_object_unref(queueIn);
    if (!encoderLinked) {
        releasePads();
        Fail(QStringLiteral("Can't connect OculixPro to capture filter"));
        return;
    }

    // 10-11. AVI multiplexer.
    GstElement* mux = Make("avimux", "AVI Mux");
    if (!mux || !Add(mux)) {
        releasePads();
        Fail(QCoreApplication::translate("CXCapGraph", "Could not create AVI Mux Filter (is qcap.dll registered?)"));
        return;
    }
    if (!gst_element_link(encoder, mux)) {
        releasePads();
        Fail(QStringLiteral("Can't connect compressor to pMux"));
        return;
    }
    if (GstPad* out = gst_element_get_static_pad(mux, "src"))
        gst_object_unref(out);
    else
        Fail(QStringLiteral("Can't get MUX pin out"));

    // 12-13. File writer.
    GstElement* writer = Make("filesink", "File Writer");
    if (!writer) {
        releasePads();
        Fail(QCoreApplication::translate("CXCapGraph", "Unable to make a FileWriter"));
        return;
    }
    if (!Add(writer)) {
        releasePads();
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    if (!g_object_class_find_property(G_OBJECT_GET_CLASS(writer), "location")) {
        releasePads();
        Fail(QCoreApplication::translate("CXCapGraph", "Unable to get IFileSinkFilter"));
        return;
    }
    m_fileSink = writer;
    g_object_set(writer, "location", QFile::encodeName(m_recordFile).constData(), "async", FALSE, nullptr);
    // Every chunk goes to the kernel at once: a program killed outright then
    // loses none of what the multiplexer has written, only what was queued.
    gst_util_set_object_arg(G_OBJECT(writer), "buffer-mode", "unbuffered");
    {
        // Find out now, not when the stream starts, whether the file can be made.
        QFile probe(m_recordFile);
        if (!probe.open(QIODevice::WriteOnly)) {
            releasePads();
            Fail(QStringLiteral("m_pFileSink->SetFileName failed"), probe.errorString());
            return;
        }
    }
    if (GstPad* in = gst_element_get_static_pad(writer, "sink"))
        gst_object_unref(in);
    else
        Fail(QStringLiteral("Can't get FileWriter pin out"));
    if (!gst_element_link(mux, writer)) {
        releasePads();
        Fail(QStringLiteral("Can't connect pMux to pFileWriter"));
        return;
    }

    // 14. The preview branch.
    GstElement* previewQueue = Make("queue", "Preview queue");
    if (!(m_renderer = MakeRenderer()) || !previewQueue) {
        if (previewQueue)
            gst_object_unref(gst_object_ref_sink(previewQueue));
        releasePads();
        Fail(QCoreApplication::translate("CXCapGraph", "Unable to make a VM7 renderer"));
        return;
    }
    gst_object_ref_sink(m_renderer);
    // The display may fall behind; the recording must not wait for it.
    g_object_set(previewQueue, "leaky", 2 /* downstream */, "max-size-buffers", 2u, "max-size-bytes", 0u,
        "max-size-time", guint64(0), nullptr);
    if (!Add(previewQueue) || !Add(m_renderer)) {
        releasePads();
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    GstPad* previewIn = gst_element_get_static_pad(previewQueue, "sink");
    const bool previewLinked = GST_PAD_LINK_SUCCESSFUL(gst_pad_link(previewPad, previewIn))
        && gst_element_link(previewQueue, m_renderer);
    gst_object_unref(previewIn);
    releasePads();
    if (!previewLinked)
        Fail(QStringLiteral("Can't render preview pin"));
}

int CXCapGraph::RunGraph()
{
    if (!m_graph)
        return E_FAIL;
    {
        std::lock_guard lock(m_busMutex);
        m_eosSeen = false;
        m_errorSeen = false;
    }
    m_handlingError = false;
    m_processState->GetStateB(&m_framesAtRun);
    GstState before = GST_STATE_NULL;
    gst_element_get_state(m_graph, &before, nullptr, 0);
    if (gst_element_set_state(m_graph, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        return E_FAIL;
    // A camera that starts (not one resuming from a pause) gets back what the
    // user set for it last time.
    if (before == GST_STATE_NULL && m_device) {
        CCameraControls controls(m_device, m_boundDevice);
        CCameraControlStore().ApplyTo(CCameraControlStore::CameraKey(m_deviceName, m_boundDevice), controls);
    }
    return S_OK;
}

int CXCapGraph::PauseGraph()
{
    if (!m_graph)
        return E_FAIL;
    return gst_element_set_state(m_graph, GST_STATE_PAUSED) == GST_STATE_CHANGE_FAILURE ? E_FAIL : S_OK;
}

bool CXCapGraph::FinishRecording()
{
    // End of stream goes in right after the camera: the frames already on
    // their way are written, then the multiplexer writes its index.
    if (!m_graph || !m_fileSink || !m_firstAfterDevice)
        return false;
    GstState state = GST_STATE_NULL;
    gst_element_get_state(m_graph, &state, nullptr, 0);
    if (state < GST_STATE_PAUSED)
        return false;
    // Sinks report the end of stream only while playing.
    gst_element_set_state(m_graph, GST_STATE_PLAYING);
    // A camera that failed has already sent its end of stream; then this one
    // is refused and the wait below ends at once.
    GstPad* pad = gst_element_get_static_pad(m_firstAfterDevice, "sink");
    gst_pad_send_event(pad, gst_event_new_eos());
    gst_object_unref(pad);
    std::unique_lock lock(m_busMutex);
    const bool done = m_busCv.wait_for(lock, kEosTimeout, [this] { return m_eosSeen; });
    if (!done)
        qCWarning(lcCapture) << "the recording did not finish in time";
    return done;
}

void CXCapGraph::SetNull()
{
    if (m_graph)
        gst_element_set_state(m_graph, GST_STATE_NULL);
}

int CXCapGraph::StopGraph()
{
    if (!m_graph)
        return E_FAIL;
    if (IsRecordGraph())
        FinishRecording();
    return gst_element_set_state(m_graph, GST_STATE_NULL) == GST_STATE_CHANGE_FAILURE ? E_FAIL : S_OK;
}

// ---------------------------------------------------------------- video window

void CXCapGraph::EnsureVideoWidget(QWidget* owner)
{
    if (!m_videoWidget)
        m_videoWidget = new CVideoWidget(m_mailbox, owner);
    else if (m_videoWidget->parentWidget() != owner)
        m_videoWidget->setParent(owner);
}

CVideoWidget* CXCapGraph::VideoWidget() const
{
    return m_videoWidget.data();
}

int CXCapGraph::SetParentWnd(QWidget* owner, int x, int y, int width, int height)
{
    qCDebug(lcCapture, "SetParentWnd:%d, %d, %d, %d", x, y, width, height);
    m_owner = owner;
    if (!m_renderer) {
        Fail(QCoreApplication::translate("CXCapGraph", "Could not get video window interface"));
        return E_FAIL;
    }
    // Without a widget application (tools, benchmarks) there is nothing to
    // show the frames in; the grabber still keeps them.
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return S_OK;
    EnsureVideoWidget(owner);
    m_videoWidget->setGeometry(x, y, width, height);
    m_videoWidget->show();
    m_videoWidget->raise();
    return S_OK;
}

int CXCapGraph::ShowVideoWindow(int on)
{
    if (!m_graph)
        return E_POINTER;
    if (m_videoWidget)
        m_videoWidget->setVisible(on != 0);
    return S_OK;
}

int CXCapGraph::ToggleFullScreen(QWidget* dialog)
{
    if (!m_videoWidget)
        return E_FAIL;
    m_fullScreen = m_fullScreen ? 0 : -1;
    if (m_fullScreen) {
        if (!dialog) {
            if (!m_ownFullScreen)
                m_ownFullScreen = new CDlgFullScreen(this);
            dialog = m_ownFullScreen;
        }
        m_fullScreenDialog = dialog;
        m_savedWidth = m_videoWidget->width();
        m_savedHeight = m_videoWidget->height();
        m_videoWidget->setParent(dialog);
        dialog->showFullScreen();
        const QScreen* screen = dialog->screen() ? dialog->screen() : QGuiApplication::primaryScreen();
        const QSize area = screen ? screen->geometry().size() : dialog->size();
        const float videoW = float(std::max(1u, m_width.load()));
        const float videoH = float(std::max(1u, m_height.load()));
        const float sx = float(area.width()) / videoW;
        const float sy = float(area.height()) / videoH;
        int x = 0, y = 0, w = 0, h = 0;
        if (sx > sy) {
            w = int(videoW * sy);
            h = area.height();
            x = int(std::fabs((float(area.width()) - videoW * sy) * 0.5f));
        } else {
            w = area.width();
            h = int(videoH * sx);
            y = int(std::fabs((float(area.height()) - videoH * sx) * 0.5f));
        }
        m_videoWidget->setGeometry(x, y, w, h);
        m_videoWidget->show();
    } else {
        if (!dialog)
            dialog = m_fullScreenDialog;
        if (dialog)
            dialog->hide();
        m_videoWidget->hide();
        m_videoWidget->setParent(m_owner);
        m_videoWidget->setGeometry(0, 0, m_savedWidth, m_savedHeight);
        m_videoWidget->show();
        m_videoWidget->raise();
    }
    return S_OK;
}

int CXCapGraph::GetVideoSize(unsigned* width, unsigned* height) const
{
    if (!m_deviceBound)
        return E_POINTER;
    if (width)
        *width = m_width;
    if (height)
        *height = m_height;
    return S_OK;
}

int CXCapGraph::ChangeResolution(unsigned width, unsigned height)
{
    if (!m_device)
        return E_POINTER;
    DestroyGraph();
    m_width = width;
    m_height = height;
    BuildPreviewGraph();
    SetParentWnd(m_owner, 0, 0, int(width), int(height));
    return RunGraph();
}

int CXCapGraph::ShowFormatDialog(const QString& deviceName, QWidget* parent)
{
    if (!m_graph)
        return E_FAIL;
    if (deviceName != m_deviceName) {
        StopGraph();
        if (m_device) {
            gst_element_set_state(m_device, GST_STATE_NULL);
            gst_bin_remove(GST_BIN(m_graph), m_device);
        }
        if (FAILED(BindDeviceByName(deviceName)) || !m_device || !gst_bin_add(GST_BIN(m_graph), m_device))
            return E_FAIL;
        EnumFormats();
    }
    if (m_formats.empty())
        return E_FAIL;
    CFormatDlg dialog(m_formats, m_hasCurrentFormat ? m_currentFormat : m_formats.front(), parent);
    dialog.setWindowTitle(QGuiApplication::applicationDisplayName());
    if (dialog.exec() == QDialog::Accepted && dialog.SelectedIndex() >= 0) {
        m_selectedFormat = dialog.SelectedIndex();
        m_currentFormat = m_formats[std::size_t(m_selectedFormat)];
        m_hasCurrentFormat = true;
    }
    // The camera's format as it stands now gives the size.
    m_width = m_currentFormat.width;
    m_height = m_currentFormat.height;
    return S_OK;
}

int CXCapGraph::ShowDeviceProperties()
{
    if (!m_device)
        return E_FAIL;
    CDevicePropertiesDlg dialog(
        m_device, m_boundDevice, CCameraControlStore::CameraKey(m_deviceName, m_boundDevice), m_owner);
    dialog.setWindowTitle(QCoreApplication::translate("CXCapGraph", "%1 Properties").arg(m_deviceName));
    dialog.exec();
    return S_OK;
}

int CXCapGraph::ShowProcessProperties()
{
    if (!m_process)
        return E_FAIL;
    CProcessPropertiesDlg dialog(m_process, m_owner);
    dialog.exec();
    return S_OK;
}

// ---------------------------------------------------------------- names

void CXCapGraph::SetDeviceName(const QString& name)
{
    m_deviceName = name.left(kMaxNameChars);
}

void CXCapGraph::GetDeviceName(QString* name) const
{
    if (name)
        *name = m_deviceName;
}

void CXCapGraph::SetRecordFileName(const QString& path)
{
    m_recordFile = path.left(kMaxNameChars);
}

// ---------------------------------------------------------------- teardown

void CXCapGraph::RemoveDownstream()
{
    if (!m_graph)
        return;
    GstIterator* it = gst_bin_iterate_elements(GST_BIN(m_graph));
    std::vector<GstElement*> doomed;
    GValue item = G_VALUE_INIT;
    bool done = false;
    while (!done) {
        switch (gst_iterator_next(it, &item)) {
        case GST_ITERATOR_OK: {
            auto* e = GST_ELEMENT(g_value_get_object(&item));
            if (e != m_device)
                doomed.push_back(GST_ELEMENT(gst_object_ref(e)));
            g_value_reset(&item);
            break;
        }
        case GST_ITERATOR_RESYNC:
            for (GstElement* e : doomed)
                gst_object_unref(e);
            doomed.clear();
            gst_iterator_resync(it);
            break;
        default:
            done = true;
        }
    }
    g_value_unset(&item);
    gst_iterator_free(it);
    for (GstElement* e : doomed) {
        gst_element_set_state(e, GST_STATE_NULL);
        gst_bin_remove(GST_BIN(m_graph), e);
        gst_object_unref(e);
    }
}

void CXCapGraph::ClearLastFrame()
{
    std::lock_guard lock(m_frameMutex);
    if (m_lastBuffer)
        gst_buffer_unref(m_lastBuffer);
    m_lastBuffer = nullptr;
}

void CXCapGraph::DestroyGraph()
{
    if (m_videoWidget)
        m_videoWidget->hide();
    if (m_graph) {
        GstState state = GST_STATE_NULL;
        gst_element_get_state(m_graph, &state, nullptr, 0);
        if (state != GST_STATE_NULL)
            StopGraph();
    }
    RemoveDownstream();
    for (GstElement** e : { &m_processElement, &m_grabber, &m_tee, &m_renderer }) {
        if (*e)
            gst_object_unref(*e);
        *e = nullptr;
    }
    m_process = nullptr;
    m_fileSink = nullptr;
    m_firstAfterDevice = nullptr;
    ClearLastFrame();
    m_mailbox->Clear();
}

void CXCapGraph::ReleaseDeviceList()
{
    for (GstDevice* d : m_devices)
        gst_object_unref(d);
    m_devices.clear();
    m_deviceNames.clear();
    m_deviceCount = 0;
}

void CXCapGraph::ReleaseAll()
{
    if (m_graph) {
        StopGraph();
        if (m_videoWidget)
            m_videoWidget->hide();
        DestroyGraph();
        if (m_device)
            gst_bin_remove(GST_BIN(m_graph), m_device);
        GstBus* bus = gst_element_get_bus(m_graph);
        gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
        gst_object_unref(bus);
        gst_object_unref(m_graph);
        m_graph = nullptr;
    }
    ReleaseDeviceList();
    if (m_device) {
        gst_element_set_state(m_device, GST_STATE_NULL);
        gst_object_unref(m_device);
        m_device = nullptr;
    }
    if (m_boundDevice) {
        gst_object_unref(m_boundDevice);
        m_boundDevice = nullptr;
    }
    m_deviceBound = false;
    m_graphReady = 0;
    m_process = nullptr;
    ClearLastFrame();
    m_mailbox->Clear();
}

// ---------------------------------------------------------------- processing

#define OCULIX_FORWARD(call)                                                                                 \
    do {                                                                                                     \
        if (!m_process)                                                                                      \
            return E_FAIL;                                                                                   \
        return m_process->call;                                                                              \
    } while (0)

int CXCapGraph::SetProcessEnable(int on)
{
    OCULIX_FORWARD(SetProcessEnable(on));
}
int CXCapGraph::SetFlipVertical(int on)
{
    OCULIX_FORWARD(SetFlipVertical(on));
}
int CXCapGraph::SetFlipHorizontal(int on)
{
    OCULIX_FORWARD(SetFlipHorizontal(on));
}
int CXCapGraph::SetGray(int on)
{
    OCULIX_FORWARD(SetGray(on));
}
int CXCapGraph::SetNegative(int on)
{
    OCULIX_FORWARD(SetNegative(on));
}
int CXCapGraph::SetBinary(int on, int level)
{
    OCULIX_FORWARD(SetBinary(on, level));
}
int CXCapGraph::SetEmboss(int on)
{
    OCULIX_FORWARD(SetEmboss(on));
}
int CXCapGraph::SetSharpen(int on)
{
    OCULIX_FORWARD(SetSharpen(on));
}
int CXCapGraph::SetRgbGain(int on, int red, int green, int blue)
{
    OCULIX_FORWARD(SetRgbGain(on, red, green, blue));
}
int CXCapGraph::SetOverlay(int on, uchar* const* overlayPointer)
{
    if (!m_process)
        return E_FAIL;
    m_processState->SetOverlaySize(m_width, m_height);
    return m_process->SetOverlay(on, overlayPointer);
}
int CXCapGraph::GetProcessEnable(int* on)
{
    OCULIX_FORWARD(GetProcessEnable(on));
}
int CXCapGraph::GetFlipVertical(int* on)
{
    OCULIX_FORWARD(GetFlipVertical(on));
}
int CXCapGraph::GetFlipHorizontal(int* on)
{
    OCULIX_FORWARD(GetFlipHorizontal(on));
}
int CXCapGraph::GetGray(int* on)
{
    OCULIX_FORWARD(GetGray(on));
}
int CXCapGraph::GetNegative(int* on)
{
    OCULIX_FORWARD(GetNegative(on));
}
int CXCapGraph::GetBinary(int* on, int* level)
{
    OCULIX_FORWARD(GetBinary(on, level));
}
int CXCapGraph::GetEmboss(int* on)
{
    OCULIX_FORWARD(GetEmboss(on));
}
int CXCapGraph::GetSharpen(int* on)
{
    OCULIX_FORWARD(GetSharpen(on));
}
int CXCapGraph::GetStateA(int* width, int* height)
{
    OCULIX_FORWARD(GetStateA(width, height));
}
int CXCapGraph::GetRgbGain(int* on, int* red, int* green, int* blue)
{
    OCULIX_FORWARD(GetRgbGain(on, red, green, blue));
}
int CXCapGraph::GetStateB(int* frames)
{
    OCULIX_FORWARD(GetStateB(frames));
}

#undef OCULIX_FORWARD

void CXCapGraph::WaitOverlayUnused(const uchar* buffer) const
{
    m_processState->WaitOverlayUnused(buffer);
}

// ---------------------------------------------------------------- grabber

GstPadProbeReturn CXCapGraph::GrabberProbe(GstPad*, GstPadProbeInfo* info, gpointer self)
{
    auto* graph = static_cast<CXCapGraph*>(self);
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    std::lock_guard lock(graph->m_frameMutex);
    gst_buffer_replace(&graph->m_lastBuffer, buffer);
    return GST_PAD_PROBE_OK;
}

long CXCapGraph::GetCurrentBuffer(long* size, uchar* buffer)
{
    if (!m_grabber || !size)
        return E_POINTER;
    const unsigned width = m_grabberWidth;
    const unsigned height = m_grabberHeight;
    const long needed = long(width) * long(height) * 3;
    if (!buffer) {
        *size = needed;
        return S_OK;
    }
    if (*size < needed)
        return E_INVALIDARG;
    GstBuffer* last = nullptr;
    {
        std::lock_guard lock(m_frameMutex);
        if (m_lastBuffer)
            last = gst_buffer_ref(m_lastBuffer);
    }
    if (!last)
        return E_FAIL;
    GstVideoInfo info;
    gst_video_info_set_format(&info, GST_VIDEO_FORMAT_BGR, width, height);
    GstVideoFrame frame;
    if (!gst_video_frame_map(&frame, &info, last, GST_MAP_READ)) {
        gst_buffer_unref(last);
        return E_FAIL;
    }
    const auto* src = static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
    const std::ptrdiff_t stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    const std::size_t row = std::size_t(width) * 3;
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(buffer + std::size_t(y) * row, src + std::ptrdiff_t(height - 1 - y) * stride, row);
    gst_video_frame_unmap(&frame);
    gst_buffer_unref(last);
    *size = needed;
    return S_OK;
}

GstFlowReturn CXCapGraph::RendererSample(GstAppSink* sink, gpointer self)
{
    GstSample* sample = gst_app_sink_pull_sample(sink);
    if (!sample)
        return GST_FLOW_OK;
    static_cast<CXCapGraph*>(self)->m_mailbox->Post(sample);
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}

// ---------------------------------------------------------------- bus

GstBusSyncReply CXCapGraph::BusSync(GstBus*, GstMessage* message, gpointer self)
{
    auto* graph = static_cast<CXCapGraph*>(self);
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_EOS: {
        std::lock_guard lock(graph->m_busMutex);
        graph->m_eosSeen = true;
        graph->m_busCv.notify_all();
        break;
    }
    case GST_MESSAGE_ERROR: {
        GError* error = nullptr;
        gchar* debug = nullptr;
        gst_message_parse_error(message, &error, &debug);
        const QString text = QString::fromUtf8(error ? error->message : "");
        const QString details = QString::fromUtf8(debug ? debug : "");
        g_clear_error(&error);
        g_free(debug);
        // Which part failed decides the message; name it by its role.
        QString source = QStringLiteral("other");
        if (graph->m_device && ElementIsOrContains(graph->m_device, GST_MESSAGE_SRC(message)))
            source = QStringLiteral("camera");
        else if (graph->m_fileSink && ElementIsOrContains(graph->m_fileSink, GST_MESSAGE_SRC(message)))
            source = QStringLiteral("file");
        {
            std::lock_guard lock(graph->m_busMutex);
            graph->m_errorSeen = true;
            graph->m_busCv.notify_all();
        }
        QMetaObject::invokeMethod(
            graph->m_bridge.get(),
            [graph, text, details, source] { graph->OnStreamError(text, details, source); },
            Qt::QueuedConnection);
        break;
    }
    case GST_MESSAGE_WARNING: {
        GError* error = nullptr;
        gst_message_parse_warning(message, &error, nullptr);
        qCDebug(lcCapture) << "warning:" << (error ? error->message : "");
        g_clear_error(&error);
        break;
    }
    default:
        break;
    }
    return GST_BUS_DROP;
}

void CXCapGraph::OnStreamError(const QString& text, const QString& debug, const QString& source)
{
    if (m_handlingError || !m_graph)
        return;
    GstState state = GST_STATE_NULL;
    gst_element_get_state(m_graph, &state, nullptr, 0);
    if (state == GST_STATE_NULL)
        return; // already taken down; a late echo of the same failure
    m_handlingError = true;
    // The pipeline stays up after an error from the camera: take it down,
    // finishing the record file so the frames so far stay playable.
    if (IsRecordGraph() && source != QLatin1String("file"))
        FinishRecording();
    SetNull();
    int frames = 0;
    m_processState->GetStateB(&frames);
    const bool started = frames != m_framesAtRun;
    const QString message = source == QLatin1String("camera")
        ? (started ? kCameraLostMessage : kCameraStartMessage)
        : source == QLatin1String("file") ? kRecordWriteMessage
                                          : kStreamErrorMessage;
    Fail(message, debug.isEmpty() ? text : text + QLatin1Char('\n') + debug);
    if (m_errorHandler)
        m_errorHandler(message);
}

void CXCapGraph::SetStreamErrorHandler(std::function<void(const QString& message)> handler)
{
    m_errorHandler = std::move(handler);
}

// ---------------------------------------------------------------- devices

std::vector<GstDevice*> CXCapGraph::ListDevices(bool* monitorFailed) const
{
    std::vector<GstDevice*> out;
    *monitorFailed = false;
    GstDeviceMonitor* monitor = EnsureGStreamer() ? gst_device_monitor_new() : nullptr;
    if (!monitor) {
        *monitorFailed = true;
        return out;
    }
    gst_device_monitor_add_filter(monitor, "Video/Source", nullptr);
    // A desktop's PipeWire provider hides the V4L2 one; cameras are opened
    // through V4L2, so ask every provider and keep V4L2's devices.
    gst_device_monitor_set_show_all_devices(monitor, TRUE);
    GList* devices = gst_device_monitor_get_devices(monitor);
    std::vector<GstDevice*> simulated;
    for (GList* l = devices; l; l = l->next) {
        auto* d = GST_DEVICE(l->data);
        if (!IsCaptureDevice(d))
            continue;
        (IsSimDevice(d) ? simulated : out).push_back(GST_DEVICE(gst_object_ref(d)));
    }
    g_list_free_full(devices, gst_object_unref);
    gst_object_unref(monitor);
    // Real cameras first, so a demo camera never displaces one as the default.
    out.insert(out.end(), simulated.begin(), simulated.end());
    return out;
}

void CXCapGraph::EnumDevices()
{
    ReleaseDeviceList();
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListDevices(&monitorFailed);
    if (monitorFailed) {
        MessageBox(QCoreApplication::translate("CXCapGraph", "Error Creating Device Enumerator"), kCaption, kErrorFlags);
        return;
    }
    if (devices.empty()) {
        MessageBox(QCoreApplication::translate("CXCapGraph",
                       "Sorry, you have no video capture hardware.\r\n\r\nVideo capture will not function properly."),
            QGuiApplication::applicationDisplayName(), MB_OK | MB_ICONWARNING);
        return;
    }
    for (GstDevice* d : devices) {
        const QString name = DisplayName(d);
        if (m_deviceCount < kMaxDevices && !name.isEmpty() && IsSupportedCamera(name, d)) {
            m_devices.push_back(GST_DEVICE(gst_object_ref(d)));
            m_deviceNames.push_back(name);
            m_deviceCount = int(m_devices.size());
        }
        gst_object_unref(d);
    }
}

QString CXCapGraph::DeviceNameAt(int index) const
{
    return index >= 0 && index < m_deviceNames.size() ? m_deviceNames[index] : QString();
}

int CXCapGraph::Bind(GstDevice* device, GstElement** filter)
{
    GstElement* element = gst_device_create_element(device, "Cap");
    if (!element)
        return E_FAIL;
    gst_object_ref_sink(element);
    if (m_device) {
        if (m_graph && GST_OBJECT_PARENT(m_device) == GST_OBJECT(m_graph)) {
            gst_element_set_state(m_device, GST_STATE_NULL);
            gst_bin_remove(GST_BIN(m_graph), m_device);
        }
        gst_element_set_state(m_device, GST_STATE_NULL);
        gst_object_unref(m_device);
    }
    if (m_boundDevice)
        gst_object_unref(m_boundDevice);
    m_device = element;
    m_boundDevice = GST_DEVICE(gst_object_ref(device));
    m_deviceBound = true;
    m_hasCurrentFormat = false;
    if (filter)
        *filter = element;
    return S_OK;
}

int CXCapGraph::GetSpecCapDevice(GstElement** filter, const QString& name)
{
    if (name.isEmpty())
        return GetDefaultCapDevice(filter);
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListDevices(&monitorFailed);
    if (monitorFailed)
        return S_FALSE; // nothing bound; callers only treat failures as fatal
    int hr = E_FAIL;
    for (GstDevice* d : devices) {
        const QString found = DisplayName(d);
        qCDebug(lcCapture) << "GetSpecCapDevice" << found << name;
        if (FAILED(hr) && found == name && IsSupportedCamera(found, d))
            hr = Bind(d, filter);
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    if (FAILED(hr))
        return GetDefaultCapDevice(filter);
    m_deviceName = name.left(kMaxNameChars);
    const QSize size = ModelDefaultSize(name, true);
    m_width = unsigned(size.width());
    m_height = unsigned(size.height());
    return hr;
}

int CXCapGraph::GetDefaultCapDevice(GstElement** filter)
{
    qCDebug(lcCapture) << "Into function GetDefaultCapDevice";
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListDevices(&monitorFailed);
    int hr = E_FAIL;
    QString bound;
    for (GstDevice* d : devices) {
        const QString name = DisplayName(d);
        qCDebug(lcCapture) << "GetDefaultCapDevice" << name;
        if (FAILED(hr) && IsSupportedCamera(name, d)) {
            hr = Bind(d, filter);
            if (SUCCEEDED(hr))
                bound = name;
        }
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    if (FAILED(hr))
        return hr;
    m_deviceName = bound.left(kMaxNameChars);
    qCDebug(lcCapture) << "BindToObject'Device:" << bound;
    const QSize size = ModelDefaultSize(bound, false);
    m_width = unsigned(size.width());
    m_height = unsigned(size.height());
    return hr;
}

int CXCapGraph::BindDeviceByIndex(int index)
{
    if (index < 0 || index >= m_deviceCount)
        return E_INVALIDARG;
    return Bind(m_devices[std::size_t(index)], nullptr);
}

int CXCapGraph::BindDeviceByName(const QString& name)
{
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListDevices(&monitorFailed);
    int hr = E_FAIL;
    for (GstDevice* d : devices) {
        const QString found = DisplayName(d);
        if (FAILED(hr) && found == name && IsSupportedCamera(found, d)) {
            hr = Bind(d, nullptr);
            if (SUCCEEDED(hr))
                m_deviceName = name.left(kMaxNameChars);
        }
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    return hr;
}

void CXCapGraph::SelectCurrentDevice()
{
    for (int i = 0; i < kMaxDevices && i < m_deviceNames.size(); ++i) {
        if (m_deviceNames[i].isEmpty())
            return;
        if (m_deviceNames[i] == m_deviceName) {
            m_selectedDevice = i;
            return;
        }
    }
}

int CXCapGraph::ChangeDevice(int index, unsigned* width, unsigned* height)
{
    StopGraph();
    DestroyGraph();
    ReleaseAll();
    EnumDevices();
    int hr = BindDeviceByIndex(index);
    if (FAILED(hr))
        return hr;
    m_deviceName = m_deviceNames[index].left(kMaxNameChars);
    m_selectedDevice = index;
    if (FAILED(hr = InitGraphForBoundDevice()))
        return hr;
    EnumFormats();
    unsigned w = 0;
    unsigned h = 0;
    GetVideoSize(&w, &h);
    hr = ChangeResolution(w, h);
    GetVideoSize(width, height);
    return hr;
}
