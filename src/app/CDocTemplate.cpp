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
    if (path.isEmpty())
        return Open(frame, Origin::New, [this](CDocument& document) {
            document.SetTitle(m_baseTitle + QString::number(++m_untitledCount));
            return document.OnNewDocument();
        });
    return Open(frame, Origin::File, [&path](CDocument& document) { return document.OnOpenDocument(path); });
}

CDocument* CDocTemplate::OpenPictureDocument(CMainFrame& frame, const QImage& picture, const QString& title)
{
    return Open(frame, Origin::Picture, [&](CDocument& document) {
        document.SetTitle(title);
        return document.OnNewPicture(picture);
    });
}

CDocument* CDocTemplate::Open(CMainFrame& frame, Origin origin, const std::function<bool(CDocument&)>& open)
{
    std::unique_ptr<CDocument> owned = m_createDocument(origin);
    if (!owned)
        return nullptr;
    CDocument* document = owned.get();
    QWidget* view = m_createView ? m_createView(*document) : nullptr;
    auto* child = new CChildFrame(std::move(owned), view);

    m_documents.push_back(document);
    connect(document, &QObject::destroyed, this, [this, document] { std::erase(m_documents, document); });

    if (!open(*document)) {
        delete child;
        return nullptr;
    }

    frame.AddChildFrame(child);
    if (auto* cview = dynamic_cast<CView*>(view))
        cview->OnInitialUpdate();
    return document;
}
