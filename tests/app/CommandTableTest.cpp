#include "app/CommandTable.h"

#include <QIcon>
#include <QImage>
#include <QKeySequence>
#include <QPixmap>

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
        if (*info.menuText || info.id == ID_ZOOM)
            continue;
        bool onBar = false;
        for (const ToolBarInfo& bar : ToolBars())
            onBar = onBar || std::find(bar.ids.begin(), bar.ids.end(), info.id) != bar.ids.end();
        EXPECT_TRUE(onBar) << "unreachable command " << info.id;
    }
}

TEST(CommandTable, TextsPromptsAndAccelerators)
{
    struct Row
    {
        int id;
        const char* menu;
        const char* prompt;
    };
    const Row rows[] = {
        { 57600, "&New Preview\tCtrl+N", "New preview" },
        { 57601, "&Open...\tCtrl+O", "Open an existing image" },
        { 57602, "&Close", "Close the active imaget" },
        { 57665, "E&xit", "" },
        { 32851, "&Line", "Draw line" },
        { 32896, "&Angle", "Draw angle " },
        { 32905, "Flip &Horizontal", "Flip image horizontal " },
        { 32904, "Flip &Vertical", "Flip image vertical" },
        { 32869, "Calibratio&n", "Calibration" },
        { 32922, "Ex&port data", "Export measurement data to csv file" },
        { 32928, "Dashed C&ross Line", "Dashed crossline" },
        { 32876, "Video Capture &Device...", "Change video capture device" },
        { 32842, "", "Capture picture to an active view" },
        { 32920, "", "Zoom display" },
        { 57652, "Tile &Vertical", "" },
    };
    for (const Row& row : rows) {
        const CommandInfo* info = FindCommand(row.id);
        ASSERT_NE(info, nullptr) << row.id;
        EXPECT_STREQ(info->menuText, row.menu) << row.id;
        EXPECT_STREQ(info->prompt, row.prompt) << row.id;
    }
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
