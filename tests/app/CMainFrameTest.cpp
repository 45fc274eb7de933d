#include "app/CMainFrame.h"

#include "app/CChildFrame.h"
#include "app/CommandTable.h"
#include "app/TestDocuments.h"
#include "platform/KeyLockState.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

#include <gtest/gtest.h>
#include <tuple>

namespace {

class MainFrameTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        frame = std::make_unique<CMainFrame>();
        frame->resize(1200, 800);
        frame->show();
        docTemplate = MakeTestTemplate(journal);
    }
    TestDoc* Open(const QString& path = QString())
    {
        return static_cast<TestDoc*>(docTemplate->OpenDocumentFile(*frame, path));
    }

    QMenu* Menu(const QString& title) const
    {
        for (QAction* action : frame->menuBar()->actions())
            if (action->text() == title)
                return action->menu();
        return nullptr;
    }
    static QStringList Texts(const QMenu* menu)
    {
        QStringList texts;
        for (QAction* action : menu ? menu->actions() : QList<QAction*> {})
            texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
        return texts;
    }

    // The frame goes first: its documents still report to the journal.
    Journal journal;
    std::unique_ptr<CDocTemplate> docTemplate;
    std::unique_ptr<CMainFrame> frame;
};

} // namespace

TEST_F(MainFrameTest, MenusToolbarsAndZoomBoxCarryTheCommandTable)
{
    QStringList titles;
    for (QAction* action : frame->menuBar()->actions())
        titles << action->text();
    EXPECT_EQ(titles,
        (QStringList {
            "&File", "&Edit", "&View", "&Measure", "&Process", "V&ideo", "&Window", "&Language", "&Help" }));
    EXPECT_EQ(Texts(Menu("&Edit")), (QStringList { "&Undo", "&Redo" }));
    EXPECT_EQ(frame->FindAction(ID_EDIT_UNDO)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
    EXPECT_EQ(frame->FindAction(ID_EDIT_REDO)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Y));
    EXPECT_FALSE(frame->QueryCommand(ID_EDIT_UNDO).IsEnabled()) << "no document, nothing to undo";
    // The recent-file entries stay hidden until there are recent files.
    EXPECT_EQ(Texts(Menu("&File")),
        (QStringList { "&New Preview", "&Open...", "&Close", "&Save", "Save &As...", "-", "Save &Option",
            "Open &Picture Folder", "-", "Recent File", "Recent File", "Recent File", "Recent File", "-",
            "E&xit" }));
    EXPECT_EQ(frame->FindAction(ID_FILE_SAVE)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_S));
    // The save buttons drop down their variants.
    const std::pair<int, QStringList> dropDowns[] = {
        { ID_FILE_SAVE, { "Save plus measure", "Save only image" } },
        { ID_FILE_SAVE_AS, { "Save As only image", "Save As plus measure" } },
    };
    for (const auto& [id, variants] : dropDowns) {
        QToolButton* button = nullptr;
        for (QToolBar* bar : frame->findChildren<QToolBar*>())
            if (!button)
                button = qobject_cast<QToolButton*>(bar->widgetForAction(frame->FindAction(id)));
        ASSERT_NE(button, nullptr) << id;
        EXPECT_EQ(button->popupMode(), QToolButton::MenuButtonPopup);
        EXPECT_EQ(Texts(button->menu()), variants);
    }
    EXPECT_FALSE(frame->FindAction(ID_FILE_MRU_FILE1)->isVisible());
    frame->SetRecentFiles({ "/slides/x.bmp" });
    EXPECT_EQ(frame->FindAction(ID_FILE_MRU_FILE1)->text(), "&1 x.bmp");
    EXPECT_EQ(Texts(Menu("&Language")), (QStringList { "English", "Français", "中文(简体)" }));
    EXPECT_EQ(Texts(Menu("&Help")), (QStringList { "&Help", "-", "&About..." }));
    EXPECT_EQ(Texts(Menu("&Process")),
        (QStringList { "&Enable", "-", "Flip &Horizontal", "Flip &Vertical", "-", "&Gray", "&Negative",
            "&Emboss", "&Sharpen", "&Binary", "&Rgb", "-", "&Focus Stack Pictures...",
            "S&titch Pictures..." }));
    EXPECT_EQ(frame->FindAction(ID_FILE_NEW)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_N));
    EXPECT_EQ(frame->FindAction(ID_MEASURE_ANGLE)->statusTip(), "Draw angle ");
    // Toolbar-only commands show their prompt as the button's text.
    EXPECT_EQ(frame->FindAction(ID_CAMERA_CAPTURE)->toolTip(), "Capture picture to an active view");
    EXPECT_EQ(frame->FindAction(ID_CAMERA_RECORD)->toolTip(), "Record camera video to file");
    EXPECT_EQ(frame->FindAction(ID_CAMERA_INTERVAL)->toolTip(), "Interval capture frames");
    EXPECT_TRUE(frame->FindAction(ID_MEASURE_LINE)->isCheckable());
    EXPECT_FALSE(frame->FindAction(ID_MEASURE_DELETE_ALL)->isCheckable());

    titles.clear();
    for (QToolBar* bar : frame->findChildren<QToolBar*>())
        titles << bar->windowTitle();
    titles.sort();
    EXPECT_EQ(titles, (QStringList { "Measure", "Print and Help", "Process", "Standard" }));
    QToolBar* measure = frame->FindToolBar(ID_VIEW_MEASUREBAR);
    ASSERT_NE(measure, nullptr);
    EXPECT_TRUE(measure->actions().contains(frame->FindAction(ID_MEASURE_POINT)));
    for (QAction* action : measure->actions()) {
        if (!action->isSeparator()) {
            EXPECT_FALSE(action->icon().pixmap(24, 24).isNull()) << action->toolTip().toStdString();
        }
    }

    QComboBox* zoom = frame->GetZoomBox();
    ASSERT_NE(zoom, nullptr);
    EXPECT_EQ(zoom->property("controlId").toInt(), 32920);
    EXPECT_EQ(zoom->width(), 90);
    QStringList labels;
    for (int i = 0; i < zoom->count(); ++i)
        labels << zoom->itemText(i);
    EXPECT_EQ(
        labels, (QStringList { "250%", "200%", "150%", "125%", "100%", "75%", "67%", "50%", "33%", "25%" }));
    EXPECT_EQ(frame->GetZoomIndex(), 3);
    EXPECT_TRUE(frame->FindToolBar(ID_VIEW_TOOLBAR)->isAncestorOf(zoom));

    CMainFrame chinese(2052); // Simplified Chinese gets its own menu font
    EXPECT_EQ(chinese.menuBar()->font().family(), QString::fromUtf8("宋体"));
    EXPECT_EQ(chinese.menuBar()->font().pixelSize(), 14);
    EXPECT_NE(frame->menuBar()->font().family(), QString::fromUtf8("宋体"));
}

// The bars' commands hide, show and check them. The message pane takes the
// prompt of the command under the mouse; the lock panes follow the
// keyboard's LEDs and keep their width when blank.
TEST_F(MainFrameTest, BarTogglesAndStatusBarPanes)
{
    for (int id : { ID_VIEW_TOOLBAR, ID_VIEW_MEASUREBAR, ID_VIEW_PROCESSBAR, ID_VIEW_STATUS_BAR }) {
        QWidget* bar
            = id == ID_VIEW_STATUS_BAR ? static_cast<QWidget*>(frame->statusBar()) : frame->FindToolBar(id);
        ASSERT_NE(bar, nullptr) << id;
        EXPECT_TRUE(frame->QueryCommand(id).IsChecked()) << id;
        frame->FindAction(id)->trigger();
        EXPECT_TRUE(bar->isHidden()) << id;
        EXPECT_FALSE(frame->FindAction(id)->isChecked()) << id;
        EXPECT_TRUE(frame->RouteCommand(id));
        EXPECT_FALSE(bar->isHidden()) << id;
        EXPECT_TRUE(frame->FindAction(id)->isChecked()) << id;
    }

    frame->FindAction(ID_VIEW_STATUS_BAR)->showStatusText(frame.get());
    EXPECT_EQ(frame->statusBar()->currentMessage(), "Show or hide the status bar");

    const std::tuple<const char*, const char*, KeyLock> panes[] { { "IndicatorCaps", "CAP", KeyLock::Caps },
        { "IndicatorNum", "NUM", KeyLock::Num }, { "IndicatorScrl", "SCRL", KeyLock::Scroll } };
    int left = 0;
    for (const auto& [name, text, lock] : panes) {
        auto* label = frame->statusBar()->findChild<QLabel*>(name);
        ASSERT_NE(label, nullptr) << name;
        EXPECT_GT(label->x(), left) << name << " is right of the one before";
        left = label->x();
        EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(text)) << name;
        EXPECT_EQ(label->text(), GetKeyLockState(lock) ? text : "") << name;
    }
}

TEST_F(MainFrameTest, RouteGoesViewDocumentChildFrameAppAndUnhandledIsDisabled)
{
    frame->UpdateCommandUI();
    EXPECT_FALSE(frame->FindAction(ID_MEASURE_LINE)->isEnabled());
    EXPECT_FALSE(frame->GetZoomBox()->isEnabled());
    EXPECT_FALSE(frame->RouteCommand(ID_MEASURE_LINE));
    // The frame's own commands need no document.
    EXPECT_TRUE(frame->FindAction(ID_VIEW_TOOLBAR)->isEnabled());
    EXPECT_TRUE(frame->FindAction(ID_APP_EXIT)->isEnabled());
    EXPECT_FALSE(frame->FindAction(ID_WINDOW_CASCADE)->isEnabled());

    std::vector<std::string> hits;
    CCmdTarget app;
    app.MapCommand(ID_MEASURE_LINE, [&] { hits.push_back("app"); });
    app.MapCommand(ID_FILE_NEW, [&] { hits.push_back("app new"); });
    frame->SetAppTarget(&app);

    EXPECT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    TestDoc* doc = Open();
    ASSERT_NE(doc, nullptr);
    auto* view = dynamic_cast<TestView*>(frame->MDIGetActive()->GetActiveView());
    ASSERT_NE(view, nullptr);

    doc->MapCommand(ID_MEASURE_LINE, [&] { hits.push_back("doc"); });
    EXPECT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    view->MapCommand(ID_MEASURE_LINE, [&] { hits.push_back("view"); });
    EXPECT_TRUE(frame->RouteCommand(ID_MEASURE_LINE));
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_NEW));
    EXPECT_EQ(hits, (std::vector<std::string> { "app", "doc", "view", "app new" }));
    frame->SetAppTarget(nullptr);
}

TEST_F(MainFrameTest, UpdateHandlersAndZoomBoxFollowTheActiveDocument)
{
    TestDoc* first = Open();
    int tool = 2;
    first->MapCommand(ID_MEASURE_LINE, [&] { tool = 2; });
    first->MapCommand(ID_MEASURE_ANGLE, [&] { tool = 3; });
    first->MapUpdate(ID_MEASURE_LINE, [&](CCmdUI& ui) { ui.SetCheck(tool == 2); });
    first->MapUpdate(ID_MEASURE_ANGLE, [&](CCmdUI& ui) { ui.SetCheck(tool == 3); });
    bool zoomed = false;
    first->MapUpdate(ID_MEASURE_RECT, [&](CCmdUI& ui) { ui.Enable(!zoomed); });
    first->MapCommand(ID_MEASURE_RECT, [&] { tool = 4; });

    frame->UpdateCommandUI();
    EXPECT_TRUE(frame->FindAction(ID_MEASURE_LINE)->isChecked());
    frame->FindAction(ID_MEASURE_ANGLE)->trigger();
    EXPECT_EQ(tool, 3);
    EXPECT_FALSE(frame->FindAction(ID_MEASURE_LINE)->isChecked());
    EXPECT_TRUE(frame->FindAction(ID_MEASURE_ANGLE)->isChecked());

    // A disabled command does not run, whatever fires it.
    zoomed = true;
    frame->UpdateCommandUI();
    EXPECT_FALSE(frame->FindAction(ID_MEASURE_RECT)->isEnabled());
    EXPECT_FALSE(frame->RouteCommand(ID_MEASURE_RECT));
    EXPECT_EQ(tool, 3);

    // A second document knows none of these: they go grey while it is active.
    TestDoc* second = Open();
    ASSERT_NE(second, nullptr);
    frame->UpdateCommandUI();
    EXPECT_FALSE(frame->FindAction(ID_MEASURE_ANGLE)->isEnabled());
    frame->GetMdiArea()->setActiveSubWindow(frame->GetChildFrames().front());
    EXPECT_EQ(frame->MDIGetActive()->GetActiveDocument(), first);
    EXPECT_TRUE(frame->FindAction(ID_MEASURE_ANGLE)->isEnabled());
    EXPECT_TRUE(frame->FindAction(ID_MEASURE_ANGLE)->isChecked());

    // A choice in the zoom box is routed as the zoom command.
    int seen = -1;
    first->MapCommand(ID_ZOOM, [&] { seen = frame->GetZoomIndex(); });
    frame->UpdateCommandUI();
    QComboBox* zoom = frame->GetZoomBox();
    EXPECT_TRUE(zoom->isEnabled());
    // Setting the box from code is not a choice.
    zoom->setCurrentIndex(1);
    EXPECT_EQ(seen, -1);
    zoom->setCurrentIndex(2);
    emit zoom->activated(2);
    EXPECT_EQ(seen, 2);
}

TEST_F(MainFrameTest, DocumentsOpenCloseAndExitInOrder)
{
    frame->SetTitle("KorvalCam");
    EXPECT_EQ(frame->windowTitle(), "KorvalCam");

    TestDoc* doc = Open();
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->GetTitle(), "Measure1");
    EXPECT_EQ(frame->windowTitle(), "KorvalCam - Measure1");
    doc->SetTitle("Video");
    EXPECT_EQ(frame->windowTitle(), "KorvalCam - Video");
    EXPECT_EQ(frame->MDIGetActive()->windowTitle(), "Video");
    EXPECT_EQ(docTemplate->GetDocuments().size(), 1u);

    EXPECT_EQ(Open("/pictures/missing.bmp"), nullptr);
    EXPECT_EQ(frame->GetChildFrames().size(), 1u);
    TestDoc* picture = Open("/pictures/slide.png");
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->GetTitle(), "slide.png");
    EXPECT_EQ(docTemplate->GetDocuments().size(), 2u);

    EXPECT_EQ(journal,
        (std::vector<std::string> { "new doc1", "initial update doc1", "open /pictures/missing.bmp",
            "~view doc2", "~doc doc2", "open /pictures/slide.png", "initial update doc3" }));
    journal.clear();

    // "&Close" closes the active document, view first.
    EXPECT_TRUE(frame->RouteCommand(ID_FILE_CLOSE));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(journal, (std::vector<std::string> { "~view doc3", "~doc doc3" }));
    EXPECT_EQ(docTemplate->GetDocuments().size(), 1u);
    EXPECT_EQ(frame->windowTitle(), "KorvalCam - Video");

    // "E&xit" closes every document, in order, before the frame.
    Open();
    journal.clear();
    EXPECT_TRUE(frame->RouteCommand(ID_APP_EXIT));
    EXPECT_FALSE(frame->isVisible());
    EXPECT_EQ(journal, (std::vector<std::string> { "~view doc1", "~doc doc1", "~view doc4", "~doc doc4" }));
    EXPECT_TRUE(frame->GetChildFrames().empty());
    EXPECT_EQ(frame->windowTitle(), frame->GetTitle());
}

TEST_F(MainFrameTest, TileCascadeAndWindowMenu)
{
    Open();
    Open();
    QMdiArea* area = frame->GetMdiArea();
    EXPECT_EQ(area->viewMode(), QMdiArea::TabbedView);

    EXPECT_TRUE(frame->RouteCommand(ID_WINDOW_TILE_VERT));
    EXPECT_EQ(area->viewMode(), QMdiArea::SubWindowView);
    const auto children = frame->GetChildFrames();
    const QRect a = children[0]->geometry();
    const QRect b = children[1]->geometry();
    EXPECT_EQ(a.top(), b.top());
    EXPECT_EQ(a.height(), area->viewport()->height());
    EXPECT_EQ(a.right() + 1, b.left());

    EXPECT_TRUE(frame->RouteCommand(ID_WINDOW_TILE_HORZ));
    EXPECT_EQ(children[0]->geometry().width(), area->viewport()->width());
    EXPECT_EQ(children[0]->geometry().bottom() + 1, children[1]->geometry().top());

    EXPECT_TRUE(frame->RouteCommand(ID_WINDOW_CASCADE));
    EXPECT_NE(children[0]->geometry().topLeft(), children[1]->geometry().topLeft());

    children[1]->showMaximized();
    EXPECT_EQ(area->viewMode(), QMdiArea::TabbedView);

    // The window menu lists the documents and activates the one picked.
    static_cast<TestDoc*>(children[1]->GetActiveDocument())->SetTitle("Video");
    QMenu* windowMenu = Menu("&Window");
    ASSERT_NE(windowMenu, nullptr);
    emit windowMenu->aboutToShow();
    EXPECT_EQ(Texts(windowMenu),
        (QStringList { "&Cascade", "Tile &Horizontal", "Tile &Vertical", "-", "&1 Measure1", "&2 Video" }));
    windowMenu->actions().at(4)->trigger();
    EXPECT_EQ(frame->MDIGetActive()->GetActiveDocument()->GetTitle(), "Measure1");
    // Opening the menu again does not pile up entries.
    emit windowMenu->aboutToShow();
    EXPECT_EQ(windowMenu->actions().size(), 6);
}
