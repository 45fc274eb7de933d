#include "measure/CGVLAnoText.h"

#include "MeasureTestSupport.h"

#include <QObject>

using namespace MeasureTest;

namespace {

struct TextFixture : MeasureFixture
{
    TextFixture()
    {
        mgr.SetWindow(&window, [this](QObject* parent, QStringList& lines) {
            EXPECT_TRUE(parent == &window && lines.isEmpty());
            lines = typed;
            return ok;
        });
    }
    QObject window;
    QStringList typed;
    bool ok = true;
};

} // namespace

TEST_F(TextFixture, OneClickAsksForTheLinesAndCancelRemovesTheElement)
{
    typed = { "one", "two", "three" };
    EditAppearance(mgr, [](auto& a) { a.fontBackground = 2; });
    Click(mgr, 205, { 100, 50 });
    ASSERT_NE(At<CGVLAnoText>(mgr, 1), nullptr);
    EXPECT_EQ(At<CGVLAnoText>(mgr, 1)->m_arText, typed);
    const Bits bits = DrawBits(mgr);
    // Medium cells of 28 pixels, 5 apart: lines at 50, 83 and 116.
    for (int y : { 50, 77, 83, 110, 116, 143 })
        EXPECT_EQ(bits.At(100, y), kGray) << y;
    for (int y : { 49, 78, 82, 111, 115, 144 })
        EXPECT_EQ(bits.At(100, y), kKeyBits) << y;

    ok = false;
    Click(mgr, 205, { 100, 200 });
    EXPECT_EQ(mgr.m_arShape.size(), 2u);
    mgr.SetTextInput([&](QObject*, QStringList& lines) {
        mgr.DeleteAll(); // anything may run while the dialog is open
        lines = QStringList { "late" };
        return true;
    });
    Click(mgr, 205, { 100, 50 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
}

// The engine alone has no one to ask: a text press is a press cancelled, with
// or without a window.
TEST_F(MeasureFixture, WithoutATextInputATextPressLeavesNoElement)
{
    Click(mgr, CGVLShape::kToolText, { 100, 50 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
    QObject window;
    mgr.SetWindow(&window, nullptr);
    Click(mgr, CGVLShape::kToolText, { 120, 60 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
    Click(mgr, CGVLShape::kToolPoint, { 120, 60 });
    EXPECT_EQ(mgr.m_arShape.size(), 2u) << "other tools still draw";
}

TEST_F(TextFixture, TheBoxReachesFortyPixelsAboveAndLeftOfTheAnchor)
{
    typed = { "" };
    Click(mgr, 205, { 100, 100 });
    DrawBits(mgr); // the element learns its font's size
    CGVLAnoText* text = At<CGVLAnoText>(mgr, 1);
    // The anchor's handle wins over the body; 100 pixels wide, 56 high for two lines.
    for (const auto& [p, hit] :
        { std::pair { QPoint(60, 60), CGVLShape::kHitBody }, { { 99, 127 }, CGVLShape::kHitBody },
            { { 100, 100 }, 0 }, { { 59, 80 }, -1 }, { { 80, 128 }, -1 } })
        EXPECT_EQ(text->HitTest(p), hit) << p.x() << "," << p.y();
    text->m_arText = { "abcdefghij", "abc" };
    for (const auto& [p, hit] :
        { std::pair { QPoint(199, 155), CGVLShape::kHitBody }, { { 200, 120 }, -1 }, { { 150, 156 }, -1 } })
        EXPECT_EQ(text->HitTest(p), hit) << p.x() << "," << p.y();

    Drag(mgr, 9, { 70, 70 }, { { 80, 75 }, { 90, 95 } });
    EXPECT_EQ(text->m_arCoord[0], QPoint(90, 95)) << "jumps to the press, then follows";
    Click(mgr, 200, { 60, 60 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
}
