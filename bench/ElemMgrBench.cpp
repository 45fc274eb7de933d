#include "measure/CGVLElemMgr.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <vector>

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 1024;

// Deterministic positions spread over the frame.
struct Scatter
{
    std::uint32_t state = 12345;
    int Next(int range)
    {
        state = state * 1103515245u + 12345u;
        return int((state >> 8) % std::uint32_t(range));
    }
    QPoint Point(int margin = 40)
    {
        return { margin + Next(kWidth - 2 * margin), margin + Next(kHeight - 2 * margin) };
    }
};

// Lines, arrows, points and counting markers in turn, made with the mouse as
// a user makes them.
void Populate(CGVLElemMgr& mgr, int count)
{
    Scatter scatter;
    for (int i = 0; i < count; ++i) {
        const QPoint at = scatter.Point();
        const QPoint to = at + QPoint(scatter.Next(61) - 30, scatter.Next(61) - 30) * 2 + QPoint(12, 12);
        switch (i % 4) {
        case 0:
        case 1: {
            const int tool = i % 4 == 0 ? 2 : 203;
            mgr.OnLButtonDown(1, at, tool);
            mgr.OnMouseMove(1, at + QPoint(1, 0), tool);
            mgr.OnMouseMove(1, to, tool);
            mgr.OnLButtonUp(0, to, tool);
            break;
        }
        case 2:
        case 3: {
            const int tool = i % 4 == 2 ? 1 : 202;
            mgr.OnLButtonDown(1, at, tool);
            mgr.OnLButtonUp(0, at, tool);
            break;
        }
        }
    }
}

void BM_DrawToBits(benchmark::State& state)
{
    CGVLElemMgr mgr;
    CGVLElemMgr::Appearance look = mgr.GetAppearance();
    look.precision = 2;
    mgr.SetAppearance(look);
    Populate(mgr, int(state.range(0)));
    std::vector<uchar> buffer(DibStride(kWidth) * kHeight);
    for (auto _ : state) {
        mgr.DrawToBits(buffer.data(), kWidth, kHeight);
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
    state.counters["elements"] = double(mgr.m_arShape.size());
}
BENCHMARK(BM_DrawToBits)->Arg(0)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// One element dragged with the move tool while the move passes every other one.
void BM_MouseMoveThrough10000(benchmark::State& state)
{
    CGVLElemMgr mgr;
    Populate(mgr, 10000);
    const QPoint* grip = mgr.m_arShape.back()->GetCoord(0);
    QPoint at = grip ? *grip : QPoint(100, 100);
    mgr.OnLButtonDown(1, at, 9);
    int step = 0;
    for (auto _ : state) {
        at += (step++ % 2) ? QPoint(-1, -1) : QPoint(1, 1);
        mgr.OnMouseMove(1, at, 9);
    }
    state.counters["elements"] = double(mgr.m_arShape.size());
}
BENCHMARK(BM_MouseMoveThrough10000)->Unit(benchmark::kMicrosecond);

} // namespace
