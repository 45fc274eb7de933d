#include "app/CChildFrame.h"

#include "app/CDocument.h"
#include "app/CView.h"
#include "app/CommandTable.h"

CChildFrame::CChildFrame(std::unique_ptr<CDocument> document, QWidget* view)
    : m_document(std::move(document))
    , m_view(view)
{
    setAttribute(Qt::WA_DeleteOnClose);
    if (m_view)
        setWidget(m_view);
    setWindowTitle(m_document->GetTitle());
    connect(m_document.get(), &CDocument::titleChanged, this, &QWidget::setWindowTitle);
    MapCommand(ID_FILE_CLOSE, [this] { close(); });
}

CChildFrame::~CChildFrame()
{
    delete m_view.data();
    m_document.reset();
}

CView* CChildFrame::ViewTarget() const
{
    return dynamic_cast<CView*>(m_view.data());
}

bool CChildFrame::OnCmdMsg(int id)
{
    if (CView* view = ViewTarget(); view && view->OnCmdMsg(id))
        return true;
    if (m_document->OnCmdMsg(id))
        return true;
    return CCmdTarget::OnCmdMsg(id);
}

bool CChildFrame::OnUpdateCmdMsg(CCmdUI& ui)
{
    if (CView* view = ViewTarget(); view && view->OnUpdateCmdMsg(ui))
        return true;
    if (m_document->OnUpdateCmdMsg(ui))
        return true;
    return CCmdTarget::OnUpdateCmdMsg(ui);
}
