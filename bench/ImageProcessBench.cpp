// The pixel operations on camera-sized frames, beside a memcpy of the same
// frame (the floor) and, when OpenCV is present, its nearest single-threaded
// equivalent. Every result carries "xMemcpy": its time over the memcpy time.

#include "image/ImageProcess.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#ifdef OCULIX_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using Clock = std::chrono::steady_clock;

struct Frame
{
    unsigned width;
    unsigned height;
    std::size_t stride;
    std::vector<uchar> source;
    std::vector<uchar> work;
    std::vector<uchar> target;

    Frame(unsigned w, unsigned h)
        : width(w)
        , height(h)
        , stride(DibStride(w))
        , source(stride * h)
        , work(stride * h)
        , target(stride * h)
    {
        // Noise is the hard case for every kernel (no uniform runs to skip).
        std::mt19937 rng(12345);
        for (auto& b : source)
            b = uchar(rng());
    }
};

// Runs op on a fresh copy of the frame each iteration; only op is timed.
// The copy that refreshes the frame is timed too and is the floor of the
// ratio, measured beside op so that a busy machine skews both alike.
void Run(benchmark::State& state, const std::function<void(Frame&)>& op)
{
    Frame f(unsigned(state.range(0)), unsigned(state.range(1)));
    double total = 0;
    double floor = 0;
    for (auto _ : state) {
        const auto c0 = Clock::now();
        std::memcpy(f.work.data(), f.source.data(), f.source.size());
        benchmark::ClobberMemory();
        const auto t0 = Clock::now();
        op(f);
        benchmark::ClobberMemory();
        const auto t1 = Clock::now();
        const double t = std::chrono::duration<double>(t1 - t0).count();
        state.SetIterationTime(t);
        total += t;
        floor += std::chrono::duration<double>(t0 - c0).count();
    }
    state.counters["xMemcpy"] = total / floor;
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(f.source.size()));
}

void Sizes(benchmark::internal::Benchmark* b)
{
    b->Args({ 1280, 1024 })->Args({ 1920, 1080 })->UseManualTime()->Unit(benchmark::kMicrosecond);
}

void BM_Memcpy(benchmark::State& state)
{
    Run(state, [](Frame& f) { std::memcpy(f.target.data(), f.work.data(), f.work.size()); });
}
BENCHMARK(BM_Memcpy)->Apply(Sizes);

void BM_FlipVertical(benchmark::State& state)
{
    Run(state, [](Frame& f) { FlipVertical(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_FlipVertical)->Apply(Sizes);

void BM_MirrorHorizontal(benchmark::State& state)
{
    Run(state, [](Frame& f) { MirrorHorizontal(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_MirrorHorizontal)->Apply(Sizes);

void BM_Gray(benchmark::State& state)
{
    Run(state, [](Frame& f) { Gray(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_Gray)->Apply(Sizes);

void BM_Negative(benchmark::State& state)
{
    Run(state, [](Frame& f) { Negative(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_Negative)->Apply(Sizes);

void BM_Binary(benchmark::State& state)
{
    Run(state, [](Frame& f) { Binary(f.work.data(), f.width, f.height, 90); });
}
BENCHMARK(BM_Binary)->Apply(Sizes);

void BM_Emboss(benchmark::State& state)
{
    Run(state, [](Frame& f) { Emboss(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_Emboss)->Apply(Sizes);

void BM_Sharpen(benchmark::State& state)
{
    Run(state, [](Frame& f) { Sharpen(f.work.data(), f.width, f.height); });
}
BENCHMARK(BM_Sharpen)->Apply(Sizes);

void BM_ColorOffset(benchmark::State& state)
{
    Run(state, [](Frame& f) { ColorOffset(f.work.data(), f.width, f.height, 20, 40, 63); });
}
BENCHMARK(BM_ColorOffset)->Apply(Sizes);

#ifdef OCULIX_HAVE_OPENCV

cv::Mat Wrap(Frame& f, std::vector<uchar>& buffer)
{
    return cv::Mat(int(f.height), int(f.width), CV_8UC3, buffer.data(), f.stride);
}

void RunCv(benchmark::State& state, const std::function<void(const cv::Mat&, cv::Mat&)>& op)
{
    cv::setNumThreads(1);
    cv::Mat scratch;
    Run(state, [&](Frame& f) {
        cv::Mat src = Wrap(f, f.work);
        cv::Mat dst = Wrap(f, f.target);
        op(src, dst);
    });
}

void BM_CvFlipVertical(benchmark::State& state)
{
    RunCv(state, [](const cv::Mat& s, cv::Mat& d) { cv::flip(s, d, 0); });
}
BENCHMARK(BM_CvFlipVertical)->Apply(Sizes);

void BM_CvMirror(benchmark::State& state)
{
    RunCv(state, [](const cv::Mat& s, cv::Mat& d) { cv::flip(s, d, 1); });
}
BENCHMARK(BM_CvMirror)->Apply(Sizes);

void BM_CvGrayToThreeChannels(benchmark::State& state)
{
    cv::Mat gray;
    RunCv(state, [&](const cv::Mat& s, cv::Mat& d) {
        cv::cvtColor(s, gray, cv::COLOR_BGR2GRAY);
        cv::cvtColor(gray, d, cv::COLOR_GRAY2BGR);
    });
}
BENCHMARK(BM_CvGrayToThreeChannels)->Apply(Sizes);

void BM_CvBitwiseNot(benchmark::State& state)
{
    RunCv(state, [](const cv::Mat& s, cv::Mat& d) { cv::bitwise_not(s, d); });
}
BENCHMARK(BM_CvBitwiseNot)->Apply(Sizes);

// Per channel, cheaper than our binary, which first makes the gray value.
void BM_CvThreshold(benchmark::State& state)
{
    RunCv(state, [](const cv::Mat& s, cv::Mat& d) { cv::threshold(s, d, 89, 255, cv::THRESH_BINARY); });
}
BENCHMARK(BM_CvThreshold)->Apply(Sizes);

void BM_CvEmbossFilter2D(benchmark::State& state)
{
    const cv::Mat kernel = (cv::Mat_<float>(2, 2) << 1, 0, 0, -1);
    RunCv(state, [&](const cv::Mat& s, cv::Mat& d) {
        cv::filter2D(s, d, -1, kernel, cv::Point(0, 0), 128, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_CvEmbossFilter2D)->Apply(Sizes);

void BM_CvSharpenFilter2D(benchmark::State& state)
{
    const cv::Mat kernel = (cv::Mat_<float>(3, 3) << 0, -1, 0, -1, 5, -1, 0, -1, 0);
    RunCv(state, [&](const cv::Mat& s, cv::Mat& d) { cv::filter2D(s, d, -1, kernel); });
}
BENCHMARK(BM_CvSharpenFilter2D)->Apply(Sizes);

void BM_CvAddScalar(benchmark::State& state)
{
    RunCv(state, [](const cv::Mat& s, cv::Mat& d) { cv::add(s, cv::Scalar(63, 40, 20), d); });
}
BENCHMARK(BM_CvAddScalar)->Apply(Sizes);

#endif

} // namespace
