#include "measure/WindowCalls.h"

#include "MeasureTestSupport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <functional>
#include <thread>

using namespace MeasureTest;

namespace {

bool ProcessUntil(const std::function<bool()>& done)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return done();
}

} // namespace

TEST(WindowCalls, RepaintsTheAreaAskedForOnTheWindowsThread)
{
    WindowSpy window;
    window.resize(640, 480);
    window.show();
    ASSERT_TRUE(ProcessUntil([&] { return !window.painted.isEmpty(); }));
    CGVLElemMgr mgr;
    mgr.m_hWnd = &window;
    window.painted = QRegion();
    Drag(mgr, 2, { 100, 200 }, { { 101, 200 }, { 200, 260 } });
    ASSERT_TRUE(ProcessUntil([&] { return window.painted.boundingRect() == window.rect(); })) << "release";
    window.painted = QRegion();
    mgr.m_arShape.at(0)->UpdateElem();
    ASSERT_TRUE(ProcessUntil([&] { return !window.painted.isEmpty(); }));
    EXPECT_EQ(window.painted.boundingRect(), QRect(QPoint(51, 150), QPoint(449, 309)));

    window.painted = QRegion();
    std::thread other([&] {
        InvalidateWindow(&window, QRect(10, 20, 30, 40));
        SendCalibrationChanged(&window);
    });
    other.join();
    EXPECT_EQ(window.calibrationEvents, 0) << "never delivered on the other thread";
    ASSERT_TRUE(ProcessUntil([&] { return !window.painted.isEmpty() && window.calibrationEvents == 1; }));
    EXPECT_EQ(window.painted.boundingRect(), QRect(10, 20, 30, 40));
    SendCalibrationChanged(&window);
    EXPECT_EQ(window.calibrationEvents, 2) << "at once on the window's thread";
    InvalidateWindow(nullptr);
    SendCalibrationChanged(nullptr);
}
