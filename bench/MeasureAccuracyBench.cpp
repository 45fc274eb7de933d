// How well Oculix measures, judged by the simulated camera's ground truth:
// - calibration from the stage micrometer against a ruler laid on the
//   nearest whole pixels, over the three frame sizes, turned slides, noise,
//   blur, uneven light and JPEG;
// - edge-snapped diameters of the round particles and sides of the square,
//   measured by line and circle gestures as a user makes them with "Snap to
//   edges" on, with how often the stated uncertainty holds the true error;
// - the time graticule detection takes on a 1600 x 1200 frame on one core.
// The accuracy tables are printed once, before the timings.
#include "calibration/GraticuleDetector.h"
#include "image/EdgeLocator.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLLine.h"

#include <benchmark/benchmark.h>

#ifdef OCULIX_HAVE_CAPTURE
#include "capture/CSimScene.h"

#include <QBuffer>

#include <cmath>
#include <cstdio>
#include <functional>
#include <opencv2/core.hpp>
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
                    std::printf("%4dx%-5d %5.0f  %-36s  not found: %s\n", size.width(), size.height(),
                        rotation, c.name, qPrintable(fit.reason));
                    worst = 100.0;
                    continue;
                }
                const double err = 100.0 * (fit.perPixel - truth) / truth;
                const double u = 100.0 * fit.perPixelU / truth;
                const bool in = std::abs(err) <= u;
                held += in;
                worst = std::max(worst, std::abs(err));
                std::printf("%4dx%-5d %5.0f  %-36s %6zu %+11.4f %11.4f %8s %+12.4f\n", size.width(),
                    size.height(), rotation, c.name, fit.ticks.size(), err, u, in ? "yes" : "no", rulerErr);
            }
        }
    }
    std::printf(
        "worst |error|: micrometer %.4f %%, whole-pixel ruler %.4f %%; uncertainty held in %d of %d\n", worst,
        worstRuler, held, rows);
}

struct Snap
{
    double error = 0.0; // snapped length minus the truth, pixels
    double u = 0.0; // stated expanded uncertainty, pixels
    double pixelError = 0.0; // the same line with its ends on the nearest whole pixels
    bool found = false;
};

// Shapes drawn on one frame in picture pixels (1 px a pixel), snapping on.
struct Gestures
{
    explicit Gestures(const QImage& gray)
    {
        mgr.CreateShape(ShapeType::Ruler);
        mgr.m_unit = { 0, 1.0, 1.0, 0, 0 };
        mgr.SetSnapSource([gray] { return gray; });
    }
    template <typename Shape> Shape* Drag(int tool, QPoint from, QPoint to)
    {
        mgr.DeleteAll();
        mgr.OnLButtonDown(1, from, tool);
        mgr.OnMouseMove(1, from, tool);
        mgr.OnMouseMove(1, to, tool);
        mgr.OnLButtonUp(0, to, tool);
        auto* shape = mgr.m_arShape.size() == 2 ? dynamic_cast<Shape*>(mgr.m_arShape[1].get()) : nullptr;
        return shape && shape->IsSnapped() ? shape : nullptr;
    }
    CGVLElemMgr mgr;
};

QPoint Nearest(QPointF p)
{
    return QPoint(int(std::lround(p.x())), int(std::lround(p.y())));
}

// A line dragged across an object from about its edges (up to 2 pixels off,
// on whole pixels), both ends snapped along the line.
Snap Measure(Gestures& g, QPointF e0, QPointF e1, std::mt19937& rng,
    const std::function<double(QPointF, QPointF)>& truthAlong)
{
    std::uniform_real_distribution<double> off(-2.0, 2.0);
    const QPointF d = Unit(e1 - e0);
    const QPoint p0 = Nearest(e0 + d * off(rng));
    const QPoint p1 = Nearest(e1 + d * off(rng));
    const QPointF dir = Unit(QPointF(p1 - p0));
    Snap s;
    const CGVLLine* line = g.Drag<CGVLLine>(CGVLShape::kToolLine, p0, p1);
    if (!line)
        return s;
    s.found = true;
    s.error = line->GetLength() - truthAlong(p0, dir);
    s.u = line->LengthUncertainty();
    const QPointF r0 = Nearest(e0);
    const QPointF r1 = Nearest(e1);
    s.pixelError = std::hypot(r1.x() - r0.x(), r1.y() - r0.y()) - truthAlong(r0, Unit(r1 - r0));
    return s;
}

// A circle dragged from about the centre (up to 2 pixels off) to about the
// rim: twice its snapped radius against the chord along the drag.
Snap MeasureCircle(Gestures& g, QPointF centre, QPointF rim, std::mt19937& rng,
    const std::function<double(QPointF, QPointF)>& chord)
{
    std::uniform_real_distribution<double> off(-2.0, 2.0);
    const QPoint c = Nearest(centre + QPointF(off(rng), off(rng)));
    const QPoint r = Nearest(rim + Unit(rim - centre) * off(rng));
    Snap s;
    const CGVLCircle* circle = g.Drag<CGVLCircle>(CGVLShape::kToolCircle, c, r);
    if (!circle)
        return s;
    s.found = true;
    s.error = 2 * circle->ExactRadius() - chord(c, Unit(QPointF(r - c)));
    s.u = 2 * circle->RadiusUncertainty();
    s.pixelError = 2 * std::hypot(r.x() - c.x(), r.y() - c.y()) - chord(c, Unit(QPointF(r - c)));
    return s;
}

// Errors of one kind of gesture, summed.
struct SnapStats
{
    void Add(const Snap& s)
    {
        ++tries;
        if (!s.found)
            return;
        ++found;
        sumAbs += std::abs(s.error);
        max = std::max(max, std::abs(s.error));
        pixel += std::abs(s.pixelError);
        held += std::abs(s.error) <= s.u;
    }
    void operator+=(const SnapStats& o)
    {
        tries += o.tries;
        found += o.found;
        sumAbs += o.sumAbs;
        max = std::max(max, o.max);
        pixel += o.pixel;
        held += o.held;
    }
    double Mae() const { return found ? sumAbs / found : 0.0; }
    double Held() const { return found ? 100.0 * held / found : 0.0; }
    double Pixel() const { return found ? pixel / found : 0.0; }
    int tries = 0;
    int found = 0;
    double sumAbs = 0.0;
    double max = 0.0;
    double pixel = 0.0;
    int held = 0;
};

void SnapTable()
{
    std::printf(
        "\nEdge-snapped diameters (pixels) of the 5 particles and sides of the square, 5 line drags each,\n"
        "and of the particles by 5 circle drags each (centre +-2 px, radius 2 px off)\n");
    std::printf("%-10s %5s  %-36s %6s %7s %7s %6s %9s | %6s %7s %7s %6s\n", "size", "turn", "condition",
        "lines", "MAE", "max", "held%", "pixel MAE", "circle", "MAE", "max", "held%");
    std::mt19937 rng(2024);
    SnapStats lines;
    SnapStats circles;
    for (const QSize& size : kSizes) {
        CSimScene scene(unsigned(size.width()), unsigned(size.height()));
        const double umpp = CSimScene::MicrometresPerPixel(unsigned(size.width()));
        for (double rotation : kRotations) {
            for (const Condition& c : kConditions) {
                const QImage gray = Frame(scene, c, rotation).convertToFormat(QImage::Format_Grayscale8);
                Gestures g(gray);
                const QPointF ux
                    = Unit(scene.FramePoint(QPointF(1, 0), 0) - scene.FramePoint(QPointF(0, 0), 0));
                const QPointF uy(-ux.y(), ux.x());
                SnapStats rowLines;
                SnapStats rowCircles;
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
                    for (int k = 0; k < 5; ++k) {
                        rowLines.Add(Measure(g, centre - ux * r, centre + ux * r, rng, chord));
                        rowCircles.Add(MeasureCircle(g, centre, centre + uy * r, rng, chord));
                    }
                }
                // Across the square, along each of its sides' directions.
                const QPointF sq = scene.FramePoint(QPointF(650, 1180), 0);
                const double half = 100.0 / umpp;
                for (const QPointF& axis : { ux, uy }) {
                    auto across = [&](QPointF, QPointF dir) {
                        return 2 * half / std::abs(dir.x() * axis.x() + dir.y() * axis.y());
                    };
                    for (int k = 0; k < 5; ++k)
                        rowLines.Add(Measure(g, sq - axis * half, sq + axis * half, rng, across));
                }
                std::printf(
                    "%4dx%-5d %5.0f  %-36s %3d/%-2d %7.3f %7.3f %6.0f %9.3f | %3d/%-2d %7.3f %7.3f %6.0f\n",
                    size.width(), size.height(), rotation, c.name, rowLines.found, rowLines.tries,
                    rowLines.Mae(), rowLines.max, rowLines.Held(), rowLines.Pixel(), rowCircles.found,
                    rowCircles.tries, rowCircles.Mae(), rowCircles.max, rowCircles.Held());
                lines += rowLines;
                circles += rowCircles;
            }
        }
    }
    std::printf("overall lines: mean |error| %.3f px (whole pixels %.3f), uncertainty held in %.1f %% of %d, "
                "%d found "
                "no edge\n",
        lines.Mae(), lines.Pixel(), lines.Held(), lines.found, lines.tries - lines.found);
    std::printf(
        "overall circles: mean |error| %.3f px, uncertainty held in %.1f %% of %d, %d found no edge\n\n",
        circles.Mae(), circles.Held(), circles.found, circles.tries - circles.found);
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
