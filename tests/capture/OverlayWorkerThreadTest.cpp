#include "capture/COverlayWorker.h"
#include "image/ImageProcess.h"
#include "measure/CGVLElemMgr.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

constexpr int kFrameWidth = 160;
constexpr int kFrameHeight = 120;

// Waits for passes that began after the call to finish; false if the worker
// stalls (a safeguard against hanging, not a timing).
bool WaitPasses(const COverlayWorker& worker, unsigned passes = 2)
{
    const unsigned until = worker.Passes() + passes;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (worker.Passes() < until) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

uchar* Published(COverlayWorker& worker)
{
    return std::atomic_ref<uchar*>(const_cast<uchar*&>(*worker.PublishedPointer())).load();
}

// The published buffer holds what the shapes draw now.
void ExpectShows(COverlayWorker& worker, CGVLElemMgr& mgr, const char* what)
{
    std::vector<uchar> expected(DibStride(kFrameWidth) * kFrameHeight);
    mgr.DrawToBits(expected.data(), kFrameWidth, kFrameHeight);
    const uchar* published = Published(worker);
    ASSERT_NE(published, nullptr) << what;
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), published)) << what;
}

void Line(CGVLElemMgr& mgr, QPoint from, QPoint to)
{
    mgr.OnLButtonDown(1, from, 2);
    mgr.OnMouseMove(1, from + QPoint(1, 0), 2);
    mgr.OnMouseMove(1, to, 2);
    mgr.OnLButtonUp(0, to, 2);
}

} // namespace

// The worker draws a new overlay, into the buffer frames do not read, only
// when the shapes changed since the one it published (or it never drew into
// the buffers it has); otherwise every pass leaves the same buffer published.
TEST(OverlayWorkerThreadTest, PublishesANewBufferAfterEachChangeAndTheSameOneOtherwise)
{
    CGVLElemMgr mgr;
    Line(mgr, { 10, 10 }, { 100, 60 });
    COverlayWorker worker(mgr,
        { [] { return true; }, [] { return QSize(kFrameWidth, kFrameHeight); }, [](const uchar*) {} }, 1);
    worker.Allocate(kFrameWidth, kFrameHeight);
    uchar* const blank = Published(worker);
    worker.Start();
    ASSERT_TRUE(WaitPasses(worker));
    uchar* current = Published(worker);
    EXPECT_NE(current, blank) << "never drawn: drawn at once";
    EXPECT_EQ(worker.OverlaysDrawn(), 1u);
    ExpectShows(worker, mgr, "first");

    const std::vector<std::pair<const char*, std::function<void()>>> changes {
        { "a line",
            [&] {
                Line(mgr, { 20, 100 }, { 150, 20 });
            } },
        { "cross lines", [&] { mgr.SetCrossLines(true, false); } },
        { "the precision",
            [&] {
                CGVLElemMgr::Appearance look = mgr.GetAppearance();
                look.precision = 4;
                mgr.SetAppearance(look);
            } },
        { "everything deleted", [&] { mgr.DeleteAll(); } },
    };
    for (const auto& [what, change] : changes) {
        const unsigned drawn = worker.OverlaysDrawn();
        {
            // One change, not the steps of a gesture drawn one by one.
            const auto lock = mgr.Lock();
            change();
        }
        ASSERT_TRUE(WaitPasses(worker)) << what;
        EXPECT_NE(Published(worker), current) << what;
        EXPECT_EQ(worker.OverlaysDrawn(), drawn + 1) << what;
        current = Published(worker);
        ExpectShows(worker, mgr, what);

        // Nothing more happens: the passes go on and keep what they have.
        ASSERT_TRUE(WaitPasses(worker, 5)) << what;
        EXPECT_EQ(Published(worker), current) << what << ", idle";
        EXPECT_EQ(worker.OverlaysDrawn(), drawn + 1) << what << ", idle";
    }

    // Stopped and started again with the same buffers: nothing to draw.
    worker.Stop();
    worker.Start();
    ASSERT_TRUE(WaitPasses(worker));
    EXPECT_EQ(Published(worker), current);

    // New buffers hold no shapes: they are drawn even though nothing changed.
    const unsigned drawn = worker.OverlaysDrawn();
    worker.Stop();
    worker.Allocate(kFrameWidth, kFrameHeight);
    worker.Start();
    ASSERT_TRUE(WaitPasses(worker));
    EXPECT_EQ(worker.OverlaysDrawn(), drawn + 1);
    ExpectShows(worker, mgr, "new buffers");
    worker.Stop();
}
