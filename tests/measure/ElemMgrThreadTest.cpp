#include "MeasureTestSupport.h"

#include <QImage>
#include <QPainter>
#include <QWidget>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace MeasureTest;

// The live overlay worker draws while the user interface thread adds, drags
// and deletes elements, changes settings and paints; under ThreadSanitizer
// this shows nothing is read while it changes.
TEST(ElemMgrThread, LiveOverlayDrawsWhileTheUserEdits)
{
    QWidget window; // never shown: repaint requests go nowhere
    CGVLElemMgr mgr;
    mgr.m_hWnd = &window;
    Add(mgr, 9);
    mgr.m_bShowRuler = 1;

    std::atomic<bool> stop { false };
    std::atomic<int> passes { 0 };
    std::thread worker([&] {
        std::vector<uchar> buffers[2] = { std::vector<uchar>(CGVLElemMgr::BitsStride(320) * 240),
            std::vector<uchar>(CGVLElemMgr::BitsStride(320) * 240) };
        for (int i = 0; !stop.load(); ++i) {
            mgr.DrawToBits(buffers[i % 2].data(), 320, 240);
            passes.fetch_add(1);
        }
    });
    while (passes.load() == 0)
        std::this_thread::yield();

    QImage screen(320, 240, QImage::Format_RGB32);
    for (int round = 0; round < 40; ++round) {
        const int o = (round * 7) % 100;
        Drag(mgr, 2, { 10 + o, 20 }, { { 11 + o, 21 }, { 60 + o, 80 }, { 120 + o, 140 } });
        Drag(mgr, 203, { 200, 10 + o }, { { 201, 11 + o }, { 260, 90 + o } });
        Click(mgr, 202, { 30 + o, 200 });
        Click(mgr, 1, { 150, 100 + o / 2 });
        Drag(mgr, 9, { 80 + o, 70 }, { { 90 + o, 75 }, { 95 + o, 85 } });
        Drag(mgr, 2, { 5, 5 }, { { 6, 6 }, { 7, 7 } }); // too short: leaves at once
        Click(mgr, 200, { 30 + o, 200 });
        mgr.SetOrigin({ -round, -2 * round });
        {
            const auto lock = mgr.Lock();
            mgr.m_nPrecision = 1 + round % 5;
            mgr.m_nFontSize = 1 + round % 3;
            mgr.m_nFontBackground = 1 + round % 2;
            mgr.m_color.m_ctRuler = round % 8;
            mgr.m_unit.m_dcxPerPixel = 0.1 + round * 0.01;
            mgr.m_bCrossDashed = round & 1;
        }
        {
            QPainter dc(&screen);
            mgr.DrawAll(dc, screen.width(), screen.height());
        }
        if (round % 10 == 9)
            mgr.DeleteAll();
    }
    const int drawnWhileEditing = passes.load();
    stop = true;
    worker.join();

    EXPECT_GT(drawnWhileEditing, 1);
    EXPECT_EQ(mgr.m_arShape.at(0)->GetType(), 9);
    EXPECT_EQ(mgr.m_nCount, 0) << "each round deletes the marker it made";
}
