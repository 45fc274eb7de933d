#pragma once

#include <gst/gst.h>

#include <initializer_list>

// The caps a format-changing video filter offers on one side for `caps` on
// the other: each structure with its format replaced by each of `formats`
// (colour description dropped, or set to `colorimetry` when given),
// intersected with `filter` when there is one.
GstCaps* SwapFormatCaps(GstCaps* caps, GstCaps* filter, std::initializer_list<const char*> formats,
    const char* colorimetry = nullptr);
