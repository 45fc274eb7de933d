#include "capture/CamProcessElement.h"

#include "capture/CCamProcess.h"
#include "capture/FormatCaps.h"
#include "capture/YuvFrameRows.h"
#include "image/ImageProcess.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <cstring>

struct OculixCamProcess
{
    GstVideoFilter parent;
    std::shared_ptr<CCamProcess>* process; // set once, before the element runs
};

struct OculixCamProcessClass
{
    GstVideoFilterClass parent_class;
};

G_DEFINE_TYPE(OculixCamProcess, oculix_cam_process, GST_TYPE_VIDEO_FILTER)

namespace {

void Finalize(GObject* object)
{
    delete reinterpret_cast<OculixCamProcess*>(object)->process;
    G_OBJECT_CLASS(oculix_cam_process_parent_class)->finalize(object);
}

GstFlowReturn TransformFrame(GstVideoFilter* filter, GstVideoFrame* in, GstVideoFrame* out)
{
    auto* self = reinterpret_cast<OculixCamProcess*>(filter);
    const unsigned width = GST_VIDEO_FRAME_WIDTH(in);
    const unsigned height = GST_VIDEO_FRAME_HEIGHT(in);
    const std::ptrdiff_t inStride = GST_VIDEO_FRAME_PLANE_STRIDE(in, 0);
    const std::ptrdiff_t outStride = GST_VIDEO_FRAME_PLANE_STRIDE(out, 0);
    const auto* src = static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(in, 0));
    auto* dst = static_cast<uchar*>(GST_VIDEO_FRAME_PLANE_DATA(out, 0));
    const std::ptrdiff_t padded = std::ptrdiff_t(DibStride(width));
    const GstVideoFormat format = GST_VIDEO_FRAME_FORMAT(in);
    const bool bgr = format == GST_VIDEO_FORMAT_BGR;
    if (height == 0 || outStride < padded || (bgr && inStride < padded)) {
        // Not a layout the operations know; pass the picture on untouched.
        return bgr && gst_video_frame_copy(out, in) ? GST_FLOW_OK : GST_FLOW_NOT_NEGOTIATED;
    }
    // GStreamer rows run top-down; the operations count rows bottom-up.
    uchar* bottom = dst + (height - 1) * outStride;
    CCamProcess& process = **self->process;
    if (bgr) {
        process.ProcessFrame(src + (height - 1) * inStride, -inStride, bottom, -outStride, width, height);
        return GST_FLOW_OK;
    }
    YuvFrameRows::Plane planes[3];
    for (guint i = 0; i < GST_VIDEO_FRAME_N_PLANES(in) && i < 3; ++i)
        planes[i] = { static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(in, i)),
            GST_VIDEO_FRAME_PLANE_STRIDE(in, i) };
    const GstVideoColorimetry& colour = in->info.colorimetry;
    const auto matrix = colour.matrix == GST_VIDEO_COLOR_MATRIX_BT709 ? YuvFrameRows::Matrix::Bt709
        : colour.matrix == GST_VIDEO_COLOR_MATRIX_BT2020              ? YuvFrameRows::Matrix::Bt2020
                                                                      : YuvFrameRows::Matrix::Bt601;
    const YuvFrameRows rows(
        format == GST_VIDEO_FORMAT_YUY2 ? YuvFrameRows::Layout::Yuy2 : YuvFrameRows::Layout::I420, planes,
        width, height, matrix, colour.range == GST_VIDEO_COLOR_RANGE_0_255);
    process.ProcessFrame(rows, bottom, -outStride, width, height);
    return GST_FLOW_OK;
}

// A camera's YUY2 or I420 frame comes in as it is and leaves as BGR: the
// conversion happens row by row inside the one pass over the frame.
GstCaps* TransformCaps(GstBaseTransform*, GstPadDirection direction, GstCaps* caps, GstCaps* filter)
{
    if (direction == GST_PAD_SINK)
        return SwapFormatCaps(caps, filter, { "BGR" });
    return SwapFormatCaps(caps, filter, { "BGR", "YUY2", "I420" });
}

} // namespace

static void oculix_cam_process_class_init(OculixCamProcessClass* klass)
{
    G_OBJECT_CLASS(klass)->finalize = Finalize;
    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Oculix CamProcess", "Filter/Effect/Video",
        "Flips, effects and the measurement overlay on live frames", "Oculix");
#define OCULIX_FRAME_SIZE                                                                                    \
    "width=(int)[1, 16384], height=(int)[1, 16384], framerate=(fraction)[0/1, 2147483647/1]"
    GstCaps* sink
        = gst_caps_from_string("video/x-raw, format=(string){ BGR, YUY2, I420 }, " OCULIX_FRAME_SIZE);
    GstCaps* src = gst_caps_from_string("video/x-raw, format=(string)BGR, " OCULIX_FRAME_SIZE);
#undef OCULIX_FRAME_SIZE
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, sink));
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, src));
    gst_caps_unref(sink);
    gst_caps_unref(src);
    GST_BASE_TRANSFORM_CLASS(klass)->transform_caps = TransformCaps;
    GST_VIDEO_FILTER_CLASS(klass)->transform_frame = TransformFrame;
}

static void oculix_cam_process_init(OculixCamProcess* self)
{
    self->process = new std::shared_ptr<CCamProcess>(std::make_shared<CCamProcess>());
    gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(self), FALSE);
}

void RegisterCamProcessElement()
{
    static const bool registered
        = gst_element_register(nullptr, "oculixcamprocess", GST_RANK_NONE, oculix_cam_process_get_type());
    (void)registered;
}

GstElement* CreateCamProcessElement(const std::shared_ptr<CCamProcess>& process, const char* name)
{
    RegisterCamProcessElement();
    GstElement* element = gst_element_factory_make("oculixcamprocess", name);
    if (element && process)
        *reinterpret_cast<OculixCamProcess*>(element)->process = process;
    return element;
}
