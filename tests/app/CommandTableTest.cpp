#include "app/CommandTable.h"

#include "MeasureFrameFixture.h"
#include "capture/HResult.h"
#include "image/ProcessOperations.h"

#include <QIcon>
#include <QImage>
#include <QKeySequence>
#include <QPixmap>

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string_view>
#include <vector>

TEST(CommandTable, IdsAreUniqueAndLayoutsUseOnlyKnownIds)
{
    std::set<int> ids;
    for (const CommandInfo& info : Commands())
        EXPECT_TRUE(ids.insert(info.id).second) << "duplicate " << info.id;
    for (const MenuInfo& menu : Menus())
        for (int id : menu.ids)
            EXPECT_TRUE(id == ID_SEPARATOR || ids.contains(id)) << menu.title << " " << id;
    for (const ToolBarInfo& bar : ToolBars()) {
        EXPECT_TRUE(ids.contains(bar.toggleId)) << bar.title;
        for (int id : bar.ids) {
            EXPECT_TRUE(id == ID_SEPARATOR || ids.contains(id)) << bar.title << " " << id;
            // A button needs a picture; a command without menu text needs a button.
            if (id != ID_SEPARATOR && id != ID_ZOOM) {
                EXPECT_NE(FindCommand(id)->icon, nullptr) << id;
            }
        }
    }
    for (const CommandInfo& info : Commands()) {
        const auto onBar = [&](const ToolBarInfo& bar) { return std::ranges::count(bar.ids, info.id) > 0; };
        EXPECT_TRUE(*info.menuText || info.id == ID_ZOOM || std::ranges::any_of(ToolBars(), onBar))
            << "unreachable command " << info.id;
    }
}

// How a menu text splits into the text, the shortcut and the tooltip.
TEST(CommandTable, TextShortcutAndToolTipOfAnEntry)
{
    EXPECT_EQ(FindCommand(12345), nullptr);
    const CommandInfo& open = *FindCommand(ID_FILE_OPEN);
    EXPECT_EQ(CommandText(open), "&Open...");
    EXPECT_EQ(CommandShortcut(open), "Ctrl+O");
    EXPECT_FALSE(QKeySequence(CommandShortcut(open)).isEmpty());
    EXPECT_EQ(CommandShortcut(*FindCommand(ID_MEASURE_LINE)), "");
    // Tooltips: the prompt without its trailing blank, else the menu text.
    EXPECT_EQ(CommandToolTip(*FindCommand(ID_PROCESS_MIRROR)), "Flip image horizontal");
    EXPECT_EQ(CommandToolTip(*FindCommand(ID_APP_EXIT)), "Exit");
    EXPECT_FALSE(CommandToolTip(*FindCommand(ID_MEASURE_POINT)).isEmpty());
}

TEST(CommandTable, EveryIconDrawsSomething)
{
    Q_INIT_RESOURCE(oculix);
    for (const CommandInfo& info : Commands()) {
        if (!info.icon)
            continue;
        const QImage image = QIcon(QString::fromLatin1(info.icon)).pixmap(24, 24).toImage();
        ASSERT_FALSE(image.isNull()) << info.icon;
        int opaque = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                opaque += qAlpha(image.pixel(x, y)) > 0;
        EXPECT_GT(opaque, 20) << info.icon;
        EXPECT_LT(opaque, image.width() * image.height()) << info.icon;
    }
}

// The process menu and bar keep their order: the flips, then the operations
// that change pixels, each group after a separator.
TEST(CommandTable, ProcessMenuAndBarListTheOperationsInTheirGroups)
{
    constexpr int S = ID_SEPARATOR;
    std::vector<int> menu { ID_PROCESS_ENABLE, S, ID_PROCESS_MIRROR, ID_PROCESS_FLIP, S, ID_PROCESS_GRAY,
        ID_PROCESS_NEGATIVE, ID_PROCESS_EMBOSS, ID_PROCESS_SHARPEN, ID_PROCESS_BINARY, ID_PROCESS_RGB };
    std::vector<int> bar = menu;
    bar.insert(bar.end(), { S, ID_PROCESS_PROPERTIES });
    std::vector<int> withTools = menu;
    withTools.insert(withTools.end(), { S, ID_PROCESS_FOCUS_STACK, ID_PROCESS_STITCH });
    const auto process = std::ranges::find_if(
        Menus(), [](const MenuInfo& m) { return std::string_view(m.title) == "&Process"; });
    ASSERT_NE(process, Menus().end());
    EXPECT_EQ(std::vector<int>(process->ids.begin(), process->ids.end()), withTools);
    const auto processBar = std::ranges::find_if(
        ToolBars(), [](const ToolBarInfo& b) { return b.toggleId == ID_VIEW_PROCESSBAR; });
    ASSERT_NE(processBar, ToolBars().end());
    EXPECT_EQ(std::vector<int>(processBar->ids.begin(), processBar->ids.end()), bar);
}

// Each on/off command of the process menu switches its own operation, in the
// document and in the live processing element, and shows it checked.
TEST_F(MeasureFrameTest, ProcessTogglesSwitchTheirOwnOperation)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    ASSERT_NE(live, nullptr);
    const std::pair<int, bool ProcessSwitches::*> toggles[] = { { ID_PROCESS_FLIP, &ProcessSwitches::flip },
        { ID_PROCESS_MIRROR, &ProcessSwitches::mirror }, { ID_PROCESS_GRAY, &ProcessSwitches::gray },
        { ID_PROCESS_NEGATIVE, &ProcessSwitches::negative }, { ID_PROCESS_EMBOSS, &ProcessSwitches::emboss },
        { ID_PROCESS_SHARPEN, &ProcessSwitches::sharpen } };
    for (const auto& [id, flag] : toggles) {
        SCOPED_TRACE(id);
        ASSERT_TRUE(frame->RouteCommand(id));
        EXPECT_TRUE(frame->QueryCommand(id).IsChecked());
        ProcessSwitches element;
        for (const ProcessOperation& op : kProcessOperations)
            ASSERT_EQ(live->GetGraph().GetOperation(op.op, &element), S_OK);
        for (const auto& [otherId, other] : toggles) {
            EXPECT_EQ(live->GetSwitches().*other, other == flag) << otherId;
            EXPECT_EQ(element.*other, other == flag) << otherId;
        }
        ASSERT_TRUE(frame->RouteCommand(id));
        EXPECT_FALSE(live->GetSwitches().*flag);
    }
}
