#pragma once

#include <QString>

#include <gst/gst.h>

// An in-process GStreamer device provider ("oculixsimdeviceprovider") that
// lists simulated cameras beside the real ones: the demo camera when it is
// enabled, and any cameras a test adds. Each creates an "oculixsimcamsrc".
// GStreamer's start-up (EnsureGStreamer) registers the provider; the calls
// below that make devices or caps expect it to have run.

// The display name of the demo camera.
inline QString DemoCameraName()
{
    return QStringLiteral("Simulated Microscope Camera");
}

// The demo camera is listed when the program enabled it (--demo-camera) or
// when the environment holds OCULIX_DEMO_CAMERA=1.
void EnableDemoCamera(bool on = true);
bool IsDemoCameraEnabled();

// Capabilities of the demo camera, in its capability order: YUY2 640 x 480,
// 1280 x 1024 and 1600 x 1200, then MJPG 1280 x 1024.
GstCaps* DemoCameraCaps();

// Extra simulated cameras, listed after the demo camera in the order added;
// names may repeat. Null caps means the demo camera's. Adding or removing
// while a device monitor runs posts DEVICE_ADDED / DEVICE_REMOVED, as
// plugging a camera in or out does.
void AddSimDevice(const QString& name, GstCaps* caps = nullptr);
// Removes the last added camera of that name; false when there is none.
bool RemoveSimDevice(const QString& name);
void RemoveAllSimDevices();

// Pulls a camera out as a user does: it leaves the device list and, if it is
// streaming, fails with the read error of a vanished V4L2 device. False when
// no camera of that name is listed.
bool PullSimDevice(const QString& name);
// Plugs it back in (or any camera of that name): listed again, streaming again.
void ReplugSimDevice(const QString& name, GstCaps* caps = nullptr);

// Registers the provider and the device type in this process. Idempotent.
void RegisterSimDeviceProvider();

// Whether a device comes from this provider.
bool IsSimDevice(GstDevice* device);
