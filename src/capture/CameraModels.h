#pragma once

#include <QSize>
#include <QString>

#include <gst/gst.h>

// Process-wide values of the device choice: the default frame size of each
// known camera model, the MJPG-camera flag and the device-chosen-by-hand flag.

// The default sizes of the known models, read from the settings file at
// start-up: "Camera130H" for the N130, "Camera300" ... "Camera1000" for the
// I- and the M-models (each of those sections read once per model line).
struct CameraModelSizes
{
    QSize n130 { 1280, 1024 };
    QSize i30 { 640, 480 }, i50 { 640, 480 }, i90 { 640, 480 }, i100 { 640, 480 };
    QSize m30 { 640, 480 }, m50 { 640, 480 }, m90 { 640, 480 }, m100 { 640, 480 };
};
void LoadCameraModelSizes(const QString& settingsFile);
void SetCameraModelSizes(const CameraModelSizes& sizes);
CameraModelSizes GetCameraModelSizes();

// The size a device starts at: its model's size by exact friendly name, else
// 868 x 650 for a name containing "USB2_CCD_5.01M_YF" when the device was
// chosen by name, else 1280 x 1024.
QSize ModelDefaultSize(const QString& friendlyName, bool chosenByName);
inline constexpr QSize kFallbackDeviceSize { 1280, 1024 };

// Whether the program lists a device: a V4L2 camera (opened through
// v4l2src) or a simulated one. A desktop's PipeWire provider lists the same
// cameras again; those are left out.
bool IsCaptureDevice(GstDevice* device);

// The supported-camera check. Every device is accepted: the program serves
// any camera V4L2 can open. It never sets the MJPG-camera flag by itself.
bool IsSupportedCamera(const QString& friendlyName, GstDevice* device);

// Once set, the preview asks the camera for MJPG frames at the chosen size.
void SetMjpgCamera(bool on);
bool IsMjpgCamera();

// Set when the user picked a device in the device dialog.
void SetDeviceChosenByHand(bool on);
bool IsDeviceChosenByHand();
