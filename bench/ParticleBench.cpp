// Particle analysis: 5,000 particles on a 2592 x 1944 picture, on one core
// (OpenCV's labelling and distance transform kept to one thread).

#include "measure/ParticleAnalyzer.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>

namespace {

constexpr int kWidth = 2592;
constexpr int kHeight = 1944;

// A noisy gray background with 5,000 bright discs of radius 3 to 8 on a
// jittered grid, a few of them touching their neighbours.
QImage Specimen()
{
    QImage picture(kWidth, kHeight, QImage::Format_RGB32);
    std::uint32_t state = 99;
    const auto next = [&state](int range) {
        state = state * 1103515245u + 12345u;
        return int((state >> 8) % std::uint32_t(range));
    };
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < kWidth; ++x) {
            const int v = 50 + next(30);
            row[x] = qRgb(v, v, v);
        }
    }
    const int columns = 100;
    const int rows = 50;
    const double cellX = double(kWidth) / columns;
    const double cellY = double(kHeight) / rows;
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            const double r = 3 + next(6);
            const double cx = (i + 0.5) * cellX + next(9) - 4;
            const double cy = (j + 0.5) * cellY + next(9) - 4;
            for (int y = int(cy - r); y <= int(cy + r) + 1; ++y)
                for (int x = int(cx - r); x <= int(cx + r) + 1; ++x)
                    if (std::hypot(x + 0.5 - cx, y + 0.5 - cy) <= r) {
                        const int v = 180 + next(40);
                        picture.setPixel(x, y, qRgb(v, v, v));
                    }
        }
    }
    return picture;
}

void Analyse(benchmark::State& state, ParticleOptions options)
{
    cv::setNumThreads(1);
    const QImage picture = Specimen();
    std::size_t count = 0;
    for (auto _ : state) {
        const ParticleResult result = AnalyzeParticles(picture, options);
        count = result.particles.size();
        benchmark::DoNotOptimize(count);
    }
    state.counters["particles"] = double(count);
}

void BM_ParticlesOtsu(benchmark::State& state)
{
    ParticleOptions options;
    options.method = GrayThreshold::Method::Otsu;
    Analyse(state, options);
}
BENCHMARK(BM_ParticlesOtsu)->Unit(benchmark::kMillisecond);

void BM_ParticlesHolesEdges(benchmark::State& state)
{
    ParticleOptions options;
    options.method = GrayThreshold::Method::Default;
    options.includeHoles = true;
    options.excludeEdges = true;
    Analyse(state, options);
}
BENCHMARK(BM_ParticlesHolesEdges)->Unit(benchmark::kMillisecond);

void BM_ParticlesWatershed(benchmark::State& state)
{
    ParticleOptions options;
    options.method = GrayThreshold::Method::Otsu;
    options.watershed = true;
    Analyse(state, options);
}
BENCHMARK(BM_ParticlesWatershed)->Unit(benchmark::kMillisecond);

} // namespace
