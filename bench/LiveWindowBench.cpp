// The live window as a user sees it: the program itself under a virtual
// display (Xvfb), the simulated camera at 1280 x 1024 (its first size) or
// 3840 x 2160 (chosen in Video > Video Resolution with xdotool, as a user
// would) and 30 frames per second, the overlay on, zoom 125 %. Reports the program's CPU in percent of
// one core (from /proc/PID/stat), the simulated camera's own cost (the same
// source alone into a fake sink, in this process) and the difference: what
// showing, processing and painting the frames cost.
#include "CpuTime.h"
#include "capture/GstInit.h"
#include "capture/SimCameraSource.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSize>
#include <QTemporaryDir>
#include <QThread>

#include <gst/gst.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kSettleMs = 5000;
constexpr int kMeasureMs = 8000;

// Percent of one core `cpu` (seconds, sampled twice) used over the interval.
template <typename Cpu> double PercentOver(Cpu cpu, int ms)
{
    const double c0 = cpu();
    const auto t0 = std::chrono::steady_clock::now();
    QThread::msleep(ms);
    const double c1 = cpu();
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    return c0 < 0 || c1 < 0 ? -1 : 100.0 * (c1 - c0) / wall;
}

// The simulated camera alone, as the program runs it, into a fake sink.
double CameraAlonePercent(int width, int height)
{
    if (!EnsureGStreamer())
        return -1;
    RegisterSimCameraSource();
    GstElement* pipeline = gst_pipeline_new("camera-alone");
    GstElement* source = gst_element_factory_make(kSimCameraElement, nullptr);
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    const QByteArray caps = QStringLiteral("video/x-raw, format=(string)YUY2, width=(int)%1, height=(int)%2, "
                                           "framerate=(fraction)30/1")
                                .arg(width)
                                .arg(height)
                                .toUtf8();
    GstCaps* deviceCaps = gst_caps_from_string(caps.constData());
    g_object_set(source, "device-caps", deviceCaps, nullptr);
    g_object_set(sink, "sync", FALSE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), source, sink, nullptr);
    double percent = -1;
    if (gst_element_link_filtered(source, sink, deviceCaps)
        && gst_element_set_state(pipeline, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE) {
        QThread::msleep(kSettleMs / 2);
        percent = PercentOver(SelfCpuSeconds, kMeasureMs);
    }
    gst_caps_unref(deviceCaps);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return percent;
}

// A virtual display of its own; its number, or an empty string.
QString StartDisplay(QProcess& xvfb)
{
    xvfb.start(QStringLiteral("Xvfb"),
        { QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
            QStringLiteral("1920x1080x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp") });
    if (!xvfb.waitForStarted(5000))
        return {};
    while (!xvfb.canReadLine() && xvfb.waitForReadyRead(10000)) { }
    return QString::fromLatin1(xvfb.readLine()).trimmed();
}

// The video menu (the sixth), its resolution command, the last format of the
// list; true once the view shows frames of that size.
bool ChooseLastFormat(const QProcessEnvironment& env, QProcess& program, QSize size)
{
    const auto xdotool = [&](const QStringList& args) {
        QProcess tool;
        tool.setProcessEnvironment(env);
        tool.start(QStringLiteral("xdotool"), args);
        return tool.waitForFinished(5000) && tool.exitCode() == 0;
    };
    QStringList open { "mousemove", "15", "8", "click", "1", "sleep", "0.4" };
    for (int i = 0; i < 5; ++i)
        open << "key"
             << "Right"
             << "sleep"
             << "0.1";
    open << "key"
         << "r"
         << "sleep"
         << "1"
         << "key"
         << "End"
         << "sleep"
         << "0.2"
         << "key"
         << "Return";
    if (!xdotool(open))
        return false;
    // "display W, H": the zoomed size of the new frames.
    const QByteArray shown
        = QStringLiteral("display %1, %2").arg(size.width() * 5 / 4).arg(size.height() * 5 / 4).toUtf8();
    QByteArray log;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!log.contains(shown) && std::chrono::steady_clock::now() < deadline) {
        program.waitForReadyRead(500);
        log += program.readAll();
    }
    QThread::msleep(kSettleMs);
    return log.contains(shown);
}

void BM_LiveWindow(benchmark::State& state)
{
    const int width = int(state.range(0));
    const int height = int(state.range(1));
    QProcess xvfb;
    const QString display = StartDisplay(xvfb);
    if (display.isEmpty()) {
        state.SkipWithError("Xvfb did not start (package xvfb)");
        return;
    }
    QTemporaryDir data;
    // Zoom 125 % is the fourth choice of the zoom box.
    QFile settings(data.filePath(QStringLiteral("Setting.ini")));
    if (!settings.open(QIODevice::WriteOnly) || settings.write("[Video]\nCurSel=3\n") < 0) {
        state.SkipWithError("no settings file");
        return;
    }
    settings.close();
    QProcess program;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), QStringLiteral(":") + display);
    env.insert(QStringLiteral("OCULIX_DATA_DIR"), data.path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), data.filePath(QStringLiteral("config")));
    // A folder of its own for the single-instance socket: another copy of the
    // program running meanwhile would otherwise take this one's start over.
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), data.path());
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    // The view logs the size it shows the frames at: proof of the format.
    env.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("oculix.app.debug=true"));
    program.setProcessEnvironment(env);
    program.setProcessChannelMode(QProcess::MergedChannels);
    // OCULIX_BENCH_PROGRAM measures another build of the program (before and after).
    const QString path = qEnvironmentVariable("OCULIX_BENCH_PROGRAM", QStringLiteral(OCULIX_APP_PATH));
    program.start(path, { QStringLiteral("--demo-camera") });
    if (!program.waitForStarted(5000)) {
        state.SkipWithError("the program did not start");
        return;
    }
    program.setReadChannel(QProcess::StandardOutput);
    QThread::msleep(kSettleMs);
    if (width != 1280 && !ChooseLastFormat(env, program, QSize(width, height))) {
        state.SkipWithError("could not choose the format (package xdotool)");
        program.kill();
        program.waitForFinished();
        return;
    }
    const qint64 pid = program.processId();
    double window = 0;
    for (auto _ : state) {
        // The log is drained while measuring, or the program blocks on it.
        window = PercentOver(
            [&] {
                program.readAll();
                return ProcessCpuSeconds(pid);
            },
            kMeasureMs);
    }
    program.terminate();
    program.waitForFinished(5000);
    xvfb.terminate();
    xvfb.waitForFinished(5000);
    if (window < 0) {
        state.SkipWithError("the program ended while measured");
        return;
    }
    const double camera = CameraAlonePercent(width, height);
    state.counters["program%"] = window;
    state.counters["camera%"] = camera;
    state.counters["net%"] = window - camera;
}

} // namespace

BENCHMARK(BM_LiveWindow)
    ->Args({ 1280, 1024 })
    ->Args({ 3840, 2160 })
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();
