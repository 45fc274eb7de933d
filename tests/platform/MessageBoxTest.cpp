#include "platform/MessageBox.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

QStringList g_warnings;

void CollectWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtWarningMsg)
        g_warnings << message;
}

} // namespace

// A test's handler first, then the program's box, then the log; the log
// answers what a user closing the box would.
TEST(MessageBox, GoesToTheHandlerElseTheProgramsBoxElseTheLogWithTheSafeAnswer)
{
    g_warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(CollectWarning);
    EXPECT_EQ(MessageBox("Disk full", "Save", MB_OKCANCEL | MB_ICONERROR, "ENOSPC"), IDCANCEL);
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDNO);
    EXPECT_EQ(MessageBox("Keep?", "Save", MB_YESNOCANCEL), IDCANCEL);
    EXPECT_EQ(MessageBox("Done", "Save"), IDOK);
    qInstallMessageHandler(previous);
    ASSERT_EQ(g_warnings.size(), 4);
    EXPECT_EQ(g_warnings[0], "Save: Disk full ENOSPC");

    std::vector<MessageBoxRequest> shown;
    SetMessageBoxDialog([&](const MessageBoxRequest& r) {
        shown.push_back(r);
        return int(IDYES);
    });
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO | MB_ICONQUESTION, "details"), IDYES);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, "Replace?");
    EXPECT_EQ(shown[0].caption, "Save");
    EXPECT_EQ(shown[0].flags, unsigned(MB_YESNO | MB_ICONQUESTION));
    EXPECT_EQ(shown[0].details, "details");
    {
        ScopedMessageBoxHandler handler([](const MessageBoxRequest&) { return int(IDNO); });
        EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDNO);
        EXPECT_EQ(shown.size(), 1u) << "the handler comes before the box";
    }
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDYES) << "the box again once the handler went";
    const MessageBoxHandler none = SetMessageBoxHandler({});
    EXPECT_FALSE(none);
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDYES) << "an empty handler leaves the box";
    EXPECT_EQ(shown.size(), 3u);

    SetMessageBoxDialog({});
    g_warnings.clear();
    qInstallMessageHandler(CollectWarning);
    EXPECT_EQ(MessageBox("Replace?", "Save", MB_YESNO), IDNO);
    qInstallMessageHandler(previous);
    EXPECT_EQ(g_warnings.size(), 1);
    EXPECT_EQ(shown.size(), 3u);
}
