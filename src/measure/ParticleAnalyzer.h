#pragma once

#include "calibration/CalibrationRecord.h"
#include "image/GrayThreshold.h"

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

// What counts as a particle.
struct ParticleOptions
{
    // An automatic threshold, or none for the range low..high (inclusive).
    std::optional<GrayThreshold::Method> method;
    int low = 128;
    int high = 255;
    // With an automatic threshold: the particles are the darker side.
    bool dark = false;
    // Area limits in pixels, inclusive.
    double minArea = 0.0;
    double maxArea = std::numeric_limits<double>::infinity();
    double minCircularity = 0.0;
    double maxCircularity = 1.0;
    // Leave out particles touching the picture's edge.
    bool excludeEdges = false;
    // Count the holes of a particle (and anything inside them) as its area.
    bool includeHoles = false;
    // Split touching particles first (BinaryWatershed).
    bool watershed = false;
};

struct Particle
{
    // The outline along the pixel edges, clockwise, corners only: whole
    // numbers are pixel corners, so the polygon encloses exactly its pixels.
    std::vector<QPoint> outline;
    QRect bounds;
    qint64 pixels = 0;
    // In the calibration's unit (squared for the area), or pixels without one.
    double area = 0.0;
    // The outline with each corner cut by a diagonal, as ImageJ measures a
    // traced outline.
    double perimeter = 0.0;
    // The diameter of the circle of the same area.
    double diameter = 0.0;
    // 4 pi area / perimeter squared, at most 1.
    double circularity = 0.0;
    // The centre of mass of the pixels, a pixel's centre being half a pixel in.
    double x = 0.0;
    double y = 0.0;
};

struct ParticleResult
{
    // The gray range that was taken as particles.
    int low = 0;
    int high = 255;
    // In the order ImageJ lists them: by the first row, then column, they reach.
    std::vector<Particle> particles;
};

class CGVLElemMgr;

// Finds the 8-connected particles of a picture's gray levels ((R+G+B)/3) in
// the threshold range, measures them with the calibration (null: pixels) and
// keeps those the options allow. A null picture gives none.
ParticleResult AnalyzeParticles(
    const QImage& picture, const ParticleOptions& options, const CalibrationRecord* unit = nullptr);

// Appends each particle's outline to the manager as a closed polygon shape,
// in the particles' order, so they are numbered, exported, kept and deleted
// as drawn ones. Returns how many were added.
std::size_t AddOutlineShapes(CGVLElemMgr& mgr, const std::vector<Particle>& particles);

// The table of particles: "No.,Area,Perimeter,Diameter,Circularity,X,Y,Unit"
// and a row each, numbers with `precision` decimals in the C locale.
QByteArray ParticleCsv(const std::vector<Particle>& particles, const QString& unit, int precision);

// What the results window sums up: the count, the mean area and its standard
// deviation (of the sample; 0 for fewer than two), the total area and the
// share of the picture's area the particles cover.
struct ParticleSummary
{
    std::size_t count = 0;
    double meanArea = 0.0;
    double areaDeviation = 0.0;
    double totalArea = 0.0;
    double areaFraction = 0.0;
};
ParticleSummary Summarize(const std::vector<Particle>& particles, double pictureArea);

// The particles counted by area in equal classes from the smallest area to
// the largest (which falls in the last); empty without particles.
struct AreaHistogram
{
    double from = 0.0;
    double classWidth = 0.0;
    std::vector<int> counts;
};
AreaHistogram HistogramOfAreas(const std::vector<Particle>& particles, int classes);
