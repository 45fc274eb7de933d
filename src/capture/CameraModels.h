#pragma once

#include "platform/SettingsKeys.h"

#include <QSize>
#include <QString>

#include <gst/gst.h>

// Process-wide values of the device choice: the default frame size of each
// known camera model, the camera model found attached at start-up, the
// MJPG-camera flag and the device-chosen-by-hand flag.

// The default sizes of the known models, read from the settings file at
// start-up: "Camera130H" for the N130, "Camera300" ... "Camera1000" for the
// I- and the M-models (each of those sections read once per model line).
struct CameraModelSizes
{
    QSize n130 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera130H);
    QSize i30 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera300);
    QSize i50 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera500);
    QSize i90 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera900);
    QSize i100 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera1000);
    QSize m30 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera300);
    QSize m50 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera500);
    QSize m90 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera900);
    QSize m100 = SettingsKeys::DefaultCameraSize(SettingsKeys::Camera1000);
};
void LoadCameraModelSizes(const QString& settingsFile);
void SetCameraModelSizes(const CameraModelSizes& sizes);
CameraModelSizes GetCameraModelSizes();

// The known models by friendly name ("KMZ-N130 USB2.0 Camera", ...), in the
// order names are matched: 0 the N130, 1 to 4 the I30 to I100, 5 to 8 the
// M30 to M100; -1 for any other name.
inline constexpr int kCameraModelCount = 9;
int CameraModelOf(const QString& friendlyName);
QString CameraModelName(int model);

// The size a device starts at: its model's size by exact friendly name, else
// 868 x 650 for a name containing "USB2_CCD_5.01M_YF" when the device was
// chosen by name, else 1280 x 1024.
QSize ModelDefaultSize(const QString& friendlyName, bool chosenByName);
inline constexpr QSize kFallbackDeviceSize { 1280, 1024 };

// The supported-camera check. Every device is accepted: the program serves
// any camera V4L2 can open. A known model that streams MJPG (offers JPEG
// frames) sets the MJPG-camera flag, which then stays set.
bool IsSupportedCamera(const QString& friendlyName, GstDevice* device);

// What the start-up scan found: the first known model among the attached
// devices (-1: none) and whether that camera streams MJPG.
struct AttachedCameraModel
{
    int m_model = -1;
    bool m_bMjpg = false;
};
// Runs the supported-camera check over every attached device and keeps the
// first known model it finds.
AttachedCameraModel ScanAttachedCameras();
AttachedCameraModel GetAttachedCameraModel();

// Once set, the preview asks the camera for MJPG frames at the chosen size.
// Clearing it is for tests: the program never does.
void SetMjpgCamera(bool on);
bool IsMjpgCamera();

// Set when the user picked a device in the device dialog.
void SetDeviceChosenByHand(bool on);
bool IsDeviceChosenByHand();
