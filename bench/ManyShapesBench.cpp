// What thousands of counting marks cost: the live overlay worker while
// nobody does anything, the memory of marks made one by one with the undo
// history, and the user interface thread's work for one more mark.

#include "CpuTime.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "measure/WindowCalls.h"

#include <QImage>
#include <QObject>
#include <QPainter>
#include <QRegion>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <malloc.h>
#include <optional>
#include <thread>
#include <vector>

#ifdef OCULIX_HAVE_CAPTURE
#include "capture/COverlayWorker.h"
#endif

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 1024;
constexpr int kCountingTool = 202;

QPoint MarkAt(int i)
{
    // A grid over the frame, 20 pixels apart, as cells lie on a slide.
    return { 20 + (i * 20) % (kWidth - 40), 20 + ((i * 20) / (kWidth - 40) * 20) % (kHeight - 40) };
}

// One click of the counting tool and the commit the overlay window makes on release.
void Click(CGVLElemMgr& mgr, CShapeHistory* history, const QPoint& at)
{
    mgr.OnLButtonDown(1, at, kCountingTool);
    mgr.OnLButtonUp(0, at, kCountingTool);
    if (history)
        history->Commit();
}

void MakeMarks(CGVLElemMgr& mgr, CShapeHistory* history, int count)
{
    for (int i = 0; i < count; ++i)
        Click(mgr, history, MarkAt(i));
}

std::size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

#ifdef OCULIX_HAVE_CAPTURE
// The worker at its real period over a 1280 x 1024 frame for two seconds,
// with the marks standing still, after a first half second in which it drew
// them: the process's CPU share while idle.
void BM_OverlayWorkerIdle(benchmark::State& state)
{
    CGVLElemMgr mgr;
    MakeMarks(mgr, nullptr, int(state.range(0)));
    COverlayWorker worker(
        mgr, { [] { return true; }, [] { return QSize(kWidth, kHeight); }, [](const uchar*) {} });
    worker.Allocate(kWidth, kHeight);
    double cpu = 0;
    double wall = 0;
    unsigned drawn = 0;
    for (auto _ : state) {
        worker.Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const auto start = std::chrono::steady_clock::now();
        const double cpuStart = SelfCpuSeconds();
        const unsigned drawnStart = worker.OverlaysDrawn();
        std::this_thread::sleep_for(std::chrono::seconds(2));
        worker.Stop();
        cpu += SelfCpuSeconds() - cpuStart;
        wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        drawn += worker.OverlaysDrawn() - drawnStart;
    }
    state.counters["cpu_pct"] = 100.0 * cpu / wall;
    state.counters["overlays_drawn_per_s"] = double(drawn) / wall;
    state.counters["marks"] = double(state.range(0));
}
BENCHMARK(BM_OverlayWorkerIdle)->Arg(0)->Arg(6000)->Iterations(1)->Unit(benchmark::kMillisecond);
#endif

// Heap taken by 6,000 marks made one by one, each committed to a 100-step
// history as the overlay window commits it.
void BM_MarksMemory(benchmark::State& state)
{
    const bool withHistory = state.range(0) != 0;
    std::size_t added = 0;
    for (auto _ : state) {
        const std::size_t before = HeapInUse();
        {
            CGVLElemMgr mgr;
            CShapeHistory history(mgr);
            MakeMarks(mgr, withHistory ? &history : nullptr, 6000);
            added = HeapInUse() - before;
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.counters["heap_MB"] = double(added) / (1024.0 * 1024.0);
}
BENCHMARK(BM_MarksMemory)->ArgName("history")->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

// Stands in for the overlay window: collects the areas the engine asks to repaint.
class RepaintCollector : public QObject
{
public:
    bool event(QEvent* e) override
    {
        if (e->type() != kRepaintRequestEvent)
            return QObject::event(e);
        const auto* request = static_cast<const RepaintRequestEvent*>(e);
        dirty += request->WholeWindow() ? QRect(0, 0, kWidth, kHeight) : request->Rect();
        return true;
    }
    QRegion dirty;
};

// The user interface thread's work for the 6,001st mark (and the next ones):
// the press, the release and the undo step. On the live picture that is all
// (the overlay window under the video paints no shapes) and the worker draws
// the new overlay on its own thread (worker_redraw_ms: over the layer of the
// marks at rest; whole_redraw_ms: all of them again); on a still picture the
// window then repaints what the engine asked to repaint, the picture under it
// included (still_repaint_ms).
void BM_AddMarkOnUiThread(benchmark::State& state)
{
    CGVLElemMgr mgr;
    RepaintCollector window;
    mgr.SetWindow(&window, {});
    CShapeHistory history(mgr);
    MakeMarks(mgr, &history, 6000);
    QImage picture(kWidth, kHeight, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QImage screen(kWidth, kHeight, QImage::Format_RGB32);
    int next = 6000;
    using Clock = std::chrono::steady_clock;
    double gesture = 0;
    double commit = 0;
    double repaint = 0;
    double redraw = 0;
    double whole = 0;
    std::vector<uchar> overlay(DibStride(kWidth) * kHeight);
    std::optional<std::uint64_t> drawnAt;
    mgr.DrawToBitsIfChanged(overlay.data(), kWidth, kHeight, drawnAt);
    for (auto _ : state) {
        window.dirty = QRegion();
        const auto t0 = Clock::now();
        const QPoint at = MarkAt(next++) + QPoint(7, 7);
        mgr.OnLButtonDown(1, at, kCountingTool);
        mgr.OnLButtonUp(0, at, kCountingTool);
        const auto t1 = Clock::now();
        history.Commit();
        const auto t2 = Clock::now();
        QPainter dc(&screen);
        dc.setClipRegion(window.dirty);
        dc.drawImage(0, 0, picture);
        mgr.DrawAll(dc, kWidth, kHeight);
        const auto t3 = Clock::now();
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
        mgr.DrawToBitsIfChanged(overlay.data(), kWidth, kHeight, drawnAt);
        const auto t4 = Clock::now();
        mgr.DrawToBits(overlay.data(), kWidth, kHeight);
        redraw += std::chrono::duration<double, std::milli>(t4 - t3).count();
        whole += std::chrono::duration<double, std::milli>(Clock::now() - t4).count();
        gesture += std::chrono::duration<double, std::milli>(t1 - t0).count();
        commit += std::chrono::duration<double, std::milli>(t2 - t1).count();
        repaint += std::chrono::duration<double, std::milli>(t3 - t2).count();
    }
    const double n = double(state.iterations());
    state.counters["gesture_ms"] = gesture / n;
    state.counters["commit_ms"] = commit / n;
    state.counters["ui_thread_ms"] = (gesture + commit) / n;
    state.counters["still_repaint_ms"] = repaint / n;
    state.counters["worker_redraw_ms"] = redraw / n;
    state.counters["whole_redraw_ms"] = whole / n;
    state.counters["repaint_px"]
        = double(window.dirty.boundingRect().width() * window.dirty.boundingRect().height());
    mgr.SetWindow(nullptr, {});
    state.counters["marks"] = double(next);
}
BENCHMARK(BM_AddMarkOnUiThread)->Iterations(50)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
