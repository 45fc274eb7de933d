// Cost of the live processing per frame: the processing element with every
// switch on and the overlay blended, beside stock GStreamer elements doing
// comparable work (a flip and a colour balance) on the same frames.
#include "capture/CCamProcess.h"
#include "capture/CamProcessElement.h"
#include "capture/GstInit.h"
#include "image/FusedProcess.h"
#include "image/ImageProcess.h"

#include <gst/gst.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

// The machines are shared: the least of several runs is the figure that
// measures the code rather than the neighbours.
double Least(const std::vector<double>& v)
{
    return v.empty() ? 0.0 : *std::min_element(v.begin(), v.end());
}

std::vector<uchar> Picture(int width, int height)
{
    // Smooth gradients with some grain: neither flat nor noise.
    std::vector<uchar> bits(DibStride(width) * height);
    std::mt19937 rng(1);
    for (int y = 0; y < height; ++y) {
        uchar* row = bits.data() + y * DibStride(width);
        for (int x = 0; x < width; ++x) {
            row[3 * x] = uchar((x + y) / 8 + rng() % 8);
            row[3 * x + 1] = uchar(x / 5 + rng() % 8);
            row[3 * x + 2] = uchar(y / 4 + rng() % 8);
        }
    }
    return bits;
}

// An overlay as the measuring shapes leave it: mostly the key, a few lines
// and labels.
std::vector<uchar> Overlay(int width, int height)
{
    std::vector<uchar> bits(DibStride(width) * height, kOverlayKey);
    for (int y = 0; y < height; y += 97)
        std::memset(bits.data() + y * DibStride(width), 255, std::size_t(width) * 3);
    for (int y = 100; y < 130 && y < height; ++y)
        std::memset(bits.data() + y * DibStride(width) + 300, 0, 600);
    return bits;
}

void AllOn(CCamProcess& p)
{
    p.SetFlipVertical(1);
    p.SetFlipHorizontal(1);
    p.SetGray(1);
    p.SetNegative(1);
    p.SetBinary(1, 100);
    p.SetEmboss(1);
    p.SetSharpen(1);
    p.SetRgbGain(1, 10, 20, 30);
}

// The processing element's frame work alone, on one core.
void BM_CamProcess(benchmark::State& state, int width, int height, bool allOn, bool overlayOn)
{
    const std::vector<uchar> src = Picture(width, height);
    std::vector<uchar> dst(src.size());
    std::vector<uchar> overlay = Overlay(width, height);
    uchar* published = overlay.data();
    CCamProcess process;
    if (allOn)
        AllOn(process);
    process.SetOverlaySize(unsigned(width), unsigned(height));
    process.SetOverlay(overlayOn, &published);
    const auto stride = std::ptrdiff_t(DibStride(width));
    for (auto _ : state) {
        // Top-down GStreamer rows, read bottom-up, as the element does.
        process.ProcessFrame(src.data() + (height - 1) * stride, -stride, dst.data() + (height - 1) * stride,
            -stride, unsigned(width), unsigned(height));
        benchmark::DoNotOptimize(dst.data());
    }
    state.counters["fps"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(BM_CamProcess, all_overlay_1280x1024, 1280, 1024, true, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_CamProcess, all_overlay_1920x1080, 1920, 1080, true, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_CamProcess, overlay_only_1280x1024, 1280, 1024, false, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_CamProcess, overlay_only_1920x1080, 1920, 1080, false, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);

// A chain of GStreamer elements driven from the benchmark's thread: every
// push runs the chain to the sink synchronously, so the time is its work.
class ElementChain
{
public:
    ElementChain(const char* description, int width, int height, const std::shared_ptr<CCamProcess>& process)
    {
        EnsureGStreamer();
        m_pipeline = gst_pipeline_new(nullptr);
        GstElement* head = nullptr;
        if (process) {
            head = CreateCamProcessElement(process, nullptr);
        } else {
            GError* error = nullptr;
            head = gst_parse_bin_from_description(description, TRUE, &error);
            g_clear_error(&error);
        }
        GstElement* sink = gst_element_factory_make("fakesink", nullptr);
        g_object_set(sink, "sync", FALSE, "async", FALSE, nullptr);
        gst_bin_add_many(GST_BIN(m_pipeline), head, sink, nullptr);
        gst_element_link(head, sink);
        m_pad = gst_pad_new("src", GST_PAD_SRC);
        GstPad* in = gst_element_get_static_pad(head, "sink");
        gst_pad_link(m_pad, in);
        gst_object_unref(in);
        gst_pad_set_active(m_pad, TRUE);
        gst_element_set_state(m_pipeline, GST_STATE_PLAYING);
        gst_pad_push_event(m_pad, gst_event_new_stream_start("bench"));
        GstCaps* caps = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGR", "width",
            G_TYPE_INT, width, "height", G_TYPE_INT, height, "framerate", GST_TYPE_FRACTION, 30, 1, nullptr);
        gst_pad_push_event(m_pad, gst_event_new_caps(caps));
        gst_caps_unref(caps);
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_pad_push_event(m_pad, gst_event_new_segment(&segment));
    }
    ~ElementChain()
    {
        gst_element_set_state(m_pipeline, GST_STATE_NULL);
        gst_pad_set_active(m_pad, FALSE);
        gst_object_unref(m_pad);
        gst_object_unref(m_pipeline);
    }
    bool Push(GstBuffer* buffer) { return gst_pad_push(m_pad, buffer) == GST_FLOW_OK; }

private:
    GstElement* m_pipeline = nullptr;
    GstPad* m_pad = nullptr;
};

void BM_GstChain(benchmark::State& state, const char* description, int width, int height, bool ours)
{
    std::shared_ptr<CCamProcess> process;
    std::vector<uchar> overlay = Overlay(width, height);
    uchar* published = overlay.data();
    if (ours) {
        process = std::make_shared<CCamProcess>();
        AllOn(*process);
        process->SetOverlaySize(unsigned(width), unsigned(height));
        process->SetOverlay(1, &published);
    }
    ElementChain chain(description, width, height, process);
    const std::vector<uchar> picture = Picture(width, height);
    std::uint64_t frame = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // A fresh, writable frame each time, as a camera delivers them.
        GstBuffer* buffer = gst_buffer_new_memdup(picture.data(), picture.size());
        GST_BUFFER_PTS(buffer) = frame++ * (GST_SECOND / 30);
        state.ResumeTiming();
        if (!chain.Push(buffer)) {
            state.SkipWithError("the chain refused the frame");
            break;
        }
    }
    state.counters["fps"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(BM_GstChain, oculixcamprocess_all_overlay_1280x1024, "", 1280, 1024, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_GstChain, oculixcamprocess_all_overlay_1920x1080, "", 1920, 1080, true)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(
    BM_GstChain, videoflip_rotate180_1280x1024, "videoflip video-direction=180", 1280, 1024, false)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_GstChain, videobalance_gray_1280x1024,
    "videobalance saturation=0 contrast=1.2 brightness=0.1", 1280, 1024, false)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_GstChain, videoflip_videobalance_1920x1080,
    "videoflip video-direction=180 ! videobalance saturation=0 contrast=1.2 brightness=0.1", 1920, 1080,
    false)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_GstChain, jpegenc_1280x1024, "jpegenc", 1280, 1024, false)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);
BENCHMARK_CAPTURE(BM_GstChain, videoconvert_i420_jpegenc_1280x1024,
    "videoconvert ! video/x-raw,format=I420 ! jpegenc", 1280, 1024, false)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ComputeStatistics("min", Least);

} // namespace
