#include "app/CMeasureApp.h"

#include "app/CChildFrame.h"
#include "app/CommandTable.h"
#include "app/TestDocuments.h"
#include "app/TestHome.h"
#include "capture/CameraModels.h"
#include "capture/SimDeviceProvider.h"
#include "platform/PrivateProfile.h"

#include <QDir>

#include <csignal>
#include <gtest/gtest.h>

namespace {

// Start-up against a data folder and a brand file of the test's own.
class MeasureAppTest : public ::testing::Test
{
protected:
    void SetUp() override { QDir(home.path()).mkpath("config/Oculix"); }
    void TearDown() override
    {
        app.reset();
        EnableDemoCamera(false);
    }

    void SetBrand(int dsp)
    {
        WritePrivateProfileString(
            "Config", "DSP", QString::number(dsp), home.filePath("config/Oculix/Config.ini"));
    }

    bool Start(const QStringList& arguments)
    {
        app = std::make_unique<CMeasureApp>();
        app->AddDocTemplate(MakeTestTemplate(journal));
        return app->InitInstance(arguments);
    }

    std::vector<std::string> DocumentTitles() const
    {
        std::vector<std::string> titles;
        for (CChildFrame* child : app->GetMainFrame()->GetChildFrames())
            titles.push_back(child->GetActiveDocument()->GetTitle().toStdString());
        return titles;
    }

    TestHome home;
    Journal journal;
    std::unique_ptr<CMeasureApp> app;
};

bool Contains(const std::vector<std::string>& events, const std::string& event)
{
    return std::find(events.begin(), events.end(), event) != events.end();
}

} // namespace

TEST_F(MeasureAppTest, StartsWithANewDocumentInABrandedMaximisedFrame)
{
    SetBrand(9);
    ASSERT_TRUE(Start({ "Oculix" }));
    EXPECT_EQ(CMeasureApp::Instance(), app.get());
    CMainFrame* frame = app->GetMainFrame();
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->GetTitle(), "ZephraCam");
    EXPECT_TRUE(frame->windowTitle().startsWith("ZephraCam"));
    EXPECT_TRUE(frame->isMaximized());
    EXPECT_EQ(DocumentTitles(), (std::vector<std::string> { "Measure1" }));
    EXPECT_FALSE(app->GetCommandLineInfo().m_bDemoCamera);
    EXPECT_EQ(IsDemoCameraEnabled(), qEnvironmentVariableIntValue("OCULIX_DEMO_CAMERA") == 1);

    const QString data = app->GetPaths().m_dataFolder;
    EXPECT_TRUE(QDir(data + "Images").exists());
    EXPECT_TRUE(QDir(data + "svrdata").exists());
    const QString settings = data + "Setting.ini";
    EXPECT_EQ(app->GetPaths().m_settingsFile, settings);
    const int langId = LanguageIdFromLocale(QLocale::system());
    EXPECT_EQ(app->GetLanguageId(), langId);
    EXPECT_EQ(int(GetPrivateProfileInt("Lang", "LangId", -7, settings)), langId);
    EXPECT_FALSE(app->GetResourceModule().isEmpty());
    EXPECT_EQ(GetCameraModelSizes().n130, QSize(1280, 1024));

    // "&New Preview" goes to the application when no document takes it.
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_NEW));
    EXPECT_EQ(DocumentTitles(), (std::vector<std::string> { "Measure1", "Measure2" }));

    // Leaving closes what is still open, each view before its document.
    journal.clear();
    EXPECT_EQ(app->ExitInstance(3), 3);
    EXPECT_EQ(journal, (std::vector<std::string> { "~view doc1", "~doc doc1", "~view doc2", "~doc doc2" }));
}

TEST_F(MeasureAppTest, PicturesOnTheCommandLineReplaceTheNewDocument)
{
    SetBrand(2);
    QDir().mkpath(home.filePath("data"));
    WritePrivateProfileString("Camera130H", "Width", "2048", home.filePath("data/Setting.ini"));
    ASSERT_TRUE(
        Start({ "Oculix", "--demo-camera", "/slides/a.bmp", "/slides/missing.jpg", "/slides/b.png" }));
    EXPECT_EQ(app->GetMainFrame()->GetTitle(), "KorvalCam");
    EXPECT_TRUE(app->GetCommandLineInfo().m_bDemoCamera);
    EXPECT_TRUE(IsDemoCameraEnabled());
    EXPECT_EQ(GetCameraModelSizes().n130, QSize(2048, 1024));
    EXPECT_EQ(DocumentTitles(), (std::vector<std::string> { "a.bmp", "b.png" }));
    EXPECT_FALSE(Contains(journal, "new doc1"));
}

TEST_F(MeasureAppTest, BadCommandLineEndsStartUp)
{
    EXPECT_FALSE(Start({ "Oculix", "--frobnicate" }));
    EXPECT_EQ(app->GetExitCode(), 2);
    EXPECT_EQ(app->GetMainFrame(), nullptr);
    EXPECT_TRUE(journal.empty());
}

TEST_F(MeasureAppTest, TerminationSignalsCloseLikeTheWindow)
{
    for (int signalNumber : { SIGTERM, SIGINT }) {
        journal.clear();
        ASSERT_TRUE(Start({ "Oculix", "/slides/a.bmp", "/slides/b.bmp" }));
        CMainFrame* frame = app->GetMainFrame();
        ASSERT_TRUE(frame->isVisible());
        ASSERT_EQ(std::raise(signalNumber), 0);
        EXPECT_TRUE(WaitFor([&] { return !frame->isVisible(); }, 5000)) << signalNumber;
        EXPECT_EQ(journal.back(), "~doc doc2") << signalNumber;
        EXPECT_TRUE(Contains(journal, "~view doc1"));
        EXPECT_TRUE(Contains(journal, "~doc doc1"));
        EXPECT_EQ(app->ExitInstance(0), 0);
        EXPECT_EQ(app->GetMainFrame(), nullptr);
        app.reset();
    }
}
