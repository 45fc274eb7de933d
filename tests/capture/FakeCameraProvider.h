#pragma once

#include <QString>

#include <gst/gst.h>

#include <initializer_list>
#include <utility>

// Made-up cameras as another provider (V4L2's, PipeWire's) reports them, to
// test how the program tells its camera sources apart without the hardware.
// Each has the name and string properties a test gives ("device.api",
// "device.path", "device.serial", ...) and streams 320 x 240 YUY2 as the
// simulated camera does. GStreamer must be started (EnsureGStreamer).

using FakeCameraProperties = std::initializer_list<std::pair<const char*, const char*>>;

// A camera not listed yet, with a reference the caller drops.
GstDevice* MakeFakeCamera(const QString& name, FakeCameraProperties properties);

// Lists it, as plugging it in does (a running monitor hears of it), or takes
// it out again.
void PlugFakeCamera(GstDevice* camera);
void UnplugFakeCamera(GstDevice* camera);
void UnplugAllFakeCameras();
