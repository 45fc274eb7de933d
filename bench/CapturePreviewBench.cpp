// End to end: the simulated camera at 30 frames per second through the whole
// preview (or record) pipeline. Reports the frames per second that reach the
// processing element and the CPU the process spends, in percent of one core.
// Painting into a window is not included (no widgets here).
#include "CpuTime.h"
#include "capture/CSimScene.h"
#include "capture/CXCapGraph.h"
#include "capture/SimDeviceProvider.h"
#include "image/ImageProcess.h"
#include "image/SimDepthScene.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <benchmark/benchmark.h>
#include <chrono>
#include <sys/resource.h>
#include <vector>

namespace {

int Frames(CXCapGraph& graph)
{
    int frames = 0;
    graph.GetStateB(&frames);
    return frames;
}

void BM_LivePipeline(benchmark::State& state, int formatIndex, bool allOn, bool record)
{
    EnableDemoCamera(true);
    CXCapGraph graph;
    graph.SetDeviceName(DemoCameraName());
    if (graph.InitGraph() != S_OK) {
        state.SkipWithError("no demo camera");
        return;
    }
    graph.EnumFormats();
    const CaptureFormat format = graph.Formats().at(std::size_t(formatIndex));
    graph.SetSelectedFormat(formatIndex);
    graph.ChangeResolution(format.width, format.height);
    const QString file = QDir::temp().filePath(QStringLiteral("oculix-bench.avi"));
    if (record) {
        graph.StopGraph();
        graph.DestroyGraph();
        graph.SetRecordFileName(file);
        graph.BuildRecordGraph();
        graph.RunGraph();
    }
    std::vector<uchar> overlay(DibStride(format.width) * format.height, 1);
    uchar* published = overlay.data();
    graph.SetOverlay(1, &published);
    if (allOn) {
        graph.SetFlipVertical(1);
        graph.SetFlipHorizontal(1);
        graph.SetGray(1);
        graph.SetNegative(1);
        graph.SetBinary(1, 100);
        graph.SetEmboss(1);
        graph.SetSharpen(1);
        graph.SetRgbGain(1, 10, 20, 30);
    }
    QThread::msleep(1000); // settle

    double fps = 0;
    double cpu = 0;
    for (auto _ : state) {
        const int f0 = Frames(graph);
        const double c0 = SelfCpuSeconds();
        const auto t0 = std::chrono::steady_clock::now();
        QThread::msleep(4000);
        const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        fps = (Frames(graph) - f0) / wall;
        cpu = (SelfCpuSeconds() - c0) / wall * 100.0;
        state.SetIterationTime(wall);
    }
    state.counters["fps"] = fps;
    state.counters["cpu_percent"] = cpu;
    graph.StopGraph();
    graph.ReleaseAll();
    QFile::remove(file);
    EnableDemoCamera(false);
}

// What one frame of the simulated camera costs to make.
void BM_SimCameraFrame(benchmark::State& state, unsigned width, unsigned height, bool jpeg)
{
    CSimScene scene(width, height);
    std::vector<uchar> frame(std::size_t(width) * 2 * height);
    std::uint64_t n = 0;
    for (auto _ : state) {
        if (jpeg)
            benchmark::DoNotOptimize(scene.RenderJpeg(n++));
        else
            scene.RenderYuy2(n++, frame.data(), std::size_t(width) * 2);
        benchmark::DoNotOptimize(frame.data());
    }
}

BENCHMARK_CAPTURE(BM_SimCameraFrame, yuy2_1280x1024, 1280, 1024, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SimCameraFrame, yuy2_1600x1200, 1600, 1200, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SimCameraFrame, mjpg_1280x1024, 1280, 1024, true)->Unit(benchmark::kMillisecond);

// The camera showing its relief ("depth"): a frame at a steady focus, and one
// where the focus has just moved (the blur mixed again).
void BM_SimDepthFrame(benchmark::State& state, bool focusMoves)
{
    const int width = 1280, height = 1024;
    SimDepthScene scene(width, height, SimDepthScene::Options());
    std::vector<uchar> frame(std::size_t(width) * 2 * height);
    std::uint64_t n = 0;
    for (auto _ : state) {
        const double focus = focusMoves ? double(n % 60) : 30.0;
        CSimScene::Yuy2FromRgb(scene.Frame(focus, n++), frame.data(), std::size_t(width) * 2);
        benchmark::DoNotOptimize(frame.data());
    }
}
BENCHMARK_CAPTURE(BM_SimDepthFrame, yuy2_1280x1024_steady, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SimDepthFrame, yuy2_1280x1024_focusing, true)->Unit(benchmark::kMillisecond);

// Demo camera formats: 0 YUY2 640x480, 1 YUY2 1280x1024, 3 MJPG 1280x1024.
BENCHMARK_CAPTURE(BM_LivePipeline, preview_yuy2_1280x1024, 1, false, false)->Iterations(1)->UseManualTime();
BENCHMARK_CAPTURE(BM_LivePipeline, preview_yuy2_1280x1024_all_switches, 1, true, false)
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK_CAPTURE(BM_LivePipeline, record_yuy2_1280x1024, 1, false, true)->Iterations(1)->UseManualTime();
BENCHMARK_CAPTURE(BM_LivePipeline, preview_mjpg_1280x1024, 3, false, false)->Iterations(1)->UseManualTime();
BENCHMARK_CAPTURE(BM_LivePipeline, preview_yuy2_640x480, 0, false, false)->Iterations(1)->UseManualTime();

} // namespace
