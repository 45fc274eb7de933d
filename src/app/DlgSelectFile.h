#pragma once

#include <QFileDialog>

class QLabel;

// The picture open dialog: the file dialog with a preview of the highlighted
// picture beside it, read the way the document will read it, so a picture
// that shows here opens, and one that cannot be read says why before the
// user commits to it.
class DlgSelectFile : public QFileDialog
{
    Q_OBJECT

public:
    DlgSelectFile(QWidget* parent, const QString& startFile, const QStringList& filters);

    // The preview of the picture at path; an empty path clears it.
    void ShowPreview(const QString& path);

    // The preview's picture, scaled to fit, and its caption.
    const QLabel* PreviewPicture() const { return m_picture; }
    const QLabel* PreviewCaption() const { return m_caption; }

private:
    QLabel* m_picture;
    QLabel* m_caption;
};
