#include "MeasureTestSupport.h"
#include "measure/CGVLAnoText.h"

#include <QWidget>

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

using namespace MeasureTest;

// The text dialog may stay open as long as the user likes; the live overlay
// must go on being drawn meanwhile, so the dialog runs without the lock.
TEST(TextInputThread, TheOverlayWorkerDrawsWhileTheTextIsAsked)
{
    QWidget window;
    CGVLElemMgr mgr;
    mgr.m_hWnd = &window;
    mgr.CreateShape(9);
    std::atomic<bool> stop { false };
    std::atomic<int> passes { 0 };
    std::thread worker([&] {
        std::vector<uchar> buffer(CGVLElemMgr::BitsStride(320) * 240);
        while (!stop.load()) {
            mgr.DrawToBits(buffer.data(), 320, 240);
            passes.fetch_add(1);
        }
    });
    bool drewWhileAsking = false;
    mgr.m_fnTextInput = [&](QWidget*, QStringList& lines) {
        // A deadline, not a measurement: a worker stuck on the lock would
        // otherwise hang the test.
        const int before = passes.load();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (passes.load() < before + 3 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        drewWhileAsking = passes.load() >= before + 3;
        lines = QStringList { "Sample", "7" };
        return true;
    };
    for (int i = 0; i < 5; ++i)
        Click(mgr, 205, { 20 + 40 * i, 30 + 20 * i });
    stop = true;
    worker.join();
    EXPECT_TRUE(drewWhileAsking);
    ASSERT_EQ(mgr.m_arShape.size(), 6u);
    EXPECT_EQ(At<CGVLAnoText>(mgr, 5)->m_arText, (QStringList { "Sample", "7" }));
}
