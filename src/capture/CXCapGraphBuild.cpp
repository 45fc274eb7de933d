#include "capture/CCamProcess.h"
#include "capture/CXCapGraph.h"
#include "capture/CamProcessElement.h"
#include "capture/CameraModels.h"
#include "capture/JpegInputElement.h"
#include "platform/DebugLog.h"

#include <QFile>
#include <QScopeGuard>

// The two topologies and the camera format they start from.

void CXCapGraph::EnumFormats()
{
    m_formats.clear();
    if (!m_boundDevice)
        return;
    GstCaps* caps = gst_device_get_caps(m_boundDevice);
    m_formats = NormaliseCaps(caps);
    if (caps)
        gst_caps_unref(caps);
    // A selection made in another device's list means nothing here.
    if (m_selectedFormat >= int(m_formats.size()))
        m_selectedFormat = 0;
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
    // the camera's pin: whatever the camera sends becomes a layout the
    // processing element reads. YUY2 and I420 (from the JPEG decoder) pass
    // the converter untouched; the element makes them BGR on its own pass.
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
    GstCaps* bgrCaps = gst_caps_from_string("video/x-raw, format=(string){ BGR, YUY2, I420 }");
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

bool CXCapGraph::MakeProcessElement(const QString& failure)
{
    if (!(m_processElement = CreateCamProcessElement(m_processState, "VKT CamProcess"))) {
        Fail(failure);
        return false;
    }
    gst_object_ref_sink(m_processElement);
    m_process = m_processState.get();
    return true;
}

bool CXCapGraph::HasCapturePin()
{
    GstPad* capturePin = m_device ? gst_element_get_static_pad(m_device, "src") : nullptr;
    if (!capturePin) {
        Fail(QStringLiteral("Find capture device failed."));
        return false;
    }
    gst_object_unref(capturePin);
    return true;
}

bool CXCapGraph::CanBuild() const
{
    if (m_formats.empty())
        return false;
    // The index is kept inside the list by every path that sets it; one
    // outside it is a caller's mistake, and nothing is built then.
    const bool inList = m_selectedFormat >= 0 && m_selectedFormat < int(m_formats.size());
    Q_ASSERT_X(inList, "CXCapGraph::CanBuild", "format index outside the list");
    if (!inList)
        qCWarning(lcCapture) << "format index" << m_selectedFormat << "outside the list; nothing built";
    return inList;
}

void CXCapGraph::BuildPreviewGraph()
{
    if (!CanBuild())
        return;
    // A build over a built graph would clash by name; start clean.
    if (m_processElement || m_tee || m_renderer)
        DestroyGraph();
    // Pads taken on the way are given back however the build ends.
    GstPad* grabberOut = nullptr;
    GstPad* previewPin = nullptr;
    GstPad* processIn = nullptr;
    const auto releasePads = qScopeGuard([&] {
        for (GstPad* pad : { grabberOut, previewPin, processIn })
            if (pad)
                gst_object_unref(pad);
    });

    // 1. Tee, grabber, processing element.
    if (!(m_tee = Make("tee", "Smart Tee"))) {
        Fail(QStringLiteral("Could not create smart tee"));
        return;
    }
    gst_object_ref_sink(m_tee);
    if (!(m_grabber = Make("capsfilter", "Grabber"))) {
        Fail(QStringLiteral("Could not create SampleGrabber (is qedit.dll registered?)"));
        return;
    }
    gst_object_ref_sink(m_grabber);
    if (!MakeProcessElement(QStringLiteral("Could not create CamProcess (is OCULIXPro.dll registered?)")))
        return;

    // 2. The camera's format.
    ChooseDeviceFormat(true);

    // 3-5.
    if (!Add(m_processElement)) {
        Fail(QStringLiteral("Could not put CamProcess filter in graph"));
        return;
    }
    if (!(grabberOut = gst_element_get_static_pad(m_grabber, "src"))) {
        Fail(QStringLiteral("Could not get sample grabber filter"));
        return;
    }
    GstCaps* mediaType = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGR", "width",
        G_TYPE_INT, int(m_width.load()), "height", G_TYPE_INT, int(m_height.load()), nullptr);
    if (!mediaType) {
        Fail(QStringLiteral("Could not set media type"));
        return;
    }
    g_object_set(m_grabber, "caps", mediaType, nullptr);
    gst_caps_unref(mediaType);
    m_grabberWidth = m_width;
    m_grabberHeight = m_height;

    // 6-7. Renderer, grabber and tee into the pipeline.
    if (!(m_renderer = MakeRenderer())) {
        Fail(QStringLiteral("Unable to make a VM7 renderer"));
        return;
    }
    gst_object_ref_sink(m_renderer);
    if (!Add(m_renderer)) {
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    if (!Add(m_grabber)) {
        Fail(QStringLiteral("Could not put sample grabber in graph"));
        return;
    }
    if (!Add(m_tee)) {
        Fail(QStringLiteral("Could not put smart tee in graph"));
        return;
    }

    // 8-9. Camera to tee; as with the platform's connect, a failure here is
    // not reported at once (the running pipeline reports it).
    if (!HasCapturePin())
        return;
    GstElement* last = AddSourceChain();
    if (!last || !gst_element_link(last, m_tee))
        qCWarning(lcCapture) << "the camera could not be connected to the tee";

    // 10-13.
    if (!(previewPin = gst_element_request_pad_simple(m_tee, "src_%u"))) {
        Fail(QStringLiteral("Can't get smarttee preview Pin"));
        return;
    }
    if (!(processIn = gst_element_get_static_pad(m_processElement, "sink"))) {
        Fail(QStringLiteral("Can't find OCULIXPro filter's input pin"));
        return;
    }
    if (!GST_PAD_LINK_SUCCESSFUL(gst_pad_link(previewPin, processIn))) {
        Fail(QStringLiteral("Can't connect OCULIXPro filter to capture filter"));
        return;
    }
    if (!gst_element_link(m_processElement, m_grabber)) {
        Fail(QStringLiteral("Can't connect sample grabber filter to OCULIXPro filter"));
        return;
    }
    if (!gst_element_link(m_grabber, m_renderer)) {
        Fail(QStringLiteral("Can't connect vm render to smarttee filter"));
        return;
    }

    // 14. Keep every frame that passes the grabber.
    gst_pad_add_probe(grabberOut, GST_PAD_PROBE_TYPE_BUFFER, &CXCapGraph::GrabberProbe, this, nullptr);
}

void CXCapGraph::BuildRecordGraph()
{
    if (!CanBuild())
        return;
    if (m_processElement || m_tee || m_renderer)
        DestroyGraph();
    // Pads taken, and elements made but never placed in the pipeline, are
    // given back however the build ends.
    GstPad* capturePad = nullptr;
    GstPad* previewPad = nullptr;
    GstElement* queue = nullptr;
    GstElement* rate = nullptr;
    GstElement* rateCaps = nullptr;
    GstElement* toJpeg = nullptr;
    GstElement* encoder = nullptr;
    GstElement* mux = nullptr;
    GstElement* writer = nullptr;
    GstElement* previewQueue = nullptr;
    const auto cleanUp = qScopeGuard([&] {
        for (GstPad* pad : { capturePad, previewPad })
            if (pad)
                gst_object_unref(pad);
        for (GstElement* e : { queue, toJpeg, rate, rateCaps, encoder, mux, writer, previewQueue })
            if (e && !GST_OBJECT_PARENT(e))
                gst_object_unref(gst_object_ref_sink(e));
    });

    // 1-3. Processing element.
    if (!MakeProcessElement(QStringLiteral("Could not create CamProcess (is CamProcess.dll registered?)")))
        return;
    ChooseDeviceFormat(false);
    if (!Add(m_processElement)) {
        Fail(QStringLiteral("Could not put OculixPro filter in graph"));
        return;
    }

    // 4. Camera to the processing element.
    if (!HasCapturePin())
        return;
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
        Fail(QStringLiteral("Could not create smart tee"));
        return;
    }
    gst_object_ref_sink(m_tee);
    if (!Add(m_tee)) {
        Fail(QStringLiteral("Could not put smart tee in graph"));
        return;
    }
    if (!gst_element_link(m_processElement, m_tee)) {
        Fail(QStringLiteral("Can't connect smart tee filter to camprocess filter"));
        return;
    }
    if (!(capturePad = gst_element_request_pad_simple(m_tee, "src_%u"))) {
        Fail(QStringLiteral("Can't get smart tee filter's capture pin"));
        return;
    }
    if (!(previewPad = gst_element_request_pad_simple(m_tee, "src_%u"))) {
        Fail(QStringLiteral("Can't get smart tee filter's preview pin"));
        return;
    }

    // 8-9. The compressor, fed at a fixed frame rate as the AVI file needs.
    queue = Make("queue", "Capture queue");
    rate = Make("videorate", "Frame rate");
    rateCaps = Make("capsfilter", "Fixed rate");
    toJpeg = CreateJpegInputElement("JPEG input");
    encoder = Make("jpegenc", "Compressor");
    if (!queue || !rate || !rateCaps || !toJpeg || !encoder || !Add(queue) || !Add(toJpeg) || !Add(rate)
        || !Add(rateCaps) || !Add(encoder)) {
        Fail(QStringLiteral("Could not create compressor "));
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
    // A second of frames, but at most 256 MiB: thirty 4K frames would hold 750 MB.
    g_object_set(
        queue, "max-size-buffers", 30u, "max-size-bytes", 256u << 20, "max-size-time", guint64(0), nullptr);
    if (GstPad* in = gst_element_get_static_pad(encoder, "sink"))
        gst_object_unref(in);
    else
        Fail(QStringLiteral("Can't get cmp pin in"));
    GstPad* queueIn = gst_element_get_static_pad(queue, "sink");
    const bool encoderLinked = GST_PAD_LINK_SUCCESSFUL(gst_pad_link(capturePad, queueIn))
        && gst_element_link_many(queue, toJpeg, rate, rateCaps, encoder, nullptr);
    gst_object_unref(queueIn);
    if (!encoderLinked) {
        Fail(QStringLiteral("Can't connect OculixPro to capture filter"));
        return;
    }

    // 10-11. AVI multiplexer.
    mux = Make("avimux", "AVI Mux");
    if (!mux || !Add(mux)) {
        Fail(QStringLiteral("Could not create AVI Mux Filter (is qcap.dll registered?)"));
        return;
    }
    if (!gst_element_link(encoder, mux)) {
        Fail(QStringLiteral("Can't connect compressor to pMux"));
        return;
    }
    if (GstPad* out = gst_element_get_static_pad(mux, "src"))
        gst_object_unref(out);
    else
        Fail(QStringLiteral("Can't get MUX pin out"));

    // 12-13. File writer.
    writer = Make("filesink", "File Writer");
    if (!writer) {
        Fail(QStringLiteral("Unable to make a FileWriter"));
        return;
    }
    if (!Add(writer)) {
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    if (!g_object_class_find_property(G_OBJECT_GET_CLASS(writer), "location")) {
        Fail(QStringLiteral("Unable to get IFileSinkFilter"));
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
            Fail(QStringLiteral("m_pFileSink->SetFileName failed"), probe.errorString());
            return;
        }
    }
    if (GstPad* in = gst_element_get_static_pad(writer, "sink"))
        gst_object_unref(in);
    else
        Fail(QStringLiteral("Can't get FileWriter pin out"));
    if (!gst_element_link(mux, writer)) {
        Fail(QStringLiteral("Can't connect pMux to pFileWriter"));
        return;
    }

    // 14. The preview branch.
    previewQueue = Make("queue", "Preview queue");
    if (!(m_renderer = MakeRenderer()) || !previewQueue) {
        Fail(QStringLiteral("Unable to make a VM7 renderer"));
        return;
    }
    gst_object_ref_sink(m_renderer);
    // The display may fall behind; the recording must not wait for it.
    g_object_set(previewQueue, "leaky", 2 /* downstream */, "max-size-buffers", 2u, "max-size-bytes", 0u,
        "max-size-time", guint64(0), nullptr);
    if (!Add(previewQueue) || !Add(m_renderer)) {
        Fail(QStringLiteral("Can't add the filter to graph"));
        return;
    }
    GstPad* previewIn = gst_element_get_static_pad(previewQueue, "sink");
    const bool previewLinked = GST_PAD_LINK_SUCCESSFUL(gst_pad_link(previewPad, previewIn))
        && gst_element_link(previewQueue, m_renderer);
    gst_object_unref(previewIn);
    if (!previewLinked)
        Fail(QStringLiteral("Can't render preview pin"));
}
