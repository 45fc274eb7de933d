#include "MeasureTestSupport.h"
#include "measure/CShapeHistory.h"

#include <QObject>

#include <clocale>
#include <optional>
#include <random>

using namespace MeasureTest;

namespace {

constexpr int kLayerWidth = 200;
constexpr int kLayerHeight = 150;

// A stand-in that counts how often it is drawn.
class CountedShape : public TestShape
{
public:
    using TestShape::TestShape;
    void Draw(QPainter& dc, int hidden, int reserved) override
    {
        ++draws;
        TestShape::Draw(dc, hidden, reserved);
    }
    int draws = 0;
};

// The live overlay as the worker draws it, when it draws.
struct LiveOverlay
{
    bool Pass(CGVLElemMgr& mgr)
    {
        return mgr.DrawToBitsIfChanged(bits.data.data(), kLayerWidth, kLayerHeight, drawnAt);
    }
    Bits bits { kLayerWidth, kLayerHeight };
    std::optional<std::uint64_t> drawnAt;
};

} // namespace

// Seeded gestures of every tool over a document of a few hundred elements,
// with settings, deletions, undo and redo in between: whenever the live pass
// draws, it shows exactly what a whole fresh drawing shows.
TEST(ShapeLayer, LivePassDrawsWhatAWholeDrawingShows)
{
    std::setlocale(LC_NUMERIC, "C");
    const int tools[]
        = { 1, 2, 3, 4, 5, 5, 5, 6, 7, 7, 8, 9, 9, 9, 9, 200, 202, 202, 202, 202, 203, 204, 205 };
    for (int seed = 1; seed <= 3; ++seed) {
        std::mt19937 rng { std::uint32_t(seed) };
        auto pick = [&](int n) { return int(rng() % std::uint32_t(n)); };
        QObject window;
        CGVLElemMgr mgr;
        mgr.SetWindow(&window, [&](QObject*, QStringList& lines) {
            lines = QStringList { QString(1 + pick(6), QChar('a' + pick(26))) };
            return true;
        });
        ASSERT_NE(mgr.CreateShape(ShapeType::Ruler), nullptr);
        mgr.SetRulerShown(true);
        for (int i = 0; i < 110; ++i)
            Click(mgr, 202, { 5 + pick(kLayerWidth - 10), 5 + pick(kLayerHeight - 10) });
        CShapeHistory history(mgr, 50);
        LiveOverlay live;
        QPoint at(100, 75);
        auto next = [&] {
            return at = pick(4) ? at + QPoint(pick(31) - 15, pick(31) - 15)
                                : QPoint(pick(kLayerWidth), pick(kLayerHeight));
        };
        int layered = 0;
        for (int step = 0; step < 150; ++step) {
            const std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            const int tool = tools[pick(int(std::size(tools)))];
            const int action = pick(20);
            if (action == 0) {
                EditAppearance(mgr, [&](auto& a) { a.fontSize = pick(3); });
                EditUnit(mgr, [&](auto& u) { u.m_rtUnit = pick(5); });
            } else if (action == 1) {
                history.Undo();
            } else if (action == 2) {
                history.Redo();
            } else if (action == 3) {
                mgr.SetCrossLines(pick(2) != 0, pick(2) != 0);
            } else if (action == 4) {
                mgr.OnRButtonDown(2, next(), tool);
            } else {
                mgr.OnLButtonDown(1, next(), tool);
                for (int i = pick(4); i > 0; --i) {
                    mgr.OnMouseMove(1, next(), tool);
                    if (pick(2) && live.Pass(mgr)) {
                        ASSERT_EQ(live.bits.data, DrawBits(mgr, kLayerWidth, kLayerHeight).data)
                            << where << " mid-drag";
                    }
                }
                mgr.OnLButtonUp(0, at, tool);
            }
            history.Commit();
            if (live.Pass(mgr)) {
                layered += mgr.m_arShape.size() >= 100;
                ASSERT_EQ(live.bits.data, DrawBits(mgr, kLayerWidth, kLayerHeight).data) << where;
            }
        }
        EXPECT_GT(layered, 50) << "seed " << seed << ": the layer was seldom in use";
    }
}

// Adding to thousands of elements draws the new one only; a change to what
// every element draws, or to an old element, draws them all again.
TEST(ShapeLayer, OnlyWhatChangedIsDrawnAgain)
{
    QObject window;
    CGVLElemMgr mgr;
    mgr.SetWindow(&window, {});
    mgr.m_arShape.push_back(std::make_unique<CountedShape>(mgr, 9, QPoint(1, 1)));
    std::vector<CountedShape*> old;
    for (int i = 0; i < 2000; ++i) {
        mgr.m_arShape.push_back(
            std::make_unique<CountedShape>(mgr, 2, QPoint(i % kLayerWidth, i % kLayerHeight)));
        old.push_back(static_cast<CountedShape*>(mgr.m_arShape.back().get()));
    }
    mgr.NoteChange();
    LiveOverlay live;
    const auto drawn = [&] {
        int sum = 0;
        for (const CountedShape* s : old)
            sum += s->draws;
        return sum;
    };
    ASSERT_TRUE(live.Pass(mgr));
    int before = drawn();
    EXPECT_GE(before, 1999) << "the first pass draws them all";

    for (int marker = 0; marker < 3; ++marker) {
        before = drawn();
        Click(mgr, 202, { 20 + 10 * marker, 40 });
        ASSERT_TRUE(live.Pass(mgr));
        EXPECT_LE(drawn() - before, 1) << "marker " << marker;
        EXPECT_EQ(live.bits.data, DrawBits(mgr, kLayerWidth, kLayerHeight).data);
    }
    EXPECT_FALSE(live.Pass(mgr)) << "nothing changed";

    before = drawn();
    old[10]->m_arCoord[0] += QPoint(3, 3);
    mgr.NoteShapeChange(*old[10]);
    ASSERT_TRUE(live.Pass(mgr));
    EXPECT_GE(drawn() - before, 1999) << "an old element changed";

    before = drawn();
    EditUnit(mgr, [](auto& u) { u.m_rtUnit = 1; });
    ASSERT_TRUE(live.Pass(mgr));
    EXPECT_GE(drawn() - before, 1999) << "the calibration changed";
}
