#include "capture/FormatCaps.h"

GstCaps* SwapFormatCaps(
    GstCaps* caps, GstCaps* filter, std::initializer_list<const char*> formats, const char* colorimetry)
{
    GstCaps* result = gst_caps_new_empty();
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
        const GstStructure* in = gst_caps_get_structure(caps, i);
        for (const char* format : formats) {
            GstStructure* s = gst_structure_copy(in);
            gst_structure_set(s, "format", G_TYPE_STRING, format, nullptr);
            gst_structure_remove_fields(s, "colorimetry", "chroma-site", nullptr);
            if (colorimetry)
                gst_structure_set(s, "colorimetry", G_TYPE_STRING, colorimetry, nullptr);
            result = gst_caps_merge_structure(result, s);
        }
    }
    if (filter) {
        GstCaps* both = gst_caps_intersect_full(filter, result, GST_CAPS_INTERSECT_FIRST);
        gst_caps_unref(result);
        result = both;
    }
    return result;
}
