#include "capture/CCamProcess.h"
#include "capture/COverlayWorker.h"
#include "image/ImageProcess.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 240;
const std::size_t kStride = DibStride(kWidth);

// Two states of the shapes, as undo and redo swap them. Element 0 stands
// where the ruler stands, not drawn while the ruler is hidden. The lines
// cross every row, and none is its own vertical mirror image, so a buffer
// caught half cleared, half drawn or half turned bottom-up differs from both.
const QByteArray kStateA = R"([{"type":1,"points":[[4,4]]},)"
                           R"({"type":2,"points":[[300,232],[12,6]]},)"
                           R"({"type":2,"points":[[150,234],[30,4]]},)"
                           R"({"type":2,"points":[[310,120],[170,8]]}])";
const QByteArray kStateB = R"([{"type":1,"points":[[4,4]]},)"
                           R"({"type":2,"points":[[16,230],[296,10]]},)"
                           R"({"type":2,"points":[[240,236],[110,2]]},)"
                           R"({"type":4,"points":[[60,40],[140,40],[60,200],[140,200]]}])";

using Shapes = std::vector<std::unique_ptr<CGVLShape>>;

void Swap(CGVLElemMgr& mgr, const Shapes& state)
{
    const auto lock = mgr.Lock();
    mgr.ReplaceShapes(state);
}

// The copies refer to the manager that made them, as the history's do.
Shapes MakeState(CGVLElemMgr& mgr, const QByteArray& json)
{
    Swap(mgr, {});
    EXPECT_EQ(ShapesFromJson(mgr, json), 4);
    return mgr.CopyShapes();
}

// A camera frame (bottom-up, padded rows) that differs from pixel to pixel.
std::vector<uchar> CameraFrame()
{
    std::vector<uchar> frame(kStride * kHeight);
    for (unsigned y = 0; y < kHeight; ++y)
        for (unsigned x = 0; x < kWidth; ++x) {
            uchar* pixel = frame.data() + y * kStride + 3 * x;
            pixel[0] = uchar(x * 7 + y);
            pixel[1] = uchar(y * 5 + x / 3);
            pixel[2] = uchar(x ^ y);
        }
    return frame;
}

// What the element makes of the frame with the shapes of mgr as the overlay
// (none when mgr is null), through an overlay drawn and published beforehand.
std::vector<uchar> Blended(const std::vector<uchar>& frame, CGVLElemMgr* mgr)
{
    std::vector<uchar> overlay(kStride * kHeight, 1);
    if (mgr)
        mgr->DrawToBits(overlay.data(), int(kWidth), int(kHeight));
    uchar* published = overlay.data();
    CCamProcess element;
    element.SetOverlaySize(kWidth, kHeight);
    element.SetOverlay(1, &published);
    std::vector<uchar> out(frame.size());
    element.ProcessFrame(
        frame.data(), std::ptrdiff_t(kStride), out.data(), std::ptrdiff_t(kStride), kWidth, kHeight);
    return out;
}

// Leaves the cores to the worker and the frames while waiting for them.
void Nap()
{
    std::this_thread::sleep_for(std::chrono::microseconds(200));
}

} // namespace

// The live hand-over as the live document wires it: the worker draws the
// shapes and publishes buffers while the processing element blends them into
// frames on a streaming thread and the user interface thread swaps the shapes
// back and forth, now and then taking the overlay off and starting the worker
// again as the preview does after a camera failure. Every frame must carry
// exactly one whole overlay. The worker runs without a pause between passes
// and the shapes count as changed all along, so buffers change hands as often
// as they can, and the run goes on until
// enough frames were blended while a pass was under way; it is bounded by
// counts, never by the clock.
TEST(LiveOverlayThreadTest, EveryBlendedFrameCarriesOneWholeOverlayWhileTheShapesChange)
{
    CGVLElemMgr mgr;
    const Shapes stateA = MakeState(mgr, kStateA);
    const Shapes stateB = MakeState(mgr, kStateB);
    const std::vector<uchar> frame = CameraFrame();

    Swap(mgr, stateA);
    const std::vector<uchar> withA = Blended(frame, &mgr);
    Swap(mgr, stateB);
    const std::vector<uchar> withB = Blended(frame, &mgr);
    const std::vector<uchar> without = Blended(frame, nullptr);
    // The overlays are blended, and tell the two states apart.
    ASSERT_NE(withA, without);
    ASSERT_NE(withB, without);
    ASSERT_NE(withA, withB);

    CCamProcess element;
    // The worker asks for the frame size once at the start of every pass.
    std::atomic<unsigned> passes { 0 };
    COverlayWorker worker(mgr,
        { [] { return true; },
            [&passes] {
                ++passes;
                return QSize(int(kWidth), int(kHeight));
            },
            [&element](const uchar* buffer) { element.WaitOverlayUnused(buffer); } },
        0);
    worker.Allocate(kWidth, kHeight);
    element.SetOverlaySize(kWidth, kHeight);
    element.SetOverlay(1, worker.PublishedPointer());

    // Odd while the overlay is off at the element.
    std::atomic<unsigned> offEpoch { 0 };
    std::atomic<bool> stop { false };
    std::atomic<unsigned> frames { 0 }, duringPass { 0 };
    std::atomic<int> seenA { 0 }, seenB { 0 }, seenBare { 0 }, torn { 0 };
    // Frames run from before the worker's first overlay, which must not be
    // drawn into the buffer they read either.
    std::thread streaming([&] {
        std::vector<uchar> out(frame.size());
        while (!stop) {
            const unsigned epoch = offEpoch;
            const unsigned drawn = worker.OverlaysDrawn();
            const unsigned finished = worker.Passes();
            const unsigned begun = passes;
            element.ProcessFrame(
                frame.data(), std::ptrdiff_t(kStride), out.data(), std::ptrdiff_t(kStride), kWidth, kHeight);
            if (begun != finished || passes != begun)
                ++duringPass;
            // Without shapes only before anything was published, or with
            // the overlay taken off.
            const bool bareAllowed = drawn == 0 || epoch % 2 || offEpoch != epoch;
            if (out == withA)
                ++seenA;
            else if (out == withB)
                ++seenB;
            else if (out == without && bareAllowed)
                ++seenBare;
            else
                ++torn;
            ++frames;
        }
    });
    while (frames < 3)
        Nap();
    worker.Start();

    constexpr int kMinSwaps = 60;
    constexpr unsigned kFramesDuringPasses = 300;
    int swaps = 0;
    for (; swaps < kMinSwaps || duringPass < kFramesDuringPasses; ++swaps) {
        if (swaps % 10 == 9) {
            ++offEpoch;
            element.SetOverlay(0, worker.PublishedPointer());
            worker.Stop();
            element.SetOverlay(1, worker.PublishedPointer());
            ++offEpoch;
            worker.Start();
        }
        Swap(mgr, swaps % 2 ? stateB : stateA);
        // The new state drawn by a pass that began after the swap, then
        // blended into frames that began after it was published.
        const unsigned passed = worker.Passes();
        while (worker.Passes() < passed + 2) {
            mgr.NoteChange();
            Nap();
        }
        const unsigned blended = frames;
        while (frames < blended + 2) {
            mgr.NoteChange();
            Nap();
        }
    }
    stop = true;
    streaming.join();
    element.SetOverlay(0, worker.PublishedPointer());
    worker.Stop();

    EXPECT_EQ(torn, 0) << "frames with a torn overlay, of " << frames.load() << " (" << duringPass.load()
                       << " during a pass)";
    // Every swap reached the frames whole.
    EXPECT_GE(seenA, swaps / 2);
    EXPECT_GE(seenB, swaps / 2);
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_EQ(COverlayWorker::Running(), 0);
}
