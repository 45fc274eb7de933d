// Flat field, white balance and the live histogram, at 1280 x 1024:
// - how well the flat field undoes 40 % corner shading with a lamp's cast,
//   as the mean absolute error against the unshaded picture after matching
//   each channel's gain (what is left once level and colour are set aside),
//   beside the picture uncorrected and an ideal correction (the exact shading
//   divided out, then rounded);
// - how neutral a gray card is after one white balance over it, through the
//   still path's gains and the live path's offsets;
// - what the flat field, the histogram and focus peaking add to the
//   processing element's
//   frame, on one core.
// The quality tables are printed once, before the timings.
#include "capture/CCamProcess.h"
#include "image/FlatField.h"
#include "image/ImageProcess.h"
#include "image/WhiteBalance.h"

#include <benchmark/benchmark.h>

#ifdef OCULIX_HAVE_CAPTURE
#include "capture/CSimScene.h"
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr unsigned kWidth = 1280;
constexpr unsigned kHeight = 1024;
// Blue, green, red: a warm lamp.
constexpr double kCast[3] = { 0.72, 0.88, 1.0 };
constexpr int kBlankFrames = 8;
constexpr double kNoise = 2.0; // sensor noise, levels

// Light at (x, y) of the bottom-up picture, 1 in the middle, 0.6 in the
// corners, centred a little off the middle as real optics are.
double Shade(unsigned x, unsigned y)
{
    const double dx = (x + 0.5 - kWidth * 0.52) / (kWidth * 0.52);
    const double dy = (y + 0.5 - kHeight * 0.48) / (kHeight * 0.52);
    return 1.0 - 0.4 * std::min(1.0, (dx * dx + dy * dy) / 2);
}

using Picture = std::vector<uchar>; // bottom-up, padded rows

// The unshaded specimen: the simulated camera's scene where there is one.
Picture Scene()
{
    Picture bits(DibStride(kWidth) * kHeight, 0);
#ifdef OCULIX_HAVE_CAPTURE
    CSimScene scene { int(kWidth), int(kHeight) };
    CSimScene::Controls still;
    still.drift = false;
    still.noise = false;
    scene.SetControls(still);
    const QImage rgb = scene.RenderRgb(0).convertToFormat(QImage::Format_BGR888);
    for (unsigned y = 0; y < kHeight; ++y)
        std::copy_n(rgb.constScanLine(int(kHeight - 1 - y)), kWidth * 3, bits.data() + y * DibStride(kWidth));
#else
    for (unsigned y = 0; y < kHeight; ++y)
        for (unsigned x = 0; x < kWidth * 3; ++x)
            bits[y * DibStride(kWidth) + x] = uchar(60 + (x / 3 * 7 + y * 3) % 160);
#endif
    return bits;
}

// What the camera sees of a picture under the shading and the cast, with noise.
Picture Shaded(const Picture& clean, std::mt19937& rng)
{
    std::normal_distribution<double> noise(0.0, kNoise);
    Picture out(clean.size(), 0);
    for (unsigned y = 0; y < kHeight; ++y)
        for (unsigned x = 0; x < kWidth; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                const std::size_t i = y * DibStride(kWidth) + 3 * x + c;
                out[i] = uchar(
                    std::clamp(std::lround(clean[i] * Shade(x, y) * kCast[c] + noise(rng)), 0L, 255L));
            }
    return out;
}

// Mean absolute error against the reference, in percent of full scale, after
// each channel is scaled by the gain that fits it best (least squares).
double MatchedError(const Picture& picture, const Picture& reference)
{
    double total = 0;
    for (unsigned c = 0; c < 3; ++c) {
        double xy = 0;
        double xx = 0;
        for (unsigned y = 0; y < kHeight; ++y)
            for (unsigned x = 0; x < kWidth; ++x) {
                const std::size_t i = y * DibStride(kWidth) + 3 * x + c;
                xy += double(picture[i]) * reference[i];
                xx += double(picture[i]) * picture[i];
            }
        const double gain = xx > 0 ? xy / xx : 1;
        double sum = 0;
        for (unsigned y = 0; y < kHeight; ++y)
            for (unsigned x = 0; x < kWidth; ++x) {
                const std::size_t i = y * DibStride(kWidth) + 3 * x + c;
                sum += std::abs(gain * picture[i] - reference[i]);
            }
        total += sum / (double(kWidth) * kHeight);
    }
    return total / 3 / 255 * 100;
}

double Spread(const ChannelMeans& m)
{
    const double gray = (m.blue + m.green + m.red) / 3;
    return std::max({ std::abs(m.blue - gray), std::abs(m.green - gray), std::abs(m.red - gray) }) / gray
        * 100;
}

void QualityTables()
{
    std::mt19937 rng(7);
    const Picture clean = Scene();
    const Picture shaded = Shaded(clean, rng);
    const Picture white(clean.size(), 230);
    std::vector<Picture> blanks;
    for (int k = 0; k < kBlankFrames; ++k)
        blanks.push_back(Shaded(white, rng));
    std::vector<const uchar*> frames;
    for (const Picture& b : blanks)
        frames.push_back(b.data());

    Picture ideal = shaded;
    for (unsigned y = 0; y < kHeight; ++y)
        for (unsigned x = 0; x < kWidth; ++x)
            for (unsigned c = 0; c < 3; ++c) {
                uchar& v = ideal[y * DibStride(kWidth) + 3 * x + c];
                v = uchar(std::clamp(std::lround(v / Shade(x, y)), 0L, 255L));
            }
    Picture single = shaded;
    FlatField::FromFrames({ frames.data(), 1 }, nullptr, kWidth, kHeight)
        .Apply(single.data(), kWidth, kHeight);
    Picture averaged = shaded;
    FlatField::FromFrames(frames, nullptr, kWidth, kHeight).Apply(averaged.data(), kWidth, kHeight);

    std::printf(
        "\nFlat field, 1280 x 1024, 40 %% corner shading, cast B %.2f G %.2f R %.2f, noise %.0f levels\n",
        kCast[0], kCast[1], kCast[2], kNoise);
    std::printf("%-44s %14s\n", "picture", "MAE % (gain-matched)");
    std::printf("%-44s %14.2f\n", "uncorrected", MatchedError(shaded, clean));
    std::printf("%-44s %14.2f\n", "flat field, 1 blank frame", MatchedError(single, clean));
    std::printf("%-44s %14.2f\n", "flat field, 8 blank frames averaged", MatchedError(averaged, clean));
    std::printf("%-44s %14.2f\n", "ideal (exact shading divided out)", MatchedError(ideal, clean));

    // A gray card (level 150) under the cast, with noise, in the middle.
    Picture card = Shaded(Picture(clean.size(), 150), rng);
    FlatField::FromFrames(frames, nullptr, kWidth, kHeight).Apply(card.data(), kWidth, kHeight);
    const QRect region(400, 300, 480, 400);
    const ChannelMeans before = *RegionMeans(card.data(), kWidth, kHeight, region);
    Picture still = card;
    ApplyGains(still.data(), kWidth, kHeight, *GainsToGray(before));
    Picture live = card;
    const ChannelOffsets offsets = OffsetsToGray(before, {}, 63);
    ColorOffset(live.data(), kWidth, kHeight, offsets.red, offsets.green, offsets.blue);
    std::printf("\nWhite balance of a gray card (level 150 under the cast), one region\n");
    std::printf("%-44s %14s\n", "picture", "spread %");
    std::printf("%-44s %14.2f\n", "before", Spread(before));
    std::printf("%-44s %14.2f\n", "still path (channel gains)",
        Spread(*RegionMeans(still.data(), kWidth, kHeight, region)));
    std::printf("%-44s %14.2f\n", "live path (RGB offsets)",
        Spread(*RegionMeans(live.data(), kWidth, kHeight, region)));
    std::printf("(spread: the largest channel's distance from the three channels' mean)\n\n");
    std::fflush(stdout);
}

// The processing element on a camera's frames, top-down rows read bottom-up
// as the element gets them.
struct Element
{
    Element(bool flat, bool histogram, bool peaking = false)
    {
        std::mt19937 rng(3);
        src = Shaded(Scene(), rng);
        dst.resize(src.size());
        const Picture blankField = Shaded(Picture(src.size(), 230), rng);
        const uchar* blank[] = { blankField.data() };
        if (flat)
            process.SetFlatField(
                std::make_shared<FlatField>(FlatField::FromFrames(blank, nullptr, kWidth, kHeight)));
        process.KeepHistograms(histogram);
        process.SetFocusPeaking(peaking, qRgb(0, 255, 0));
    }
    void Frame()
    {
        const auto stride = std::ptrdiff_t(DibStride(kWidth));
        process.ProcessFrame(src.data() + (kHeight - 1) * stride, -stride,
            dst.data() + (kHeight - 1) * stride, -stride, kWidth, kHeight);
    }
    Picture src;
    Picture dst;
    CCamProcess process;
};

double ThreadSeconds()
{
    timespec t {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Processor time of one frame on this thread, in ms: the least of several
// batches, since the machine is shared.
double FrameCost(bool flat, bool histogram, bool peaking = false)
{
    Element element(flat, histogram, peaking);
    double best = 1e9;
    for (int batch = 0; batch < 7; ++batch) {
        const double start = ThreadSeconds();
        for (int k = 0; k < 100; ++k)
            element.Frame();
        best = std::min(best, (ThreadSeconds() - start) / 100 * 1000);
    }
    return best;
}

void CostTable()
{
    const double plain = FrameCost(false, false);
    std::printf(
        "Processing element, 1280 x 1024 BGR frame, one core (processor time, least of 7 x 100 frames)\n");
    std::printf("%-44s %10s %10s\n", "element", "ms/frame", "added ms");
    std::printf("%-44s %10.3f %10s\n", "no correction (a copy)", plain, "-");
    struct Row
    {
        const char* name;
        bool flat;
        bool histogram;
        bool peaking;
    };
    for (const Row& row : { Row { "flat field", true, false, false }, Row { "histogram", false, true, false },
             Row { "flat field + histogram", true, true, false },
             Row { "focus peaking", false, false, true } }) {
        const double cost = FrameCost(row.flat, row.histogram, row.peaking);
        std::printf("%-44s %10.3f %10.3f\n", row.name, cost, cost - plain);
    }
    std::printf("\n");
    std::fflush(stdout);
}

void BM_QualityTables(benchmark::State& state)
{
    for (auto _ : state) {
        QualityTables();
        CostTable();
    }
}
BENCHMARK(BM_QualityTables)->Iterations(1)->Unit(benchmark::kSecond);

// The processing element's frame with neither, the flat field, the
// histogram and both; the difference to the first is what they add.
void BM_ElementFrame(benchmark::State& state, bool flat, bool histogram, bool peaking = false)
{
    Element element(flat, histogram, peaking);
    for (auto _ : state) {
        element.Frame();
        benchmark::DoNotOptimize(element.dst.data());
    }
}
BENCHMARK_CAPTURE(BM_ElementFrame, plain_1280x1024, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ElementFrame, flat_field_1280x1024, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ElementFrame, histogram_1280x1024, false, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ElementFrame, flat_field_histogram_1280x1024, true, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ElementFrame, focus_peaking_1280x1024, false, false, true)
    ->Unit(benchmark::kMillisecond);

} // namespace
