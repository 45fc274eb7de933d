#include "MeasureTestSupport.h"
#include "measure/CGVLAnoText.h"

#include <QWidget>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

using namespace MeasureTest;

namespace {

// A live overlay worker drawing the manager's elements until it is destroyed.
struct OverlayWorker
{
    explicit OverlayWorker(CGVLElemMgr& mgr)
        : thread([this, &mgr] {
            std::vector<uchar> buffer(CGVLElemMgr::BitsStride(320) * 240);
            while (!stop.load()) {
                mgr.DrawToBits(buffer.data(), 320, 240);
                passes.fetch_add(1);
            }
        })
    {
    }
    ~OverlayWorker()
    {
        stop = true;
        thread.join();
    }
    std::atomic<bool> stop { false };
    std::atomic<int> passes { 0 };
    std::thread thread;
};

} // namespace

// The text dialog may stay open as long as the user likes; the live overlay
// must go on being drawn meanwhile, so the dialog runs without the lock.
TEST(ShapesThread, TheOverlayWorkerDrawsWhileTheTextIsAsked)
{
    QWidget window;
    CGVLElemMgr mgr;
    mgr.m_hWnd = &window;
    mgr.CreateShape(9);
    bool drewWhileAsking = true;
    {
        OverlayWorker worker(mgr);
        mgr.m_fnTextInput = [&](QWidget*, QStringList& lines) {
            // A deadline, not a measurement: a worker stuck on the lock would
            // otherwise hang the test.
            const int before = worker.passes.load();
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
            while (worker.passes.load() < before + 3 && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            drewWhileAsking = drewWhileAsking && worker.passes.load() >= before + 3;
            lines = QStringList { "Sample", "7" };
            return true;
        };
        for (int i = 0; i < 5; ++i)
            Click(mgr, 205, { 20 + 40 * i, 30 + 20 * i });
    }
    EXPECT_TRUE(drewWhileAsking);
    ASSERT_EQ(mgr.m_arShape.size(), 6u);
    EXPECT_EQ(At<CGVLAnoText>(mgr, 5)->m_arText, (QStringList { "Sample", "7" }));
}

// Every measuring shape placed, dragged, exported and deleted while the
// worker draws: under ThreadSanitizer nothing is read while it changes.
TEST(ShapesThread, MeasuringShapesAreEditedAndExportedWhileTheWorkerDraws)
{
    QWidget window;
    CGVLElemMgr mgr;
    mgr.m_hWnd = &window;
    mgr.CreateShape(9);
    OverlayWorker worker(mgr);
    while (worker.passes.load() == 0)
        std::this_thread::yield();
    // At least 20 rounds, and on until the worker has drawn a few times in between.
    for (int round = 0; round < 20 || (worker.passes.load() < 5 && round < 5000); ++round) {
        const QPoint o(round * 5, round * 3);
        Clicks(mgr, 3, { o + QPoint(80, 40), o + QPoint(40, 40), o + QPoint(40, 10) });
        Clicks(mgr, 7, { o + QPoint(100, 100), o + QPoint(140, 100), o + QPoint(100, 140) });
        Drag(mgr, 6, o + QPoint(200, 60), { o + QPoint(201, 60), o + QPoint(230, 80) });
        Drag(mgr, 4, o + QPoint(20, 150), { o + QPoint(21, 151), o + QPoint(90, 200) });
        Clicks(mgr, 5, { o + QPoint(150, 150), o + QPoint(250, 150), o + QPoint(250, 220) });
        mgr.OnMouseMove(0, o + QPoint(160, 230), 5);
        RightClick(mgr, 5, o);
        Drag(mgr, 9, o + QPoint(90, 200), { o + QPoint(100, 210) });
        EXPECT_FALSE(ExportCsv(mgr).isEmpty());
        Click(mgr, 200, o + QPoint(40, 40));
        if (round % 5 == 4)
            mgr.DeleteAll();
    }
    EXPECT_GE(worker.passes.load(), 5);
}
