#pragma once

#include <QWidget>

#include <functional>

class QLineEdit;

// A folder field with a "..." button that opens the folder browser titled
// "Select Path:".
class CFolderEdit : public QWidget
{
    Q_OBJECT

public:
    explicit CFolderEdit(QWidget* parent = nullptr);

    QString Folder() const;
    void SetFolder(const QString& folder);

    // Asks for a folder, starting at the current one; empty cancels.
    // Replaceable as a whole (tests); returns the previous one.
    using Browser = std::function<QString(QWidget* parent, const QString& start)>;
    static Browser SetBrowser(Browser browser);

private:
    void Browse();

    QLineEdit* m_edit;
};
