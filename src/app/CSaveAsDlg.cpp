#include "app/CSaveAsDlg.h"

#include "app/CFolderEdit.h"
#include "app/CSaveOverlayGroup.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

CSaveAsDlg::CSaveAsDlg(
    const QString& settingsFile, const QString& fileName, SaveFunction save, QWidget* parent)
    : QDialog(parent)
    , m_settingsFile(settingsFile)
    , m_save(std::move(save))
    , m_folder(new CFolderEdit(this))
    , m_fileName(new QLineEdit(fileName, this))
    , m_overlay(new CSaveOverlayGroup(this))
    , m_title(new QLineEdit(this))
    , m_subject(new QLineEdit(this))
    , m_author(new QLineEdit(this))
    , m_comment(new QLineEdit(this))
{
    setWindowTitle(tr("Save As"));
    m_fileName->setObjectName(QStringLiteral("fileName"));
    m_title->setObjectName(QStringLiteral("title"));
    m_subject->setObjectName(QStringLiteral("subject"));
    m_author->setObjectName(QStringLiteral("author"));
    m_comment->setObjectName(QStringLiteral("comment"));

    const SaveAsSettings s = SaveAsSettings::Read(m_settingsFile);
    m_folder->SetFolder(s.filePath);
    m_overlay->SetOverlay(s.overlay);
    m_title->setText(s.texts.title);
    m_subject->setText(s.texts.subject);
    m_author->setText(s.texts.author);
    m_comment->setText(s.texts.comment);

    auto* typeBox = new QGroupBox(tr("Image type"), this);
    auto* types = new QGridLayout(typeBox);
    for (std::size_t i = 0; i < m_types.size(); ++i) {
        const QString ext = QString::fromLatin1(kExtensions[i]);
        m_types[i] = new QRadioButton(ext.mid(1).toUpper(), typeBox);
        m_types[i]->setObjectName(ext.mid(1));
        m_types[i]->setProperty("controlId", kControlIds[i]);
        types->addWidget(m_types[i], int(i / 3), int(i % 3));
    }
    // JPEG carries the summary texts below.
    m_types[1]->setChecked(true);

    auto* file = new QFormLayout;
    file->addRow(tr("Folder:"), m_folder);
    file->addRow(tr("File name:"), m_fileName);
    auto* texts = new QFormLayout;
    texts->addRow(tr("Title:"), m_title);
    texts->addRow(tr("Subject:"), m_subject);
    texts->addRow(tr("Author:"), m_author);
    texts->addRow(tr("Comment:"), m_comment);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSaveAsDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(file);
    layout->addWidget(typeBox);
    layout->addWidget(m_overlay);
    layout->addLayout(texts);
    layout->addWidget(buttons);
    setMinimumWidth(460);
}

void CSaveAsDlg::SetOverlay(const SaveOverlay& overlay)
{
    m_overlay->SetOverlay(overlay);
}

QString CSaveAsDlg::ExtensionForChecks(const std::array<bool, 6>& checked)
{
    for (std::size_t i = checked.size(); i-- > 0;) {
        if (checked[i])
            return QString::fromLatin1(kExtensions[i]);
    }
    return QStringLiteral(".bmp");
}

void CSaveAsDlg::accept()
{
    const QString folder = m_folder->Folder();
    if (folder.isEmpty()) {
        MessageBox(tr("Please select folder for the saving file."), tr("Hint"));
        return;
    }
    SaveAsSettings s;
    s.overlay = m_overlay->Overlay();
    s.texts = { m_title->text(), m_subject->text(), m_author->text(), m_comment->text() };
    s.filePath = folder;
    if (!s.Write(m_settingsFile))
        qCWarning(lcApp) << "could not write the save-as choices to" << m_settingsFile;

    std::array<bool, 6> checked {};
    for (std::size_t i = 0; i < m_types.size(); ++i)
        checked[i] = m_types[i]->isChecked();
    const QString path = JoinSavePath(folder, m_fileName->text() + ExtensionForChecks(checked));

    QFile existing(path);
    const bool exists = existing.open(QIODevice::ReadOnly);
    existing.close();
    if (!exists
        || MessageBox(tr("%1 already existed. Want to replace it?").arg(QFileInfo(path).fileName()),
               tr("Save As"), MB_YESNO | MB_ICONQUESTION)
            == IDYES) {
        if (m_save)
            m_save(path, s.overlay, s.texts);
    }
    QDialog::accept();
}
