#pragma once

class CDocument;
class QImage;
class QString;

// What a document asks of the program that holds it. The application makes
// the documents, so they reach it through this rather than through its class.
class IDocumentHost
{
public:
    IDocumentHost(const IDocumentHost&) = delete;
    IDocumentHost& operator=(const IDocumentHost&) = delete;

    // The host of this process, or null (documents made by tests alone).
    static IDocumentHost* Instance() { return s_instance; }

    // The interface language identifier chosen at start-up.
    virtual int GetLanguageId() const = 0;
    // A new document by the framework's new-file path; null when none was made.
    virtual CDocument* OnFileNew() = 0;
    // A new picture document holding picture (a tool's result), titled title
    // and tied to no file; null when none was made (the document said why).
    virtual CDocument* OpenPictureDocument(const QImage& picture, const QString& title) = 0;

protected:
    IDocumentHost() { s_instance = this; }
    virtual ~IDocumentHost()
    {
        if (s_instance == this)
            s_instance = nullptr;
    }

private:
    static inline IDocumentHost* s_instance = nullptr;
};
