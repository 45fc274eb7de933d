#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CChildFrame;
class CDocument;
class CMainFrame;
class QImage;
class QWidget;

// Makes a document, its view and its child frame together, and keeps the
// list of its open documents.
class CDocTemplate : public QObject
{
    Q_OBJECT

public:
    // What a document is made for: the new-file path, a file being opened, or
    // a picture the program made.
    enum class Origin { New, File, Picture };
    using DocumentFactory = std::function<std::unique_ptr<CDocument>(Origin origin)>;
    // The view must also derive from CView.
    using ViewFactory = std::function<QWidget*(CDocument& document)>;

    CDocTemplate(QString baseTitle, DocumentFactory createDocument, ViewFactory createView);

    // New document (empty path) or one opened from path, shown in a new child
    // frame of frame. Null when the document refused: nothing is left open.
    CDocument* OpenDocumentFile(CMainFrame& frame, const QString& path = QString());
    // A document holding picture, titled title, with no file behind it;
    // null when the document refused the picture.
    CDocument* OpenPictureDocument(CMainFrame& frame, const QImage& picture, const QString& title);

    const std::vector<CDocument*>& GetDocuments() const { return m_documents; }

private:
    // Makes the document, its view and child frame, lets open fill the
    // document, and shows it; nothing is left when open refuses.
    CDocument* Open(CMainFrame& frame, Origin origin, const std::function<bool(CDocument&)>& open);

    QString m_baseTitle;
    DocumentFactory m_createDocument;
    ViewFactory m_createView;
    std::vector<CDocument*> m_documents;
    int m_untitledCount = 0;
};
