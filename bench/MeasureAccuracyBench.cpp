// How well Oculix measures, judged by the simulated camera's ground truth:
// - calibration from the stage micrometer against a ruler laid on the
//   nearest whole pixels, over the three frame sizes, turned slides, noise,
//   blur, uneven light and JPEG;
// - edge-snapped diameters of the round particles and sides of the square,
//   with how often the stated uncertainty holds the true error;
// - the time graticule detection takes on a 1600 x 1200 frame on one core.
// The accuracy tables are printed once, before the timings.
#include "calibration/GraticuleDetector.h"
#include "image/EdgeLocator.h"

#include <benchmark/benchmark.h>

#ifdef OCULIX_HAVE_CAPTURE
#include "capture/CSimScene.h"

#include <QBuffer>

#include <opencv2/core.hpp>

#include <cmath>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

// Defocus blurs by the same micrometres at every frame size (2 um: 0.8,
// 1.6 and 2 pixels), so each size sees the same loss of contrast.
struct Condition
{
    const char* name;
    double noise;
    double blurUm;
    int uneven;
    bool jpeg;
};
const Condition kConditions[] = {
    { "clean", 0.0, 0.0, 0, false },
    { "noise 8, blur 2 um", 8.0, 2.0, 0, false },
    { "noise 8, blur 2 um, light -40%, JPEG", 8.0, 2.0, 40, true },
};
const QSize kSizes[] = { { 640, 480 }, { 1280, 1024 }, { 1600, 1200 } };
const double kRotations[] = { 0.0, 3.0, 30.0 };

QImage Frame(CSimScene& scene, const Condition& c, double rotation)
{
    CSimScene::Controls controls;
    controls.drift = false;
    controls.noise = true;
    controls.noiseLevel = c.noise;
    controls.blur = c.blurUm / CSimScene::MicrometresPerPixel(scene.Width());
    controls.unevenLight = c.uneven;
    controls.rotation = rotation;
    scene.SetControls(controls);
    if (!c.jpeg)
        return scene.RenderRgb(0);
    return QImage::fromData(scene.RenderJpeg(0, 80), "JPEG");
}

QPointF Unit(QPointF v)
{
    return v / std::hypot(v.x(), v.y());
}

void CalibrationTable()
{
    std::printf("\nCalibration from the micrometer (10 um divisions) vs a ruler on whole pixels\n");
    std::printf("%-10s %5s  %-36s %6s %11s %11s %8s %12s\n", "size", "turn", "condition", "ticks", "error %",
        "stated U %", "held", "ruler err %");
    double worst = 0.0;
    double worstRuler = 0.0;
    int held = 0;
    int rows = 0;
    for (const QSize& size : kSizes) {
        CSimScene scene(unsigned(size.width()), unsigned(size.height()));
        const double truth = CSimScene::MicrometresPerPixel(unsigned(size.width()));
        for (double rotation : kRotations) {
            for (const Condition& c : kConditions) {
                const QImage frame = Frame(scene, c, rotation);
                const GraticuleFit fit = DetectGraticule(frame, 10.0);
                // The user's ruler: tick 0 and tick 100 on their nearest pixels.
                const QPointF a = scene.FramePoint(QPointF(500, 600), 0);
                const QPointF b = scene.FramePoint(QPointF(1500, 600), 0);
                const QPointF ar(std::round(a.x()), std::round(a.y()));
                const QPointF br(std::round(b.x()), std::round(b.y()));
                const double ruler = 1000.0 / std::hypot(br.x() - ar.x(), br.y() - ar.y());
                const double rulerErr = 100.0 * (ruler - truth) / truth;
                worstRuler = std::max(worstRuler, std::abs(rulerErr));
                ++rows;
                if (!fit.found) {
                    std::printf("%4dx%-5d %5.0f  %-36s  not found: %s\n", size.width(), size.height(), rotation,
                        c.name, qPrintable(fit.reason));
                    worst = 100.0;
                    continue;
                }
                const double err = 100.0 * (fit.perPixel - truth) / truth;
                const double u = 100.0 * fit.perPixelU / truth;
                const bool in = std::abs(err) <= u;
                held += in;
                worst = std::max(worst, std::abs(err));
                std::printf("%4dx%-5d %5.0f  %-36s %6zu %+11.4f %11.4f %8s %+12.4f\n", size.width(), size.height(),
                    rotation, c.name, fit.ticks.size(), err, u, in ? "yes" : "no", rulerErr);
            }
        }
    }
    std::printf("worst |error|: micrometer %.4f %%, whole-pixel ruler %.4f %%; uncertainty held in %d of %d\n",
        worst, worstRuler, held, rows);
}

struct Snap
{
    double error = 0.0; // snapped length minus the truth, pixels
    double u = 0.0; // stated expanded uncertainty, pixels
    double pixelError = 0.0; // the same line with its ends on the nearest whole pixels
    bool found = false;
};

// A line dragged across an object from about its edges (up to 2 pixels off,
// on whole pixels), both ends snapped along the line.
Snap Measure(const QImage& gray, QPointF e0, QPointF e1, std::mt19937& rng,
    const std::function<double(QPointF, QPointF)>& truthAlong)
{
    std::uniform_real_distribution<double> off(-2.0, 2.0);
    const QPointF d = Unit(e1 - e0);
    const QPointF p0(std::round(e0.x() + off(rng) * d.x()), std::round(e0.y() + off(rng) * d.y()));
    const QPointF p1(std::round(e1.x() + off(rng) * d.x()), std::round(e1.y() + off(rng) * d.y()));
    const QPointF dir = Unit(p1 - p0);
    Snap s;
    const auto a = LocateEdge(gray, p0, dir);
    const auto b = LocateEdge(gray, p1, dir);
    if (!a || !b)
        return s;
    s.found = true;
    const double truth = truthAlong(p0, dir);
    s.error = std::hypot(b->position.x() - a->position.x(), b->position.y() - a->position.y()) - truth;
    s.u = 2.0 * std::hypot(a->sigma, b->sigma);
    const QPointF r0(std::round(e0.x()), std::round(e0.y()));
    const QPointF r1(std::round(e1.x()), std::round(e1.y()));
    s.pixelError = std::hypot(r1.x() - r0.x(), r1.y() - r0.y()) - truthAlong(r0, Unit(r1 - r0));
    return s;
}

void SnapTable()
{
    std::printf("\nEdge-snapped diameters of the 5 particles and sides of the square (pixels), 5 drags each\n");
    std::printf("%-10s %5s  %-36s %6s %8s %8s %8s %10s\n", "size", "turn", "condition", "found", "MAE", "max",
        "held %", "pixel MAE");
    std::mt19937 rng(2024);
    double sumAbs = 0.0;
    int count = 0;
    int held = 0;
    int missed = 0;
    for (const QSize& size : kSizes) {
        CSimScene scene(unsigned(size.width()), unsigned(size.height()));
        const double umpp = CSimScene::MicrometresPerPixel(unsigned(size.width()));
        for (double rotation : kRotations) {
            for (const Condition& c : kConditions) {
                const QImage gray = Frame(scene, c, rotation).convertToFormat(QImage::Format_Grayscale8);
                const QPointF ux = Unit(scene.FramePoint(QPointF(1, 0), 0) - scene.FramePoint(QPointF(0, 0), 0));
                const QPointF uy(-ux.y(), ux.x());
                double rowAbs = 0.0;
                double rowMax = 0.0;
                double rowPixel = 0.0;
                int rowCount = 0;
                int rowHeld = 0;
                int rowTries = 0;
                auto add = [&](const Snap& s) {
                    ++rowTries;
                    if (!s.found)
                        return;
                    ++rowCount;
                    rowAbs += std::abs(s.error);
                    rowMax = std::max(rowMax, std::abs(s.error));
                    rowPixel += std::abs(s.pixelError);
                    rowHeld += std::abs(s.error) <= s.u;
                };
                const double diameters[] = { 20, 50, 100, 150, 250 };
                const double centresX[] = { 430, 560, 740, 980, 1300 };
                for (int i = 0; i < 5; ++i) {
                    const QPointF centre = scene.FramePoint(QPointF(centresX[i], 880), 0);
                    const double r = diameters[i] / 2 / umpp;
                    // The chord of the true circle along the measuring line.
                    auto chord = [&](QPointF p, QPointF dir) {
                        const QPointF v = centre - p;
                        const double across = v.x() * dir.y() - v.y() * dir.x();
                        return 2.0 * std::sqrt(std::max(0.0, r * r - across * across));
                    };
                    for (int k = 0; k < 5; ++k)
                        add(Measure(gray, centre - ux * r, centre + ux * r, rng, chord));
                }
                // Across the square, along each of its sides' directions.
                const QPointF sq = scene.FramePoint(QPointF(650, 1180), 0);
                const double half = 100.0 / umpp;
                for (const QPointF& axis : { ux, uy }) {
                    auto across = [&](QPointF, QPointF dir) {
                        return 2 * half / std::abs(dir.x() * axis.x() + dir.y() * axis.y());
                    };
                    for (int k = 0; k < 5; ++k)
                        add(Measure(gray, sq - axis * half, sq + axis * half, rng, across));
                }
                std::printf("%4dx%-5d %5.0f  %-36s %3d/%-2d %8.3f %8.3f %8.0f %10.3f\n", size.width(),
                    size.height(), rotation, c.name, rowCount, rowTries, rowCount ? rowAbs / rowCount : 0.0, rowMax,
                    rowCount ? 100.0 * rowHeld / rowCount : 0.0, rowCount ? rowPixel / rowCount : 0.0);
                sumAbs += rowAbs;
                count += rowCount;
                held += rowHeld;
                missed += rowTries - rowCount;
            }
        }
    }
    std::printf("overall: mean |error| %.3f px, uncertainty held in %.1f %% of %d, %d drags found no edge\n\n",
        count ? sumAbs / count : 0.0, count ? 100.0 * held / count : 0.0, count, missed);
}

void BM_AccuracyTables(benchmark::State& state)
{
    for (auto _ : state) {
        CalibrationTable();
        SnapTable();
    }
}
BENCHMARK(BM_AccuracyTables)->Iterations(1)->Unit(benchmark::kSecond);

void BM_DetectGraticule(benchmark::State& state)
{
    // One core, as the goal is stated.
    cv::setNumThreads(1);
    CSimScene scene(unsigned(state.range(0)), unsigned(state.range(1)));
    const QImage frame = Frame(scene, kConditions[1], 3.0);
    for (auto _ : state) {
        const GraticuleFit fit = DetectGraticule(frame, 10.0);
        benchmark::DoNotOptimize(fit.perPixel);
        if (!fit.found)
            state.SkipWithError("no micrometer found");
    }
}
BENCHMARK(BM_DetectGraticule)->Args({ 1600, 1200 })->Args({ 640, 480 })->Unit(benchmark::kMillisecond);

void BM_LocateEdge(benchmark::State& state)
{
    CSimScene scene(1280, 1024);
    const QImage gray = Frame(scene, kConditions[0], 0.0).convertToFormat(QImage::Format_Grayscale8);
    const QPointF centre = scene.FramePoint(QPointF(1300, 880), 0);
    const QPointF start = centre + QPointF(125.0 / 1.25 + 1.0, 0.0);
    for (auto _ : state)
        benchmark::DoNotOptimize(LocateEdge(gray, start, QPointF(1, 0)));
}
BENCHMARK(BM_LocateEdge)->Unit(benchmark::kMicrosecond);

} // namespace
#endif
