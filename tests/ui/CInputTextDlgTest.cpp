#include "ui/CInputTextDlg.h"

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

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
