#pragma once

#include <QPointF>
#include <QString>

#include <gst/gst.h>

// The simulated microscope camera as a live GStreamer source, element name
// "oculixsimcamsrc". It offers the capabilities of its "device-caps" property
// (YUY2 and JPEG frames of any sizes) and draws CSimScene frames at the
// negotiated rate, so the pipeline treats it exactly like v4l2src.
//
// Properties: "camera-name" (string, selects the fault settings below),
// "device-caps" (GstCaps), "brightness" (-64..64), "contrast" (0..200),
// "saturation" (0..200), "vignetting", "noise", "drift" (bools; with noise
// and drift off every frame is the same), "rotation" (degrees), "blur"
// (pixels), "noise-level" (levels, 0 for the mild default), "uneven-light"
// (0..90 percent), "stage" (bool: frames of SimStage's larger slide instead,
// on by default when OCULIX_DEMO_STAGE=1), "stage-x" and "stage-y" (the
// stage's position in slide pixels), "depth" (bool: frames of SimDepthScene's
// specimen with relief, with its default options, instead; on by default
// when OCULIX_DEMO_DEPTH=1; the stage wins when both are on), "focus" (its
// focus, micrometres above the relief's lowest point), "frames" (read-only
// count of frames delivered since the last start), "red-balance" and
// "blue-balance" (the camera's white balance: gains of the red and blue
// channels in percent, 10..400) and "balance-controls" (bool, on: whether
// those two are offered as camera controls).

inline constexpr const char* kSimCameraElement = "oculixsimcamsrc";

// Registers the element type in this process (no plugin file). Idempotent.
void RegisterSimCameraSource();

// Moves the stage of a simulated camera showing its stage ("stage" on) by
// `step` slide pixels; false, doing nothing, for any other camera.
bool MoveSimStage(GstElement* camera, const QPointF& step);

// The range of "focus": the default relief's height.
inline constexpr int kSimFocusMaxUm = 60;
inline constexpr int kSimFocusDefaultUm = 30;

// Turns the focus knob of a simulated camera showing its relief ("depth" on)
// by stepUm micrometres; false, doing nothing, for any other camera.
bool FocusSimCamera(GstElement* camera, int stepUm);

// Faults a test may inject into every running and future camera of a name,
// as a pulled camera or a slow one would behave.
struct SimCameraFault
{
    // Stop with a read error, as an unplugged V4L2 camera does, when the
    // camera has delivered this many frames since it started (0: never).
    int failAfterFrames = 0;
    // Deliver every n-th frame lateMs late (0: never).
    int lateEvery = 0;
    int lateMs = 0;
    // Refuse to start, as a camera held by another program does.
    bool busy = false;
};
void SetSimCameraFault(const QString& cameraName, const SimCameraFault& fault);
void ClearSimCameraFaults();
