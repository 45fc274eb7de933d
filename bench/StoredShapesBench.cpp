// Opening a picture's stored shapes: 20,000 of every kind, a polygon of
// 20,000 points, and the size of the XMP data 10,000 counting marks take in
// a JPEG (the "packet_bytes" counter: the file's growth when they are kept).
#include "image/FCObjImage.h"
#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

#include <QBuffer>

#include <benchmark/benchmark.h>
#include <cmath>

namespace {

// Points spread over a 2592 x 1944 picture, of every kind in turn.
QByteArray EveryKind(int count)
{
    QByteArray json = "[";
    for (int i = 0; i < count; ++i) {
        const int x = 50 + (i * 37) % 2400;
        const int y = 50 + (i * 101) % 1800;
        auto n = [](int v) { return QByteArray::number(v); };
        switch (i % 8) {
        case 0:
            json += "[11," + n(x) + "," + n(y) + "]";
            break;
        case 1:
            json += "[2," + n(x) + "," + n(y) + "," + n(x + 80) + "," + n(y + 30) + "]";
            break;
        case 2:
            json += "[3," + n(x) + "," + n(y) + "," + n(x + 60) + "," + n(y) + "," + n(x) + "," + n(y + 60)
                + "]";
            break;
        case 3:
            json += "[4," + n(x) + "," + n(y) + "," + n(x + 50) + "," + n(y) + "," + n(x) + "," + n(y + 40)
                + "," + n(x + 50) + "," + n(y + 40) + "]";
            break;
        case 4:
            json += "[5," + n(x) + "," + n(y) + "," + n(x + 70) + "," + n(y) + "," + n(x + 40) + ","
                + n(y + 50) + "]";
            break;
        case 5:
            json += "[6," + n(x) + "," + n(y) + "," + n(x + 30) + "," + n(y) + "]";
            break;
        case 6:
            json += "[7," + n(x) + "," + n(y) + "," + n(x + 40) + "," + n(y + 40) + "," + n(x + 80) + ","
                + n(y) + "]";
            break;
        default:
            json += "[12," + n(x) + "," + n(y) + "," + n(x + 60) + "," + n(y + 60) + "]";
            break;
        }
        json += ',';
    }
    json.back() = ']';
    return json;
}

void BM_OpenStoredShapes(benchmark::State& state)
{
    const QByteArray json = EveryKind(int(state.range(0)));
    for (auto _ : state) {
        CGVLElemMgr mgr;
        mgr.CreateShape(ShapeType::Ruler);
        benchmark::DoNotOptimize(ReadShapesJson(mgr, json).made);
    }
    state.counters["json_bytes"] = double(json.size());
}
BENCHMARK(BM_OpenStoredShapes)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_OpenStoredPolygon(benchmark::State& state)
{
    QByteArray json = "[[5";
    const int points = int(state.range(0));
    for (int i = 0; i < points; ++i) {
        const double a = 2 * M_PI * i / points;
        json += "," + QByteArray::number(qRound(1300 + 900 * std::cos(a))) + ","
            + QByteArray::number(qRound(970 + 900 * std::sin(a)));
    }
    json += "]]";
    for (auto _ : state) {
        CGVLElemMgr mgr;
        mgr.CreateShape(ShapeType::Ruler);
        benchmark::DoNotOptimize(ReadShapesJson(mgr, json).made);
    }
}
BENCHMARK(BM_OpenStoredPolygon)->Arg(20000)->Unit(benchmark::kMillisecond);

// Writing and reading back 10,000 counting marks kept in a JPEG, whose
// growth is the packet the marks take (main segment and Extended XMP).
void BM_CountingMarksInJpeg(benchmark::State& state)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    QByteArray marks = "[";
    for (int i = 0; i < int(state.range(0)); ++i)
        marks += "[11," + QByteArray::number(20 + (i % 100) * 25) + ","
            + QByteArray::number(20 + (i / 100) * 19) + "],";
    marks.back() = ']';
    ReadShapesJson(mgr, marks);
    const QByteArray stored = ShapesToJson(mgr);

    FCObjImage picture(2592, 1944, 24);
    QByteArray jpeg;
    {
        QImage image = picture.ToQImage();
        QBuffer out(&jpeg);
        out.open(QIODevice::WriteOnly);
        image.save(&out, "JPEG");
    }
    const QByteArray bare = PictureXmp::Rewritten(jpeg, { { "Unit", "0" } });
    qsizetype grown = 0;
    for (auto _ : state) {
        const QByteArray with = PictureXmp::Rewritten(jpeg, { { "Unit", "0" }, { "Shapes", stored } });
        benchmark::DoNotOptimize(PictureXmp::ReadBytes(with).size());
        grown = with.size() - bare.size();
    }
    state.counters["shapes_bytes"] = double(stored.size());
    state.counters["packet_bytes"] = double(grown);
}
BENCHMARK(BM_CountingMarksInJpeg)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
