#include "calibration/GraticuleDetector.h"

#include <QBuffer>
#include <QPainter>

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Scale
{
    double pitch = 8.0; // pixels per division
    double angle = 0.0; // degrees, clockwise
    int divisions = 60;
    bool lightOnDark = false;
    double noise = 0.0;
    QSize size { 640, 480 };
};

// A micrometer drawn anti-aliased: ticks 0.35 of a division wide and 5
// divisions long, centred in the picture, turned by the angle.
QImage DrawScale(const Scale& s)
{
    QImage image(s.size, QImage::Format_RGB32);
    const QColor paper = s.lightOnDark ? QColor(20, 20, 30) : QColor(225, 222, 210);
    const QColor ink = s.lightOnDark ? QColor(230, 230, 230) : QColor(30, 30, 35);
    image.fill(paper);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    // Pixel i covers [i, i + 1): the scale's centre lands on a pixel centre.
    p.translate(s.size.width() / 2 + 0.5, s.size.height() / 2 + 0.5);
    p.rotate(s.angle);
    const double w = 0.35 * s.pitch;
    for (int d = 0; d <= s.divisions; ++d) {
        const double x = (d - s.divisions / 2.0) * s.pitch;
        const double len = (d % 10 == 0 ? 9 : d % 5 == 0 ? 7 : 5) * s.pitch;
        p.drawRect(QRectF(x - w / 2, -len, w, len));
    }
    p.drawRect(QRectF(-s.divisions / 2.0 * s.pitch, 0, s.divisions * s.pitch, w));
    p.end();
    if (s.noise > 0) {
        std::mt19937 rng(5);
        std::normal_distribution<double> n(0, s.noise);
        for (int y = 0; y < image.height(); ++y) {
            QRgb* row = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const int v = std::clamp(int(std::lround(qRed(row[x]) + n(rng))), 0, 255);
                row[x] = qRgb(v, v, v);
            }
        }
    }
    return image;
}

QImage ThroughJpeg(const QImage& image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return QImage::fromData(bytes, "JPEG");
}

} // namespace

TEST(GraticuleDetector, FindsTheSpacingOfTurnedNoisyAndInvertedScalesWithinItsUncertainty)
{
    const struct
    {
        Scale scale;
        const char* what;
    } cases[] = {
        { { 8.0, 0.0 }, "level" },
        { { 7.3, 3.0 }, "turned 3 degrees, pitch between pixels" },
        { { 10.37, 30.0, 40 }, "turned 30 degrees" },
        { { 9.1, -62.0, 40 }, "steep, the other way" },
        { { 6.0, 90.0, 50 }, "upright" },
        { { 8.6, 12.0, 50, true }, "light ticks on dark" },
        { { 8.25, 5.0, 60, false, 12.0 }, "strong noise" },
        { { 4.2, 0.0, 100 }, "ticks barely resolved" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const GraticuleFit fit = DetectGraticule(DrawScale(c.scale), 10.0);
        ASSERT_TRUE(fit.found) << fit.reason.toStdString();
        // The stated uncertainty is two standard uncertainties; it must hold
        // the truth, and be small enough to be worth having.
        EXPECT_NEAR(fit.perPixel, 10.0 / c.scale.pitch, std::max(fit.perPixelU, 1e-9));
        EXPECT_LT(fit.perPixelU / fit.perPixel, 0.001);
        EXPECT_NEAR(fit.pitchPx, c.scale.pitch, 3 * fit.pitchSigmaPx + 1e-9);
        const double turn = std::remainder(fit.angleDeg - c.scale.angle, 180.0);
        EXPECT_NEAR(turn, 0.0, 0.3);
        EXPECT_GE(fit.ticks.size(), std::size_t(c.scale.divisions * 8 / 10));
        ASSERT_EQ(fit.ticks.size(), fit.tickIndex.size());
        // The ticks drawn back over the picture lie on the scale, one division apart.
        const QPointF step = fit.ticks.back() - fit.ticks.front();
        EXPECT_NEAR(std::hypot(step.x(), step.y()) / (fit.tickIndex.back() - fit.tickIndex.front()),
            c.scale.pitch, 0.05);
    }
}

TEST(GraticuleDetector, SurvivesJpegAndAPartialScaleAndKeepsToTheRegion)
{
    Scale s { 7.7, 3.0, 120 };
    s.size = QSize(800, 400); // the scale runs out of the picture on both sides
    const QImage picture = ThroughJpeg(DrawScale(s), 70);
    GraticuleFit fit = DetectGraticule(picture, 0.01);
    ASSERT_TRUE(fit.found) << fit.reason.toStdString();
    EXPECT_NEAR(fit.perPixel, 0.01 / 7.7, fit.perPixelU);

    // Ticks found inside a region are reported in picture coordinates.
    const QRect region(300, 100, 250, 200);
    fit = DetectGraticule(picture, 0.01, region);
    ASSERT_TRUE(fit.found) << fit.reason.toStdString();
    EXPECT_NEAR(fit.perPixel, 0.01 / 7.7, fit.perPixelU);
    for (const QPointF& t : fit.ticks)
        EXPECT_TRUE(QRectF(region).adjusted(-1, -1, 1, 1).contains(t)) << t.x() << "," << t.y();
}

TEST(GraticuleDetector, SaysSoWhenThereIsNoScale)
{
    // Plain paper with noise; round blobs; one lone line; a region that
    // holds paper only; and arguments that cannot work.
    QImage paper = DrawScale({ 8.0, 0.0, 0, false, 6.0 });
    QImage blobs(640, 480, QImage::Format_RGB32);
    blobs.fill(QColor(220, 220, 210));
    {
        QPainter p(&blobs);
        p.setRenderHint(QPainter::Antialiasing);
        std::mt19937 rng(3);
        for (int i = 0; i < 25; ++i) {
            p.setBrush(QColor(90 + int(rng() % 80), 50, 120));
            p.drawEllipse(QPointF(rng() % 640, rng() % 480), 5.0 + rng() % 40, 5.0 + rng() % 40);
        }
    }
    QImage line = paper.copy();
    {
        QPainter p(&line);
        p.fillRect(QRect(100, 200, 400, 3), Qt::black);
    }
    const QImage scale = DrawScale({});
    const struct
    {
        QImage picture;
        QRect region;
        double division;
        const char* what;
    } cases[] = {
        { paper, {}, 0.01, "noise only" },
        { blobs, {}, 0.01, "particles" },
        { line, {}, 0.01, "a single line" },
        { scale, QRect(0, 0, 640, 120), 0.01, "a region away from the scale" },
        { scale, QRect(600, 400, 20, 20), 0.01, "a tiny region" },
        { scale, {}, 0.0, "no division value" },
        { QImage(), {}, 0.01, "no picture" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const GraticuleFit fit = DetectGraticule(c.picture, c.division, c.region);
        EXPECT_FALSE(fit.found);
        EXPECT_FALSE(fit.reason.isEmpty());
        EXPECT_TRUE(fit.ticks.empty());
    }
}

// The text "Detect from micrometer" and oculix-cli show.
TEST(GraticuleDetector, ResultTextKeepsASignificantDigitOfTheUncertainty)
{
    GraticuleFit fit;
    fit.found = true;
    fit.perPixel = 1.250312;
    fit.perPixelU = 0.0008;
    fit.ticks.resize(93);
    fit.angleDeg = 3.04;
    EXPECT_EQ(GraticuleResultText(fit), QStringLiteral("1 px = 1.2503 µm ± 0.0008\n93 ticks, scale at 3.0°"));
    fit.perPixelU = 0.00004;
    EXPECT_TRUE(GraticuleResultText(fit).startsWith(QStringLiteral("1 px = 1.25031 µm ± 0.00004")));
}
