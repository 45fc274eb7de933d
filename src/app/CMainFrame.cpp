#include "app/CMainFrame.h"

#include "app/CChildFrame.h"
#include "app/CDocument.h"
#include "app/CHistogramDock.h"
#include "app/CMeasureDoc.h"
#include "app/CMosaicDock.h"
#include "app/CommandTable.h"
#include "platform/DebugLog.h"
#include "platform/KeyLockState.h"
#include "platform/MessageBox.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QKeySequence>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProxyStyle>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>

// The icons live in the static library; nothing else would pull them in.
static void InitResources()
{
    Q_INIT_RESOURCE(oculix);
}

namespace {

constexpr int kSimplifiedChinese = 2052;
// How often buttons follow the state of the documents when nothing else
// asks; menus are brought up to date as they open.
constexpr int kIdleUpdateMs = 200;
constexpr int kMenuImageSize = 24;
constexpr int kToolButtonSize = 30;

// Menu images of 24 x 24 rather than the style's small icons.
class MenuImageStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        if (metric == PM_SmallIconSize)
            return kMenuImageSize;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

// The status bar's panes after the message pane, in their order.
constexpr struct
{
    KeyLock lock;
    const char* text;
    const char* objectName;
} kKeyIndicators[] {
    { KeyLock::Caps, "CAP", "IndicatorCaps" },
    { KeyLock::Num, "NUM", "IndicatorNum" },
    { KeyLock::Scroll, "SCRL", "IndicatorScrl" },
};

} // namespace

CMainFrame::CMainFrame(int langId, QWidget* parent)
    : QMainWindow(parent)
    , m_mdiArea(new QMdiArea(this))
    , m_idleTimer(new QTimer(this))
{
    InitResources();
    setObjectName(QStringLiteral("MainFrame"));
    m_mdiArea->setViewMode(QMdiArea::TabbedView);
    m_mdiArea->setTabsClosable(true);
    m_mdiArea->setTabsMovable(true);
    m_mdiArea->setDocumentMode(true);
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdiArea);

    CreateActions();
    CreateMenus();
    CreateToolBars();
    CreateStatusBar();
    m_histogramDock = new CHistogramDock(
        [this] {
            std::vector<CHistogramDock::LiveGraph> graphs;
            CChildFrame* active = MDIGetActive();
            for (CChildFrame* child : GetChildFrames())
                if (auto* doc = dynamic_cast<CMeasureDoc*>(child->GetActiveDocument()); doc && doc->IsLive())
                    graphs.push_back({ &doc->GetGraph(), child == active });
            return graphs;
        },
        this);
    addDockWidget(Qt::RightDockWidgetArea, m_histogramDock);
    m_histogramDock->hide();
    m_mosaicDock = new CMosaicDock(this);
    addDockWidget(Qt::RightDockWidgetArea, m_mosaicDock);
    m_mosaicDock->hide();
    MapFrameCommands();

    if (langId == kSimplifiedChinese) {
        QFont font(QString::fromUtf8("宋体"));
        font.setPixelSize(14);
        font.setWeight(QFont::Normal);
        menuBar()->setFont(font);
        for (QMenu* menu : menuBar()->findChildren<QMenu*>())
            menu->setFont(font);
    }

    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* window) {
        if (window)
            m_lastActive = window;
        UpdateWindowTitle();
        UpdateCommandUI();
    });
    connect(m_idleTimer, &QTimer::timeout, this, [this] {
        if (isVisible()) {
            UpdateCommandUI();
            UpdateKeyIndicators();
        }
    });
    m_idleTimer->start(kIdleUpdateMs);
    UpdateWindowTitle();
    UpdateCommandUI();
}

CMainFrame::~CMainFrame()
{
    // Documents go first, while the frame they report to still exists.
    m_idleTimer->stop();
    for (CChildFrame* child : GetChildFrames())
        delete child;
    // Before the widget's own end hides it: its graphs come from this frame.
    delete m_histogramDock;
    m_histogramDock = nullptr;
    delete m_mosaicDock;
    m_mosaicDock = nullptr;
}

void CMainFrame::CreateActions()
{
    for (const CommandInfo& info : Commands()) {
        if (info.id == ID_ZOOM)
            continue;
        auto* action = new QAction(this);
        const QString text = CommandText(info);
        action->setText(text.isEmpty() ? CommandToolTip(info) : text);
        action->setToolTip(CommandToolTip(info));
        action->setStatusTip(CommandPrompt(info));
        if (const QString keys = CommandShortcut(info); !keys.isEmpty())
            action->setShortcut(QKeySequence(keys));
        if (info.icon)
            action->setIcon(QIcon(QString::fromLatin1(info.icon)));
        action->setCheckable(info.checkable);
        action->setData(info.id);
        const int id = info.id;
        connect(action, &QAction::triggered, this, [this, id] { RouteCommand(id); });
        // Shortcuts work while the frame is active, whichever menu holds them.
        addAction(action);
        m_actions[id] = action;
    }
}

void CMainFrame::CreateMenus()
{
    // One style for every menu, owned by the frame.
    auto* menuStyle = new MenuImageStyle;
    menuStyle->setParent(this);
    for (const MenuInfo& info : Menus()) {
        QMenu* menu = menuBar()->addMenu(QCoreApplication::translate("Menu", info.title));
        menu->setStyle(menuStyle);
        for (int id : info.ids) {
            if (id == ID_SEPARATOR)
                menu->addSeparator();
            else if (QAction* action = FindAction(id))
                menu->addAction(action);
        }
        const bool windowList = info.windowList;
        connect(menu, &QMenu::aboutToShow, this, [this, menu, windowList] {
            UpdateCommandUI();
            if (windowList)
                FillWindowMenu(menu);
        });
    }
}

void CMainFrame::CreateToolBars()
{
    for (const ToolBarInfo& info : ToolBars()) {
        auto* bar = new QToolBar(QCoreApplication::translate("ToolBar", info.title), this);
        bar->setObjectName(QString::fromLatin1(info.objectName));
        bar->setIconSize(QSize(24, 24));
        bar->setAllowedAreas(Qt::AllToolBarAreas);
        for (int id : info.ids) {
            if (id == ID_SEPARATOR) {
                bar->addSeparator();
            } else if (id == ID_ZOOM) {
                m_zoomBox = new QComboBox(bar);
                m_zoomBox->setObjectName(QStringLiteral("zoomBox"));
                m_zoomBox->setProperty("controlId", ID_ZOOM);
                m_zoomBox->setFixedWidth(90);
                for (const char* label : ZoomLabels())
                    m_zoomBox->addItem(QString::fromLatin1(label));
                m_zoomBox->setCurrentIndex(kInitialZoomBoxPosition);
                if (const CommandInfo* zoom = FindCommand(ID_ZOOM)) {
                    m_zoomBox->setToolTip(CommandToolTip(*zoom));
                    m_zoomBox->setStatusTip(CommandPrompt(*zoom));
                }
                // Only a choice made in the box changes the zoom.
                connect(m_zoomBox, &QComboBox::activated, this, [this] { RouteCommand(ID_ZOOM); });
                bar->addWidget(m_zoomBox);
            } else if (QAction* action = FindAction(id)) {
                bar->addAction(action);
            }
        }
        for (QToolButton* button : bar->findChildren<QToolButton*>())
            button->setFixedSize(kToolButtonSize, kToolButtonSize);
        addToolBar(Qt::TopToolBarArea, bar);
        m_toolBars[info.toggleId] = bar;
    }
    // The save buttons drop down their variants.
    const std::pair<int, std::array<int, 2>> dropDowns[] = {
        { ID_FILE_SAVE, { ID_FILE_SAVE_PLUS_MEASURE, ID_FILE_SAVE_ONLY_IMAGE } },
        { ID_FILE_SAVE_AS, { ID_FILE_SAVE_AS_ONLY_IMAGE, ID_FILE_SAVE_AS_PLUS_MEASURE } },
    };
    for (const auto& [id, variants] : dropDowns) {
        QAction* action = FindAction(id);
        for (QToolBar* bar : findChildren<QToolBar*>()) {
            auto* button = action ? qobject_cast<QToolButton*>(bar->widgetForAction(action)) : nullptr;
            if (!button)
                continue;
            auto* menu = new QMenu(button);
            for (int variant : variants) {
                if (QAction* item = FindAction(variant))
                    menu->addAction(item);
            }
            button->setMenu(menu);
            button->setPopupMode(QToolButton::MenuButtonPopup);
        }
    }
}

void CMainFrame::CreateStatusBar()
{
    statusBar()->setObjectName(QStringLiteral("StatusBar"));
    for (std::size_t i = 0; i < m_keyIndicators.size(); ++i) {
        auto* pane = new QLabel(statusBar());
        pane->setObjectName(QLatin1String(kKeyIndicators[i].objectName));
        pane->setAlignment(Qt::AlignCenter);
        pane->setFrameShape(QFrame::Panel);
        pane->setFrameShadow(QFrame::Sunken);
        // Wide enough for the text whether it shows or not, so panes never jump.
        const QString text = QLatin1String(kKeyIndicators[i].text);
        pane->setMinimumWidth(pane->fontMetrics().horizontalAdvance(text) + 12);
        statusBar()->addPermanentWidget(pane);
        m_keyIndicators[i] = pane;
    }
    UpdateKeyIndicators();
}

void CMainFrame::UpdateKeyIndicators()
{
    for (std::size_t i = 0; i < m_keyIndicators.size(); ++i) {
        const bool on = GetKeyLockState(kKeyIndicators[i].lock);
        m_keyIndicators[i]->setText(on ? QLatin1String(kKeyIndicators[i].text) : QString());
    }
}

void CMainFrame::MapFrameCommands()
{
    for (auto [toggleId, bar] : m_toolBars) {
        QToolBar* toolBar = bar;
        MapCommand(toggleId, [toolBar] { toolBar->setVisible(toolBar->isHidden()); });
        MapUpdate(toggleId, [toolBar](CCmdUI& ui) { ui.SetCheck(!toolBar->isHidden()); });
    }
    MapCommand(ID_VIEW_STATUS_BAR, [this] { statusBar()->setVisible(statusBar()->isHidden()); });
    MapUpdate(ID_VIEW_STATUS_BAR, [this](CCmdUI& ui) { ui.SetCheck(!statusBar()->isHidden()); });
    MapCommand(ID_VIEW_HISTOGRAM, [this] { m_histogramDock->setVisible(m_histogramDock->isHidden()); });
    MapUpdate(ID_VIEW_HISTOGRAM, [this](CCmdUI& ui) { ui.SetCheck(!m_histogramDock->isHidden()); });
    MapCommand(ID_VIDEO_MOSAIC, [this] {
        m_mosaicDock->Running() ? void(m_mosaicDock->Stop())
                                : void(m_mosaicDock->Start(CMeasureDoc::GetLiveDocument()));
    });
    MapUpdate(ID_VIDEO_MOSAIC, [this](CCmdUI& ui) {
        const CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
        ui.Enable(m_mosaicDock->Running() || (live && live->IsPreviewRunning()));
        ui.SetCheck(m_mosaicDock->Running());
    });

    MapCommand(ID_WINDOW_CASCADE, [this] {
        m_mdiArea->setViewMode(QMdiArea::SubWindowView);
        m_mdiArea->cascadeSubWindows();
    });
    MapCommand(ID_WINDOW_TILE_HORZ, [this] { TileSubWindows(Qt::Horizontal); });
    MapCommand(ID_WINDOW_TILE_VERT, [this] { TileSubWindows(Qt::Vertical); });
    for (int id : { ID_WINDOW_CASCADE, ID_WINDOW_TILE_HORZ, ID_WINDOW_TILE_VERT })
        MapUpdate(id, [this](CCmdUI& ui) { ui.Enable(!m_mdiArea->subWindowList().isEmpty()); });

    MapCommand(ID_APP_EXIT, [this] { close(); });

    MapCommand(ID_FILE_PRINT_PREVIEW, [this] { OnFilePrintPreview(); });
    MapUpdate(ID_FILE_PRINT_PREVIEW, [this](CCmdUI& ui) { ui.Enable(MDIGetActive() != nullptr); });
    SetRecentFiles({});
}

// Horizontal: full-width windows one above the other; vertical: full-height
// windows side by side.
void CMainFrame::TileSubWindows(Qt::Orientation orientation)
{
    const QList<QMdiSubWindow*> windows = m_mdiArea->subWindowList();
    if (windows.isEmpty())
        return;
    m_mdiArea->setViewMode(QMdiArea::SubWindowView);
    const QRect area = m_mdiArea->viewport()->rect();
    const int n = int(windows.size());
    for (int i = 0; i < n; ++i) {
        QRect cell;
        if (orientation == Qt::Horizontal) {
            const int top = area.height() * i / n;
            cell = QRect(0, top, area.width(), area.height() * (i + 1) / n - top);
        } else {
            const int left = area.width() * i / n;
            cell = QRect(left, 0, area.width() * (i + 1) / n - left, area.height());
        }
        windows[i]->showNormal();
        windows[i]->setGeometry(cell);
    }
}

void CMainFrame::SetTitle(const QString& title)
{
    m_strTitle = title;
    UpdateWindowTitle();
}

void CMainFrame::UpdateWindowTitle()
{
    CChildFrame* child = MDIGetActive();
    if (child && !child->GetActiveDocument()->GetTitle().isEmpty())
        setWindowTitle(m_strTitle + QStringLiteral(" - ") + child->GetActiveDocument()->GetTitle());
    else
        setWindowTitle(m_strTitle);
}

void CMainFrame::AddChildFrame(CChildFrame* child)
{
    m_mdiArea->addSubWindow(child);
    connect(child->GetActiveDocument(), &CDocument::titleChanged, this, [this] { UpdateWindowTitle(); });
    // Maximising a window after a cascade or tile brings the tabs back.
    connect(child, &QMdiSubWindow::windowStateChanged, this, [this](Qt::WindowStates, Qt::WindowStates now) {
        if ((now & Qt::WindowMaximized) && m_mdiArea->viewMode() == QMdiArea::SubWindowView)
            m_mdiArea->setViewMode(QMdiArea::TabbedView);
    });
    // Tabs show their windows maximised; the area only does so itself once
    // the frame has been activated, which a session without a window manager
    // never does.
    if (m_mdiArea->viewMode() == QMdiArea::TabbedView)
        child->showMaximized();
    else
        child->show();
    m_lastActive = child;
    m_mdiArea->setActiveSubWindow(child);
    UpdateWindowTitle();
}

CChildFrame* CMainFrame::MDIGetActive() const
{
    if (auto* child = qobject_cast<CChildFrame*>(m_mdiArea->activeSubWindow()))
        return child;
    // Without window focus (an inactive or offscreen frame) the area reports
    // no active window; the current one is still the one the user sees.
    if (auto* child = qobject_cast<CChildFrame*>(m_mdiArea->currentSubWindow()))
        return child;
    auto* last = qobject_cast<CChildFrame*>(m_lastActive.data());
    return last && last->GetActiveDocument() && last->isVisible() ? last : nullptr;
}

std::vector<CChildFrame*> CMainFrame::GetChildFrames() const
{
    std::vector<CChildFrame*> children;
    for (QMdiSubWindow* window : m_mdiArea->subWindowList())
        if (auto* child = qobject_cast<CChildFrame*>(window))
            children.push_back(child);
    return children;
}

bool CMainFrame::CloseAllDocuments()
{
    for (CChildFrame* child : GetChildFrames()) {
        if (!child->close())
            return false;
        // Closing defers the deletion; documents must write their settings
        // and stop their threads now, before the event loop ends.
        delete child;
    }
    UpdateWindowTitle();
    return true;
}

bool CMainFrame::OnCmdMsg(int id)
{
    if (CChildFrame* child = MDIGetActive(); child && child->OnCmdMsg(id))
        return true;
    if (CCmdTarget::OnCmdMsg(id))
        return true;
    return m_appTarget && m_appTarget->OnCmdMsg(id);
}

bool CMainFrame::OnUpdateCmdMsg(CCmdUI& ui)
{
    if (CChildFrame* child = MDIGetActive(); child && child->OnUpdateCmdMsg(ui))
        return true;
    if (CCmdTarget::OnUpdateCmdMsg(ui))
        return true;
    return m_appTarget && m_appTarget->OnUpdateCmdMsg(ui);
}

bool CMainFrame::RouteCommand(int id)
{
    // A command is refused when the route disables it, whatever fired it.
    if (!QueryCommand(id).IsEnabled())
        return false;
    const bool handled = OnCmdMsg(id);
    UpdateCommandUI();
    return handled;
}

CCmdUI CMainFrame::QueryCommand(int id)
{
    CCmdUI ui(id);
    OnUpdateCmdMsg(ui);
    return ui;
}

void CMainFrame::UpdateCommandUI()
{
    for (auto [id, action] : m_actions) {
        const CCmdUI ui = QueryCommand(id);
        action->setEnabled(ui.IsEnabled());
        if (action->isCheckable())
            action->setChecked(ui.IsChecked());
    }
    if (m_zoomBox)
        m_zoomBox->setEnabled(QueryCommand(ID_ZOOM).IsEnabled());
}

QAction* CMainFrame::FindAction(int id) const
{
    auto it = m_actions.find(id);
    return it == m_actions.end() ? nullptr : it->second;
}

QToolBar* CMainFrame::FindToolBar(int toggleId) const
{
    auto it = m_toolBars.find(toggleId);
    return it == m_toolBars.end() ? nullptr : it->second;
}

int CMainFrame::GetZoomIndex() const
{
    return m_zoomBox ? m_zoomBox->currentIndex() : kInitialZoomBoxPosition;
}

void CMainFrame::FillWindowMenu(QMenu* menu)
{
    for (QAction* action : m_windowListActions)
        delete action;
    m_windowListActions.clear();
    const std::vector<CChildFrame*> children = GetChildFrames();
    if (children.empty())
        return;
    m_windowListActions.push_back(menu->addSeparator());
    CChildFrame* active = MDIGetActive();
    int number = 0;
    for (CChildFrame* child : children) {
        ++number;
        QAction* action = menu->addAction(
            QStringLiteral("&%1 %2").arg(number).arg(child->GetActiveDocument()->GetTitle()));
        action->setCheckable(true);
        action->setChecked(child == active);
        connect(action, &QAction::triggered, this, [this, window = QPointer<CChildFrame>(child)] {
            if (window)
                m_mdiArea->setActiveSubWindow(window);
        });
        m_windowListActions.push_back(action);
    }
}

void CMainFrame::OnActivateInstance()
{
    showMaximized();
    raise();
    activateWindow();
    qCInfo(lcApp) << "a second copy started: brought to the front";
    MessageBox(tr("Already having one instance running!"), m_strTitle, MB_OK | MB_ICONINFORMATION);
}

void CMainFrame::SetRecentFiles(const QStringList& paths)
{
    for (int i = 0; i < kRecentFileCount; ++i) {
        QAction* action = FindAction(ID_FILE_MRU_FILE1 + i);
        if (!action)
            continue;
        const bool used = i < paths.size();
        action->setVisible(used);
        if (used) {
            action->setText(QStringLiteral("&%1 %2").arg(i + 1).arg(QFileInfo(paths[i]).fileName()));
            action->setToolTip(paths[i]);
        }
    }
}

QPixmap CMainFrame::GrabActiveView() const
{
    CChildFrame* child = MDIGetActive();
    QWidget* view = child ? child->widget() : nullptr;
    return view ? view->grab() : QPixmap();
}

void CMainFrame::OnFilePrintPreview()
{
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewDialog preview(&printer, this);
    preview.setObjectName(QStringLiteral("PrintPreview"));
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter* target) {
        const QPixmap picture = GrabActiveView();
        if (picture.isNull())
            return;
        QPainter painter(target);
        const QRect page = painter.viewport();
        const QSize fitted = picture.size().scaled(page.size(), Qt::KeepAspectRatio);
        painter.setViewport(QRect(page.topLeft(), fitted));
        painter.setWindow(picture.rect());
        painter.drawPixmap(0, 0, picture);
    });
    preview.exec();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (CloseAllDocuments())
        event->accept();
    else
        event->ignore();
}
