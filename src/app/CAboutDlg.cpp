#include "app/CAboutDlg.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

CAboutDlg::CAboutDlg(const QString& brandName, const QString& manualPath, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AboutDlg"));
    setWindowTitle(tr("About %1").arg(brandName));

    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QStringLiteral(":/icons/oculix.svg")).pixmap(64, 64));

    auto* name = new QLabel(
        QStringLiteral("<b>%1</b> %2").arg(brandName.toHtmlEscaped(), QLatin1String(kVersion)), this);
    name->setObjectName(QStringLiteral("version"));
    auto* summary
        = new QLabel(tr("Live pictures, measurements and recordings from USB microscope cameras."), this);
    summary->setWordWrap(true);
    auto* link = new QLabel(
        QStringLiteral("<a href=\"%1\">%2</a>")
            .arg(QUrl::fromLocalFile(manualPath).toString(QUrl::FullyEncoded), tr("User manual")),
        this);
    link->setObjectName(QStringLiteral("link"));
    link->setTextInteractionFlags(Qt::TextBrowserInteraction);
    link->setOpenExternalLinks(true);

    auto* text = new QVBoxLayout;
    text->addWidget(name);
    text->addWidget(summary);
    text->addWidget(link);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(text, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
}
