#include "capture/JpegInputElement.h"

#include "capture/FormatCaps.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <libyuv/convert.h>

struct OculixToJ420
{
    GstVideoFilter parent;
};

struct OculixToJ420Class
{
    GstVideoFilterClass parent_class;
};

G_DEFINE_TYPE(OculixToJ420, oculix_to_j420, GST_TYPE_VIDEO_FILTER)

namespace {

GstFlowReturn TransformFrame(GstVideoFilter*, GstVideoFrame* in, GstVideoFrame* out)
{
    const auto plane
        = [](GstVideoFrame* f, int i) { return static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(f, i)); };
    const auto stride = [](GstVideoFrame* f, int i) { return GST_VIDEO_FRAME_PLANE_STRIDE(f, i); };
    // libyuv's "RGB24" is B, G, R in memory.
    const int failed = libyuv::RGB24ToJ420(plane(in, 0), stride(in, 0), plane(out, 0), stride(out, 0),
        plane(out, 1), stride(out, 1), plane(out, 2), stride(out, 2), GST_VIDEO_FRAME_WIDTH(in),
        GST_VIDEO_FRAME_HEIGHT(in));
    return failed ? GST_FLOW_ERROR : GST_FLOW_OK;
}

GstCaps* TransformCaps(GstBaseTransform*, GstPadDirection direction, GstCaps* caps, GstCaps* filter)
{
    if (direction == GST_PAD_SINK)
        return SwapFormatCaps(caps, filter, { "I420" }, "jpeg");
    return SwapFormatCaps(caps, filter, { "BGR" });
}

} // namespace

static void oculix_to_j420_class_init(OculixToJ420Class* klass)
{
    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(element, "Oculix JPEG input", "Filter/Converter/Video",
        "BGR to full-range BT.601 I420 for the JPEG encoder", "Oculix");
    GstCaps* sink = gst_caps_from_string("video/x-raw, format=(string)BGR");
    GstCaps* src = gst_caps_from_string("video/x-raw, format=(string)I420, colorimetry=(string)jpeg");
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, sink));
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, src));
    gst_caps_unref(sink);
    gst_caps_unref(src);
    GST_BASE_TRANSFORM_CLASS(klass)->transform_caps = TransformCaps;
    GST_VIDEO_FILTER_CLASS(klass)->transform_frame = TransformFrame;
}

static void oculix_to_j420_init(OculixToJ420*)
{
}

GstElement* CreateJpegInputElement(const char* name)
{
    static const bool registered
        = gst_element_register(nullptr, "oculixtoj420", GST_RANK_NONE, oculix_to_j420_get_type());
    (void)registered;
    return gst_element_factory_make("oculixtoj420", name);
}
