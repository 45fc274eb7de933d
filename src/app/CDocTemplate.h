#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CChildFrame;
class CDocument;
class CMainFrame;
class QWidget;

// Makes a document, its view and its child frame together, and keeps the
// list of its open documents.
class CDocTemplate : public QObject
{
    Q_OBJECT

public:
    // path is empty for a new document, else the file being opened; the
    // document may use it to know whether it is being opened from a file.
    using DocumentFactory = std::function<std::unique_ptr<CDocument>(const QString& path)>;
    // The view must also derive from CView.
    using ViewFactory = std::function<QWidget*(CDocument& document)>;

    CDocTemplate(QString baseTitle, DocumentFactory createDocument, ViewFactory createView);

    // New document (empty path) or one opened from path, shown in a new child
    // frame of frame. Null when the document refused: nothing is left open.
    CDocument* OpenDocumentFile(CMainFrame& frame, const QString& path = QString());

    const std::vector<CDocument*>& GetDocuments() const { return m_documents; }

private:
    QString m_baseTitle;
    DocumentFactory m_createDocument;
    ViewFactory m_createView;
    std::vector<CDocument*> m_documents;
    int m_untitledCount = 0;
};
