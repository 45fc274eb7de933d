#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QString>

#include <vector>

// What a stage micrometer in a picture says about the pixel size.
struct GraticuleFit
{
    bool found = false;
    // Why nothing was found, for the user.
    QString reason;
    // Distance between neighbouring ticks along the scale, in pixels, and its
    // standard uncertainty from the fit of the tick centres.
    double pitchPx = 0.0;
    double pitchSigmaPx = 0.0;
    // Direction of the scale's axis in the picture, degrees, clockwise from
    // the x axis (the y axis points down), in (-90, 90].
    double angleDeg = 0.0;
    // Length of one pixel along the scale in the division's unit, and its
    // expanded uncertainty (two standard uncertainties, about 95 %).
    double perPixel = 0.0;
    double perPixelU = 0.0;
    // The tick centres the fit used, in picture pixels (integers are pixel
    // centres), in order along the scale, and their division numbers counted
    // from the first.
    std::vector<QPointF> ticks;
    std::vector<int> tickIndex;
};

// Finds the ticks of a stage micrometer (a row of evenly spaced thin lines) in
// a picture, in any orientation, dark on light or light on dark, and fits
// their spacing to a fraction of a pixel. `division` is the real length of one
// division (any unit; perPixel comes in the same unit). `region`, when not
// empty, limits the search to that part of the picture. Needs no display.
GraticuleFit DetectGraticule(const QImage& picture, double division, const QRect& region = QRect());

// What a fit says to the user, as "Detect from micrometer" and oculix-cli
// show it: "1 px = 1.2503 µm ± 0.0008" and the ticks and angle on a second
// line, or the reason nothing was found.
QString GraticuleResultText(const GraticuleFit& fit);
