#include "MeasureTestSupport.h"
#include "measure/CGVLAnoText.h"
#include "measure/CShapeHistory.h"

#include <QImage>
#include <QObject>
#include <QPainter>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

using namespace MeasureTest;

namespace {

// The live overlay worker, drawing the manager's elements until destroyed.
struct OverlayWorker
{
    explicit OverlayWorker(CGVLElemMgr& mgr)
        : thread([this, &mgr] {
            std::vector<uchar> buffer(DibStride(320) * 240);
            while (!stop.load()) {
                mgr.DrawToBits(buffer.data(), 320, 240);
                passes.fetch_add(1);
                // The real worker rests 30 ms between passes; one that never
                // rests would hold the lock and starve the editing thread.
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        })
    {
        while (passes.load() == 0)
            std::this_thread::yield();
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

struct ThreadFixture : ::testing::Test
{
    ThreadFixture()
    {
        mgr.SetWindow(&window, nullptr);
        mgr.CreateShape(ShapeType::Ruler);
        mgr.SetRulerShown(true);
    }
    QObject window; // repaint requests go nowhere
    CGVLElemMgr mgr;
};

} // namespace

// Every tool's elements placed, dragged, exported and deleted, settings
// changed, edits undone and redone, and the screen painted while the worker
// draws: under ThreadSanitizer nothing is read while it changes.
TEST_F(ThreadFixture, ElementsAreEditedExportedAndPaintedWhileTheWorkerDraws)
{
    CShapeHistory history(mgr);
    OverlayWorker worker(mgr);
    QImage screen(320, 240, QImage::Format_RGB32);
    for (int round = 0; round < 20; ++round) {
        const int drawn = worker.passes.load();
        const QPoint o(round * 5 % 100, round * 3 % 100);
        Drag(mgr, 2, o + QPoint(10, 20), { o + QPoint(11, 21), o + QPoint(120, 140) });
        history.Commit();
        Drag(mgr, 203, o + QPoint(200, 10), { o + QPoint(201, 11), o + QPoint(260, 90) });
        Click(mgr, 202, o + QPoint(30, 200));
        Click(mgr, 1, o + QPoint(150, 100));
        Clicks(mgr, 3, { o + QPoint(80, 40), o + QPoint(40, 40), o + QPoint(40, 10) });
        Clicks(mgr, 7, { o + QPoint(100, 100), o + QPoint(140, 100), o + QPoint(100, 140) });
        history.Commit();
        Drag(mgr, 6, o + QPoint(200, 60), { o + QPoint(201, 60), o + QPoint(230, 80) });
        Drag(mgr, 4, o + QPoint(20, 150), { o + QPoint(21, 151), o + QPoint(90, 200) });
        Clicks(mgr, 5, { o + QPoint(150, 150), o + QPoint(250, 150), o + QPoint(250, 220) });
        mgr.OnMouseMove(0, o + QPoint(160, 230), 5);
        RightClick(mgr, 5, o);
        history.Commit();
        Drag(mgr, 9, o + QPoint(90, 200), { o + QPoint(100, 210) });
        Drag(mgr, 2, { 5, 5 }, { { 6, 6 }, { 7, 7 } }); // too short: leaves at once
        EXPECT_FALSE(ExportCsv(mgr).isEmpty());
        Click(mgr, 200, o + QPoint(30, 200));
        Click(mgr, 200, o + QPoint(40, 40));
        mgr.SetOrigin({ -round, -2 * round });
        {
            const auto lock = mgr.Lock();
            EditAppearance(mgr, [&](auto& a) {
                a.precision = 1 + round % 5;
                a.fontSize = 1 + round % 3;
                a.fontBackground = 1 + round % 2;
                a.color.m_ctRuler = round % 8;
            });
            EditUnit(mgr, [&](auto& u) { u.m_dcxPerPixel = 0.1 + round * 0.01; });
            mgr.SetCrossLines(false, (round & 1) != 0);
        }
        history.Commit();
        QPainter dc(&screen);
        mgr.DrawAll(dc, screen.width(), screen.height());
        EXPECT_TRUE(history.Undo() && history.Undo() && history.Undo() && history.Redo());
        if (round % 5 == 4)
            mgr.DeleteAll();
        // The lock need not be fair either way: let the worker draw between
        // rounds. A deadline, not a measurement.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (worker.passes.load() == drawn && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
    }
    EXPECT_GE(worker.passes.load(), 20) << "the worker drew between every two rounds";
    EXPECT_EQ(mgr.m_arShape.at(0)->GetType(), 9);
}

// Settings change whole under the worker: while the calibration and the
// colours go back and forth between two states, every overlay it draws shows
// each record as one of the states left it (the labels of one calibration,
// strokes and text of one colour record), and so does every copy it reads.
TEST_F(ThreadFixture, SettingsChangedWhileTheWorkerDrawsAreDrawnWhole)
{
    const CalibrationRecord units[] { { 1, 0.1, 0.1, 10.0, 10.0 }, { 0, 0.3, 0.3, 20.0, 20.0 } };
    const ColorRecord colors[] { { 4, 2, 3, 2 }, { 4, 3, 3, 3 } }; // red, then green strokes and text
    Drag(mgr, 2, { 40, 40 }, { { 41, 41 }, { 140, 140 } }); // a line with its length label
    // The four mixes of the two states, each record whole.
    std::vector<std::vector<uchar>> whole;
    for (const CalibrationRecord& unit : units)
        for (const ColorRecord& color : colors) {
            mgr.SetUnit(unit);
            mgr.SetAppearance({ .color = color });
            whole.push_back(DrawBits(mgr).data);
        }
    ASSERT_EQ(std::set(whole.begin(), whole.end()).size(), 4u);
    mgr.SetUnit({ 1, 0.1, 0.3, 10.0, 20.0 });
    const auto torn = DrawBits(mgr).data;
    mgr.SetUnit(units[0]);
    mgr.SetAppearance({ .color = { 4, 2, 3, 3 } });
    const auto tornColors = DrawBits(mgr).data;
    ASSERT_EQ(
        std::count(whole.begin(), whole.end(), torn) + std::count(whole.begin(), whole.end(), tornColors), 0)
        << "a torn record shows";
    mgr.SetAppearance({ .color = colors[0] });

    std::atomic<bool> stop { false };
    std::atomic<int> passes { 0 };
    std::atomic<std::size_t> mixes { 0 };
    // The worker's own until it is joined.
    std::set<std::size_t> drawn;
    int tornDrawings = 0;
    int tornCopies = 0;
    std::thread worker([&] {
        std::vector<uchar> bits(DibStride(320) * 240);
        while (!stop.load()) {
            mgr.DrawToBits(bits.data(), 320, 240);
            const auto it = std::find(whole.begin(), whole.end(), bits);
            if (it == whole.end())
                ++tornDrawings;
            else
                drawn.insert(std::size_t(it - whole.begin()));
            mixes = drawn.size();
            const CalibrationRecord unit = mgr.GetUnit();
            const ColorRecord color = mgr.GetAppearance().color;
            tornCopies
                += (unit != units[0] && unit != units[1]) || (color != colors[0] && color != colors[1]);
            passes.fetch_add(1);
        }
    });
    // A deadline, not a measurement.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (int i = 0; (passes.load() < 300 || mixes.load() < 4) && std::chrono::steady_clock::now() < deadline;
         ++i) {
        mgr.SetUnit(units[i % 2]);
        mgr.SetAppearance({ .color = colors[i / 2 % 2] });
        std::this_thread::yield();
    }
    stop = true;
    worker.join();
    EXPECT_EQ(tornDrawings, 0);
    EXPECT_EQ(tornCopies, 0);
    EXPECT_EQ(drawn.size(), 4u) << "the worker drew while the settings changed";
}

// The text dialog may stay open as long as the user likes; the live overlay
// must go on being drawn meanwhile, so the dialog runs without the lock.
TEST_F(ThreadFixture, TheOverlayWorkerDrawsWhileTheTextIsAsked)
{
    bool drewWhileAsking = true;
    {
        OverlayWorker worker(mgr);
        mgr.SetTextInput([&](QObject*, QStringList& lines) {
            // A deadline, not a measurement: a worker stuck on the lock would
            // otherwise hang the test.
            const int before = worker.passes.load();
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
            while (worker.passes.load() < before + 3 && std::chrono::steady_clock::now() < deadline)
                std::this_thread::yield();
            drewWhileAsking = drewWhileAsking && worker.passes.load() >= before + 3;
            lines = QStringList { "Sample", "7" };
            return true;
        });
        for (int i = 0; i < 5; ++i)
            Click(mgr, 205, { 20 + 40 * i, 30 + 20 * i });
    }
    EXPECT_TRUE(drewWhileAsking);
    ASSERT_EQ(mgr.m_arShape.size(), 6u);
    EXPECT_EQ(At<CGVLAnoText>(mgr, 5)->m_arText, (QStringList { "Sample", "7" }));
}
