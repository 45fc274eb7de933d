#include "app/CommandTable.h"

#include <QIcon>
#include <QImage>
#include <QKeySequence>
#include <QPixmap>

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <tuple>

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

TEST(CommandTable, TextsPromptsAndAccelerators)
{
    // Texts the menus and toolbars of the frame do not show in full elsewhere.
    const std::tuple<int, const char*, const char*> rows[] = {
        { 57600, "&New Preview\tCtrl+N", "New preview" },
        { 57601, "&Open...\tCtrl+O", "Open an existing image" },
        { 57602, "&Close", "Close the active imaget" },
        { 57603, "&Save\tCtrl+S", "Save the active image" },
        { 32938, "Open &Picture Folder", "Open pictures' saved folder" },
        { 32851, "&Line", "Draw line" },
        { 32904, "Flip &Vertical", "Flip image vertical" },
        { 32869, "Calibratio&n", "Calibration" },
        { 32922, "Ex&port data", "Export measurement data to csv file" },
        { 32928, "Dashed C&ross Line", "Dashed crossline" },
        { 32876, "Video Capture &Device...", "Change video capture device" },
        { 32920, "", "Zoom display" },
    };
    for (const auto& [id, menu, prompt] : rows) {
        const CommandInfo* info = FindCommand(id);
        ASSERT_NE(info, nullptr) << id;
        EXPECT_STREQ(info->menuText, menu) << id;
        EXPECT_STREQ(info->prompt, prompt) << id;
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
