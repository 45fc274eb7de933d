#include "app/CMeasureApp.h"

#include "app/CDocTemplate.h"
#include "app/CExitSignalWatcher.h"
#include "app/CMainFrame.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "app/DlgSelectFile.h"
#include "capture/CDeviceWatcher.h"
#include "capture/CameraModels.h"
#include "capture/SimDeviceProvider.h"
#include "platform/DebugLog.h"
#include "platform/SettingsKeys.h"

#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QScreen>
#include <QStatusBar>

#include <cstdio>

namespace {

CMeasureApp* g_app = nullptr;

} // namespace

CMeasureApp::CMeasureApp()
{
    Q_ASSERT(!g_app);
    g_app = this;
    MapCommand(ID_FILE_NEW, [this] { OnFileNew(); });
    // One live document at most: a new preview only while there is none.
    MapUpdate(ID_FILE_NEW, [](CCmdUI& ui) { ui.Enable(!CMeasureDoc::GetLiveDocument()); });
    MapCommand(ID_FILE_OPEN, [this] { OnFileOpen(); });
}

CMeasureApp::~CMeasureApp()
{
    delete m_mainFrame.data();
    m_templates.clear();
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
    ScanAttachedCameras();
    LoadCameraModelSizes(m_paths.m_settingsFile);

    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/oculix.svg")));
    m_mainFrame = new CMainFrame(m_langId);
    m_mainFrame->SetAppTarget(this);
    m_mainFrame->setAttribute(Qt::WA_DeleteOnClose, false);

    m_signals = new CExitSignalWatcher(this);
    connect(m_signals, &CExitSignalWatcher::exitRequested, this, [this](int signalNumber) {
        qCInfo(lcApp) << "signal" << signalNumber << "- closing";
        if (m_mainFrame && m_mainFrame->isVisible())
            m_mainFrame->close();
        else
            QCoreApplication::quit();
    });

    ProcessShellCommand();
    WatchCameras();

    m_mainFrame->SetTitle(m_paths.m_brand.m_folderName);
    // Without a window manager nothing honours the maximised state; the
    // frame still fills the screen.
    if (QScreen* screen = QGuiApplication::primaryScreen())
        m_mainFrame->setGeometry(screen->availableGeometry());
    m_mainFrame->showMaximized();
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

// The interface language follows the system's; the identifier is kept in the
// settings, where the language commands also write theirs.
void CMeasureApp::ChooseLanguage()
{
    m_langId = LanguageIdFromLocale(QLocale::system());
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
    return m_templates.front()->OpenDocumentFile(*m_mainFrame, path);
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
    return code;
}
