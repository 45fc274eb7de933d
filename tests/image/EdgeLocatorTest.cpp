#include "image/EdgeLocator.h"

#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

// A straight edge through `through` with its dark side towards -normal,
// anti-aliased exactly: each pixel holds the share of its square on the
// bright side (found by supersampling 16 x 16), plus normal noise.
QImage StepEdge(QPointF through, double normalDeg, double noise = 0.0, int dark = 40, int bright = 200)
{
    QImage image(64, 64, QImage::Format_Grayscale8);
    const double nx = std::cos(normalDeg * kPi / 180);
    const double ny = std::sin(normalDeg * kPi / 180);
    std::mt19937 rng(11);
    std::normal_distribution<double> n(0.0, noise > 0 ? noise : 1.0);
    for (int y = 0; y < 64; ++y) {
        uchar* row = image.scanLine(y);
        for (int x = 0; x < 64; ++x) {
            int in = 0;
            for (int j = 0; j < 16; ++j) {
                for (int i = 0; i < 16; ++i) {
                    const double px = x - 0.5 + (i + 0.5) / 16 - through.x();
                    const double py = y - 0.5 + (j + 0.5) / 16 - through.y();
                    in += px * nx + py * ny > 0;
                }
            }
            const double v = dark + (bright - dark) * in / 256.0 + (noise > 0 ? n(rng) : 0.0);
            row[x] = uchar(std::clamp(int(std::lround(v)), 0, 255));
        }
    }
    return image;
}

} // namespace

TEST(EdgeLocator, PlacesAStepEdgeToAFewHundredthsOfAPixelWhereverItFalls)
{
    // Edges at many sub-pixel places and angles, searched along the edge's
    // normal and obliquely to it, from either side; pixels hold the share of
    // their square on the bright side, as anti-aliasing and a camera give.
    for (double offset : { 0.0, 0.13, 0.25, 0.5, 0.71, 0.9 }) {
        for (double angle : { 0.0, 17.0, 45.0, 90.0, 152.0 }) {
            const QPointF edge(31.0 + offset, 30.4 + offset / 3);
            const QImage image = StepEdge(edge, angle);
            const QPointF normal(std::cos(angle * kPi / 180), std::sin(angle * kPi / 180));
            for (double tilt : { 0.0, 25.0 }) {
                const double a = (angle + tilt) * kPi / 180;
                const QPointF dir(std::cos(a), std::sin(a));
                for (double start : { -2.6, 1.8 }) {
                    SCOPED_TRACE(testing::Message() << "offset " << offset << " angle " << angle << " tilt "
                                                    << tilt << " start " << start);
                    const auto fix = LocateEdge(image, edge + dir * start, dir);
                    ASSERT_TRUE(fix.has_value());
                    // Distance of the found point from the true edge line, along the search.
                    const QPointF miss = fix->position - edge;
                    const double across = miss.x() * normal.x() + miss.y() * normal.y();
                    const double along = across / (dir.x() * normal.x() + dir.y() * normal.y());
                    // Along the pixel grid to 0.05 pixels; obliquely, where
                    // interpolation is not exact, within the stated uncertainty.
                    const bool onGrid = std::fmod(angle, 90.0) == 0.0 && tilt == 0.0;
                    EXPECT_NEAR(along, 0.0, onGrid ? 0.05 : 2 * fix->sigma);
                    EXPECT_NEAR(fix->shift + start, along, 1e-9);
                    EXPECT_GT(fix->sigma, 0.0);
                    EXPECT_LT(fix->sigma, 0.06);
                }
            }
        }
    }
}

TEST(EdgeLocator, ItsUncertaintyGrowsWithNoiseAndHoldsTheTruth)
{
    int held = 0;
    int tries = 0;
    double quiet = 0.0;
    for (int k = 0; k < 40; ++k) {
        const QPointF edge(30.0 + 0.037 * k, 31.0);
        const QImage image = StepEdge(edge, 0.0, 6.0);
        // Each try reads the edge in a different row.
        const auto fix = LocateEdge(image, QPointF(28.0, 8.0 + k), QPointF(1, 0));
        ASSERT_TRUE(fix.has_value());
        ++tries;
        held += std::abs(fix->position.x() - edge.x()) <= 2 * fix->sigma;
        quiet = fix->sigma;
    }
    EXPECT_GE(held, tries * 9 / 10);
    const auto clean = LocateEdge(StepEdge({ 30.0, 31.0 }, 0.0), QPointF(28.0, 20.0), QPointF(1, 0));
    ASSERT_TRUE(clean.has_value());
    EXPECT_GT(quiet, 1.5 * clean->sigma);
}

TEST(EdgeLocator, TakesTheNearestEdgeAndNothingWhereThereIsNone)
{
    // A dark band from x = 30.5 to 36.5: two edges of opposite sense.
    QImage band(64, 64, QImage::Format_Grayscale8);
    band.fill(200);
    {
        QPainter p(&band);
        p.fillRect(QRectF(31.0, 0, 6, 64), QColor(40, 40, 40));
    }
    const auto left = LocateEdge(band, QPointF(32.0, 20.0), QPointF(1, 0));
    ASSERT_TRUE(left.has_value());
    EXPECT_NEAR(left->position.x(), 30.5, 0.05);
    const auto right = LocateEdge(band, QPointF(35.0, 20.0), QPointF(-1, 0));
    ASSERT_TRUE(right.has_value());
    EXPECT_NEAR(right->position.x(), 36.5, 0.05);
    // Beyond the reach, in flat noise, off the picture, with no direction.
    EXPECT_FALSE(LocateEdge(band, QPointF(20.0, 20.0), QPointF(1, 0), 4.0).has_value());
    EXPECT_FALSE(
        LocateEdge(StepEdge({ 0, 0 }, 0, 3.0, 100, 100), QPointF(30, 30), QPointF(1, 0)).has_value());
    EXPECT_FALSE(LocateEdge(band, QPointF(1.0, 20.0), QPointF(1, 0)).has_value());
    EXPECT_FALSE(LocateEdge(band, QPointF(32.0, 20.0), QPointF(0, 0)).has_value());
    EXPECT_FALSE(LocateEdge(QImage(), QPointF(32.0, 20.0), QPointF(1, 0)).has_value());
    // Colour pictures are read by their brightness.
    const auto colour
        = LocateEdge(band.convertToFormat(QImage::Format_RGB888), QPointF(32.0, 20.0), QPointF(1, 0));
    ASSERT_TRUE(colour.has_value());
    EXPECT_NEAR(colour->position.x(), 30.5, 0.05);
}
