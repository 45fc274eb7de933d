#include "app/CCommandLineInfo.h"

#include <gtest/gtest.h>

TEST(CommandLine, DemoCameraPicturesAndErrors)
{
    CCommandLineInfo none = CCommandLineInfo::Parse({ "Oculix" });
    EXPECT_TRUE(none.m_strError.isEmpty());
    EXPECT_FALSE(none.m_bDemoCamera);
    EXPECT_TRUE(none.m_pictures.isEmpty());

    CCommandLineInfo info = CCommandLineInfo::Parse({ "Oculix", "a.bmp", "--demo-camera", "dir/b c.jpg" });
    EXPECT_TRUE(info.m_strError.isEmpty());
    EXPECT_TRUE(info.m_bDemoCamera);
    EXPECT_EQ(info.m_pictures, (QStringList { "a.bmp", "dir/b c.jpg" }));

    // After "--" a file may start with a dash.
    CCommandLineInfo dashed = CCommandLineInfo::Parse({ "Oculix", "--", "-odd.png" });
    EXPECT_TRUE(dashed.m_strError.isEmpty());
    EXPECT_FALSE(dashed.m_bDemoCamera);
    EXPECT_EQ(dashed.m_pictures, (QStringList { "-odd.png" }));

    EXPECT_TRUE(CCommandLineInfo::Parse({ "Oculix", "--help" }).m_bShowHelp);
    EXPECT_TRUE(CCommandLineInfo::Parse({}).m_strError.isEmpty());

    // An unknown option is an error that names it.
    EXPECT_TRUE(
        CCommandLineInfo::Parse({ "Oculix", "--demo-kamera", "a.bmp" }).m_strError.contains("demo-kamera"));
    EXPECT_TRUE(CCommandLineInfo::HelpText().contains("--demo-camera"));
}
