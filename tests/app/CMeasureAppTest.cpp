#include "app/CMeasureApp.h"

#include "app/AppLanguage.h"
#include "app/CAboutDlg.h"
#include "app/CChildFrame.h"
#include "app/CommandTable.h"
#include "app/TestDocuments.h"
#include "app/TestHome.h"
#include "capture/CameraModels.h"
#include "capture/SimDeviceProvider.h"
#include "platform/MessageBox.h"
#include "platform/PrivateProfile.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QMenuBar>
#include <QMessageBox>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>

#include <csignal>
#include <functional>
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

// The application object brings the program's box: without it a message
// would only reach the log.
TEST_F(MeasureAppTest, MessagesShowAsBoxesOnceTheApplicationExists)
{
    SetMessageBoxDialog({});
    app = std::make_unique<CMeasureApp>();
    QTimer::singleShot(0, [] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), "Replace the file?");
        box->button(QMessageBox::Yes)->click();
    });
    EXPECT_EQ(MessageBox("Replace the file?", "Save", MB_YESNO), IDYES);
}

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

// The language commands: the choice outlives the program, which closes and
// starts again; the same language as before still restarts.
TEST_F(MeasureAppTest, LanguageCommandsStoreTheChoiceAndRestart)
{
    std::vector<QString> started;
    CMeasureApp::SetRestartLauncher([&](const QString& program, const QProcessEnvironment& env) {
        started.push_back(program + (env.value("OCULIX_DEMO_CAMERA") == "1" ? " demo" : ""));
        return true;
    });
    const struct
    {
        int command;
        int langId;
        InterfaceLanguage language;
    } rows[] { { ID_LANGUAGE_FRENCH, kLangIdFrench, InterfaceLanguage::French },
        { ID_LANGUAGE_FRENCH, kLangIdFrench, InterfaceLanguage::French },
        { ID_LANGUAGE_CHINESE, kLangIdChinese, InterfaceLanguage::Chinese },
        { ID_LANGUAGE_ENGLISH, kLangIdEnglish, InterfaceLanguage::English } };
    for (const auto& row : rows) {
        ASSERT_TRUE(Start({ "Oculix", "--demo-camera" }));
        CMainFrame* frame = app->GetMainFrame();
        EXPECT_FALSE(app->GetRestartFlag());
        ASSERT_TRUE(frame->RouteCommand(row.command));
        EXPECT_TRUE(app->GetRestartFlag());
        EXPECT_TRUE(WaitFor([&] { return !frame->isVisible(); }, 5000)) << row.command;
        const QString settings = app->GetPaths().m_settingsFile;
        EXPECT_EQ(int(GetPrivateProfileInt("Lang", "LangId", -7, settings)), row.langId);
        EXPECT_EQ(StoredLanguageChoice(), row.langId);
        EXPECT_TRUE(started.empty()) << "restarts only once this copy ends";
        app->ExitInstance(0);
        ASSERT_EQ(started.size(), 1u);
        EXPECT_EQ(started.front(), QCoreApplication::applicationFilePath() + " demo");
        started.clear();
        app.reset();

        // The next start runs in the chosen language, whatever the system's.
        ASSERT_TRUE(Start({ "Oculix" }));
        EXPECT_EQ(app->GetLanguageId(), row.langId);
        EXPECT_EQ(app->GetLanguage(), row.language);
        EXPECT_TRUE(app->GetMainFrame()->QueryCommand(row.command).IsChecked());
        app.reset();
    }
    CMeasureApp::SetRestartLauncher({});
}

TEST_F(MeasureAppTest, RestartStartsTheFileNamedAfterTheBrandFolder)
{
    AppPaths paths;
    paths.m_programFolder = home.path() + "/";
    paths.m_brand = BrandForDsp(2);
    EXPECT_EQ(CMeasureApp::RestartTarget(paths), QCoreApplication::applicationFilePath());
    QFile link(home.filePath("KorvalCam"));
    ASSERT_TRUE(link.open(QIODevice::WriteOnly));
    link.close();
    EXPECT_EQ(CMeasureApp::RestartTarget(paths), QCoreApplication::applicationFilePath()) << "not executable";
    link.setPermissions(link.permissions() | QFileDevice::ExeOwner);
    EXPECT_EQ(CMeasureApp::RestartTarget(paths), home.filePath("KorvalCam"));
}

// Opening a URL goes to this receiver instead of the desktop's viewer.
class UrlSpy : public QObject
{
    Q_OBJECT
public:
    std::vector<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls.push_back(url); }
};

TEST_F(MeasureAppTest, HelpAboutAndASecondCopysRequest)
{
    SetBrand(2);
    ASSERT_TRUE(Start({ "Oculix" }));
    std::vector<MessageBoxRequest> boxes;
    ScopedMessageBoxHandler handler([&](const MessageBoxRequest& r) {
        boxes.push_back(r);
        return IDOK;
    });
    UrlSpy spy;
    QDesktopServices::setUrlHandler("file", &spy, "open");

    const QString manual
        = app->GetPaths().m_programFolder + (app->IsChinese() ? "KorvalCam_CN.pdf" : "KorvalCam_EN.pdf");
    EXPECT_EQ(app->HelpFilePath(), manual);
    CMainFrame* frame = app->GetMainFrame();
    QFile::remove(manual);
    EXPECT_TRUE(frame->RouteCommand(ID_HELP_MANUAL));
    ASSERT_EQ(boxes.size(), 1u) << "a missing manual is reported";
    EXPECT_TRUE(boxes.back().text.contains(manual));
    EXPECT_TRUE(spy.urls.empty());
    {
        QFile file(manual);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    EXPECT_TRUE(frame->RouteCommand(ID_HELP_MANUAL));
    QFile::remove(manual);
    ASSERT_EQ(spy.urls.size(), 1u);
    EXPECT_EQ(spy.urls.front(), QUrl::fromLocalFile(manual));
    QDesktopServices::unsetUrlHandler("file");

    bool aboutShown = false;
    QTimer::singleShot(0, [&] {
        auto* about = qobject_cast<CAboutDlg*>(QApplication::activeModalWidget());
        ASSERT_NE(about, nullptr);
        aboutShown = true;
        EXPECT_TRUE(about->findChild<QLabel*>("version")->text().contains("V1.18.7.27"));
        EXPECT_TRUE(
            about->findChild<QLabel*>("link")->text().contains(QUrl::fromLocalFile(manual).toString()));
        about->accept();
    });
    EXPECT_TRUE(frame->RouteCommand(ID_APP_ABOUT));
    EXPECT_TRUE(aboutShown);

    frame->showNormal();
    frame->OnActivateInstance();
    EXPECT_TRUE(frame->isMaximized());
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes.back().text, "Already having one instance running!");
}

// A menu, a dialog title and a message box in each translated language; the
// translators go with the program.
TEST_F(MeasureAppTest, LanguageTranslatesMenusDialogsAndMessages)
{
    const struct
    {
        int langId;
        const char* file;
        const char* about;
        const char* message;
    } rows[] { { kLangIdFrench, "&Fichier", "À propos de Oculix",
                   "Une instance est déjà en cours d'exécution !" },
        { kLangIdChinese, "文件(&F)", "关于 Oculix", "已有一个实例正在运行！" },
        { kLangIdEnglish, "&File", "About Oculix", "Already having one instance running!" } };
    for (const auto& row : rows) {
        StoreLanguageChoice(row.langId);
        ASSERT_TRUE(Start({ "Oculix" }));
        CMainFrame* frame = app->GetMainFrame();
        EXPECT_EQ(frame->menuBar()->actions().front()->text(), QString::fromUtf8(row.file));
        QString title;
        QTimer::singleShot(0, [&] {
            if (QWidget* about = QApplication::activeModalWidget()) {
                title = about->windowTitle();
                about->close();
            }
        });
        frame->RouteCommand(ID_APP_ABOUT);
        EXPECT_EQ(title, QString::fromUtf8(row.about));
        std::vector<QString> texts;
        ScopedMessageBoxHandler handler([&](const MessageBoxRequest& r) {
            texts.push_back(r.text);
            return IDOK;
        });
        frame->OnActivateInstance();
        ASSERT_EQ(texts.size(), 1u);
        EXPECT_EQ(texts.front(), QString::fromUtf8(row.message));
        app.reset();
        EXPECT_EQ(QCoreApplication::translate("Menu", "&File"), "&File")
            << "translators leave with the program";
    }
}

// The picture folder and the recent files in detail, and the bars' buttons;
// every command's effect is in the monkey tests' command table.
TEST_F(MeasureAppTest, PictureFolderRecentFilesAndButtonSizes)
{
    ASSERT_TRUE(Start({ "Oculix", "/slides/a.bmp", "/slides/b.bmp" }));
    CMainFrame* frame = app->GetMainFrame();
    UrlSpy spy;
    QDesktopServices::setUrlHandler("file", &spy, "open");
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_OPEN_PICTURE_FOLDER));
    ASSERT_FALSE(spy.urls.empty());
    EXPECT_EQ(spy.urls.back(), QUrl::fromLocalFile(app->GetPaths().m_pictureFolder));
    WritePrivateProfileString("Save", "FilePath", home.filePath("shots"), app->GetPaths().m_settingsFile);
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_OPEN_PICTURE_FOLDER));
    EXPECT_EQ(spy.urls.back(), QUrl::fromLocalFile(home.filePath("shots")));
    QDesktopServices::unsetUrlHandler("file");

    // Most recent first; the entry opens its picture again.
    QAction* first = frame->FindAction(ID_FILE_MRU_FILE1);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->text(), "&1 b.bmp");
    EXPECT_EQ(frame->FindAction(ID_FILE_MRU_FILE1 + 1)->text(), "&2 a.bmp");
    EXPECT_FALSE(frame->FindAction(ID_FILE_MRU_FILE1 + 2)->isVisible());
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_MRU_FILE1 + 1));
    EXPECT_EQ(DocumentTitles().back(), "a.bmp");
    EXPECT_EQ(frame->FindAction(ID_FILE_MRU_FILE1)->text(), "&1 a.bmp");

    for (int bar : { ID_VIEW_TOOLBAR, ID_VIEW_MEASUREBAR, ID_VIEW_PROCESSBAR, ID_VIEW_PRINTHELPBAR }) {
        QToolBar* toolBar = frame->FindToolBar(bar);
        ASSERT_NE(toolBar, nullptr) << bar;
        for (QToolButton* button : toolBar->findChildren<QToolButton*>()) {
            if (button->defaultAction() && !button->defaultAction()->isSeparator()) {
                EXPECT_EQ(button->size(), QSize(30, 30)) << bar;
            }
        }
    }
}

#include "CMeasureAppTest.moc"
