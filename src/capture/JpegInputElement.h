#pragma once

#include <gst/gst.h>

// "oculixtoj420": BGR frames to the full-range BT.601 4:2:0 planes a JPEG
// stores. The encoder then compresses half the samples it would for BGR, and
// decoders read the colours back as they were.
GstElement* CreateJpegInputElement(const char* name);
