#include "platform/AppPaths.h"

#include "TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class AppPathsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir(m_root.path()).mkpath(QStringLiteral("prog"));
        // Nothing may reach the real home folder.
        m_env.insert(QStringLiteral("HOME"), m_root.filePath(QStringLiteral("home")));
        m_env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_root.filePath(QStringLiteral("cfg")));
    }
    QString Root(const QString& rest) const { return m_root.path() + u'/' + rest; }
    void SetDsp(const QByteArray& value) const
    {
        ASSERT_TRUE(QDir().mkpath(Root("cfg/Oculix"))
            && WriteAll(Root("cfg/Oculix/Config.ini"), "[Config]\r\nDSP=" + value + "\r\n"));
    }

    QTemporaryDir m_root;
    QProcessEnvironment m_env;
};

TEST_F(AppPathsTest, PortableInstallWithoutBrandFile)
{
    const AppPaths p = ResolveAppPaths(Root("prog/"), m_env);
    EXPECT_EQ(p.m_dsp, 0);
    EXPECT_EQ(p.m_brandFile, Root("cfg/Oculix/Config.ini"));
    EXPECT_FALSE(QFile::exists(Root("cfg"))) << "the brand file's folder is never created";
    EXPECT_EQ(p.m_dataFolder, Root("prog/Oculix/"));
    EXPECT_EQ(p.m_settingsFile, Root("prog/Oculix/Setting.ini"));
    EXPECT_EQ(p.m_pictureFolder, Root("prog/Oculix/Images/"));
    EXPECT_EQ(p.m_factoryCalibrationFolder, Root("prog/svrdata/"));

    CreateDataFolders(p);
    EXPECT_TRUE(QDir(p.m_pictureFolder).exists());
    EXPECT_TRUE(QDir(Root("prog/Oculix/svrdata")).exists());
    EXPECT_FALSE(QFile::exists(p.m_settingsFile));
}

TEST_F(AppPathsTest, BrandFileChoosesTheFolder)
{
    const char* const cases[][3] = { { "1", "OCULIX", "Oculix" }, { "2", "KORVAL", "KorvalCam" },
        { "-5", "Oculix", "Oculix" }, { "9", "ZEPHRA", "ZephraCam" } };
    for (const auto& [dsp, name, folder] : cases) {
        SetDsp(dsp);
        const AppPaths p = ResolveAppPaths(Root("prog"), m_env);
        EXPECT_EQ(p.m_brand.m_name, name);
        EXPECT_EQ(p.m_dataFolder, Root("prog/") + folder + u'/') << dsp;
    }
    // Without XDG_CONFIG_HOME the brand file is under ~/.config.
    m_env.remove(QStringLiteral("XDG_CONFIG_HOME"));
    EXPECT_EQ(BrandFilePath(m_env), Root("home/.config/Oculix/Config.ini"));
    m_env.insert(QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral("relative/is/ignored"));
    EXPECT_EQ(BrandFilePath(m_env), Root("home/.config/Oculix/Config.ini"));
}

TEST_F(AppPathsTest, FallsBackToUserDataAndHonoursTheOverride)
{
    SetDsp("3");
    // A program folder where no folder can be made (here: it is a file).
    QFile(Root("prog/file")).open(QIODevice::WriteOnly);
    EXPECT_EQ(ResolveAppPaths(Root("prog/file"), m_env).m_dataFolder, Root("home/.local/share/ZephraCam/"));
    m_env.insert(QStringLiteral("XDG_DATA_HOME"), Root("data//"));
    const AppPaths xdg = ResolveAppPaths(Root("prog/file"), m_env);
    EXPECT_EQ(xdg.m_settingsFile, Root("data/ZephraCam/Setting.ini"));
    CreateDataFolders(xdg);
    EXPECT_TRUE(QDir(Root("data/ZephraCam/Images")).exists());

    m_env.insert(QStringLiteral("OCULIX_DATA_DIR"), Root("mine//here/"));
    const AppPaths mine = ResolveAppPaths(Root("prog"), m_env);
    EXPECT_EQ(mine.m_pictureFolder, Root("mine/here/Images/"));
    EXPECT_FALSE(QFile::exists(Root("prog/ZephraCam"))) << "the override must not create the portable folder";
}

} // namespace
