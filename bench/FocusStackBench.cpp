// Extended depth of field, judged by the simulated specimen with relief:
// - quality over three reliefs and 12 to 30 frames: SSIM of the fused
//   picture against the specimen sharp everywhere (in the first frame's
//   geometry), and the share of textured pixels whose depth is within one
//   frame of the truth; the same series through Hugin's align_image_stack
//   and enfuse (hugin-tools, enfuse), for SSIM and time, when installed;
// - the peak memory of 50 frames of 2592 x 1944;
// - the time to fuse 20 frames of 2592 x 1944 (the frames already in memory);
// - the live stack's cost per frame at 1280 x 1024 during a sweep, against
//   the 33 ms between frames at 30 fps.
// The tables are printed once, before the timings.
#include "CpuTime.h"
#include "image/FocusStack.h"
#include "image/LiveFocusStack.h"
#include "image/SimDepthScene.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

// Mean SSIM of the luma (8-pixel Gaussian windows, sigma 1.5, as usual),
// over the picture less a margin that drift leaves uncovered.
double Ssim(const QImage& a, const QImage& b, int margin)
{
    const QImage ga = a.convertToFormat(QImage::Format_Grayscale8);
    const QImage gb = b.convertToFormat(QImage::Format_Grayscale8);
    const int w = ga.width();
    const int h = ga.height();
    std::vector<double> x(std::size_t(w) * h);
    std::vector<double> y(x.size());
    for (int r = 0; r < h; ++r)
        for (int c = 0; c < w; ++c) {
            x[std::size_t(r) * w + c] = ga.constScanLine(r)[c];
            y[std::size_t(r) * w + c] = gb.constScanLine(r)[c];
        }
    // Separable Gaussian sums of x, y, xx, yy, xy.
    const int radius = 5;
    std::vector<double> kernel(2 * radius + 1);
    double total = 0.0;
    for (int i = -radius; i <= radius; ++i)
        total += kernel[std::size_t(i + radius)] = std::exp(-i * i / (2 * 1.5 * 1.5));
    for (double& k : kernel)
        k /= total;
    auto blur = [&](const std::vector<double>& in) {
        std::vector<double> tmp(in.size());
        std::vector<double> out(in.size());
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) {
                double s = 0.0;
                for (int i = -radius; i <= radius; ++i)
                    s += kernel[std::size_t(i + radius)]
                        * in[std::size_t(r) * w + std::clamp(c + i, 0, w - 1)];
                tmp[std::size_t(r) * w + c] = s;
            }
        for (int r = 0; r < h; ++r)
            for (int c = 0; c < w; ++c) {
                double s = 0.0;
                for (int i = -radius; i <= radius; ++i)
                    s += kernel[std::size_t(i + radius)]
                        * tmp[std::size_t(std::clamp(r + i, 0, h - 1)) * w + c];
                out[std::size_t(r) * w + c] = s;
            }
        return out;
    };
    std::vector<double> xx(x.size());
    std::vector<double> yy(x.size());
    std::vector<double> xy(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        xx[i] = x[i] * x[i];
        yy[i] = y[i] * y[i];
        xy[i] = x[i] * y[i];
    }
    const std::vector<double> mx = blur(x);
    const std::vector<double> my = blur(y);
    const std::vector<double> sxx = blur(xx);
    const std::vector<double> syy = blur(yy);
    const std::vector<double> sxy = blur(xy);
    const double c1 = std::pow(0.01 * 255, 2);
    const double c2 = std::pow(0.03 * 255, 2);
    double sum = 0.0;
    int n = 0;
    for (int r = margin; r < h - margin; ++r)
        for (int c = margin; c < w - margin; ++c) {
            const std::size_t i = std::size_t(r) * w + c;
            const double vx = sxx[i] - mx[i] * mx[i];
            const double vy = syy[i] - my[i] * my[i];
            const double cxy = sxy[i] - mx[i] * my[i];
            sum += (2 * mx[i] * my[i] + c1) * (2 * cxy + c2)
                / ((mx[i] * mx[i] + my[i] * my[i] + c1) * (vx + vy + c2));
            ++n;
        }
    return sum / n;
}

struct Series
{
    const char* name;
    SimDepthScene::Relief relief;
    int frames;
};

const Series kSeries[] = {
    { "steps", SimDepthScene::Relief::Steps, 12 },
    { "slope", SimDepthScene::Relief::Slope, 20 },
    { "particles", SimDepthScene::Relief::Particles, 30 },
};

// The blur one frame step apart is about 1.5 pixels at 1296 x 972, as a
// user sweeping in steps of the depth of field gets.
SimDepthScene::Options SeriesOptions(const Series& series, double width)
{
    SimDepthScene::Options options;
    options.relief = series.relief;
    options.blurAtDepth = 1.5 * (series.frames - 1) * width / 1296.0;
    return options;
}

bool HasHugin()
{
    return !QStandardPaths::findExecutable(QStringLiteral("align_image_stack")).isEmpty()
        && !QStandardPaths::findExecutable(QStringLiteral("enfuse")).isEmpty();
}

// align_image_stack -m, then enfuse with contrast alone and hard masks; the
// fused picture, or a null one when a step failed.
QImage HuginStack(const std::vector<QImage>& frames, double* seconds)
{
    QTemporaryDir dir;
    QStringList names;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const QString name = dir.filePath(QStringLiteral("f%1.tif").arg(i, 3, 10, QLatin1Char('0')));
        frames[i].save(name);
        names << name;
    }
    QElapsedTimer timer;
    timer.start();
    QProcess align;
    align.setStandardOutputFile(QProcess::nullDevice());
    align.setStandardErrorFile(QProcess::nullDevice());
    align.start(QStringLiteral("align_image_stack"),
        QStringList { QStringLiteral("-m"), QStringLiteral("-a"), dir.filePath(QStringLiteral("a_")) }
            + names);
    if (!align.waitForFinished(-1) || align.exitCode() != 0)
        return {};
    const QStringList aligned
        = QDir(dir.path()).entryList({ QStringLiteral("a_*.tif") }, QDir::Files, QDir::Name);
    QStringList args { QStringLiteral("--exposure-weight=0"), QStringLiteral("--saturation-weight=0"),
        QStringLiteral("--contrast-weight=1"), QStringLiteral("--hard-mask"), QStringLiteral("-o"),
        dir.filePath(QStringLiteral("out.tif")) };
    for (const QString& a : aligned)
        args << dir.filePath(a);
    QProcess fuse;
    fuse.setStandardOutputFile(QProcess::nullDevice());
    fuse.setStandardErrorFile(QProcess::nullDevice());
    fuse.start(QStringLiteral("enfuse"), args);
    if (!fuse.waitForFinished(-1) || fuse.exitCode() != 0)
        return {};
    *seconds = timer.elapsed() / 1000.0;
    return QImage(dir.filePath(QStringLiteral("out.tif"))).convertToFormat(QImage::Format_RGB888);
}

// The focus sweep of a series: from the lowest point to the top, evenly.
std::vector<QImage> Sweep(const SimDepthScene& scene, const SimDepthScene::Options& options, int frames)
{
    std::vector<QImage> out;
    for (int i = 0; i < frames; ++i)
        out.push_back(scene.Frame(i * options.depthUm / (frames - 1), std::uint64_t(i)));
    return out;
}

void QualityTable()
{
    const int w = 1296;
    const int h = 972;
    const bool hugin = HasHugin();
    std::printf("\nFocus stacking on the simulated specimen with relief, %d x %d\n", w, h);
    std::printf("%-10s %6s | %7s %9s %8s %8s | %7s %8s %8s\n", "relief", "frames", "SSIM", "depth ok",
        "time s", "1st SSIM", "Hugin", "time s", "x faster");
    for (const Series& series : kSeries) {
        const SimDepthScene::Options options = SeriesOptions(series, w);
        const SimDepthScene scene(w, h, options);
        const double step = options.depthUm / (series.frames - 1);
        const std::vector<QImage> frames = Sweep(scene, options, series.frames);
        QElapsedTimer timer;
        timer.start();
        FocusStack stack;
        for (const QImage& frame : frames)
            stack.Add(frame);
        const QImage fused = stack.Result();
        const double ours = timer.elapsed() / 1000.0;

        const FrameWarp geometry = scene.Warp(0.0, 0);
        const QImage truth = scene.AllInFocus(geometry);
        const std::vector<float> height = scene.HeightMap(geometry);
        const std::vector<bool> textured = scene.Textured(geometry);
        const std::vector<float> depth = stack.DepthIndex();
        const int margin = 16;
        long counted = 0;
        long right = 0;
        for (int y = margin; y < h - margin; ++y)
            for (int x = margin; x < w - margin; ++x) {
                const std::size_t i = std::size_t(y) * w + x;
                if (!textured[i])
                    continue;
                ++counted;
                right += std::abs(depth[i] - height[i] / step) <= 1.0f;
            }
        std::printf("%-10s %6d | %7.4f %8.1f%% %8.2f %8.4f |", series.name, series.frames,
            Ssim(fused, truth, margin), 100.0 * right / std::max(counted, 1L), ours,
            Ssim(frames.front(), truth, margin));
        if (!hugin) {
            std::printf(" %7s %8s %8s\n", "-", "-", "-");
            continue;
        }
        std::fflush(stdout);
        double theirs = 0.0;
        const QImage reference = HuginStack(frames, &theirs);
        if (reference.isNull() || reference.size() != truth.size())
            std::printf(" %7s %8s %8s\n", "failed", "-", "-");
        else
            std::printf(" %7.4f %8.2f %8.1f\n", Ssim(reference, truth, margin), theirs, theirs / ours);
        std::fflush(stdout);
    }
    if (!hugin)
        std::printf(
            "Hugin's align_image_stack or enfuse is not installed (hugin-tools, enfuse): no comparison.\n");
}

long KilobytesOf(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(int(std::strlen(field))).trimmed().split(' ').value(0).toLong();
    return -1;
}

void MemoryLine()
{
    const int w = 2592;
    const int h = 1944;
    const Series series { "particles", SimDepthScene::Relief::Particles, 50 };
    const SimDepthScene::Options options = SeriesOptions(series, w);
    const SimDepthScene scene(w, h, options);
    const double step = options.depthUm / (series.frames - 1);
    // The peak from here on: the stack and the one frame being added.
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    const bool reset = clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
    clear.close();
    const long before = KilobytesOf("VmRSS:");
    {
        FocusStack stack;
        for (int i = 0; i < series.frames; ++i)
            stack.Add(scene.Frame(i * step, std::uint64_t(i)));
        const QImage fused = stack.Result();
        benchmark::DoNotOptimize(fused.constBits());
    }
    const long peak = KilobytesOf("VmHWM:");
    std::printf("\nMemory for %d frames of %d x %d: peak %.0f MB above the %.0f MB before (%s)\n",
        series.frames, w, h, (peak - before) / 1024.0, before / 1024.0,
        reset ? "peak reset before the run" : "peak of the whole process");
}

void BM_FocusStackTables(benchmark::State& state)
{
    for (auto _ : state) {
        QualityTable();
        MemoryLine();
    }
}
BENCHMARK(BM_FocusStackTables)->Iterations(1)->Unit(benchmark::kSecond);

// 20 frames of 2592 x 1944, already rendered, fused and collapsed.
void BM_FocusStack20Frames(benchmark::State& state)
{
    const int w = int(state.range(0));
    const int h = int(state.range(1));
    const Series series { "particles", SimDepthScene::Relief::Particles, 20 };
    const SimDepthScene::Options options = SeriesOptions(series, w);
    const std::vector<QImage> frames = Sweep(SimDepthScene(w, h, options), options, series.frames);
    // The process's processor time over all threads: on a shared machine
    // the wall time says more about the other processes than about fusion.
    double processorSeconds = 0.0;
    for (auto _ : state) {
        const double processorStart = SelfCpuSeconds();
        FocusStack stack;
        for (const QImage& frame : frames)
            stack.Add(frame);
        const QImage fused = stack.Result();
        benchmark::DoNotOptimize(fused.constBits());
        processorSeconds += SelfCpuSeconds() - processorStart;
    }
    state.counters["all_threads_cpu_s"] = processorSeconds / double(state.iterations());
}
BENCHMARK(BM_FocusStack20Frames)->Args({ 2592, 1944 })->Unit(benchmark::kSecond)->Iterations(2);

// A sweep of 60 frames at 1280 x 1024 fed to the live stack one at a time,
// each handed over once the worker is idle: the worker's time per frame, on
// average and at worst, which must stay under the 33 ms between frames at
// 30 fps for none to be dropped.
void BM_LiveFocusStackFeed(benchmark::State& state)
{
    const int w = 1280;
    const int h = 1024;
    const Series series { "particles", SimDepthScene::Relief::Particles, 60 };
    const SimDepthScene::Options options = SeriesOptions(series, w);
    const std::vector<QImage> frames = Sweep(SimDepthScene(w, h, options), options, series.frames);
    double worst = 0.0;
    double total = 0.0;
    int kept = 0;
    double processorSeconds = 0.0;
    for (auto _ : state) {
        const double processorStart = SelfCpuSeconds();
        LiveFocusStack live;
        for (const QImage& frame : frames) {
            QElapsedTimer timer;
            timer.start();
            if (!live.Offer(frame)) {
                state.SkipWithError("the live stack refused a frame while idle");
                return;
            }
            live.WaitIdle();
            const double ms = double(timer.nsecsElapsed()) * 1e-6;
            worst = std::max(worst, ms);
            total += ms;
        }
        live.Finish();
        kept += live.Kept();
        processorSeconds += SelfCpuSeconds() - processorStart;
    }
    const double offered = double(state.iterations()) * double(frames.size());
    state.counters["mean_ms"] = total / offered;
    state.counters["worst_ms"] = worst;
    state.counters["kept_share"] = double(kept) / offered;
    state.counters["all_threads_cpu_ms"] = 1e3 * processorSeconds / offered;
}
BENCHMARK(BM_LiveFocusStackFeed)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace
