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

// The window is a plain object here: the engine needs no widget to ask for
// repaints, only events.
TEST(WindowCalls, AskForTheAreaAtOnceOnTheWindowsThreadAndQueuedFromAnother)
{
    WindowSpy window;
    CGVLElemMgr mgr;
    mgr.SetWindow(&window, nullptr);
    Drag(mgr, 2, { 100, 200 }, { { 101, 200 }, { 200, 260 } });
    EXPECT_GT(window.wholeRequests, 0) << "the release repaints the whole window";
    window.requested = QRegion();
    mgr.m_arShape.at(0)->UpdateElem();
    EXPECT_EQ(window.requested.boundingRect(), QRect(QPoint(51, 150), QPoint(449, 309)));
    EXPECT_EQ(window.deliveredOn, QThread::currentThread());

    window.requested = QRegion();
    window.wholeRequests = 0;
    std::thread other([&] {
        InvalidateWindow(&window, QRect(10, 20, 30, 40));
        InvalidateWindow(&window);
        SendCalibrationChanged(&window);
    });
    other.join();
    EXPECT_EQ(window.calibrationEvents, 0) << "never delivered on the other thread";
    EXPECT_TRUE(window.requested.isEmpty());
    ASSERT_TRUE(ProcessUntil([&] { return window.calibrationEvents == 1; }));
    EXPECT_EQ(window.requested.boundingRect(), QRect(10, 20, 30, 40));
    EXPECT_EQ(window.wholeRequests, 1);
    EXPECT_EQ(window.deliveredOn, QThread::currentThread());

    SendCalibrationChanged(&window);
    EXPECT_EQ(window.calibrationEvents, 2) << "at once on the window's thread";
    InvalidateWindow(&window, QRect(5, 5, 0, 10));
    EXPECT_EQ(window.requested.boundingRect(), QRect(10, 20, 30, 40)) << "an empty area asks for nothing";
    InvalidateWindow(nullptr);
    InvalidateWindow(nullptr, QRect(0, 0, 1, 1));
    SendCalibrationChanged(nullptr);
}
