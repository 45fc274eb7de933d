#include "app/CommandTable.h"

#include <QIcon>
#include <QImage>
#include <QKeySequence>
#include <QPixmap>

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

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
