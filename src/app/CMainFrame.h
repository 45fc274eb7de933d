#pragma once

#include "app/CCmdTarget.h"

#include <QMainWindow>
#include <QPointer>

#include <array>
#include <map>
#include <vector>

class CChildFrame;
class QAction;
class QComboBox;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QPixmap;
class QTimer;
class QToolBar;

// The main window: menus, the three toolbars with the zoom box, the status
// bar, and the tabbed area that holds one child frame per document. Every
// command goes through RouteCommand: the active child frame (its view, then
// its document, then itself), this frame, then the application.
class CHistogramDock;
class CMosaicDock;

class CMainFrame : public QMainWindow, public CCmdTarget
{
    Q_OBJECT

public:
    // langId: the interface language identifier; Simplified Chinese gets its
    // own menu font.
    explicit CMainFrame(int langId = 0x0409, QWidget* parent = nullptr);
    ~CMainFrame() override;

    // The last target of the route (the application), not owned.
    void SetAppTarget(CCmdTarget* app) { m_appTarget = app; }

    // The frame's own title (the brand folder name); the window title adds
    // the active document's.
    void SetTitle(const QString& title);
    const QString& GetTitle() const { return m_strTitle; }

    void AddChildFrame(CChildFrame* child);
    CChildFrame* MDIGetActive() const;
    std::vector<CChildFrame*> GetChildFrames() const;
    QMdiArea* GetMdiArea() const { return m_mdiArea; }

    // Closes every child frame, and so every document; false when one of
    // them refused to close.
    bool CloseAllDocuments();

    // Runs a command the way a menu item does; false when no target handled it.
    bool RouteCommand(int id);
    // The state the whole route gives id: disabled when no target knows it.
    CCmdUI QueryCommand(int id);
    // Brings every menu item, button and the zoom box up to date.
    void UpdateCommandUI();

    QAction* FindAction(int id) const;
    QToolBar* FindToolBar(int toggleId) const;
    QComboBox* GetZoomBox() const { return m_zoomBox; }
    CHistogramDock* GetHistogramDock() const { return m_histogramDock; }
    CMosaicDock* GetMosaicDock() const { return m_mosaicDock; }
    // The zoom box's position, which is the zoom index.
    int GetZoomIndex() const;

    bool OnCmdMsg(int id) override;
    bool OnUpdateCmdMsg(CCmdUI& ui) override;

    // A second copy started: come forward, maximised, and say so.
    void OnActivateInstance();
    // The recent-file entries of the File menu, most recent first; entries
    // beyond the list are hidden.
    void SetRecentFiles(const QStringList& paths);
    // The print preview of the active view, as it prints: the picture with
    // its shapes, fitted to the page.
    void OnFilePrintPreview();
    // What the active child's view shows; null without one.
    QPixmap GrabActiveView() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void CreateActions();
    void CreateMenus();
    void CreateToolBars();
    void CreateStatusBar();
    // The CAP, NUM and SCRL panes show their text while the lock is on.
    void UpdateKeyIndicators();
    void MapFrameCommands();
    void UpdateWindowTitle();
    void FillWindowMenu(QMenu* menu);
    void TileSubWindows(Qt::Orientation orientation);

    QString m_strTitle;
    QMdiArea* m_mdiArea;
    QComboBox* m_zoomBox = nullptr;
    QTimer* m_idleTimer;
    CHistogramDock* m_histogramDock = nullptr;
    CMosaicDock* m_mosaicDock = nullptr;
    std::array<QLabel*, 3> m_keyIndicators {};
    CCmdTarget* m_appTarget = nullptr;
    std::map<int, QAction*> m_actions;
    std::map<int, QToolBar*> m_toolBars;
    std::vector<QAction*> m_windowListActions;
    // The child the user saw last; the area forgets it when the frame itself
    // becomes active before any child did.
    // Kept as the base class: while a child is being destroyed it is no
    // longer a CChildFrame, and qobject_cast then says so.
    QPointer<QMdiSubWindow> m_lastActive;
};
