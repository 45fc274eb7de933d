#include "ui/MessageBoxDialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace {

// Shows the request as the program's box, lets `look` see the box, presses
// `button` and returns the answer.
int Answer(const MessageBoxRequest& request, QMessageBox::StandardButton button,
    const std::function<void(QMessageBox&)>& look = {})
{
    QTimer::singleShot(0, [&] {
        QPointer<QMessageBox> box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        if (look)
            look(*box);
        if (QAbstractButton* pressed = box ? box->button(button) : nullptr)
            pressed->click();
        else if (box)
            box->reject();
    });
    return ShowMessageBoxDialog(request);
}

} // namespace

TEST(MessageBoxDialog, ShowsTheTextsIconButtonsAndDetailsAndAnswersTheButtonPressed)
{
    const MessageBoxRequest error { "The camera stopped.", "Oculix", MB_OK | MB_ICONERROR,
        "Internal data stream error." };
    EXPECT_EQ(Answer(error, QMessageBox::Ok,
                  [](QMessageBox& box) {
                      EXPECT_EQ(box.windowTitle(), "Oculix");
                      EXPECT_EQ(box.text(), "The camera stopped.");
                      EXPECT_EQ(box.icon(), QMessageBox::Critical);
                      EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
                      EXPECT_EQ(box.detailedText(), "Internal data stream error.");
                      bool details = false;
                      for (QAbstractButton* b : box.buttons())
                          details |= box.buttonRole(b) == QMessageBox::ActionRole
                              && b->text().startsWith("Show Details");
                      EXPECT_TRUE(details) << "the details are one button away";
                  }),
        IDOK);

    const auto buttons = [](unsigned flags) {
        QMessageBox::StandardButtons shown;
        Answer({ "?", "Oculix", flags, {} }, QMessageBox::NoButton,
            [&](QMessageBox& box) { shown = box.standardButtons(); });
        return shown;
    };
    EXPECT_EQ(buttons(MB_OKCANCEL), QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(buttons(MB_YESNO), QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(buttons(MB_YESNOCANCEL), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);

    const auto icon = [](unsigned flags) {
        QMessageBox::Icon shown {};
        Answer({ "?", "Oculix", flags, {} }, QMessageBox::Ok, [&](QMessageBox& box) { shown = box.icon(); });
        return shown;
    };
    EXPECT_EQ(icon(MB_ICONQUESTION), QMessageBox::Question);
    EXPECT_EQ(icon(MB_ICONWARNING), QMessageBox::Warning);
    EXPECT_EQ(icon(MB_ICONINFORMATION), QMessageBox::Information);
    EXPECT_EQ(icon(MB_OK), QMessageBox::NoIcon);

    const MessageBoxRequest replace { "Replace the file?", "Save", MB_YESNOCANCEL | MB_SETFOREGROUND, {} };
    EXPECT_EQ(Answer(replace, QMessageBox::Yes,
                  [](QMessageBox& box) {
                      EXPECT_TRUE(box.windowFlags() & Qt::WindowStaysOnTopHint);
                      EXPECT_TRUE(box.detailedText().isEmpty());
                  }),
        IDYES);
    EXPECT_EQ(Answer(replace, QMessageBox::No), IDNO);
    EXPECT_EQ(Answer(replace, QMessageBox::Cancel), IDCANCEL);
    EXPECT_EQ(Answer({ "?", "Oculix", MB_YESNO, {} }, QMessageBox::NoButton), IDNO)
        << "closed: the safe answer";
    EXPECT_EQ(Answer({ "?", "Oculix", MB_OKCANCEL, {} }, QMessageBox::Ok), IDOK);
}

// Installed, it is what MessageBox() shows when no handler takes the message.
TEST(MessageBoxDialog, InstalledItIsTheBoxMessageBoxShows)
{
    InstallMessageBoxDialog();
    QTimer::singleShot(0, [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        box->button(QMessageBox::Yes)->click();
    });
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDYES);
    SetMessageBoxDialog({});
}
