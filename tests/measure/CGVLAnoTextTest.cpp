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

using namespace MeasureTest;

namespace {

struct TextFixture : MeasureFixture
{
    TextFixture()
    {
        mgr.m_hWnd = &window;
        mgr.m_fnTextInput = [this](QWidget* parent, QStringList& lines) {
            EXPECT_TRUE(parent == &window && lines.isEmpty());
            lines = typed;
            return ok;
        };
    }
    QWidget window; // never shown
    QStringList typed;
    bool ok = true;
};

} // namespace

TEST_F(TextFixture, OneClickAsksForTheLinesAndCancelRemovesTheElement)
{
    typed = { "one", "two", "three" };
    mgr.m_nFontBackground = 2;
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

TEST(InputTextDlg, EnterPressesOkCtrlEnterStartsANewLineAndCancelKeepsTheLines)
{
    QStringList lines { "old" };
    CInputTextDlg dlg(&lines);
    QDialog* window = dlg.Window();
    EXPECT_EQ(window->windowTitle(), "Input Text");
    ASSERT_EQ(window->findChildren<QLabel*>().size(), 1);
    EXPECT_EQ(window->findChild<QLabel*>()->text(), "Text(New line by pressing CTRL+ENTER)");
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

    // Cancel leaves the lines; every showing starts empty.
    lines = QStringList { "kept" };
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
