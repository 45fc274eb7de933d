#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"

#include <QBuffer>

#include <benchmark/benchmark.h>
#include <cstdint>

namespace {

// Deterministic positions spread over a 1280 x 1024 frame.
struct Scatter
{
    std::uint32_t state = 2024;
    int Next(int range)
    {
        state = state * 1103515245u + 12345u;
        return int((state >> 8) % std::uint32_t(range));
    }
    QPoint Point() { return { 60 + Next(1160), 60 + Next(900) }; }
};

// Every kind of element in turn, its points set directly: placing 100,000
// elements with the mouse would cost a walk of the whole list per press.
void Populate(CGVLElemMgr& mgr, int count)
{
    const int types[] = { 1, 2, 3, 4, 5, 6, 7, 11, 12, 14 };
    const QPoint corners[] = { { 0, 0 }, { 40, 0 }, { 0, 30 }, { 40, 30 } };
    Scatter scatter;
    mgr.CreateShape(ShapeType::Ruler);
    for (int i = 0; i < count; ++i) {
        const int type = types[i % 10];
        CGVLShape* shape = mgr.CreateShape(type);
        const QPoint at = scatter.Point();
        switch (type) {
        case 1:
        case 11:
            shape->AddOneCoord(at);
            break;
        case 4:
            for (const QPoint& c : corners)
                shape->AddOneCoord(at + c);
            break;
        case 3:
        case 5:
        case 7:
            shape->AddOneCoord(at);
            shape->AddOneCoord(at + QPoint(30 + scatter.Next(20), 5));
            shape->AddOneCoord(at + QPoint(5, 30 + scatter.Next(20)));
            if (type == 5)
                shape->AddOneCoord(at + QPoint(-20, 10));
            break;
        case 14:
            shape->AddOneCoord(at);
            static_cast<CGVLAnoText*>(shape)->m_arText = { "Sample", "area 3" };
            break;
        default:
            shape->AddOneCoord(at);
            shape->AddOneCoord(at + QPoint(10 + scatter.Next(50), 10 + scatter.Next(50)));
            break;
        }
    }
}

void BM_WriteCsv100000(benchmark::State& state)
{
    CGVLElemMgr mgr;
    CGVLElemMgr::Appearance look = mgr.GetAppearance();
    look.precision = 3;
    mgr.SetAppearance(look);
    Populate(mgr, 100000);
    qint64 bytes = 0;
    for (auto _ : state) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        mgr.WriteCsv(buffer);
        bytes = buffer.size();
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["elements"] = double(mgr.m_arShape.size() - 1);
    state.counters["bytes"] = double(bytes);
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_WriteCsv100000)->Unit(benchmark::kMillisecond);

// One element dragged with the move tool while each move passes all 10,000
// elements of every kind.
void BM_MouseMoveThrough10000Mixed(benchmark::State& state)
{
    CGVLElemMgr mgr;
    Populate(mgr, 10000);
    QPoint at = *mgr.m_arShape.back()->GetCoord(0);
    mgr.OnLButtonDown(1, at, 9);
    int step = 0;
    for (auto _ : state) {
        at += (step++ % 2) ? QPoint(-1, -1) : QPoint(1, 1);
        mgr.OnMouseMove(1, at, 9);
    }
    state.counters["elements"] = double(mgr.m_arShape.size() - 1);
}
BENCHMARK(BM_MouseMoveThrough10000Mixed)->Unit(benchmark::kMicrosecond);

} // namespace
