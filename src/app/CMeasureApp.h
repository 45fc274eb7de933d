#pragma once

#include "app/AppLanguage.h"
#include "app/CCmdTarget.h"
#include "app/CCommandLineInfo.h"
#include "app/CMainFrame.h"
#include "app/IDocumentHost.h"
#include "platform/AppPaths.h"

#include <QObject>
#include <QPointer>
#include <QProcessEnvironment>

#include <functional>
#include <memory>
#include <vector>

class CDocTemplate;
class CDocument;
class CDeviceWatcher;
class CExitSignalWatcher;
class CSingleInstance;
class QTranslator;

// The program as a whole: start-up (brand, folders, language, the main
// frame, the first document), the commands that belong to no document, and
// the orderly end. Needs a QApplication; one at a time.
class CMeasureApp : public QObject, public CCmdTarget, public IDocumentHost
{
    Q_OBJECT

public:
    CMeasureApp();
    ~CMeasureApp() override;

    static CMeasureApp* Instance();

    // Document templates are registered before start-up; the first one makes
    // the documents of "&New Preview" and of the command line.
    void AddDocTemplate(std::unique_ptr<CDocTemplate> docTemplate);
    const std::vector<std::unique_ptr<CDocTemplate>>& GetDocTemplates() const { return m_templates; }

    // False when the program must end at once, with GetExitCode().
    bool InitInstance(const QStringList& arguments);
    // After the event loop: closes what is still open. Returns the exit code.
    int ExitInstance(int code);
    int GetExitCode() const { return m_exitCode; }

    // The framework's new-file path: a new document of the first template.
    CDocument* OnFileNew() override;
    // "&Open...": asks for a picture, starting at the last one chosen in
    // this run, and opens it as a picture document.
    CDocument* OnFileOpen();
    // A document for the picture at path; null when it could not be opened.
    CDocument* OpenDocumentFile(const QString& path);
    // Not a file: it goes to no recent-file list.
    CDocument* OpenPictureDocument(const QImage& picture, const QString& title) override;
    // "Focus Stack Pictures...": asks for the pictures of a focus series and
    // opens their fusion (StackPictures).
    CDocument* OnFocusStackPictures();
    // The fusion of the pictures, in the first one's geometry and with the
    // calibration it keeps, as a picture document "Stack n"; null, after
    // telling the user, when a picture cannot be read or does not fit.
    CDocument* StackPictures(const QStringList& paths);
    // The open dialog's filters, the classic one first.
    static QStringList PictureOpenFilters();
    // "Stitch Pictures...": asks for the pictures of a scan and stitches them.
    void OnStitchPictures();
    // The pictures, in the order taken, stitched into a picture document
    // with the first one's stored calibration; null, with a message saying
    // which picture and why, when one cannot be read or placed.
    CDocument* StitchPictures(const QStringList& files);

    CMainFrame* GetMainFrame() const { return m_mainFrame; }
    const AppPaths& GetPaths() const { return m_paths; }
    const CCommandLineInfo& GetCommandLineInfo() const { return m_cmdInfo; }
    int GetLanguageId() const override { return m_langId; }
    InterfaceLanguage GetLanguage() const { return m_language; }
    bool IsChinese() const { return m_language == InterfaceLanguage::Chinese; }
    // The name of the chosen language's resource module, as the settings give it.
    const QString& GetResourceModule() const { return m_resourceModule; }

    // The language commands: the identifier becomes the language of this
    // user's later starts, and the program closes to start again in it.
    void SetLanguage(int langId);
    bool GetRestartFlag() const { return m_restart; }
    // What a restart starts: the file named after the brand folder in the
    // program folder when there is one, else this executable.
    static QString RestartTarget(const AppPaths& paths);
    // Starts the restarted copy; replaceable so tests see the request instead.
    using RestartLauncher = std::function<bool(const QString& program, const QProcessEnvironment& env)>;
    static RestartLauncher SetRestartLauncher(RestartLauncher launcher);

    // The recent-file list (four, most recent first), kept in the user's
    // own settings; a picture opened or saved goes to its top.
    void AddToRecentFileList(const QString& path);
    const QStringList& GetRecentFiles() const { return m_recentFiles; }
    void OnOpenRecentFile(int index);
    // "Save"/"FilePath", or the picture folder when it is empty, shown by
    // the desktop's file manager.
    QString PictureFolderToOpen() const;
    void OnOpenPictureFolder();

    // The user manual in the interface language, beside the program.
    QString HelpFilePath() const;
    void OnHelp();
    void OnAppAbout();

private:
    void ChooseLanguage();
    void InstallTranslators();
    void RemoveTranslators();
    void MapAppCommands();
    void ProcessShellCommand();
    void Restart();
    void WatchCameras();

    std::vector<std::unique_ptr<CDocTemplate>> m_templates;
    QPointer<CMainFrame> m_mainFrame;
    CExitSignalWatcher* m_signals = nullptr;
    CDeviceWatcher* m_deviceWatcher = nullptr;
    AppPaths m_paths;
    CCommandLineInfo m_cmdInfo;
    int m_langId = kLangIdEnglish;
    InterfaceLanguage m_language = InterfaceLanguage::English;
    QString m_resourceModule;
    QString m_lastOpenedFile;
    int m_stacks = 0;
    QStringList m_recentFiles;
    CSingleInstance* m_instance = nullptr;
    std::vector<QTranslator*> m_translators;
    bool m_restart = false;
    bool m_exitRequested = false;
    int m_exitCode = 0;
};
