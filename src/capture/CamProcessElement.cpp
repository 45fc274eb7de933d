#include "capture/CamProcessElement.h"

#include "capture/CCamProcess.h"
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
    if (height == 0 || inStride < padded || outStride < padded) {
        // Not a layout the operations know; pass the picture on untouched.
        gst_video_frame_copy(out, in);
        return GST_FLOW_OK;
    }
    // GStreamer rows run top-down; the operations count rows bottom-up.
    (*self->process)
        ->ProcessFrame(src + (height - 1) * inStride, -inStride, dst + (height - 1) * outStride, -outStride,
            width, height);
    return GST_FLOW_OK;
}

} // namespace

static void oculix_cam_process_class_init(OculixCamProcessClass* klass)
{
    G_OBJECT_CLASS(klass)->finalize = Finalize;
    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Oculix CamProcess", "Filter/Effect/Video",
        "Flips, effects and the measurement overlay on live frames", "Oculix");
    GstCaps* caps = gst_caps_from_string("video/x-raw, format=(string)BGR, width=(int)[1, 16384], "
                                         "height=(int)[1, 16384], framerate=(fraction)[0/1, 2147483647/1]");
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
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
