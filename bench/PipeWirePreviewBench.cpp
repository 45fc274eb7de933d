// The preview of a 1280 x 720, 30 fps camera through PipeWire against the
// same size from the simulated camera, in one run: frames per second that
// reach the processing element and the CPU in percent of one core, of this
// process and of the camera's own (the PipeWire camera is another process,
// the simulated one renders inside this one). Needs the tools of
// tests/PipeWireRig.h; no real camera or desktop session is touched.
#include "CpuTime.h"
#include "PipeWireRig.h"
#include "capture/CXCapGraph.h"
#include "capture/SimDeviceProvider.h"

#include <QFile>
#include <QThread>

#include <benchmark/benchmark.h>
#include <chrono>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>

namespace {

const QString kCaps = QStringLiteral("video/x-raw,format=YUY2,width=1280,height=720,framerate=30/1");

int Frames(CXCapGraph& graph)
{
    int frames = 0;
    graph.GetStateB(&frames);
    return frames;
}

PipeWireRig* Rig()
{
    static std::unique_ptr<PipeWireRig> rig;
    if (!rig && PipeWireRig::MissingTools().isEmpty())
        rig = std::make_unique<PipeWireRig>();
    return rig && rig->IsRunning() ? rig.get() : nullptr;
}

void MeasurePreview(benchmark::State& state, const QString& name, pid_t cameraProcess)
{
    CXCapGraph graph;
    graph.SetDeviceName(name);
    if (graph.InitGraph() != S_OK) {
        state.SkipWithError("camera not found");
        return;
    }
    graph.EnumFormats();
    graph.ChangeResolution(1280, 720);
    QThread::msleep(1000); // settle
    double fps = 0, cpu = 0, cameraCpu = 0;
    for (auto _ : state) {
        const int f0 = Frames(graph);
        const double c0 = SelfCpuSeconds();
        const double k0 = ProcessCpuSeconds(cameraProcess);
        const auto t0 = std::chrono::steady_clock::now();
        QThread::msleep(5000);
        const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        fps = (Frames(graph) - f0) / wall;
        cpu = (SelfCpuSeconds() - c0) / wall * 100.0;
        cameraCpu = (ProcessCpuSeconds(cameraProcess) - k0) / wall * 100.0;
        state.SetIterationTime(wall);
    }
    state.counters["fps"] = fps;
    state.counters["cpu_percent"] = cpu;
    state.counters["camera_process_cpu_percent"] = cameraCpu;
    graph.StopGraph();
    graph.ReleaseAll();
}

void BM_PipeWirePreview(benchmark::State& state)
{
    PipeWireRig* rig = Rig();
    if (!rig) {
        state.SkipWithError("no PipeWire rig (see tests/PipeWireRig.h)");
        return;
    }
    const QString name = QStringLiteral("Bench PipeWire 720p");
    const pid_t camera = rig->StartCamera(name, kCaps);
    if (!camera) {
        state.SkipWithError(rig->Error().toStdString().c_str());
        return;
    }
    MeasurePreview(state, name, camera);
    rig->StopCamera(camera);
}

void BM_SimulatedPreview(benchmark::State& state)
{
    Rig(); // the same surroundings for both
    EnableDemoCamera(true);
    const QString name = QStringLiteral("Bench Simulated 720p");
    GstCaps* caps = gst_caps_from_string(kCaps.toUtf8().constData());
    AddSimDevice(name, caps);
    gst_caps_unref(caps);
    MeasurePreview(state, name, 0);
    RemoveSimDevice(name);
    EnableDemoCamera(false);
}

BENCHMARK(BM_PipeWirePreview)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SimulatedPreview)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
