#include "platform/QuickSaveName.h"

#include <gtest/gtest.h>

TEST(QuickSaveName, FolderPrefixNumberAndExtension)
{
    struct Case
    {
        QString folder;
        QString prefix;
        int suffix;
        bool bmp;
        QString path;
    };
    const Case cases[] = {
        { "/pics", "slide", 7, false, "/pics/slide7.jpg" },
        { "/pics/", "slide", 7, false, "/pics/slide7.jpg" },
        { "D:\\pics\\", "slide", 7, true, "D:\\pics\\slide7.bmp" },
        { "", "", 0, false, "/data/Images/0.jpg" }, // an empty folder is the picture folder
        { "/pics", "a", -3, true, "/pics/a-3.bmp" },
    };
    for (const Case& c : cases)
        EXPECT_EQ(QuickSavePath(c.folder, "/data/Images/", c.prefix, c.suffix, c.bmp), c.path)
            << c.folder.toStdString();
    EXPECT_EQ(QuickSaveFileName("slide", 12, false), "slide12.jpg");
}
