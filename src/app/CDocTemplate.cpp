#include "app/CDocTemplate.h"

#include "app/CChildFrame.h"
#include "app/CDocument.h"
#include "app/CMainFrame.h"
#include "app/CView.h"

#include <algorithm>

CDocTemplate::CDocTemplate(QString baseTitle, DocumentFactory createDocument, ViewFactory createView)
    : m_baseTitle(std::move(baseTitle))
    , m_createDocument(std::move(createDocument))
    , m_createView(std::move(createView))
{
}

CDocument* CDocTemplate::OpenDocumentFile(CMainFrame& frame, const QString& path)
{
    std::unique_ptr<CDocument> owned = m_createDocument(path);
    if (!owned)
        return nullptr;
    CDocument* document = owned.get();
    QWidget* view = m_createView ? m_createView(*document) : nullptr;
    auto* child = new CChildFrame(std::move(owned), view);

    m_documents.push_back(document);
    connect(document, &QObject::destroyed, this, [this, document] { std::erase(m_documents, document); });

    if (path.isEmpty()) {
        document->SetTitle(m_baseTitle + QString::number(++m_untitledCount));
        if (!document->OnNewDocument()) {
            delete child;
            return nullptr;
        }
    } else if (!document->OnOpenDocument(path)) {
        delete child;
        return nullptr;
    }

    frame.AddChildFrame(child);
    if (auto* cview = dynamic_cast<CView*>(view))
        cview->OnInitialUpdate();
    return document;
}
