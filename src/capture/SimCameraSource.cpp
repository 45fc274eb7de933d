#include "capture/SimCameraSource.h"

#include "capture/CSimScene.h"
#include "capture/SimStage.h"
#include "image/SimDepthScene.h"

#include <gst/base/gstpushsrc.h>
#include <gst/video/video.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>

namespace {

std::mutex g_faultMutex;
std::map<QString, SimCameraFault>& Faults()
{
    static std::map<QString, SimCameraFault> faults;
    return faults;
}

SimCameraFault FaultFor(const QString& name)
{
    std::lock_guard lock(g_faultMutex);
    const auto it = Faults().find(name);
    return it == Faults().end() ? SimCameraFault() : it->second;
}

// The C++ side of one element; GObject owns it through a plain pointer.
struct SimState
{
    std::mutex mutex; // guards everything below but the scene's pixels
    QString cameraName;
    GstCaps* deviceCaps = nullptr;
    CSimScene::Controls controls;
    bool controlsChanged = false;

    // The stage under a slide larger than the field ("stage"), and where it
    // is to go next, in slide pixels (negative: where it is).
    bool stage = false;
    QPointF stageTarget { -1.0, -1.0 };
    QPointF stageAt;
    // The specimen with relief ("depth") and the focus over it, micrometres.
    bool depth = false;
    int focusUm = kSimFocusDefaultUm;
    // Off: the balance properties still work but are not offered as
    // controls, as on a camera without a white balance of its own.
    bool balanceControls = true;

    // Streaming thread only, between set_caps and stop.
    std::unique_ptr<CSimScene> scene;
    std::unique_ptr<SimStage> simStage;
    // Kept over stops: drawing its blur levels takes a while at large sizes.
    std::unique_ptr<SimDepthScene> depthScene;
    bool jpeg = false;
    GstVideoInfo info;
    GstClockTime frameDuration = GST_SECOND / 30;
    std::uint64_t frame = 0;
    // The running time the first frame was made at: the base class shifts
    // every time stamp by it.
    GstClockTime firstAt = 0;
    int framesDelivered = 0; // read by "frames"; guarded by mutex

    // Interrupts a late-frame sleep when the pipeline flushes or stops.
    std::condition_variable wake;
    bool flushing = false;
};

} // namespace

struct OculixSimSrc
{
    GstPushSrc parent;
    SimState* state;
};

struct OculixSimSrcClass
{
    GstPushSrcClass parent_class;
};

G_DEFINE_TYPE(OculixSimSrc, oculix_sim_src, GST_TYPE_PUSH_SRC)

namespace {

enum {
    PROP_0,
    PROP_CAMERA_NAME,
    PROP_DEVICE_CAPS,
    PROP_BRIGHTNESS,
    PROP_CONTRAST,
    PROP_SATURATION,
    PROP_VIGNETTING,
    PROP_NOISE,
    PROP_DRIFT,
    PROP_FRAMES,
    PROP_ROTATION,
    PROP_BLUR,
    PROP_NOISE_LEVEL,
    PROP_UNEVEN_LIGHT,
    PROP_STAGE,
    PROP_STAGE_X,
    PROP_STAGE_Y,
    PROP_DEPTH,
    PROP_FOCUS,
    PROP_RED_BALANCE,
    PROP_BLUE_BALANCE,
    PROP_BALANCE_CONTROLS,
};

SimState* State(gpointer object)
{
    return reinterpret_cast<OculixSimSrc*>(object)->state;
}

// The live stage: mild shading, noise and jitter, as a hand-moved stage shows.
SimStage::Options StageOptions(QSize frame)
{
    SimStage::Options options;
    options.frame = frame;
    options.cornerShading = 0.75;
    options.jitter = 0.2;
    options.noise = 1.5;
    return options;
}

// The frame number the relief is drawn at: its drift goes back and forth
// over 20 s instead of carrying the specimen out of the field.
std::uint64_t DepthDriftFrame(std::uint64_t frame, bool drift)
{
    constexpr std::uint64_t kPeriod = 600;
    if (!drift)
        return 0;
    const std::uint64_t phase = frame % kPeriod;
    return phase < kPeriod / 2 ? phase : kPeriod - phase;
}

GstCaps* TemplateCaps()
{
    return gst_caps_from_string(
        "video/x-raw, format=(string)YUY2, width=(int)[2, 8192], height=(int)[1, 8192], "
        "framerate=(fraction)[0/1, 1000/1]; "
        "image/jpeg, width=(int)[2, 8192], height=(int)[1, 8192], "
        "framerate=(fraction)[0/1, 1000/1]");
}

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* pspec)
{
    SimState* s = State(object);
    std::lock_guard lock(s->mutex);
    switch (id) {
    case PROP_CAMERA_NAME:
        s->cameraName = QString::fromUtf8(g_value_get_string(value));
        break;
    case PROP_DEVICE_CAPS:
        gst_caps_replace(&s->deviceCaps, const_cast<GstCaps*>(gst_value_get_caps(value)));
        break;
    case PROP_BRIGHTNESS:
        s->controls.brightness = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_CONTRAST:
        s->controls.contrast = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_SATURATION:
        s->controls.saturation = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_VIGNETTING:
        s->controls.vignetting = g_value_get_boolean(value);
        s->controlsChanged = true;
        break;
    case PROP_NOISE:
        s->controls.noise = g_value_get_boolean(value);
        s->controlsChanged = true;
        break;
    case PROP_DRIFT:
        s->controls.drift = g_value_get_boolean(value);
        s->controlsChanged = true;
        break;
    case PROP_ROTATION:
        s->controls.rotation = g_value_get_double(value);
        s->controlsChanged = true;
        break;
    case PROP_BLUR:
        s->controls.blur = g_value_get_double(value);
        s->controlsChanged = true;
        break;
    case PROP_NOISE_LEVEL:
        s->controls.noiseLevel = g_value_get_double(value);
        s->controlsChanged = true;
        break;
    case PROP_UNEVEN_LIGHT:
        s->controls.unevenLight = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_STAGE:
        s->stage = g_value_get_boolean(value);
        break;
    case PROP_DEPTH:
        s->depth = g_value_get_boolean(value);
        break;
    case PROP_FOCUS:
        s->focusUm = g_value_get_int(value);
        break;
    case PROP_RED_BALANCE:
        s->controls.redBalance = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_BLUE_BALANCE:
        s->controls.blueBalance = g_value_get_int(value);
        s->controlsChanged = true;
        break;
    case PROP_BALANCE_CONTROLS:
        s->balanceControls = g_value_get_boolean(value);
        break;
    case PROP_STAGE_X:
        s->stageTarget = QPointF(
            g_value_get_double(value), s->stageTarget.y() < 0 ? s->stageAt.y() : s->stageTarget.y());
        break;
    case PROP_STAGE_Y:
        s->stageTarget = QPointF(
            s->stageTarget.x() < 0 ? s->stageAt.x() : s->stageTarget.x(), g_value_get_double(value));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* pspec)
{
    SimState* s = State(object);
    std::lock_guard lock(s->mutex);
    switch (id) {
    case PROP_CAMERA_NAME:
        g_value_set_string(value, s->cameraName.toUtf8().constData());
        break;
    case PROP_DEVICE_CAPS:
        gst_value_set_caps(value, s->deviceCaps);
        break;
    case PROP_BRIGHTNESS:
        g_value_set_int(value, s->controls.brightness);
        break;
    case PROP_CONTRAST:
        g_value_set_int(value, s->controls.contrast);
        break;
    case PROP_SATURATION:
        g_value_set_int(value, s->controls.saturation);
        break;
    case PROP_VIGNETTING:
        g_value_set_boolean(value, s->controls.vignetting);
        break;
    case PROP_NOISE:
        g_value_set_boolean(value, s->controls.noise);
        break;
    case PROP_DRIFT:
        g_value_set_boolean(value, s->controls.drift);
        break;
    case PROP_FRAMES:
        g_value_set_int(value, s->framesDelivered);
        break;
    case PROP_ROTATION:
        g_value_set_double(value, s->controls.rotation);
        break;
    case PROP_BLUR:
        g_value_set_double(value, s->controls.blur);
        break;
    case PROP_NOISE_LEVEL:
        g_value_set_double(value, s->controls.noiseLevel);
        break;
    case PROP_UNEVEN_LIGHT:
        g_value_set_int(value, s->controls.unevenLight);
        break;
    case PROP_STAGE:
        g_value_set_boolean(value, s->stage);
        break;
    case PROP_DEPTH:
        g_value_set_boolean(value, s->depth);
        break;
    case PROP_FOCUS:
        g_value_set_int(value, s->focusUm);
        break;
    case PROP_RED_BALANCE:
        g_value_set_int(value, s->controls.redBalance);
        break;
    case PROP_BLUE_BALANCE:
        g_value_set_int(value, s->controls.blueBalance);
        break;
    case PROP_BALANCE_CONTROLS:
        g_value_set_boolean(value, s->balanceControls);
        break;
    case PROP_STAGE_X:
        g_value_set_double(value, s->stageTarget.x() >= 0 ? s->stageTarget.x() : s->stageAt.x());
        break;
    case PROP_STAGE_Y:
        g_value_set_double(value, s->stageTarget.y() >= 0 ? s->stageTarget.y() : s->stageAt.y());
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
}

void Finalize(GObject* object)
{
    SimState* s = State(object);
    gst_caps_replace(&s->deviceCaps, nullptr);
    delete s;
    G_OBJECT_CLASS(oculix_sim_src_parent_class)->finalize(object);
}

GstCaps* GetCaps(GstBaseSrc* src, GstCaps* filter)
{
    SimState* s = State(src);
    GstCaps* caps = nullptr;
    {
        std::lock_guard lock(s->mutex);
        caps = s->deviceCaps ? gst_caps_ref(s->deviceCaps) : TemplateCaps();
    }
    if (filter) {
        GstCaps* both = gst_caps_intersect_full(filter, caps, GST_CAPS_INTERSECT_FIRST);
        gst_caps_unref(caps);
        caps = both;
    }
    return caps;
}

GstCaps* Fixate(GstBaseSrc* src, GstCaps* caps)
{
    // Like a camera left at its default mode: the first format, the largest
    // frame rate in it.
    caps = gst_caps_truncate(gst_caps_make_writable(caps));
    GstStructure* st = gst_caps_get_structure(caps, 0);
    gst_structure_fixate_field_nearest_fraction(st, "framerate", 30, 1);
    // The frames are encoded as BT.601 whatever their size.
    if (gst_structure_has_name(st, "video/x-raw") && !gst_structure_has_field(st, "colorimetry"))
        gst_structure_set(st, "colorimetry", G_TYPE_STRING, "bt601", nullptr);
    return GST_BASE_SRC_CLASS(oculix_sim_src_parent_class)->fixate(src, caps);
}

gboolean SetCaps(GstBaseSrc* src, GstCaps* caps)
{
    SimState* s = State(src);
    const GstStructure* st = gst_caps_get_structure(caps, 0);
    int width = 0;
    int height = 0;
    int num = 30;
    int den = 1;
    if (!gst_structure_get_int(st, "width", &width) || !gst_structure_get_int(st, "height", &height))
        return FALSE;
    gst_structure_get_fraction(st, "framerate", &num, &den);
    if (num <= 0 || den <= 0) {
        num = 30;
        den = 1;
    }
    s->jpeg = gst_structure_has_name(st, "image/jpeg");
    if (!s->jpeg && !gst_video_info_from_caps(&s->info, caps))
        return FALSE;
    s->frameDuration = gst_util_uint64_scale_int(GST_SECOND, den, num);
    if (!s->scene || s->scene->Width() != unsigned(width) || s->scene->Height() != unsigned(height))
        s->scene = std::make_unique<CSimScene>(unsigned(width), unsigned(height));
    std::lock_guard lock(s->mutex);
    s->scene->SetControls(s->controls);
    s->controlsChanged = false;
    return TRUE;
}

gboolean Start(GstBaseSrc* src)
{
    SimState* s = State(src);
    QString name;
    {
        std::lock_guard lock(s->mutex);
        name = s->cameraName;
    }
    if (FaultFor(name).busy) {
        // As v4l2src words it for a device another program streams from.
        GST_ELEMENT_ERROR(
            src, RESOURCE, BUSY, ("Device is busy."), ("system error: Device or resource busy"));
        return FALSE;
    }
    s->frame = 0;
    std::lock_guard lock(s->mutex);
    s->framesDelivered = 0;
    s->flushing = false;
    return TRUE;
}

gboolean Stop(GstBaseSrc* src)
{
    SimState* s = State(src);
    s->scene.reset();
    s->simStage.reset();
    return TRUE;
}

gboolean Unlock(GstBaseSrc* src)
{
    SimState* s = State(src);
    std::lock_guard lock(s->mutex);
    s->flushing = true;
    s->wake.notify_all();
    return TRUE;
}

gboolean UnlockStop(GstBaseSrc* src)
{
    SimState* s = State(src);
    std::lock_guard lock(s->mutex);
    s->flushing = false;
    return TRUE;
}

void GetTimes(GstBaseSrc*, GstBuffer* buffer, GstClockTime* start, GstClockTime* end)
{
    // Live: the base class waits on the clock until each frame is due.
    *start = GST_BUFFER_PTS(buffer);
    *end = GST_CLOCK_TIME_IS_VALID(*start) && GST_BUFFER_DURATION_IS_VALID(buffer)
        ? *start + GST_BUFFER_DURATION(buffer)
        : GST_CLOCK_TIME_NONE;
}

GstFlowReturn Create(GstPushSrc* src, GstBuffer** out)
{
    SimState* s = State(src);
    if (!s->scene)
        return GST_FLOW_NOT_NEGOTIATED;

    QString name;
    bool stage = false;
    bool depth = false;
    int focusUm = 0;
    bool drift = true;
    QPointF stageTarget;
    std::uint64_t delivered = 0;
    {
        std::lock_guard lock(s->mutex);
        name = s->cameraName;
        delivered = s->framesDelivered;
        stage = s->stage;
        depth = s->depth && !stage;
        focusUm = s->focusUm;
        drift = s->controls.drift;
        stageTarget = s->stageTarget;
        // Where the stage goes from now on: "stage-y" set right after
        // "stage-x" must not take the x from before the move.
        if (stageTarget.x() >= 0.0 && stageTarget.y() >= 0.0)
            s->stageAt = stageTarget;
        s->stageTarget = QPointF(-1.0, -1.0);
        if (s->controlsChanged) {
            s->scene->SetControls(s->controls);
            s->controlsChanged = false;
        }
    }
    const SimCameraFault fault = FaultFor(name);
    if (fault.failAfterFrames > 0 && delivered >= std::uint64_t(fault.failAfterFrames)) {
        // The words and codes v4l2src uses when its device vanishes.
        GST_ELEMENT_ERROR(
            src, RESOURCE, READ, ("Could not read from resource."), ("poll error 1: No such device (19)"));
        return GST_FLOW_ERROR;
    }

    // Not read in time, a camera drops frames and keeps to the clock; one
    // falling behind it instead would make recordings shorter than the time
    // they took.
    if (GstClock* clock = gst_element_get_clock(GST_ELEMENT(src))) {
        const GstClockTime now = gst_clock_get_time(clock) - gst_element_get_base_time(GST_ELEMENT(src));
        gst_object_unref(clock);
        if (s->frame == 0) {
            s->firstAt = now;
        } else if (now > s->firstAt) {
            const std::uint64_t due = (now - s->firstAt) / s->frameDuration;
            if (due > s->frame + 1)
                s->frame = due;
        }
    }

    QImage staged;
    if (stage) {
        const QSize size(int(s->scene->Width()), int(s->scene->Height()));
        if (!s->simStage || s->simStage->FrameSize() != size)
            s->simStage = std::make_unique<SimStage>(StageOptions(size));
        if (stageTarget.x() >= 0.0 && stageTarget.y() >= 0.0)
            s->simStage->MoveTo(stageTarget);
        staged = s->simStage->Capture().picture;
        std::lock_guard lock(s->mutex);
        s->stageAt = s->simStage->Position();
    } else if (depth) {
        const int w = int(s->scene->Width()), h = int(s->scene->Height());
        if (!s->depthScene || s->depthScene->Width() != w || s->depthScene->Height() != h)
            s->depthScene = std::make_unique<SimDepthScene>(w, h, SimDepthScene::Options());
        staged = s->depthScene->Frame(focusUm, DepthDriftFrame(s->frame, drift));
    }
    GstBuffer* buffer = nullptr;
    if (s->jpeg) {
        const QByteArray jpeg
            = !staged.isNull() ? CSimScene::Jpeg(staged, 80) : s->scene->RenderJpeg(s->frame);
        buffer = gst_buffer_new_memdup(jpeg.constData(), gsize(jpeg.size()));
    } else {
        buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&s->info), nullptr);
        GstMapInfo map;
        if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
            gst_buffer_unref(buffer);
            return GST_FLOW_ERROR;
        }
        const std::size_t stride = std::size_t(GST_VIDEO_INFO_PLANE_STRIDE(&s->info, 0));
        if (!staged.isNull())
            CSimScene::Yuy2FromRgb(staged, map.data, stride);
        else
            s->scene->RenderYuy2(s->frame, map.data, stride);
        gst_buffer_unmap(buffer, &map);
    }
    GST_BUFFER_PTS(buffer) = s->frame * s->frameDuration;
    GST_BUFFER_DURATION(buffer) = s->frameDuration;
    GST_BUFFER_OFFSET(buffer) = s->frame;
    ++s->frame;

    if (fault.lateEvery > 0 && fault.lateMs > 0 && s->frame % std::uint64_t(fault.lateEvery) == 0) {
        std::unique_lock lock(s->mutex);
        s->wake.wait_for(lock, std::chrono::milliseconds(fault.lateMs), [s] { return s->flushing; });
        if (s->flushing) {
            gst_buffer_unref(buffer);
            return GST_FLOW_FLUSHING;
        }
    }
    {
        std::lock_guard lock(s->mutex);
        ++s->framesDelivered;
    }
    *out = buffer;
    return GST_FLOW_OK;
}

} // namespace

static void oculix_sim_src_class_init(OculixSimSrcClass* klass)
{
    GObjectClass* object = G_OBJECT_CLASS(klass);
    object->set_property = SetProperty;
    object->get_property = GetProperty;
    object->finalize = Finalize;
    const auto flags = GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    g_object_class_install_property(object, PROP_CAMERA_NAME,
        g_param_spec_string(
            "camera-name", "Camera name", "Name of the camera", "Simulated Microscope Camera", flags));
    g_object_class_install_property(object, PROP_DEVICE_CAPS,
        g_param_spec_boxed("device-caps", "Device caps", "Capabilities offered", GST_TYPE_CAPS, flags));
    g_object_class_install_property(object, PROP_BRIGHTNESS,
        g_param_spec_int("brightness", "Brightness", "Brightness", -64, 64, 0, flags));
    g_object_class_install_property(
        object, PROP_CONTRAST, g_param_spec_int("contrast", "Contrast", "Contrast", 0, 200, 100, flags));
    g_object_class_install_property(object, PROP_SATURATION,
        g_param_spec_int("saturation", "Saturation", "Saturation", 0, 200, 100, flags));
    g_object_class_install_property(object, PROP_VIGNETTING,
        g_param_spec_boolean("vignetting", "Vignetting", "Darker corners", TRUE, flags));
    g_object_class_install_property(
        object, PROP_NOISE, g_param_spec_boolean("noise", "Noise", "Sensor noise", TRUE, flags));
    g_object_class_install_property(
        object, PROP_DRIFT, g_param_spec_boolean("drift", "Drift", "The slide drifts slowly", TRUE, flags));
    g_object_class_install_property(object, PROP_ROTATION,
        g_param_spec_double("rotation", "Rotation", "Slide turned clockwise, degrees", -360, 360, 0, flags));
    g_object_class_install_property(object, PROP_BLUR,
        g_param_spec_double("blur", "Blur", "Defocus: Gaussian spread in pixels", 0, 20, 0, flags));
    g_object_class_install_property(object, PROP_NOISE_LEVEL,
        g_param_spec_double(
            "noise-level", "Noise level", "Spread of the noise in levels (0: mild)", 0, 64, 0, flags));
    g_object_class_install_property(object, PROP_UNEVEN_LIGHT,
        g_param_spec_int(
            "uneven-light", "Uneven light", "Light falling off across the field, percent", 0, 90, 0, flags));
    g_object_class_install_property(object, PROP_RED_BALANCE,
        g_param_spec_int(
            "red-balance", "Red balance", "Gain of the red channel, percent", 10, 400, 100, flags));
    g_object_class_install_property(object, PROP_BLUE_BALANCE,
        g_param_spec_int(
            "blue-balance", "Blue balance", "Gain of the blue channel, percent", 10, 400, 100, flags));
    g_object_class_install_property(object, PROP_BALANCE_CONTROLS,
        g_param_spec_boolean("balance-controls", "Balance controls",
            "Whether the red and blue balance are offered as camera controls", TRUE, flags));
    g_object_class_install_property(object, PROP_STAGE,
        g_param_spec_boolean("stage", "Stage",
            "A slide several fields across under a stage that moves (default: OCULIX_DEMO_STAGE=1)", FALSE,
            flags));
    g_object_class_install_property(object, PROP_STAGE_X,
        g_param_spec_double(
            "stage-x", "Stage x", "The field's left edge on the slide, pixels", 0, 1e6, 0, flags));
    g_object_class_install_property(object, PROP_STAGE_Y,
        g_param_spec_double(
            "stage-y", "Stage y", "The field's top edge on the slide, pixels", 0, 1e6, 0, flags));
    g_object_class_install_property(object, PROP_DEPTH,
        g_param_spec_boolean("depth", "Depth",
            "A specimen with relief under a focus knob (default: OCULIX_DEMO_DEPTH=1)", FALSE, flags));
    g_object_class_install_property(object, PROP_FOCUS,
        g_param_spec_int("focus", "Focus", "The focus over the relief, micrometres from its lowest point", 0,
            kSimFocusMaxUm, kSimFocusDefaultUm, flags));
    g_object_class_install_property(object, PROP_FRAMES,
        g_param_spec_int("frames", "Frames", "Frames delivered since start", 0, G_MAXINT, 0,
            GParamFlags(G_PARAM_READABLE | G_PARAM_STATIC_STRINGS)));

    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Simulated microscope camera", "Source/Video",
        "A drifting microscope slide with a stage micrometer", "Oculix");
    GstCaps* caps = TemplateCaps();
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);

    GstBaseSrcClass* base = GST_BASE_SRC_CLASS(klass);
    base->get_caps = GetCaps;
    base->fixate = Fixate;
    base->set_caps = SetCaps;
    base->start = Start;
    base->stop = Stop;
    base->unlock = Unlock;
    base->unlock_stop = UnlockStop;
    base->get_times = GetTimes;
    GST_PUSH_SRC_CLASS(klass)->create = Create;
}

static void oculix_sim_src_init(OculixSimSrc* self)
{
    self->state = new SimState();
    self->state->cameraName = QStringLiteral("Simulated Microscope Camera");
    self->state->stage = qEnvironmentVariableIntValue("OCULIX_DEMO_STAGE") == 1;
    self->state->depth = qEnvironmentVariableIntValue("OCULIX_DEMO_DEPTH") == 1;
    gst_video_info_init(&self->state->info);
    GstBaseSrc* base = GST_BASE_SRC(self);
    gst_base_src_set_live(base, TRUE);
    gst_base_src_set_format(base, GST_FORMAT_TIME);
}

void RegisterSimCameraSource()
{
    static const bool registered
        = gst_element_register(nullptr, kSimCameraElement, GST_RANK_NONE, oculix_sim_src_get_type());
    (void)registered;
}

bool MoveSimStage(GstElement* camera, const QPointF& step)
{
    GstElementFactory* factory = camera ? gst_element_get_factory(camera) : nullptr;
    if (!factory || g_strcmp0(GST_OBJECT_NAME(factory), kSimCameraElement) != 0)
        return false;
    gboolean stage = FALSE;
    g_object_get(camera, "stage", &stage, nullptr);
    if (!stage)
        return false;
    double x = 0.0, y = 0.0;
    g_object_get(camera, "stage-x", &x, "stage-y", &y, nullptr);
    g_object_set(
        camera, "stage-x", std::max(0.0, x + step.x()), "stage-y", std::max(0.0, y + step.y()), nullptr);
    return true;
}

bool FocusSimCamera(GstElement* camera, int stepUm)
{
    GstElementFactory* factory = camera ? gst_element_get_factory(camera) : nullptr;
    if (!factory || g_strcmp0(GST_OBJECT_NAME(factory), kSimCameraElement) != 0)
        return false;
    gboolean depth = FALSE;
    int focus = 0;
    g_object_get(camera, "depth", &depth, "focus", &focus, nullptr);
    if (!depth)
        return false;
    g_object_set(camera, "focus", std::clamp(focus + stepUm, 0, kSimFocusMaxUm), nullptr);
    return true;
}

void SetSimCameraFault(const QString& cameraName, const SimCameraFault& fault)
{
    std::lock_guard lock(g_faultMutex);
    Faults()[cameraName] = fault;
}

void ClearSimCameraFaults()
{
    std::lock_guard lock(g_faultMutex);
    Faults().clear();
}
