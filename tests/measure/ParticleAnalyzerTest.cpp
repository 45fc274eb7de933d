#include "measure/ParticleAnalyzer.h"

#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>

namespace {

// Black picture with white particles painted on.
QImage Blank(int width = 64, int height = 48)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(Qt::black);
    return picture;
}

void Fill(QImage& picture, const QRect& rect, QRgb colour = qRgb(255, 255, 255))
{
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            picture.setPixel(x, y, colour);
}

void Disc(QImage& picture, double cx, double cy, double r)
{
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (std::hypot(x + 0.5 - cx, y + 0.5 - cy) <= r)
                picture.setPixel(x, y, qRgb(255, 255, 255));
}

ParticleOptions Bright()
{
    ParticleOptions options;
    options.low = 128;
    options.high = 255;
    return options;
}

std::vector<qint64> Pixels(const ParticleResult& result)
{
    std::vector<qint64> pixels;
    for (const Particle& p : result.particles)
        pixels.push_back(p.pixels);
    return pixels;
}

} // namespace

TEST(ParticleAnalyzer, ParticlesAreEightConnectedAndListedInScanOrder)
{
    QImage picture = Blank();
    Fill(picture, QRect(10, 10, 3, 3));
    Fill(picture, QRect(13, 13, 3, 3)); // touches the first at a corner only
    Fill(picture, QRect(30, 5, 2, 2)); // one column of background from the next
    Fill(picture, QRect(33, 5, 4, 1));
    picture.setPixel(40, 20, qRgb(255, 255, 255)); // a row above the next, further right
    picture.setPixel(5, 21, qRgb(255, 255, 255));
    const ParticleResult result = AnalyzeParticles(picture, Bright());
    // Scan order: the 2x2 and the 4x1 start in row 5, the joined squares in row 10.
    EXPECT_EQ(Pixels(result), (std::vector<qint64> { 4, 4, 18, 1, 1 }));
    EXPECT_EQ(result.particles[3].bounds.topLeft(), QPoint(40, 20));
    // The diagonal pair's outline goes round both squares through the shared
    // corner, from where ImageJ's tracer starts: below the top row's right end.
    EXPECT_EQ(result.particles[2].outline,
        (std::vector<QPoint> { { 13, 13 }, { 16, 13 }, { 16, 16 }, { 13, 16 }, { 13, 13 }, { 10, 13 },
            { 10, 10 }, { 13, 10 } }));
}

TEST(ParticleAnalyzer, MeasuresInTheCalibratedUnitAsImageJDoes)
{
    QImage picture = Blank();
    Fill(picture, QRect(20, 30, 10, 10));
    Fill(picture, QRect(5, 5, 1, 1));
    const CalibrationRecord unit { 0, 0.5, 0.5, 1.0, 1.0 };
    const ParticleResult result = AnalyzeParticles(picture, Bright(), &unit);
    ASSERT_EQ(result.particles.size(), 2U);
    const Particle& dot = result.particles[0];
    // A single pixel: 4 edges, two corners cut: 4 - 2 (2 - sqrt 2) pixels.
    EXPECT_NEAR(dot.perimeter, 0.5 * (4 - 2 * (2 - std::sqrt(2.0))), 1e-12);
    EXPECT_DOUBLE_EQ(dot.circularity, 1.0); // capped
    const Particle& square = result.particles[1];
    EXPECT_EQ(square.outline, (std::vector<QPoint> { { 30, 40 }, { 20, 40 }, { 20, 30 }, { 30, 30 } }));
    EXPECT_EQ(square.pixels, 100);
    EXPECT_DOUBLE_EQ(square.area, 25.0);
    // 40 edges of 0.5, four corners each cut by 1 - sqrt(0.5).
    EXPECT_NEAR(square.perimeter, 20.0 - 4 * (1.0 - std::sqrt(0.5)), 1e-12);
    EXPECT_NEAR(square.diameter, std::sqrt(100.0 / 3.14159265358979323846), 1e-12);
    EXPECT_NEAR(square.circularity, 4 * 3.14159265358979323846 * 25.0 / std::pow(square.perimeter, 2), 1e-12);
    // Pixels 20..29 have their centres at 20.5..29.5.
    EXPECT_DOUBLE_EQ(square.x, 12.5);
    EXPECT_DOUBLE_EQ(square.y, 17.5);
    EXPECT_EQ(square.bounds, QRect(20, 30, 10, 10));

    // A diagonal staircase: twelve unit edges, and only every other corner
    // cut, since a step of one pixel after a cut corner is part of the diagonal.
    QImage stairs = Blank();
    for (int i = 0; i < 3; ++i)
        stairs.setPixel(10 + i, 10 + i, qRgb(255, 255, 255));
    const ParticleResult diagonal = AnalyzeParticles(stairs, Bright());
    ASSERT_EQ(diagonal.particles.size(), 1U);
    EXPECT_EQ(diagonal.particles[0].outline.size(), 12U);
    EXPECT_NEAR(diagonal.particles[0].perimeter, 12 - 6 * (2 - std::sqrt(2.0)), 1e-12);
}

TEST(ParticleAnalyzer, HolesCountOnlyWhenIncludedAndSwallowWhatIsInThem)
{
    QImage picture = Blank();
    Fill(picture, QRect(10, 10, 10, 10));
    Fill(picture, QRect(13, 13, 4, 4), qRgb(0, 0, 0));
    Fill(picture, QRect(14, 14, 1, 1)); // an island in the hole
    ParticleOptions options = Bright();
    const ParticleResult apart = AnalyzeParticles(picture, options);
    EXPECT_EQ(Pixels(apart), (std::vector<qint64> { 84, 1 }));
    // The ring's centre is its square's, whatever the hole.
    EXPECT_DOUBLE_EQ(apart.particles[0].x, 15.0);
    options.includeHoles = true;
    const ParticleResult whole = AnalyzeParticles(picture, options);
    EXPECT_EQ(Pixels(whole), (std::vector<qint64> { 100 }));
    EXPECT_DOUBLE_EQ(whole.particles[0].area, 100.0);
}

TEST(ParticleAnalyzer, EdgesAndSizeLimitsLeaveParticlesOut)
{
    QImage picture = Blank(40, 30);
    Fill(picture, QRect(0, 10, 3, 3)); // left edge
    Fill(picture, QRect(37, 20, 3, 2)); // right edge
    Fill(picture, QRect(10, 0, 2, 2)); // top
    Fill(picture, QRect(20, 28, 4, 2)); // bottom
    Fill(picture, QRect(5, 5, 2, 2)); // 4 px inside
    Fill(picture, QRect(15, 15, 3, 3)); // 9
    Fill(picture, QRect(25, 10, 4, 4)); // 16
    ParticleOptions options = Bright();
    EXPECT_EQ(AnalyzeParticles(picture, options).particles.size(), 7U);
    options.excludeEdges = true;
    EXPECT_EQ(Pixels(AnalyzeParticles(picture, options)), (std::vector<qint64> { 4, 16, 9 }));
    // Limits are inclusive.
    options.minArea = 9;
    options.maxArea = 9;
    EXPECT_EQ(Pixels(AnalyzeParticles(picture, options)), (std::vector<qint64> { 9 }));
    options.minArea = 5;
    options.maxArea = 1e9;
    EXPECT_EQ(Pixels(AnalyzeParticles(picture, options)), (std::vector<qint64> { 16, 9 }));
    // A 1 x 8 line is far from round; the squares are close to it.
    Fill(picture, QRect(5, 25, 8, 1));
    options = Bright();
    options.excludeEdges = true;
    options.minCircularity = 0.5;
    EXPECT_EQ(Pixels(AnalyzeParticles(picture, options)), (std::vector<qint64> { 4, 16, 9 }));
    options.minCircularity = 0.0;
    options.maxCircularity = 0.5;
    EXPECT_EQ(Pixels(AnalyzeParticles(picture, options)), (std::vector<qint64> { 8 }));
}

TEST(ParticleAnalyzer, ThresholdRangeIsInclusiveAndAutomaticSidesFollowDark)
{
    QImage picture = Blank(20, 10);
    picture.fill(qRgb(200, 200, 200));
    Fill(picture, QRect(2, 2, 2, 2), qRgb(99, 99, 99));
    Fill(picture, QRect(6, 2, 2, 2), qRgb(100, 100, 100));
    Fill(picture, QRect(10, 2, 2, 2), qRgb(150, 150, 150));
    Fill(picture, QRect(14, 2, 2, 2), qRgb(151, 151, 151));
    ParticleOptions options;
    options.low = 100;
    options.high = 150;
    ParticleResult result = AnalyzeParticles(picture, options);
    EXPECT_EQ(result.particles.size(), 2U);
    EXPECT_EQ(result.particles[0].bounds.left(), 6);
    EXPECT_EQ(result.particles[1].bounds.left(), 10);
    // Otsu splits the dark squares from the light background: the level sits
    // at the top of the gap, 199, so dark takes 0..199 and light 200..255.
    options.method = GrayThreshold::Method::Otsu;
    options.dark = true;
    result = AnalyzeParticles(picture, options);
    EXPECT_EQ(result.low, 0);
    EXPECT_EQ(result.high, 199);
    EXPECT_EQ(result.particles.size(), 4U);
    options.dark = false;
    result = AnalyzeParticles(picture, options);
    EXPECT_EQ(result.low, 200);
    EXPECT_EQ(result.high, 255);
    ASSERT_EQ(result.particles.size(), 1U); // the background, holes and all
    EXPECT_EQ(result.particles[0].pixels, 200 - 16);
    EXPECT_TRUE(AnalyzeParticles(QImage(), options).particles.empty());
}

TEST(ParticleAnalyzer, WatershedSplitsTouchingDiscsAndLeavesSingleOnesWhole)
{
    QImage picture = Blank(160, 60);
    Disc(picture, 30, 30, 12); // alone
    Disc(picture, 70, 30, 10); // a touching pair of equal discs
    Disc(picture, 88, 30, 10);
    Disc(picture, 122, 30, 12); // a pair of unequal ones
    Disc(picture, 141, 30, 8);
    ParticleOptions options = Bright();
    EXPECT_EQ(AnalyzeParticles(picture, options).particles.size(), 3U);
    options.watershed = true;
    const ParticleResult split = AnalyzeParticles(picture, options);
    ASSERT_EQ(split.particles.size(), 5U);
    // Each part keeps close to its disc's area, the line taking a pixel width.
    const double areas[] = { 3.14159 * 144, 3.14159 * 100, 3.14159 * 100, 3.14159 * 144, 3.14159 * 64 };
    std::vector<Particle> byX = split.particles;
    std::sort(byX.begin(), byX.end(), [](const Particle& a, const Particle& b) { return a.x < b.x; });
    for (std::size_t i = 0; i < byX.size(); ++i)
        EXPECT_NEAR(byX[i].area, areas[i], areas[i] * 0.08) << i;
    EXPECT_NEAR(byX[1].x, 70, 1.0);
    EXPECT_NEAR(byX[2].x, 88, 1.0);
}

TEST(ParticleAnalyzer, WatershedNeedsMoreThanHalfAPixelOfNeckAndIgnoresRoughRims)
{
    QImage picture = Blank(160, 60);
    // Overlapping by a third: the neck is 5.3 pixels against peaks of 10.
    Disc(picture, 20, 30, 10);
    Disc(picture, 37, 30, 10);
    // A disc with its rim nibbled every few pixels: small bumps of the
    // distance map that are no particles of their own.
    Disc(picture, 100, 30, 14);
    for (int a = 0; a < 360; a += 17) {
        const double t = a * 3.14159265358979323846 / 180;
        const int x = int(100 + 13.6 * std::cos(t));
        const int y = int(30 + 13.6 * std::sin(t));
        picture.setPixel(x, y, qRgb(0, 0, 0));
    }
    ParticleOptions options = Bright();
    options.watershed = true;
    EXPECT_EQ(AnalyzeParticles(picture, options).particles.size(), 3U);
}

TEST(ParticleAnalyzer, SummaryAndHistogramOfAreas)
{
    std::vector<Particle> particles(5);
    const double areas[] = { 2, 4, 4, 10, 30 };
    for (std::size_t i = 0; i < particles.size(); ++i)
        particles[i].area = areas[i];
    const ParticleSummary s = Summarize(particles, 500);
    EXPECT_EQ(s.count, 5U);
    EXPECT_DOUBLE_EQ(s.totalArea, 50);
    EXPECT_DOUBLE_EQ(s.meanArea, 10);
    // Squares 64 + 36 + 36 + 0 + 400 = 536 over 4.
    EXPECT_DOUBLE_EQ(s.areaDeviation, std::sqrt(134.0));
    EXPECT_DOUBLE_EQ(s.areaFraction, 0.1);
    // Classes of 7 from 2: [2, 9) holds three, [9, 16) one, the largest the last.
    const AreaHistogram h = HistogramOfAreas(particles, 4);
    EXPECT_DOUBLE_EQ(h.from, 2);
    EXPECT_DOUBLE_EQ(h.classWidth, 7);
    EXPECT_EQ(h.counts, (std::vector<int> { 3, 1, 0, 1 }));
    EXPECT_EQ(HistogramOfAreas({ particles[1], particles[2] }, 3).counts, (std::vector<int> { 2, 0, 0 }));
    EXPECT_TRUE(HistogramOfAreas({}, 3).counts.empty());
    EXPECT_EQ(Summarize({}, 10).count, 0U);
}
