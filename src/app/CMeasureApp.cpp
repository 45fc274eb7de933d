#include "app/CMeasureApp.h"

#include "app/CAboutDlg.h"
#include "app/CDocTemplate.h"
#include "app/CExitSignalWatcher.h"
#include "app/CMainFrame.h"
#include "app/CMeasureDoc.h"
#include "app/CSingleInstance.h"
#include "app/CommandTable.h"
#include "app/DlgSelectFile.h"
#include "capture/CDeviceWatcher.h"
#include "capture/CameraModels.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"
#include "platform/SettingsKeys.h"
#include "ui/MessageBoxDialog.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QProcess>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QTranslator>
#include <QUrl>

#include <cstdio>

namespace {

CMeasureApp* g_app = nullptr;
constexpr int kMaxNestedModals = 16;
const QString kRecentFilesKey = QStringLiteral("RecentFiles/List");

bool StartDetached(const QString& program, const QProcessEnvironment& env)
{
    QProcess process;
    process.setProgram(program);
    process.setProcessEnvironment(env);
    return process.startDetached();
}

CMeasureApp::RestartLauncher g_launcher = StartDetached;

} // namespace

CMeasureApp::CMeasureApp()
{
    Q_ASSERT(!g_app);
    g_app = this;
    // From here on a message shows as a box; a test's handler still comes first.
    InstallMessageBoxDialog();
    MapCommand(ID_FILE_NEW, [this] { OnFileNew(); });
    // One live document at most: a new preview only while there is none.
    MapUpdate(ID_FILE_NEW, [](CCmdUI& ui) { ui.Enable(!CMeasureDoc::GetLiveDocument()); });
    MapCommand(ID_FILE_OPEN, [this] { OnFileOpen(); });
    MapAppCommands();
}

void CMeasureApp::MapAppCommands()
{
    for (auto [id, langId] :
        { std::pair { ID_LANGUAGE_ENGLISH, kLangIdEnglish }, std::pair { ID_LANGUAGE_FRENCH, kLangIdFrench },
            std::pair { ID_LANGUAGE_CHINESE, kLangIdChinese } }) {
        MapCommand(id, [this, langId] { SetLanguage(langId); });
        MapUpdate(id, [this, langId](CCmdUI& ui) { ui.SetCheck(ClassifyLanguageId(langId) == m_language); });
    }
    for (int i = 0; i < kRecentFileCount; ++i)
        MapCommand(ID_FILE_MRU_FILE1 + i, [this, i] { OnOpenRecentFile(i); });
    MapCommand(ID_FILE_OPEN_PICTURE_FOLDER, [this] { OnOpenPictureFolder(); });
    MapCommand(ID_PROCESS_FOCUS_STACK, [this] { OnFocusStackPictures(); });
    MapCommand(ID_PROCESS_STITCH, [this] { OnStitchPictures(); });
    MapCommand(ID_HELP_MANUAL, [this] { OnHelp(); });
    MapCommand(ID_APP_ABOUT, [this] { OnAppAbout(); });
}

CMeasureApp::~CMeasureApp()
{
    delete m_mainFrame.data();
    m_templates.clear();
    RemoveTranslators();
    if (g_app == this)
        g_app = nullptr;
}

CMeasureApp* CMeasureApp::Instance()
{
    return g_app;
}

void CMeasureApp::AddDocTemplate(std::unique_ptr<CDocTemplate> docTemplate)
{
    m_templates.push_back(std::move(docTemplate));
}

bool CMeasureApp::InitInstance(const QStringList& arguments)
{
    // Brand, data folder and settings file, then the folders themselves.
    m_paths = ResolveAppPaths();
    SetCurrentAppPaths(m_paths);
    CreateDataFolders(m_paths);

    ChooseLanguage();

    m_cmdInfo = CCommandLineInfo::Parse(arguments);
    if (!m_cmdInfo.m_strError.isEmpty()) {
        const QString message = m_cmdInfo.m_strError + QStringLiteral("\n\n") + CCommandLineInfo::HelpText();
        std::fputs(qPrintable(message), stderr);
        m_exitCode = 2;
        return false;
    }
    if (m_cmdInfo.m_bShowHelp) {
        std::fputs(qPrintable(CCommandLineInfo::HelpText()), stdout);
        return false;
    }
    if (m_cmdInfo.m_bDemoCamera)
        EnableDemoCamera(true);

    // A second copy hands over to the first and ends without a word, unless
    // the first hangs: two copies would write one settings file.
    m_instance = new CSingleInstance(this);
    if (!m_instance->Acquire()) {
        if (m_instance->OtherDoesNotAnswer()) {
            qCInfo(lcApp) << "another copy runs and does not answer: told the user";
            MessageBox(tr("Oculix is already running but does not answer. Close it, or end it if it hangs, "
                          "then start Oculix again."),
                tr("Oculix"), MB_OK | MB_ICONWARNING);
        } else {
            qCInfo(lcApp) << "another copy runs: asked it to come forward";
        }
        return false;
    }
    ScanAttachedCameras();
    LoadCameraModelSizes(m_paths.m_settingsFile);

    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/oculix.svg")));
    m_mainFrame = new CMainFrame(m_langId);
    m_mainFrame->SetAppTarget(this);
    m_mainFrame->setAttribute(Qt::WA_DeleteOnClose, false);
    m_recentFiles = QSettings(UserSettingsFilePath(), QSettings::IniFormat)
                        .value(kRecentFilesKey)
                        .toStringList()
                        .mid(0, kRecentFileCount);
    m_mainFrame->SetRecentFiles(m_recentFiles);
    // Queued: the frame's message box must not hold the second copy's call.
    connect(m_instance, &CSingleInstance::activationRequested, m_mainFrame, &CMainFrame::OnActivateInstance,
        Qt::QueuedConnection);

    m_signals = new CExitSignalWatcher(this);
    connect(m_signals, &CExitSignalWatcher::exitRequested, this, [this](int signalNumber) {
        qCInfo(lcApp) << "signal" << signalNumber << "- closing";
        // A message box or dialog left open would keep the program alive:
        // they go first, answered as Cancel.
        for (int i = 0; i < kMaxNestedModals; ++i) {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal)
                break;
            if (auto* dialog = qobject_cast<QDialog*>(modal))
                dialog->reject();
            else
                modal->close();
        }
        if (m_mainFrame && m_mainFrame->isVisible()) {
            m_mainFrame->close();
        } else {
            // Still starting (a box during start-up): start-up gives up.
            m_exitRequested = true;
            QCoreApplication::quit();
        }
    });

    ProcessShellCommand();
    WatchCameras();

    if (m_exitRequested)
        return false;
    m_mainFrame->SetTitle(m_paths.m_brand.m_folderName);
    // Without a window manager nothing honours the maximised state; the
    // frame still fills the screen.
    if (QScreen* screen = QGuiApplication::primaryScreen())
        m_mainFrame->setGeometry(screen->availableGeometry());
    m_mainFrame->showMaximized();
    qCInfo(lcApp) << "started in"
                  << (TranslationLocale(m_language).isEmpty() ? QStringLiteral("en")
                                                              : TranslationLocale(m_language))
                  << "with data folder" << m_paths.m_dataFolder;
    return true;
}

// Cameras plugged in or out while the program runs: the live document loses
// or regains its own; any other camera can be opened with "&New Preview"
// while no document is live.
void CMeasureApp::WatchCameras()
{
    m_deviceWatcher = new CDeviceWatcher(this);
    connect(m_deviceWatcher, &CDeviceWatcher::DeviceRemoved, this, [](const QString& name) {
        if (CMeasureDoc* live = CMeasureDoc::GetLiveDocument())
            live->OnCameraUnplugged(name);
    });
    connect(m_deviceWatcher, &CDeviceWatcher::DeviceAdded, this, [this](const QString& name) {
        if (CMeasureDoc* live = CMeasureDoc::GetLiveDocument())
            live->OnCameraPlugged(name);
        else if (m_mainFrame)
            m_mainFrame->statusBar()->showMessage(
                tr("Camera connected: %1. \"New Preview\" shows its video.").arg(name));
    });
}

// The interface language is the user's choice from the language commands, or
// the system's when there is none; the identifier is also written to the
// settings, as the language commands do.
void CMeasureApp::ChooseLanguage()
{
    const int chosen = StoredLanguageChoice();
    m_langId = chosen > 0 ? chosen : LanguageIdFromLocale(QLocale::system());
    m_language = ClassifyLanguageId(m_langId);
    switch (m_language) {
    case InterfaceLanguage::Chinese:
        m_resourceModule = SettingsKeys::ReadString(SettingsKeys::LangCnRes, m_paths.m_settingsFile);
        break;
    case InterfaceLanguage::French:
        m_resourceModule = SettingsKeys::ReadString(SettingsKeys::LangFranceRes, m_paths.m_settingsFile);
        break;
    case InterfaceLanguage::English:
        m_resourceModule = SettingsKeys::ReadString(SettingsKeys::LangEnRes, m_paths.m_settingsFile);
        break;
    }
    SettingsKeys::WriteInt(SettingsKeys::LangId, m_langId, m_paths.m_settingsFile);
    InstallTranslators();
}

// The program's texts and Qt's own (standard buttons, file dialogs).
void CMeasureApp::InstallTranslators()
{
    RemoveTranslators();
    const QString locale = TranslationLocale(m_language);
    if (locale.isEmpty())
        return;
    const std::pair<QString, QString> sources[] {
        { QStringLiteral(":/i18n"), QStringLiteral("oculix_") + locale },
        { QLibraryInfo::path(QLibraryInfo::TranslationsPath), QStringLiteral("qtbase_") + locale },
    };
    for (const auto& [folder, name] : sources) {
        auto* translator = new QTranslator(this);
        if (translator->load(name, folder) && QCoreApplication::installTranslator(translator)) {
            m_translators.push_back(translator);
        } else {
            qCWarning(lcApp) << "no translation" << name << "in" << folder;
            delete translator;
        }
    }
}

void CMeasureApp::RemoveTranslators()
{
    for (QTranslator* translator : m_translators) {
        QCoreApplication::removeTranslator(translator);
        delete translator;
    }
    m_translators.clear();
}

void CMeasureApp::SetLanguage(int langId)
{
    m_langId = langId;
    m_restart = true;
    SettingsKeys::WriteInt(SettingsKeys::LangId, m_langId, m_paths.m_settingsFile);
    StoreLanguageChoice(langId);
    if (m_mainFrame)
        QMetaObject::invokeMethod(m_mainFrame, &QWidget::close, Qt::QueuedConnection);
}

QString CMeasureApp::RestartTarget(const AppPaths& paths)
{
    const QFileInfo branded(paths.m_programFolder + paths.m_brand.m_folderName);
    if (branded.isFile() && branded.isExecutable())
        return branded.filePath();
    return QCoreApplication::applicationFilePath();
}

CMeasureApp::RestartLauncher CMeasureApp::SetRestartLauncher(RestartLauncher launcher)
{
    RestartLauncher previous = std::move(g_launcher);
    g_launcher = launcher ? std::move(launcher) : RestartLauncher(StartDetached);
    return previous;
}

void CMeasureApp::Restart()
{
    // Read as the program always has, and unused: the brand decides what starts.
    (void)SettingsKeys::ReadString(SettingsKeys::GeneralAppName, m_paths.m_settingsFile);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // The restart has no command line; the simulated camera must survive it.
    if (IsDemoCameraEnabled())
        env.insert(QStringLiteral("OCULIX_DEMO_CAMERA"), QStringLiteral("1"));
    const QString target = RestartTarget(m_paths);
    if (!g_launcher(target, env))
        qCWarning(lcApp) << "could not restart" << target;
}

QString CMeasureApp::HelpFilePath() const
{
    return m_paths.m_programFolder + m_paths.m_brand.m_folderName
        + (IsChinese() ? QStringLiteral("_CN.pdf") : QStringLiteral("_EN.pdf"));
}

void CMeasureApp::OnHelp()
{
    const QString path = HelpFilePath();
    if (!QFileInfo(path).isFile()) {
        MessageBox(tr("The user manual %1 is missing. Reinstall the program to get it back.").arg(path),
            m_paths.m_brand.m_name, MB_OK | MB_ICONWARNING);
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        MessageBox(tr("No program to show %1 was found. Install a PDF viewer.").arg(path),
            m_paths.m_brand.m_name, MB_OK | MB_ICONWARNING);
}

void CMeasureApp::OnAppAbout()
{
    CAboutDlg dialog(m_paths.m_brand.m_name, HelpFilePath(), m_mainFrame);
    dialog.exec();
}

void CMeasureApp::ProcessShellCommand()
{
    if (m_cmdInfo.m_pictures.isEmpty()) {
        OnFileNew();
        return;
    }
    for (const QString& picture : m_cmdInfo.m_pictures)
        OpenDocumentFile(picture);
}

CDocument* CMeasureApp::OnFileNew()
{
    if (m_templates.empty() || !m_mainFrame)
        return nullptr;
    return m_templates.front()->OpenDocumentFile(*m_mainFrame);
}

QStringList CMeasureApp::PictureOpenFilters()
{
    // The first entry is the classic one; the others are every format
    // FCObjImage::Load reads. The part in the last parentheses is the pattern.
    return {
        tr("Image File (*.bmp, *.jpg)") + QStringLiteral(" (*.bmp *.jpg *.jpeg)"),
        tr("Bitmap (*.bmp)"),
        tr("JPEG (*.jpg *.jpeg)"),
        tr("PNG (*.png)"),
        tr("TIFF (*.tif *.tiff)"),
        tr("Targa (*.tga)"),
        tr("GIF (*.gif)"),
        tr("PCX (*.pcx)"),
        tr("All pictures (*.bmp *.jpg *.jpeg *.png *.tif *.tiff *.tga *.gif *.pcx)"),
    };
}

CDocument* CMeasureApp::OnFileOpen()
{
    DlgSelectFile dialog(m_mainFrame, m_lastOpenedFile, PictureOpenFilters());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return nullptr;
    const QString path = dialog.selectedFiles().front();
    m_lastOpenedFile = path;
    return OpenDocumentFile(path);
}

CDocument* CMeasureApp::OpenDocumentFile(const QString& path)
{
    if (m_templates.empty() || !m_mainFrame)
        return nullptr;
    CDocument* document = m_templates.front()->OpenDocumentFile(*m_mainFrame, path);
    if (document)
        AddToRecentFileList(path);
    return document;
}

CDocument* CMeasureApp::OpenPictureDocument(const QImage& picture, const QString& title)
{
    if (m_templates.empty() || !m_mainFrame)
        return nullptr;
    return m_templates.front()->OpenPictureDocument(*m_mainFrame, picture, title);
}

void CMeasureApp::AddToRecentFileList(const QString& path)
{
    const QString full = QFileInfo(path).absoluteFilePath();
    m_recentFiles.removeAll(full);
    m_recentFiles.prepend(full);
    while (m_recentFiles.size() > kRecentFileCount)
        m_recentFiles.removeLast();
    QSettings(UserSettingsFilePath(), QSettings::IniFormat).setValue(kRecentFilesKey, m_recentFiles);
    if (m_mainFrame)
        m_mainFrame->SetRecentFiles(m_recentFiles);
}

void CMeasureApp::OnOpenRecentFile(int index)
{
    if (index < 0 || index >= m_recentFiles.size())
        return;
    const QString path = m_recentFiles[index];
    if (OpenDocumentFile(path))
        return;
    // A file that went away leaves the list; the document said why it failed.
    m_recentFiles.removeAt(index);
    QSettings(UserSettingsFilePath(), QSettings::IniFormat).setValue(kRecentFilesKey, m_recentFiles);
    if (m_mainFrame)
        m_mainFrame->SetRecentFiles(m_recentFiles);
}

QString CMeasureApp::PictureFolderToOpen() const
{
    const QString saved = SettingsKeys::ReadString(SettingsKeys::SaveFilePath, m_paths.m_settingsFile);
    return saved.isEmpty() ? m_paths.m_pictureFolder : saved;
}

void CMeasureApp::OnOpenPictureFolder()
{
    const QString folder = PictureFolderToOpen();
    // The file manager cannot show a folder that is not there yet.
    QDir().mkpath(folder);
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        MessageBox(
            tr("No file manager could show %1.").arg(folder), m_paths.m_brand.m_name, MB_OK | MB_ICONWARNING);
}

int CMeasureApp::ExitInstance(int code)
{
    // Whatever is still open closes the same way as from the window.
    if (m_mainFrame) {
        m_mainFrame->CloseAllDocuments();
        delete m_mainFrame.data();
    }
    delete m_signals;
    m_signals = nullptr;
    delete m_deviceWatcher;
    m_deviceWatcher = nullptr;
    // The bar layout is never saved, so each start begins with the default
    // one and there is no workspace state to erase here.
    // The new copy starts before this one gives up the instance: it then
    // waits for nothing, since a stale or released name is taken over.
    if (m_restart)
        Restart();
    delete m_instance;
    m_instance = nullptr;
    return code;
}
