#include "app/CFolderEdit.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

namespace {

CFolderEdit::Browser& CurrentBrowser()
{
    static CFolderEdit::Browser browser;
    return browser;
}

} // namespace

CFolderEdit::CFolderEdit(QWidget* parent)
    : QWidget(parent)
    , m_edit(new QLineEdit(this))
{
    m_edit->setObjectName(QStringLiteral("folder"));
    auto* browse = new QPushButton(QStringLiteral("..."), this);
    browse->setObjectName(QStringLiteral("browse"));
    browse->setFixedWidth(32);
    connect(browse, &QPushButton::clicked, this, &CFolderEdit::Browse);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit, 1);
    layout->addWidget(browse);
}

QString CFolderEdit::Folder() const
{
    return m_edit->text();
}

void CFolderEdit::SetFolder(const QString& folder)
{
    m_edit->setText(folder);
}

CFolderEdit::Browser CFolderEdit::SetBrowser(Browser browser)
{
    return std::exchange(CurrentBrowser(), std::move(browser));
}

void CFolderEdit::Browse()
{
    const QString folder = CurrentBrowser()
        ? CurrentBrowser()(this, Folder())
        : QFileDialog::getExistingDirectory(this, tr("Select Path:"), Folder());
    if (!folder.isEmpty())
        SetFolder(folder);
}
