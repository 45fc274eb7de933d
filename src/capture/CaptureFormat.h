#pragma once

#include <QString>

#include <gst/gst.h>

#include <vector>

// One capability of a capture device: a frame size in one pixel format.
struct CaptureFormat
{
    unsigned width = 0;
    unsigned height = 0;
    // The format as a FourCC: "YUY2", "MJPG", "NV12", ...
    QString fourcc;
    // The GStreamer media type and raw format name ("video/x-raw", "YUY2";
    // "image/jpeg", empty).
    QString mediaType;
    QString rawFormat;
    // The fastest frame rate offered at this size; 0/1 when the device
    // leaves it open.
    int fpsNum = 0;
    int fpsDen = 1;

    bool operator==(const CaptureFormat&) const = default;
};

// The device's capabilities as a flat list in the device's order: one entry
// per format and size. Frame sizes given as lists become one entry each;
// sizes given as ranges become the usual camera sizes inside the range plus
// its largest size. Frame rates given as lists or ranges keep the fastest
// (for a range, 30 frames per second when the range holds it). Formats the
// pipeline cannot decode (compressed video other than JPEG) are left out.
std::vector<CaptureFormat> NormaliseCaps(const GstCaps* caps);

// Caps that fix the device to the format, for the filter after the source.
GstCaps* CapsForFormat(const CaptureFormat& format);
