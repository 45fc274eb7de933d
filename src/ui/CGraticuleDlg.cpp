#include "ui/CGraticuleDlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace {

// The preview fits into this box.
constexpr int kPreviewWidth = 560;
constexpr int kPreviewHeight = 400;

} // namespace

CGraticuleDlg::CGraticuleDlg(const QImage& picture, const QRect& rulerBox, QWidget* parent)
    : QDialog(parent)
    , m_picture(picture)
    , m_rulerBox(rulerBox.normalized())
{
    setWindowTitle(tr("Detect from micrometer"));
    setObjectName("graticuleDialog");
    m_edDivision = new QLineEdit(QStringLiteral("0.01"), this);
    m_edDivision->setObjectName("division");
    m_chInsideRuler = new QCheckBox(tr("Search only inside the ruler"), this);
    m_chInsideRuler->setObjectName("insideRuler");
    m_chInsideRuler->setEnabled(m_rulerBox.width() > 1 && m_rulerBox.height() > 1);
    auto* detect = new QPushButton(tr("Detect"), this);
    detect->setObjectName("detect");
    m_lbPreview = new QLabel(this);
    m_lbPreview->setObjectName("preview");
    m_lbPreview->setMinimumSize(kPreviewWidth / 2, kPreviewHeight / 2);
    m_lbPreview->setAlignment(Qt::AlignCenter);
    m_lbResult = new QLabel(this);
    m_lbResult->setObjectName("result");
    m_lbResult->setWordWrap(true);
    QFont big = m_lbResult->font();
    big.setPointSizeF(big.pointSizeF() * 1.3);
    m_lbResult->setFont(big);

    auto* buttons = new QDialogButtonBox(this);
    m_btAccept = buttons->addButton(tr("Accept"), QDialogButtonBox::AcceptRole);
    m_btAccept->setObjectName("accept");
    buttons->addButton(QDialogButtonBox::Cancel);

    auto* grid = new QGridLayout();
    grid->addWidget(new QLabel(tr("Division value"), this), 0, 0);
    grid->addWidget(m_edDivision, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("mm"), this), 0, 2);
    grid->addWidget(m_chInsideRuler, 1, 0, 1, 2);
    grid->addWidget(detect, 1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(m_lbPreview, 1);
    layout->addWidget(m_lbResult);
    layout->addWidget(buttons);

    connect(detect, &QPushButton::clicked, this, &CGraticuleDlg::Detect);
    connect(m_edDivision, &QLineEdit::returnPressed, this, &CGraticuleDlg::Detect);
    connect(m_chInsideRuler, &QCheckBox::toggled, this, &CGraticuleDlg::Detect);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Detect();
}

double CGraticuleDlg::DivisionUm() const
{
    bool ok = false;
    const double mm = m_edDivision->text().trimmed().toDouble(&ok);
    return ok && std::isfinite(mm) ? mm * 1000.0 : 0.0;
}

void CGraticuleDlg::SetDivisionMm(const QString& text)
{
    m_edDivision->setText(text);
    Detect();
}

void CGraticuleDlg::SetInsideRuler(bool inside)
{
    m_chInsideRuler->setChecked(inside && m_chInsideRuler->isEnabled());
}

void CGraticuleDlg::Detect()
{
    const QRect region = m_chInsideRuler->isChecked() ? m_rulerBox : QRect();
    m_fit = DetectGraticule(m_picture, DivisionUm(), region);
    m_lbResult->setText(GraticuleResultText(m_fit));
    m_btAccept->setEnabled(m_fit.found);
    ShowPreview();
}

QString CGraticuleDlg::ShownResult() const
{
    return m_lbResult->text();
}

bool CGraticuleDlg::CanAccept() const
{
    return m_btAccept->isEnabled();
}

void CGraticuleDlg::ShowPreview()
{
    if (m_picture.isNull()) {
        m_lbPreview->setText(tr("No picture"));
        return;
    }
    QPixmap preview = QPixmap::fromImage(
        m_picture.scaled(kPreviewWidth, kPreviewHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    const double scale = double(preview.width()) / m_picture.width();
    QPainter p(&preview);
    p.setRenderHint(QPainter::Antialiasing);
    if (m_chInsideRuler->isChecked()) {
        p.setPen(QPen(Qt::yellow, 1, Qt::DashLine));
        p.drawRect(QRectF(m_rulerBox.topLeft() * scale, m_rulerBox.size() * scale));
    }
    // Each tick the fit used gets a short red mark across the scale.
    const double a = m_fit.angleDeg * 3.14159265358979 / 180.0;
    const QPointF across(-std::sin(a) * 6, std::cos(a) * 6);
    p.setPen(QPen(Qt::red, 1.5));
    for (const QPointF& t : m_fit.ticks) {
        const QPointF c = (t + QPointF(0.5, 0.5)) * scale;
        p.drawLine(c - across, c + across);
    }
    p.end();
    m_lbPreview->setPixmap(preview);
}
