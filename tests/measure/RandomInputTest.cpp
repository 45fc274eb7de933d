#include "MeasureTestSupport.h"
#include "measure/CGVLAngle.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLCircleT.h"
#include "measure/CShapeHistory.h"
#include "measure/ShapesJson.h"

#include <QObject>

#include <clocale>
#include <cmath>
#include <iterator>
#include <random>
#include <utility>

using namespace MeasureTest;

namespace {

// Each exported row against the value its element reports.
void ExpectExportMatches(CGVLElemMgr& mgr, const std::string& where)
{
    const QByteArray csv = ExportCsv(mgr);
    if (mgr.m_arShape.size() < 2) {
        EXPECT_TRUE(csv.isEmpty()) << where;
        return;
    }
    QList<QByteArray> lines = csv.split('\n');
    ASSERT_TRUE(lines.takeFirst() == "No.,Type,Result,Unit" && lines.takeLast().isEmpty()) << where;
    const int precision = mgr.GetAppearance().precision;
    const bool rows = precision >= 1 && precision <= 5;
    // A unit outside the five (the gestures set -1 too) exports as mm.
    const char* units[] = { " um", " mm", " cm", " dm", " inch" };
    const int u = mgr.m_unit.m_rtUnit;
    const QByteArray unit = u >= 0 && u < int(std::size(units)) ? units[u] : " mm";
    int number = 0;
    qsizetype line = 0;
    auto expect = [&](const char* type, double value, const QByteArray& unitText) {
        ASSERT_LT(line, lines.size()) << where;
        const QList<QByteArray> f = lines[line++].split(',');
        ASSERT_EQ(f.size(), 4) << where;
        EXPECT_TRUE(f[0].toInt() == number && f[1] == type && f[3] == unitText)
            << where << " " << f[1].data();
        EXPECT_EQ(f[2].size() - f[2].indexOf('.') - 1, precision) << where;
        EXPECT_LE(
            std::abs(std::strtod(f[2].constData(), nullptr) - value), 0.5 * std::pow(10.0, -precision) + 1e-9)
            << where << " " << type << " " << f[2].data() << " vs " << value;
    };
    for (std::size_t i = 1; i < mgr.m_arShape.size() && !testing::Test::HasFatalFailure(); ++i) {
        CGVLShape* s = mgr.m_arShape[i].get();
        const int type = s->GetType();
        if (type < 2 || type > 7)
            continue;
        ++number;
        if (!rows)
            continue;
        if (type == 2)
            expect("Line distance", s->GetLength(), unit);
        if (type == 3)
            expect("Angle", dynamic_cast<CGVLAngle*>(s)->GetAngle(), "degree");
        if (type == 4 || type == 5)
            expect(type == 4 ? "Rect area" : "Ploygon area", s->GetArea(), unit + "2");
        if (type == 6) {
            expect("Circle radius", dynamic_cast<CGVLCircle*>(s)->GetRadius(), unit);
            expect("Circle area", s->GetArea(), unit + "2");
        }
        if (type == 7) {
            expect("Tri-circle radius", dynamic_cast<CGVLCircleT*>(s)->GetRadius(), unit);
            expect("Tri-circle area", s->GetArea(), unit + "2");
        }
    }
    EXPECT_EQ(line, lines.size()) << where;
}

} // namespace

// Thousands of seeded gestures over every tool, with settings changing in
// between: nothing crashes (the sanitizer builds run this too), the ruler
// stays element 0, the counting number follows the markers, and every
// exported row carries the value its element reports. In the first seeds each
// gesture is kept as an undo step; undo then walks back through every kept
// state to the empty start, and redo forward again to the same export.
TEST(RandomInput, GesturesOverEveryToolKeepTheRulerAndExportWhatTheShapesReport)
{
    std::setlocale(LC_NUMERIC, "C");
    const int tools[] = { 0, 1, 2, 3, 3, 4, 5, 5, 5, 6, 7, 7, 8, 9, 9, 9, 200, 200, 201, 202, 203, 204, 205 };
    for (int seed = 1; seed <= 30; ++seed) {
        std::mt19937 rng { std::uint32_t(seed) };
        auto pick = [&](int n) { return int(rng() % std::uint32_t(n)); };
        QObject window; // repaints go nowhere
        CGVLElemMgr mgr;
        mgr.SetWindow(&window, [&](QObject*, QStringList& lines) {
            for (int i = pick(3); i > 0; --i)
                lines.append(QString(pick(20), QChar('a' + pick(26))));
            return pick(3) != 0;
        });
        ASSERT_NE(mgr.CreateShape(ShapeType::Ruler), nullptr);
        mgr.SetRulerShown(true);
        const bool undoing = seed <= 10;
        CShapeHistory history(mgr, 1000);
        // What a user sees of a state, at one precision whatever the settings say.
        const auto look = [&mgr] {
            const CGVLElemMgr::Appearance settings = mgr.GetAppearance();
            EditAppearance(mgr, [](auto& a) { a.precision = 3; });
            QByteArray seen = ExportCsv(mgr) + ShapesToJson(mgr) + QByteArray::number(mgr.GetCount());
            mgr.SetAppearance(settings);
            return seen;
        };
        std::vector<QByteArray> kept { look() };
        QPoint at(160, 120);
        // Mostly near the last position, so that elements get hit; sometimes anywhere.
        auto next = [&] {
            return at = pick(4) ? at + QPoint(pick(41) - 20, pick(41) - 20)
                                : QPoint(pick(340) - 10, pick(260) - 10);
        };
        for (int step = 0; step < 300; ++step) {
            const std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            const int tool = tools[pick(int(std::size(tools)))];
            const int action = pick(10);
            if (action == 0) {
                mgr.OnRButtonDown(2, next(), tool);
            } else if (action == 1) {
                for (int i = pick(4); i >= 0; --i)
                    mgr.OnMouseMove(0, next(), tool);
            } else if (action == 2) {
                EditAppearance(mgr, [&](auto& a) {
                    a.precision = pick(8) ? 1 + pick(5) : pick(8) - 1;
                    a.fontSize = pick(5);
                    a.fontBackground = pick(3);
                });
                EditUnit(mgr, [&](auto& u) { u.m_rtUnit = pick(6) - 1; });
            } else {
                mgr.OnLButtonDown(1, next(), tool);
                for (int i = pick(5); i > 0; --i)
                    mgr.OnMouseMove(1, next(), tool);
                mgr.OnLButtonUp(0, pick(3) ? at : next(), tool);
                if (tool == 201)
                    mgr.DeleteAll();
            }
            if (undoing && history.Commit())
                kept.push_back(look());
            ASSERT_EQ(mgr.m_arShape.at(0)->GetType(), 9) << where;
            ASSERT_EQ(mgr.GetCount(), std::count_if(mgr.m_arShape.begin(), mgr.m_arShape.end(), [](auto& s) {
                return s->GetType() == 11;
            })) << where;
            if (step % 10 == 9) {
                ASSERT_NO_FATAL_FAILURE(ExpectExportMatches(mgr, where));
                DrawBits(mgr, 160, 120);
            }
        }
        if (!undoing)
            continue;
        const std::string where = "seed " + std::to_string(seed);
        ASSERT_GT(kept.size(), 100u) << where;
        for (std::size_t i = kept.size() - 1; i-- > 0;) {
            ASSERT_TRUE(history.Undo()) << where;
            ASSERT_EQ(look(), kept[i]) << where << " undo to " << i;
        }
        EXPECT_FALSE(history.Undo()) << where;
        EXPECT_TRUE(ExportCsv(mgr).isEmpty()) << where;
        EXPECT_EQ(mgr.m_arShape.size(), 1u) << where;
        for (std::size_t i = 1; i < kept.size(); ++i) {
            ASSERT_TRUE(history.Redo()) << where;
            ASSERT_EQ(look(), kept[i]) << where << " redo to " << i;
        }
        EXPECT_FALSE(history.CanRedo()) << where;
        DrawBits(mgr, 160, 120);
    }
}

// A long counting session with the odd line, text, drag, deletion and
// calibration in between, every gesture kept: undo walks back through
// thousands of steps to the empty export and redo forward to the same one.
// The states are compared as exported and stored, and now and then as drawn,
// so selections come back too.
TEST(RandomInput, ThousandsOfStepsUndoToTheEmptyExportAndRedoToTheSame)
{
    std::setlocale(LC_NUMERIC, "C");
    std::mt19937 rng { 2718u };
    auto pick = [&](int n) { return int(rng() % std::uint32_t(n)); };
    QObject window;
    CGVLElemMgr mgr;
    mgr.SetWindow(&window, [&](QObject*, QStringList& lines) {
        lines = QStringList { QString(1 + pick(8), QChar('a' + pick(26))) };
        return true;
    });
    ASSERT_NE(mgr.CreateShape(ShapeType::Ruler), nullptr);
    mgr.SetRulerShown(true);
    constexpr int kSteps = 2500;
    CShapeHistory history(mgr, kSteps);
    std::vector<QByteArray> kept;
    // State `index` as kept.
    const auto look = [&](std::size_t index) {
        QByteArray seen = ExportCsv(mgr) + ShapesToJson(mgr) + QByteArray::number(mgr.GetCount());
        if (index % 40 == 0) {
            const Bits bits = DrawBits(mgr, 320, 240);
            seen += QByteArray::number(qHash(QByteArrayView(
                reinterpret_cast<const char*>(bits.data.data()), qsizetype(bits.data.size()))));
        }
        return seen;
    };
    kept.push_back(look(0));
    auto somewhere = [&] { return QPoint(pick(320), pick(240)); };
    auto marker = [&]() -> QPoint {
        const auto& shapes = mgr.m_arShape;
        const CGVLShape& s = *shapes[std::size_t(pick(int(shapes.size())))];
        return s.CoordCount() ? s.m_arCoord[0] : QPoint(0, 0);
    };
    for (int step = 0; step < kSteps; ++step) {
        const int action = pick(100);
        if (action < 70) {
            Click(mgr, 202, somewhere());
        } else if (action < 78) {
            const QPoint at = marker();
            Drag(mgr, 9, at, { at + QPoint(2, 1), at + QPoint(pick(21) - 10, pick(21) - 10) });
        } else if (action < 85) {
            Click(mgr, 200, marker());
        } else if (action < 90) {
            const QPoint at = somewhere();
            Drag(mgr, 2, at, { at + QPoint(1, 0), at + QPoint(pick(81) - 40, pick(81) - 40) });
        } else if (action < 93) {
            Click(mgr, 205, somewhere());
        } else if (action < 97) {
            EditUnit(mgr, [&](auto& u) { u.m_dcxPerPixel = 0.05 * (1 + pick(9)); });
        } else if (action < 98 && mgr.m_arShape.size() > 300) {
            mgr.DeleteAll();
        } else {
            mgr.OnLButtonDown(1, marker(), 9);
            mgr.OnLButtonUp(0, marker(), 9);
        }
        if (history.Commit())
            kept.push_back(look(kept.size()));
    }
    ASSERT_GT(kept.size(), std::size_t(kSteps) * 4 / 5);
    for (std::size_t i = kept.size() - 1; i-- > 0;) {
        ASSERT_TRUE(history.Undo());
        ASSERT_EQ(look(i), kept[i]) << "undo to " << i;
    }
    EXPECT_FALSE(history.Undo());
    EXPECT_TRUE(ExportCsv(mgr).isEmpty());
    for (std::size_t i = 1; i < kept.size(); ++i) {
        ASSERT_TRUE(history.Redo());
        ASSERT_EQ(look(i), kept[i]) << "redo to " << i;
    }
    EXPECT_FALSE(history.CanRedo());
}
