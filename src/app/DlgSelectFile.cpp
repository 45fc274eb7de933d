#include "app/DlgSelectFile.h"

#include "image/FCObjImage.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace {

constexpr int kPreviewSide = 200;

} // namespace

DlgSelectFile::DlgSelectFile(QWidget* parent, const QString& startFile, const QStringList& filters)
    : QFileDialog(parent, tr("Open"), startFile)
    , m_picture(new QLabel(this))
    , m_caption(new QLabel(this))
{
    setObjectName(QStringLiteral("DlgSelectFile"));
    // The platform's own dialog would have no room for the preview.
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::HideNameFilterDetails);
    setFileMode(QFileDialog::ExistingFile);
    setAcceptMode(QFileDialog::AcceptOpen);
    setNameFilters(filters);
    if (!startFile.isEmpty())
        selectFile(startFile);

    m_picture->setObjectName(QStringLiteral("Preview"));
    m_picture->setFixedSize(kPreviewSide, kPreviewSide);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setFrameShape(QFrame::StyledPanel);
    m_caption->setObjectName(QStringLiteral("PreviewCaption"));
    m_caption->setAlignment(Qt::AlignCenter);
    m_caption->setWordWrap(true);
    m_caption->setFixedWidth(kPreviewSide);

    // The non-native dialog lays itself out in a grid; the preview takes a
    // column of its own on the right, across all rows.
    if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
        auto* column = new QVBoxLayout;
        column->addWidget(m_picture);
        column->addWidget(m_caption);
        column->addStretch();
        grid->addLayout(column, 0, grid->columnCount(), grid->rowCount(), 1);
    }
    connect(this, &QFileDialog::currentChanged, this, &DlgSelectFile::ShowPreview);
    // A typed or completed name selects the file without making it current,
    // so the name box is followed too (it is the dialog's own, named child).
    if (auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        connect(name, &QLineEdit::textChanged, this, [this](const QString& text) {
            ShowPreview(text.isEmpty() ? text : directory().absoluteFilePath(text));
        });
    ShowPreview(startFile);
}

void DlgSelectFile::ShowPreview(const QString& path)
{
    m_picture->clear();
    m_caption->clear();
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return;
    FCObjImage image;
    if (!image.Load(path)) {
        m_picture->setText(tr("No preview"));
        m_caption->setText(image.ErrorString());
        return;
    }
    const QPixmap pixmap = QPixmap::fromImage(image.ToQImage());
    m_picture->setPixmap(
        pixmap.scaled(m_picture->contentsRect().size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    m_caption->setText(tr("%1 x %2, %3 bits").arg(image.Width()).arg(image.Height()).arg(image.ColorBits()));
}
