#pragma once

#include "app/CCmdTarget.h"

#include <QObject>
#include <QString>

class QImage;

// A document of the multiple-document frame: what one child frame shows.
// The child frame owns it; it is destroyed after its view.
class CDocument : public QObject, public CCmdTarget
{
    Q_OBJECT

public:
    CDocument() = default;
    ~CDocument() override = default;

    const QString& GetTitle() const { return m_strTitle; }
    void SetTitle(const QString& title);
    const QString& GetPathName() const { return m_strPathName; }
    // Also makes the file name the title.
    void SetPathName(const QString& path);

    // The template's new-file path; false abandons the document.
    virtual bool OnNewDocument() { return true; }
    // The template's open-file path; false abandons the document. The
    // document reports its own failures to the user.
    virtual bool OnOpenDocument(const QString& path);
    // The template's path for a picture the program made (a tool's result);
    // false abandons the document. A document that holds no pictures refuses.
    virtual bool OnNewPicture(const QImage& picture);

signals:
    void titleChanged(const QString& title);

private:
    QString m_strTitle;
    QString m_strPathName;
};
