#include "capture/CCamProcess.h"
#include "capture/CFrameMailbox.h"
#include "capture/CamProcessElement.h"
#include "capture/GstInit.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr unsigned kWidth = 64;
constexpr unsigned kHeight = 48;
constexpr std::size_t kStride = kWidth * 3;

bool Uniform(const std::vector<uchar>& bits)
{
    for (std::size_t i = 3; i < bits.size(); i += 3)
        if (std::memcmp(&bits[i], &bits[0], 3) != 0)
            return false;
    return true;
}

} // namespace

// Frames on one thread, switches and overlay changes on another, the overlay
// drawn and published by a third, as the live document's worker does. Every
// switch used keeps a uniform picture uniform, and every overlay is drawn in
// one colour over the whole frame, so a frame that blended a buffer while it
// was being drawn shows up as a frame of two colours.
TEST(CamProcessThreads, SwitchesAndOverlaySwapsAgainstTheFrameLoop)
{
    CCamProcess process;
    process.SetOverlaySize(kWidth, kHeight);
    std::vector<uchar> a(kStride * kHeight, kOverlayKey);
    std::vector<uchar> b(kStride * kHeight, kOverlayKey);
    uchar* published = nullptr;
    ASSERT_EQ(process.SetOverlay(1, &published), 0);

    std::atomic<bool> stop { false };
    std::atomic<int> torn { 0 };
    std::atomic<int> frames { 0 };

    std::thread stream([&] {
        std::vector<uchar> src(kStride * kHeight);
        for (std::size_t i = 0; i < src.size(); i += 3) {
            src[i] = 200;
            src[i + 1] = 100;
            src[i + 2] = 50;
        }
        std::vector<uchar> dst(src.size());
        while (!stop) {
            process.ProcessFrame(src.data() + (kHeight - 1) * kStride, -std::ptrdiff_t(kStride), dst.data(),
                std::ptrdiff_t(kStride), kWidth, kHeight);
            if (!Uniform(dst))
                ++torn;
            ++frames;
        }
    });

    std::thread worker([&] {
        for (int generation = 0; !stop; ++generation) {
            std::vector<uchar>& target = generation % 2 ? a : b;
            process.WaitOverlayUnused(target.data());
            const uchar value = uchar(2 + generation % 250);
            std::memset(target.data(), value, target.size());
            std::atomic_ref<uchar*>(published).store(target.data());
            if (generation % 64 == 0)
                std::this_thread::yield();
        }
    });

    // The user-interface side.
    const std::function<void(int, int)> actions[] = {
        [&](int, int on) { process.SetGray(on); },
        [&](int, int on) {
            process.SetFlipVertical(on);
            process.SetFlipHorizontal(!on);
        },
        [&](int, int on) { process.SetNegative(on); },
        [&](int i, int on) { process.SetBinary(on, 40 + i % 100); },
        [&](int i, int on) { process.SetRgbGain(on, i % 60, 3, 9); },
        [&](int, int on) { process.SetOverlay(on, &published); },
        [&](int i, int) {
            int w = 0, h = 0, n = 0, g = 0;
            process.GetStateA(&w, &h);
            process.GetStateB(&n);
            process.GetGray(&g);
            process.SetProcessEnable(i % 11 != 0);
        },
    };
    for (int i = 0; frames < 3000 && i < 200000; ++i) {
        actions[i % 7](i, i % 2);
        std::this_thread::yield();
    }
    stop = true;
    stream.join();
    worker.join();
    EXPECT_GE(frames.load(), 3000);
    EXPECT_EQ(torn.load(), 0);
}

// The same hand-over along the paths the program takes: frames through the
// processing element on GStreamer's streaming thread, switches and overlay
// changes from timer callbacks on the user-interface thread.
TEST(CamProcessThreads, RunningElementAgainstTimerCallbacksAndAnOverlayWorker)
{
    ASSERT_TRUE(EnsureGStreamer());
    auto process = std::make_shared<CCamProcess>();
    process->SetOverlaySize(kWidth, kHeight);
    std::vector<uchar> a(kStride * kHeight, kOverlayKey);
    std::vector<uchar> b(kStride * kHeight, kOverlayKey);
    uchar* published = nullptr;

    GstElement* pipeline = gst_pipeline_new(nullptr);
    GstElement* source = gst_element_factory_make("videotestsrc", nullptr);
    GstElement* caps = gst_element_factory_make("capsfilter", nullptr);
    GstElement* element = CreateCamProcessElement(process, nullptr);
    GstElement* sink = gst_element_factory_make("fakesink", nullptr);
    ASSERT_TRUE(source && caps && element && sink);
    // Blue 200, green 100, red 50, as in the test above; overlays are grey.
    gst_util_set_object_arg(G_OBJECT(source), "pattern", "solid-color");
    g_object_set(source, "foreground-color", 0xff3264c8u, nullptr);
    GstCaps* format = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGR", "width", G_TYPE_INT,
        int(kWidth), "height", G_TYPE_INT, int(kHeight), "framerate", GST_TYPE_FRACTION, 1000, 1, nullptr);
    g_object_set(caps, "caps", format, nullptr);
    gst_caps_unref(format);
    g_object_set(sink, "sync", FALSE, nullptr);
    gst_bin_add_many(GST_BIN(pipeline), source, caps, element, sink, nullptr);
    ASSERT_TRUE(gst_element_link_many(source, caps, element, sink, nullptr));

    struct Counts
    {
        std::atomic<int> frames { 0 };
        std::atomic<int> torn { 0 };
        std::atomic<int> overlaid { 0 };
    } counts;
    GstPad* out = gst_element_get_static_pad(element, "src");
    gst_pad_add_probe(
        out, GST_PAD_PROBE_TYPE_BUFFER,
        [](GstPad*, GstPadProbeInfo* info, gpointer data) {
            auto* c = static_cast<Counts*>(data);
            GstMapInfo map;
            GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
            if (gst_buffer_map(buffer, &map, GST_MAP_READ)) {
                const std::vector<uchar> bits(map.data, map.data + kStride * kHeight);
                if (!Uniform(bits))
                    ++c->torn;
                else if (bits[0] == bits[1] && bits[1] == bits[2])
                    ++c->overlaid;
                gst_buffer_unmap(buffer, &map);
            }
            ++c->frames;
            return GST_PAD_PROBE_OK;
        },
        &counts, nullptr);
    gst_object_unref(out);

    std::atomic<bool> stop { false };
    std::thread worker([&] {
        for (int generation = 0; !stop; ++generation) {
            std::vector<uchar>& target = generation % 2 ? a : b;
            process->WaitOverlayUnused(target.data());
            std::memset(target.data(), uchar(2 + generation % 190), target.size());
            std::atomic_ref<uchar*>(published).store(target.data());
            std::this_thread::yield();
        }
    });

    int tick = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++tick;
        process->SetNegative(tick % 5 == 0);
        process->SetFlipVertical(tick % 2);
        process->SetOverlay(tick % 3 != 0, &published);
    });
    timer.start(1);
    ASSERT_NE(gst_element_set_state(pipeline, GST_STATE_PLAYING), GST_STATE_CHANGE_FAILURE);
    QElapsedTimer clock;
    clock.start();
    while ((counts.frames < 300 || tick < 30) && clock.elapsed() < 120000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    timer.stop();
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    stop = true;
    worker.join();

    EXPECT_GE(counts.frames.load(), 300);
    EXPECT_GE(tick, 30);
    EXPECT_EQ(counts.torn.load(), 0);
    EXPECT_GT(counts.overlaid.load(), 0);
    EXPECT_LT(counts.overlaid.load(), counts.frames.load()) << "the overlay was switched off at times";
}

// Frames posted from a streaming thread while receivers come and go on the
// user-interface thread.
TEST(CamProcessThreads, FrameMailboxAgainstReceiversComingAndGoing)
{
    ASSERT_TRUE(EnsureGStreamer());
    CFrameMailbox mailbox;
    std::atomic<bool> stop { false };
    std::thread stream([&] {
        GstCaps* caps = gst_caps_from_string("video/x-raw, format=(string)BGR, width=(int)8, height=(int)4");
        while (!stop) {
            GstBuffer* buffer = gst_buffer_new_allocate(nullptr, 8 * 4 * 3, nullptr);
            GstSample* sample = gst_sample_new(buffer, caps, nullptr, nullptr);
            mailbox.Post(sample);
            gst_sample_unref(sample);
            gst_buffer_unref(buffer);
        }
        gst_caps_unref(caps);
    });

    class Receiver : public QObject
    {
    public:
        explicit Receiver(CFrameMailbox& m)
            : mailbox(m)
        {
            mailbox.SetReceiver(this);
        }
        ~Receiver() override { mailbox.SetReceiver(nullptr); }
        bool event(QEvent* e) override
        {
            mailbox.Acquire();
            if (e->type() != CFrameMailbox::EventType())
                return QObject::event(e);
            if (!mailbox.Take().isNull())
                ++taken;
            return true;
        }
        CFrameMailbox& mailbox;
        int taken = 0;
    };

    int taken = 0;
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < 200 || (taken < 20 && timer.elapsed() < 10000); ++round) {
        Receiver receiver(mailbox);
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        taken += receiver.taken;
    }
    stop = true;
    stream.join();
    mailbox.Clear();
    EXPECT_GT(taken, 0);
}
