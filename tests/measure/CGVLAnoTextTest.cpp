#include "measure/CGVLAnoText.h"

#include "MeasureTestSupport.h"
#include "measure/CInputTextDlg.h"

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

using namespace MeasureTest;

namespace {

struct TextFixture : ::testing::Test
{
    TextFixture()
    {
        mgr.m_hWnd = &window;
        mgr.CreateShape(9);
        mgr.m_color = { 1, 2, 3, 2 }; // text red
        mgr.m_fnTextInput = [this](QWidget* parent, QStringList& lines) {
            ++asked;
            EXPECT_EQ(parent, &window);
            EXPECT_TRUE(lines.isEmpty());
            lines = typed;
            return ok;
        };
    }
    CGVLAnoText* Text() { return At<CGVLAnoText>(mgr, 1); }
    QWidget window; // never shown
    CGVLElemMgr mgr;
    QStringList typed;
    bool ok = true;
    int asked = 0;
};

} // namespace

TEST_F(TextFixture, OneClickAsksForTheLinesAndDrawsThemBelowTheAnchor)
{
    typed = { "one", "two", "three" };
    mgr.m_nFontBackground = 2;
    mgr.OnLButtonDown(1, { 100, 50 }, 205);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(mgr.m_bMouseDown, 1);
    mgr.OnLButtonUp(0, { 100, 50 }, 205);
    ASSERT_NE(Text(), nullptr);
    EXPECT_EQ(Text()->m_arText, typed);
    EXPECT_FALSE(Text()->m_bSelected || Text()->m_bDown);
    const Bits bits = DrawBits(mgr);
    // Medium cells of 28 pixels, 5 apart: lines at 50, 83 and 116.
    for (int y : { 50, 77, 83, 110, 116, 143 })
        EXPECT_EQ(bits.At(100, y), kGray) << y;
    for (int y : { 49, 78, 82, 111, 115, 144 })
        EXPECT_EQ(bits.At(100, y), kKeyBits) << y;
    EXPECT_EQ(Text()->m_nCharHeight, 28);
    EXPECT_EQ(Text()->m_nCharWidth, 10);
}

TEST_F(TextFixture, CancellingRemovesTheElement)
{
    ok = false;
    Click(mgr, 205, { 100, 50 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
    EXPECT_TRUE(DrawBits(mgr).Extent(kKeyBits).isEmpty());
    mgr.m_fnTextInput = [&](QWidget*, QStringList& lines) {
        mgr.DeleteAll(); // anything may run while the dialog is open
        lines = QStringList { "late" };
        return true;
    };
    Click(mgr, 205, { 100, 50 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
}

TEST_F(TextFixture, TheBoxReachesFortyPixelsAboveAndLeftOfTheAnchor)
{
    typed = { "" };
    Click(mgr, 205, { 100, 100 });
    DrawBits(mgr); // the element learns its font's size
    CGVLAnoText* text = Text();
    EXPECT_EQ(text->HitTest({ 60, 60 }), CGVLShape::kHitBody);
    EXPECT_EQ(text->HitTest({ 99, 119 }), CGVLShape::kHitBody);
    EXPECT_EQ(text->HitTest({ 100, 100 }), 0) << "the anchor's handle";
    EXPECT_EQ(text->HitTest({ 59, 80 }), -1);
    EXPECT_EQ(text->HitTest({ 80, 128 }), -1);
    text->m_arText = { "abcdefghij", "abc" }; // 100 pixels wide, 56 high
    EXPECT_EQ(text->HitTest({ 199, 155 }), CGVLShape::kHitBody);
    EXPECT_EQ(text->HitTest({ 200, 120 }), -1);
    EXPECT_EQ(text->HitTest({ 150, 156 }), -1);

    Drag(mgr, 9, { 70, 70 }, { { 80, 75 }, { 90, 95 } });
    EXPECT_EQ(text->m_arCoord[0], QPoint(90, 95)) << "jumps to the press, then follows";
    Click(mgr, 200, { 60, 60 });
    EXPECT_EQ(mgr.m_arShape.size(), 1u);
}

TEST(InputTextDlg, EnterPressesOkAndCtrlEnterStartsANewLine)
{
    QStringList lines { "old" };
    CInputTextDlg dlg(&lines);
    QDialog* window = dlg.Window();
    EXPECT_EQ(window->windowTitle(), "Input Text");
    const auto labels = window->findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels[0]->text(), "Text(New line by pressing CTRL+ENTER)");
    EXPECT_EQ(dlg.OkButton()->text(), "OK");

    window->show();
    QTest::keyClicks(dlg.Edit(), "first");
    QTest::keyClick(dlg.Edit(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClicks(dlg.Edit(), QString(200, QChar('x')));
    QTest::keyClick(dlg.Edit(), Qt::Key_Enter, Qt::KeypadModifier | Qt::ControlModifier);
    EXPECT_EQ(lines, QStringList { "old" }) << "nothing changes before OK";
    QTest::keyClick(dlg.Edit(), Qt::Key_Return);
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(lines, (QStringList { "first", QString(128, QChar('x')), "" }));
}

TEST(InputTextDlg, CancelLeavesTheLinesAndEveryShowingStartsEmpty)
{
    QStringList lines { "kept" };
    CInputTextDlg dlg(&lines);
    QTimer::singleShot(0, [&] {
        QTest::keyClicks(dlg.Edit(), "typed");
        QTest::keyClick(dlg.Edit(), Qt::Key_Escape);
    });
    EXPECT_FALSE(dlg.DoModal());
    EXPECT_EQ(lines, QStringList { "kept" });
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(dlg.Edit()->toPlainText().isEmpty());
        QTest::keyClicks(dlg.Edit(), QString::fromUtf8("Maß µm"));
        QTest::keyClick(dlg.Edit(), Qt::Key_Return);
    });
    EXPECT_TRUE(dlg.DoModal());
    EXPECT_EQ(lines, QStringList { QString::fromUtf8("Maß µm") });
}
