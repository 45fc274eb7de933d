#include "MeasureTestSupport.h"
#include "measure/CShapeHistory.h"

#include <QObject>
#include <QPainter>

using namespace MeasureTest;

namespace {

using Operation = std::function<void(CGVLElemMgr&)>;
struct Row
{
    const char* what;
    Operation operation;
};

// The ruler, one element of every other kind, all placed and none selected,
// and a counting marker at (100, 100).
struct Scene
{
    Scene()
    {
        mgr.SetWindow(&window, [](QObject*, QStringList& lines) {
            lines = QStringList { QStringLiteral("cells") };
            return true;
        });
        mgr.CreateShape(ShapeType::Ruler);
        mgr.SetRulerShown(true);
        Drag(mgr, 2, { 20, 20 }, { { 21, 20 }, { 120, 30 } });
        Click(mgr, 202, { 100, 100 });
        Drag(mgr, 4, { 150, 40 }, { { 151, 41 }, { 220, 90 } });
        Drag(mgr, 6, { 60, 180 }, { { 61, 180 }, { 90, 180 } });
        Clicks(mgr, 3, { { 200, 200 }, { 260, 200 }, { 230, 150 } });
        Click(mgr, 205, { 30, 220 });
        Click(mgr, 1, { 280, 120 });
        Drag(mgr, 203, { 250, 10 }, { { 251, 11 }, { 300, 60 } });
        Clicks(mgr, 7, { { 100, 150 }, { 140, 150 }, { 120, 190 } });
        Clicks(mgr, 5, { { 160, 200 }, { 220, 200 }, { 200, 230 } });
        RightClick(mgr, 5, { 200, 230 });
        EXPECT_EQ(mgr.m_arShape.size(), 11u);
    }
    ~Scene() { mgr.SetWindow(nullptr, {}); }
    QObject window;
    CGVLElemMgr mgr;
};

CGVLShape* Marker(CGVLElemMgr& mgr)
{
    for (const auto& shape : mgr.m_arShape)
        if (shape->GetType() == int(ShapeType::Counting))
            return shape.get();
    return nullptr;
}

} // namespace

// Every kind of change to what the elements draw moves the count, so the
// live overlay is redrawn for it.
TEST(ChangeCount, MovesForEveryChangeToWhatIsDrawn)
{
    CalibrationRecord other;
    other.m_dcxPerPixel = 0.5;
    const std::vector<Row> rows {
        { "a line drawn",
            [](auto& m) {
                Drag(m, 2, { 40, 60 }, { { 41, 60 }, { 140, 60 } });
            } },
        { "a counting marker",
            [](auto& m) {
                Click(m, 202, { 300, 40 });
            } },
        { "an element made", [](auto& m) { m.CreateShape(ShapeType::Point); } },
        { "a press of the drawing tool alone",
            [](auto& m) {
                m.OnLButtonDown(1, { 300, 150 }, 2);
            } },
        { "a line's end dragged",
            [](auto& m) {
                Drag(m, 9, { 120, 30 }, { { 125, 35 }, { 130, 40 } });
            } },
        { "a marker moved",
            [](auto& m) {
                Drag(m, 9, { 100, 100 }, { { 104, 100 }, { 110, 104 } });
            } },
        { "a marker deleted with the tool",
            [](auto& m) {
                Click(m, 200, { 100, 100 });
            } },
        { "an element deleted by id",
            [](auto& m) {
                // Ids are tick counts: the scene's are all alike.
                Marker(m)->m_dwId = 12345;
                m.DeleteById(12345);
            } },
        { "an element deleted", [](auto& m) { m.DeleteShape(Marker(m)); } },
        { "all deleted", [](auto& m) { m.DeleteAll(); } },
        { "a text written",
            [](auto& m) {
                Click(m, 205, { 250, 20 });
            } },
        { "the calibration", [&](auto& m) { m.SetUnit(other); } },
        { "the unit", [](auto& m) { EditUnit(m, [](auto& u) { u.m_rtUnit = 2; }); } },
        { "a colour", [](auto& m) { EditAppearance(m, [](auto& a) { a.color.m_ctRuler = 7; }); } },
        { "the precision", [](auto& m) { EditAppearance(m, [](auto& a) { a.precision = 4; }); } },
        { "the font", [](auto& m) { EditAppearance(m, [](auto& a) { a.fontSize = 3; }); } },
        { "the label background", [](auto& m) { EditAppearance(m, [](auto& a) { a.fontBackground = 0; }); } },
        { "cross lines", [](auto& m) { m.SetCrossLines(false, true); } },
        { "the ruler hidden", [](auto& m) { m.SetRulerShown(false); } },
        { "everything hidden", [](auto& m) { m.SetHidden(true); } },
        { "the scroll origin",
            [](auto& m) {
                m.SetOrigin({ -20, -10 });
            } },
        { "another window", [](auto& m) { m.SetWindow(nullptr, {}); } },
        { "the list put back", [](auto& m) { m.ReplaceShapes(m.CopyShapes()); } },
        { "shapes appended as read from a file", [](auto& m) { m.AppendShapes(m.CopyShapes()); } },
        { "an element coloured through itself",
            [](auto& m) {
                ColorRecord c = m.GetAppearance().color;
                c.m_ctText = 6;
                Marker(m)->SetColor(c);
            } },
        { "the calibration through an element", [&](auto& m) { Marker(m)->SetUnit(other); } },
    };
    for (const Row& row : rows) {
        Scene scene;
        const std::uint64_t before = scene.mgr.ChangeCount();
        row.operation(scene.mgr);
        EXPECT_GT(scene.mgr.ChangeCount(), before) << row.what;
    }

    // A press that only takes a selection away changes the dotted outline.
    Scene scene;
    scene.mgr.OnLButtonDown(1, { 100, 100 }, 9);
    scene.mgr.OnLButtonUp(0, { 100, 100 }, 9);
    ASSERT_TRUE(Marker(scene.mgr)->m_bSelected);
    const std::uint64_t selected = scene.mgr.ChangeCount();
    scene.mgr.OnLButtonDown(1, { 600, 600 }, CGVLShape::kToolIgnore);
    EXPECT_GT(scene.mgr.ChangeCount(), selected);

    // Undo and redo put elements back.
    CShapeHistory history(scene.mgr);
    Click(scene.mgr, 202, { 300, 40 });
    ASSERT_TRUE(history.Commit());
    std::uint64_t count = scene.mgr.ChangeCount();
    ASSERT_TRUE(history.Undo());
    EXPECT_GT(scene.mgr.ChangeCount(), count) << "undo";
    count = scene.mgr.ChangeCount();
    ASSERT_TRUE(history.Redo());
    EXPECT_GT(scene.mgr.ChangeCount(), count) << "redo";
}

// What leaves every element drawn as it was leaves the count, so an idle
// overlay is not drawn again: drawing itself, exports, a setting set to what
// it is, the counting number, the mouse passing over elements, a release
// with nothing held, history steps that change nothing.
TEST(ChangeCount, StaysForWhatChangesNothingDrawn)
{
    Scene scene;
    CGVLElemMgr& mgr = scene.mgr;
    const std::vector<Row> rows {
        { "overlay drawn", [](auto& m) { DrawBits(m); } },
        { "saved overlay drawn",
            [](auto& m) {
                Bits bits(320, 240);
                m.DrawToImage(bits.data.data(), 320, 240, true, true, 0, true, true, QStringLiteral("t"));
            } },
        { "screen drawn",
            [](auto& m) {
                QImage image(320, 240, QImage::Format_RGB32);
                QPainter dc(&image);
                m.DrawAll(dc, 320, 240);
            } },
        { "CSV written", [](auto& m) { ExportCsv(m); } },
        { "elements copied", [](auto& m) { m.CopyShapes(); } },
        { "the same calibration", [](auto& m) { m.SetUnit(m.GetUnit()); } },
        { "the same appearance", [](auto& m) { m.SetAppearance(m.GetAppearance()); } },
        { "the same cross lines", [](auto& m) { m.SetCrossLines(false, false); } },
        { "the ruler shown again", [](auto& m) { m.SetRulerShown(true); } },
        { "shown again", [](auto& m) { m.SetHidden(false); } },
        { "the same window", [](auto& m) { m.SetWindow(m.GetWindow(), {}); } },
        { "the same origin", [](auto& m) { m.SetOrigin({}); } },
        { "the counting number", [](auto& m) { m.SetCount(40); } },
        { "an element looked up", [](auto& m) { m.FindById(Marker(m)->GetId()); } },
        { "no element by that id", [](auto& m) { m.DeleteById(0xDEADBEEF); } },
        { "the ruler kept", [](auto& m) { m.DeleteShape(m.m_arShape.front().get()); } },
        { "the mouse passing over elements",
            [](auto& m) {
                for (const int tool : { 0, 1, 2, 3, 4, 5, 6, 7, 9, 200, 202, 203, 205 })
                    for (const QPoint p :
                        { QPoint(100, 100), QPoint(70, 25), QPoint(230, 190), QPoint(5, 5) })
                        m.OnMouseMove(0, p, tool);
            } },
        { "a release with nothing held",
            [](auto& m) {
                for (const int tool : { 0, 1, 2, 3, 4, 5, 6, 7, 9, 202, 203, 205 })
                    m.OnLButtonUp(0, { 100, 100 }, tool);
            } },
        { "a press of the ignore tool",
            [](auto& m) {
                m.OnLButtonDown(1, { 100, 100 }, CGVLShape::kToolIgnore);
            } },
        { "history steps of nothing",
            [](auto& m) {
                CShapeHistory history(m);
                EXPECT_FALSE(history.Commit());
                EXPECT_FALSE(history.Undo());
                EXPECT_FALSE(history.Redo());
            } },
    };
    for (const Row& row : rows) {
        const std::uint64_t before = mgr.ChangeCount();
        row.operation(mgr);
        EXPECT_EQ(mgr.ChangeCount(), before) << row.what;
    }
}
