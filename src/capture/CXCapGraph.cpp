#include "capture/CXCapGraph.h"

#include "capture/CCamProcess.h"
#include "capture/CCameraControlStore.h"
#include "capture/CCameraControls.h"
#include "capture/CFlatFieldStore.h"
#include "capture/CFrameMailbox.h"
#include "capture/CVideoWidget.h"
#include "capture/GstInit.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

#include <QDir>

// The pipeline's life: creation, the device's place in it, run states,
// teardown and the processing element's switches. Building the topologies,
// the grabber and bus, the video window and the devices live beside this
// file (CXCapGraphBuild, CXCapGraphStream, CXCapGraphWindow, CXCapGraphDevices).

namespace {

const QString kCaption = QStringLiteral("Error!");
constexpr unsigned kErrorFlags = MB_OK | MB_TASKMODAL | MB_SETFOREGROUND;

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
        Fail(QStringLiteral("Could not create filter graph"));
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
        Fail(QStringLiteral("Try to connect capture device failed."));
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
        Fail(QStringLiteral("Try to find capture device failed."));
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

// ---------------------------------------------------------------- run states

int CXCapGraph::RunGraph()
{
    if (!m_graph)
        return E_FAIL;
    {
        std::lock_guard lock(m_busMutex);
        m_eosSeen = false;
        m_errorSeen = false;
    }
    {
        std::lock_guard lock(m_frameMutex);
        m_streamFailed = false;
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
    if (before == GST_STATE_NULL && m_useStoredFlatField)
        ApplyStoredFlatField();
    return S_OK;
}

int CXCapGraph::PauseGraph()
{
    if (!m_graph)
        return E_FAIL;
    return gst_element_set_state(m_graph, GST_STATE_PAUSED) == GST_STATE_CHANGE_FAILURE ? E_FAIL : S_OK;
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
int CXCapGraph::SetOperation(ProcessOp op, const ProcessSwitches& values)
{
    OCULIX_FORWARD(SetOperation(op, values));
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
int CXCapGraph::GetOperation(ProcessOp op, ProcessSwitches* values)
{
    OCULIX_FORWARD(GetOperation(op, values));
}
int CXCapGraph::GetStateA(int* width, int* height)
{
    OCULIX_FORWARD(GetStateA(width, height));
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

void CXCapGraph::KeepCleanFrames(bool on)
{
    m_processState->KeepCleanFrames(on);
}

void CXCapGraph::SetFlatField(std::shared_ptr<const FlatField> field)
{
    m_processState->SetFlatField(std::move(field));
}

bool CXCapGraph::ApplyStoredFlatField()
{
    const CFlatFieldStore store;
    auto field = store.Enabled() ? store.Correction(CameraKey(), m_width, m_height) : nullptr;
    const bool found = field != nullptr;
    m_processState->SetFlatField(std::move(field));
    return found;
}

QString CXCapGraph::CameraKey() const
{
    return CCameraControlStore::CameraKey(m_deviceName, m_boundDevice);
}

void CXCapGraph::CaptureBlank(unsigned frames)
{
    m_processState->CaptureBlank(frames);
}

QImage CXCapGraph::CapturedBlank() const
{
    return m_processState->CapturedBlank();
}

void CXCapGraph::KeepHistograms(bool on)
{
    m_processState->KeepHistograms(on);
}

bool CXCapGraph::LastHistogram(FrameHistogram* histogram) const
{
    return m_processState->LastHistogram(histogram);
}

void CXCapGraph::SetFocusPeaking(bool on, QRgb colour)
{
    m_processState->SetFocusPeaking(on, colour);
}

void CXCapGraph::SetCoverage(const QImage& coverage, QRgb colour)
{
    m_processState->SetCoverage(coverage, colour);
}

double CXCapGraph::LastSharpness() const
{
    return m_processState->LastSharpness();
}

QImage CXCapGraph::CleanFrame() const
{
    return m_processState->CleanFrame();
}
