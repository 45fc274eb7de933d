#include "app/CSaveOptionDlg.h"

#include "app/CFolderEdit.h"
#include "app/CSaveOverlayGroup.h"
#include "app/SaveSettings.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <limits>

CSaveOptionDlg::CSaveOptionDlg(const QString& settingsFile, QWidget* parent)
    : QDialog(parent)
    , m_settingsFile(settingsFile)
    , m_overlay(new CSaveOverlayGroup(this))
    , m_title(new QLineEdit(this))
    , m_author(new QLineEdit(this))
    , m_prefix(new QLineEdit(this))
    , m_suffix(new QSpinBox(this))
    , m_bmp(new QRadioButton(QStringLiteral("BMP"), this))
    , m_jpg(new QRadioButton(QStringLiteral("JPG"), this))
    , m_folder(new CFolderEdit(this))
{
    setWindowTitle(tr("Save Option"));
    m_title->setObjectName(QStringLiteral("title"));
    m_author->setObjectName(QStringLiteral("author"));
    m_prefix->setObjectName(QStringLiteral("prefix"));
    m_suffix->setObjectName(QStringLiteral("suffix"));
    m_bmp->setObjectName(QStringLiteral("bmp"));
    m_jpg->setObjectName(QStringLiteral("jpg"));
    m_suffix->setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());

    const QuickSaveSettings s = QuickSaveSettings::Read(m_settingsFile);
    m_overlay->SetOverlay(s.overlay);
    m_title->setText(s.title);
    m_author->setText(s.author);
    m_prefix->setText(s.prefix);
    m_suffix->setValue(s.suffix);
    (s.bmp ? m_bmp : m_jpg)->setChecked(true);
    m_folder->SetFolder(s.filePath);

    auto* type = new QHBoxLayout;
    type->addWidget(m_bmp);
    type->addWidget(m_jpg);
    type->addStretch(1);
    auto* form = new QFormLayout;
    form->addRow(tr("Title:"), m_title);
    form->addRow(tr("Author:"), m_author);
    form->addRow(tr("Folder:"), m_folder);
    form->addRow(tr("Prefix:"), m_prefix);
    form->addRow(tr("Number:"), m_suffix);
    form->addRow(tr("Image type:"), type);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSaveOptionDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_overlay);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

void CSaveOptionDlg::accept()
{
    if (m_folder->Folder().isEmpty()) {
        MessageBox(tr("Please select folder for the saving file."), tr("Hint"));
        return;
    }
    QuickSaveSettings s;
    s.overlay = m_overlay->Overlay();
    s.suffix = m_suffix->value();
    s.bmp = m_bmp->isChecked();
    s.author = m_author->text();
    s.title = m_title->text();
    s.prefix = m_prefix->text();
    s.filePath = m_folder->Folder();
    if (!s.Write(m_settingsFile))
        qCWarning(lcApp) << "could not write the save options to" << m_settingsFile;
    QDialog::accept();
}
