#pragma once

#include "capture/CaptureFormat.h"
#include "image/ProcessSwitches.h"
#include "measure/ParticleAnalyzer.h"

#include <QRect>
#include <QString>

#include <vector>

// A camera format asked for on the command line: WxH[@fps][:YUY2|MJPG].
struct FormatRequest
{
    unsigned width = 0;
    unsigned height = 0;
    double fps = 0; // 0: the rate the camera lists
    QString fourcc; // empty: the first format of that size
};

// False with a one-line reason for a malformed text.
bool ParseFormatSpec(const QString& text, FormatRequest* request, QString* error);

// The index of the first listed format that fits, or -1.
int FindFormat(const std::vector<CaptureFormat>& formats, const FormatRequest& request);

// "640x480@30:YUY2", the form --format takes.
QString FormatSpecText(const CaptureFormat& format);
double FormatFps(const CaptureFormat& format);

// A comma-separated list of the operations of ProcessOperations.h by name,
// those with parameters as name=V or name=V1,V2,... False with a one-line
// reason for an unknown name or a bad value.
bool ParseProcessSpec(const QString& text, ProcessSwitches* switches, QString* error);
// The operations as --process takes them, for its help: "flip, ..., binary=LEVEL (0-255), ...".
QString ProcessSpecHelp();

// A rectangle in picture coordinates, "X,Y,W,H": whole numbers, X and Y from
// 0, W and H from 1. False with a one-line reason otherwise.
bool ParseRegion(const QString& text, QRect* region, QString* error);

// A decimal number of seconds at least minimum (locale-independent).
bool ParseSeconds(const QString& text, double minimum, double* seconds);

// The length of one division of a stage micrometer: "0.01mm", "10 um".
struct Division
{
    double micrometres = 0;
    int unit = 1; // index into the unit table: um, mm, cm, dm, inch
};
// False with a one-line reason for a missing or unknown unit or a length that
// is not a positive number.
bool ParseDivision(const QString& text, Division* division, QString* error);

// A particle threshold: "LOW:HIGH" (gray levels 0..255, inclusive) or an
// automatic method, "otsu", "default" or "triangle". False with a one-line reason.
bool ParseThreshold(const QString& text, ParticleOptions* options, QString* error);
