#pragma once

#include <gst/gst.h>

#include <memory>

class CCamProcess;

// The live processing element ("oculixcamprocess"): a video filter on 24-bit
// BGR frames that runs CCamProcess on each one. It never drops frames for
// quality of service; dropping, if any, happens at the display.

// Registers the element type in this process (no plugin file). Idempotent.
void RegisterCamProcessElement();

// A new element working with the given state (shared with the caller).
GstElement* CreateCamProcessElement(const std::shared_ptr<CCamProcess>& process, const char* name);
