// How well and how fast pictures are stitched, judged by the simulated
// stage's ground truth:
// - placement error of every frame of scripted scans of 20 and 60 frames of
//   640 x 480 (jitter, 35 % corner vignetting, noise, JPEG), and a 1 mm stage
//   micrometer measured on the mosaic, across seams;
// - the brightness step across seams, with the shading evened out and not;
// - stitching 20 pictures of 640 x 480 from JPEG files;
// - registering and placing one 1280 x 1024 frame against a built mosaic;
// - the memory a live scan of 100 fields of 1280 x 1024 holds.
// Figures on one core (OpenCV's threads off). The tables come first.
#include "image/Stitcher.h"

#include <benchmark/benchmark.h>

#ifdef OCULIX_HAVE_CAPTURE
#include "calibration/GraticuleDetector.h"
#include "capture/SimStage.h"
#include "image/FCObjImage.h"
#include "image/Registration.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <opencv2/core.hpp>
#include <optional>
#include <sys/resource.h>
#include <vector>

namespace {

struct Scan
{
    const char* name;
    int columns;
    int rows;
};
const Scan kScans[] = { { "20 frames (5 x 4)", 5, 4 }, { "60 frames (10 x 6)", 10, 6 } };

SimStage::Options ScanOptions(const Scan& scan, QSize frame = { 640, 480 })
{
    SimStage::Options options;
    options.frame = frame;
    options.fieldsAcross = 1.0 + 0.6 * (scan.columns - 1) + 0.6;
    options.fieldsDown = 1.0 + 0.6 * (scan.rows - 1) + 0.6;
    options.cornerShading = 0.65;
    options.jitter = 0.5;
    options.noise = 2.0;
    options.jpegQuality = 85;
    return options;
}

struct Stitched
{
    std::vector<QImage> frames;
    std::vector<QPointF> truth;
    int placed = 0;
};

// Runs the scan through the stitcher; false when a frame could not be placed.
Stitched RunScan(SimStage& stage, const Scan& scan, Stitcher& stitcher)
{
    Stitched out;
    for (const QPointF& at : stage.Serpentine(scan.columns, scan.rows, 0.6)) {
        stage.MoveTo(at);
        SimStage::Frame frame = stage.Capture();
        if (stitcher.Add(frame.picture))
            ++out.placed;
        out.frames.push_back(frame.picture);
        out.truth.push_back(frame.truth);
    }
    return out;
}

// Brightness of the mosaic against the slide, in blocks: the mean step of
// that ratio across every picture's edge inside the union, in percent.
double SeamStep(Stitcher& stitcher, const QImage& mosaic, const QImage& slide, const QPointF& toSlide,
    const std::vector<QImage>& frames)
{
    auto ratio = [&](QPoint centre) -> double {
        double m = 0.0, s = 0.0;
        for (int y = centre.y() - 4; y < centre.y() + 4; ++y)
            for (int x = centre.x() - 4; x < centre.x() + 4; ++x) {
                if (x < 0 || y < 0 || x >= mosaic.width() || y >= mosaic.height())
                    return -1.0;
                const QPoint on
                    = QPoint(int(std::lround(x + toSlide.x())), int(std::lround(y + toSlide.y())));
                if (!slide.rect().contains(on) || qGray(mosaic.pixel(x, y)) == 0)
                    return -1.0;
                m += qGray(mosaic.pixel(x, y));
                s += qGray(slide.pixel(on));
            }
        return m / s;
    };
    double sum = 0.0;
    int count = 0;
    for (int i = 0; i < stitcher.Count(); ++i) {
        const QPointF at = stitcher.Position(i);
        const int w = frames[size_t(i)].width(), h = frames[size_t(i)].height();
        for (int k = 16; k < std::max(w, h) - 16; k += 24) {
            const QPoint edges[4][2] = {
                { QPoint(int(at.x()) - 6, int(at.y()) + k), QPoint(int(at.x()) + 6, int(at.y()) + k) },
                { QPoint(int(at.x()) + w - 6, int(at.y()) + k),
                    QPoint(int(at.x()) + w + 6, int(at.y()) + k) },
                { QPoint(int(at.x()) + k, int(at.y()) - 6), QPoint(int(at.x()) + k, int(at.y()) + 6) },
                { QPoint(int(at.x()) + k, int(at.y()) + h - 6),
                    QPoint(int(at.x()) + k, int(at.y()) + h + 6) },
            };
            for (int e = 0; e < 4; ++e) {
                if ((e < 2 && k >= h - 16) || (e >= 2 && k >= w - 16))
                    continue;
                const double a = ratio(edges[e][0]), b = ratio(edges[e][1]);
                if (a <= 0.0 || b <= 0.0)
                    continue;
                sum += std::abs(a - b) / (0.5 * (a + b));
                ++count;
            }
        }
    }
    return count ? 100.0 * sum / count : -1.0;
}

// Spread of the mosaic's brightness against the slide over blocks of 32
// pixels, in percent of the mean: what uneven shading leaves.
double BrightnessSpread(const QImage& mosaic, const QImage& slide, const QPointF& toSlide)
{
    std::vector<double> ratios;
    for (int by = 0; by + 32 <= mosaic.height(); by += 32)
        for (int bx = 0; bx + 32 <= mosaic.width(); bx += 32) {
            double m = 0.0, s = 0.0;
            bool inside = true;
            for (int y = by; y < by + 32 && inside; y += 2)
                for (int x = bx; x < bx + 32; x += 2) {
                    const QPoint on(int(std::lround(x + toSlide.x())), int(std::lround(y + toSlide.y())));
                    if (!slide.rect().contains(on) || qGray(mosaic.pixel(x, y)) == 0) {
                        inside = false;
                        break;
                    }
                    m += qGray(mosaic.pixel(x, y));
                    s += qGray(slide.pixel(on));
                }
            if (inside)
                ratios.push_back(m / s);
        }
    double mean = 0.0, squares = 0.0;
    for (double r : ratios)
        mean += r;
    mean /= double(ratios.size());
    for (double r : ratios)
        squares += (r - mean) * (r - mean);
    return 100.0 * std::sqrt(squares / double(ratios.size())) / mean;
}

void PrintTables()
{
    std::printf(
        "\nStitching a scripted scan of 640 x 480 frames: jitter 0.5 px, corners 65 %% as bright as the "
        "centre, noise 2 levels, JPEG quality 85, 40 %% overlap\n");
    std::printf("%-20s %7s %8s %8s %12s %13s %12s %13s %12s %13s\n", "scan", "placed", "RMS px", "max px",
        "1 mm span %", "pixel size %", "seam step %", "(not evened)", "spread %", "(not evened)");
    for (const Scan& scan : kScans) {
        SimStage stage(ScanOptions(scan));
        Stitcher stitcher;
        const Stitched run = RunScan(stage, scan, stitcher);
        if (run.placed != int(run.frames.size())) {
            std::printf("%-20s %3d/%-3zu  frames left unplaced\n", scan.name, run.placed, run.frames.size());
            continue;
        }
        // Errors after the one translation that best lays the mosaic on the truth.
        QPointF mean;
        for (int i = 0; i < stitcher.Count(); ++i)
            mean += stitcher.Position(i) - run.truth[size_t(i)];
        mean /= stitcher.Count();
        double squares = 0.0, worst = 0.0;
        for (int i = 0; i < stitcher.Count(); ++i) {
            const QPointF e = stitcher.Position(i) - run.truth[size_t(i)] - mean;
            squares += e.x() * e.x() + e.y() * e.y();
            worst = std::max(worst, std::hypot(e.x(), e.y()));
        }
        const QImage mosaic = stitcher.Compose();
        const QPointF toSlide = -mean;
        // The micrometer in the top-left quarter, tick 0 to tick 100.
        const double um = stage.MicrometresPerPixel();
        const QPointF tick0(0.25 * stage.Slide().width() - 500.0 / um, 0.3 * stage.Slide().height());
        const QRect around
            = QRectF(tick0 - toSlide - QPointF(40, 150), QSizeF(1000.0 / um + 80, 190)).toRect();
        const GraticuleFit fit = DetectGraticule(mosaic, 10.0, around);
        double span = 0.0, pixel = 0.0;
        if (fit.found && fit.ticks.size() >= 2) {
            const double px = std::hypot(
                fit.ticks.back().x() - fit.ticks.front().x(), fit.ticks.back().y() - fit.ticks.front().y());
            const int divisions = fit.tickIndex.back() - fit.tickIndex.front();
            span = 100.0 * (px * um / (10.0 * divisions) - 1.0);
            pixel = 100.0 * (fit.perPixel / um - 1.0);
        }
        const double seam = SeamStep(stitcher, mosaic, stage.Slide(), toSlide, run.frames);
        Stitcher flat({ .minOverlap = 0.1, .evenShading = false });
        for (const QImage& frame : run.frames)
            flat.Add(frame);
        const QImage flatMosaic = flat.Compose();
        const double seamFlat = SeamStep(flat, flatMosaic, stage.Slide(), toSlide, run.frames);
        std::printf("%-20s %3d/%-3zu %8.3f %8.3f %+12.4f %+13.4f %12.2f %13.2f %12.2f %13.2f\n", scan.name,
            run.placed, run.frames.size(), std::sqrt(squares / stitcher.Count()), worst,
            fit.found ? span : NAN, fit.found ? pixel : NAN, seam, seamFlat,
            BrightnessSpread(mosaic, stage.Slide(), toSlide),
            BrightnessSpread(flatMosaic, stage.Slide(), toSlide));
    }
    std::printf("\n");
}

void BM_StitchTables(benchmark::State& state)
{
    cv::setNumThreads(1);
    for (auto _ : state)
        PrintTables();
}
BENCHMARK(BM_StitchTables)->Iterations(1)->Unit(benchmark::kSecond);

// 20 JPEG files of 640 x 480 read, placed, blended and the result written.
void BM_StitchFiles(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Scan scan = kScans[0];
    SimStage stage(ScanOptions(scan));
    QTemporaryDir dir;
    QStringList files;
    int n = 0;
    for (const QPointF& at : stage.Serpentine(scan.columns, scan.rows, 0.6)) {
        stage.MoveTo(at);
        files << dir.filePath(QStringLiteral("scan%1.jpg").arg(n++, 2, 10, QLatin1Char('0')));
        stage.Capture().picture.save(files.back(), "jpeg", 90);
    }
    for (auto _ : state) {
        Stitcher stitcher;
        for (const QString& file : files) {
            FCObjImage picture;
            if (!picture.Load(file) || !stitcher.Add(picture.ToQImage()))
                state.SkipWithError("a picture was not placed");
        }
        FCObjImage result;
        result.FromQImage(stitcher.Compose());
        if (!result.Save(dir.filePath(QStringLiteral("mosaic.jpg"))))
            state.SkipWithError("the mosaic was not saved");
    }
}
BENCHMARK(BM_StitchFiles)->Unit(benchmark::kMillisecond)->Iterations(3);

// One 1280 x 1024 frame registered and placed against a mosaic of 3 x 3
// frames, overlapping the last one placed and three more, as the next frame
// of a live scan would.
void BM_PlaceFrame1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Scan scan { "3 x 3", 3, 3 };
    SimStage stage(ScanOptions(scan, { 1280, 1024 }));
    std::vector<QImage> built;
    for (const QPointF& at : stage.Serpentine(3, 3, 0.6)) {
        stage.MoveTo(at);
        built.push_back(stage.Capture().picture);
    }
    // Up and left of the last: between the bottom-right four fields.
    stage.MoveTo(stage.Serpentine(3, 3, 0.6).back() - QPointF(0.3 * 1280, 0.3 * 1024));
    const QImage next = stage.Capture().picture;
    for (auto _ : state) {
        state.PauseTiming();
        Stitcher stitcher;
        for (const QImage& frame : built)
            stitcher.Add(frame);
        state.ResumeTiming();
        if (!stitcher.Add(next))
            state.SkipWithError("the frame was not placed");
    }
}
BENCHMARK(BM_PlaceFrame1280)->Unit(benchmark::kMillisecond)->Iterations(5);

// The same frame as the live mosaic tracks it: searched first where the last
// frame was placed, and asked to agree in every block of the overlap.
void BM_TrackFrame1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Scan scan { "3 x 3", 3, 3 };
    SimStage stage(ScanOptions(scan, { 1280, 1024 }));
    Stitcher::Options options;
    options.minAgreement = 0.7;
    Stitcher stitcher(options);
    for (const QPointF& at : stage.Serpentine(3, 3, 0.6)) {
        stage.MoveTo(at);
        stitcher.Add(stage.Capture().picture);
    }
    const QPointF last = stitcher.Position(stitcher.Count() - 1) - stitcher.Position(0);
    stage.MoveTo(stage.Serpentine(3, 3, 0.6).back() - QPointF(0.05 * 1280, 0.05 * 1024));
    const QImage next = stage.Capture().picture;
    for (auto _ : state) {
        // Over covered ground: found, and not kept, so every pass is alike.
        const Stitcher::Tracked tracked = stitcher.Track(next, 0.15, last);
        if (!tracked.found || tracked.added)
            state.SkipWithError("the frame was not tracked as over covered ground");
    }
}
BENCHMARK(BM_TrackFrame1280)->Unit(benchmark::kMillisecond);

// A live scan of 10 x 10 fields of 1280 x 1024 as the live mosaic tracks it,
// then a frame back over the first field with tracking lost: the memory the
// stitcher holds (and the process's peak) when every picture keeps its full
// registration data (argument 0) and when only the default few do.
void BM_LiveScanMemory1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Scan scan { "10 x 10", 10, 10 };
    SimStage stage(ScanOptions(scan, { 1280, 1024 }));
    const std::vector<QPointF> path = stage.Serpentine(scan.columns, scan.rows, 0.6);
    Stitcher::Options options;
    options.minAgreement = 0.7;
    if (state.range(0) == 0)
        options.preparedPictures = int(path.size());
    for (auto _ : state) {
        Stitcher stitcher(options);
        std::optional<QPointF> last;
        for (const QPointF& at : path) {
            stage.MoveTo(at);
            const Stitcher::Tracked tracked = stitcher.Track(stage.Capture().picture, 0.15, last);
            if (!tracked.found)
                state.SkipWithError("a field was not placed");
            last = tracked.position;
        }
        state.counters["tiles"] = stitcher.Count();
        state.counters["held MB"] = double(stitcher.HeldBytes()) / 1e6;
        state.counters["MB per tile"] = double(stitcher.HeldBytes()) / 1e6 / stitcher.Count();
        stage.MoveTo(path.front() + QPointF(0.2 * 1280, 0.1 * 1024));
        if (!stitcher.Track(stage.Capture().picture, 0.15, std::nullopt).found)
            state.SkipWithError("the first field was not found again");
    }
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak RSS MB"] = double(usage.ru_maxrss) / 1e3;
}
BENCHMARK(BM_LiveScanMemory1280)->Arg(1)->Arg(0)->Iterations(1)->Unit(benchmark::kSecond);

// Where a placement's time goes: preparing a frame once, the coarse search
// against one picture, the refinement against one.
struct Pair
{
    cv::Mat first;
    cv::Mat second;
};
Pair GrayPair1280()
{
    SimStage::Options options = ScanOptions({ "pair", 2, 1 }, { 1280, 1024 });
    SimStage stage(options);
    stage.MoveTo(QPointF(300, 300));
    const QImage a = stage.Capture().picture.convertToFormat(QImage::Format_Grayscale8);
    stage.MoveBy(QPointF(500.3, 40.7));
    const QImage b = stage.Capture().picture.convertToFormat(QImage::Format_Grayscale8);
    auto mat = [](const QImage& g) {
        return cv::Mat(
            g.height(), g.width(), CV_8U, const_cast<uchar*>(g.constBits()), size_t(g.bytesPerLine()))
            .clone();
    };
    return { mat(a), mat(b) };
}

void BM_Prepare1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Pair pair = GrayPair1280();
    for (auto _ : state)
        benchmark::DoNotOptimize(Registration::Prepare(pair.second));
}
BENCHMARK(BM_Prepare1280)->Unit(benchmark::kMillisecond);

void BM_Coarse1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Pair pair = GrayPair1280();
    const Registration::Prepared a = Registration::Prepare(pair.first),
                                 b = Registration::Prepare(pair.second);
    for (auto _ : state) {
        // A new frame's spectrum is made anew; the placed picture's is kept.
        b.spectrum.release();
        benchmark::DoNotOptimize(Registration::Coarse(a, b, 0.1));
    }
}
BENCHMARK(BM_Coarse1280)->Unit(benchmark::kMillisecond);

void BM_Refine1280(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Pair pair = GrayPair1280();
    const Registration::Prepared a = Registration::Prepare(pair.first),
                                 b = Registration::Prepare(pair.second);
    const Registration::Match coarse = Registration::Coarse(a, b, 0.1);
    for (auto _ : state)
        benchmark::DoNotOptimize(Registration::Refine(a, b, coarse.shift, 0.1));
}
BENCHMARK(BM_Refine1280)->Unit(benchmark::kMillisecond);

} // namespace
#endif
