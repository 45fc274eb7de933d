#include "ui/CParticlesDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cmath>

namespace {

// The method box's rows: the range first, then the automatic thresholds.
constexpr GrayThreshold::Method kMethods[]
    = { GrayThreshold::Method::Otsu, GrayThreshold::Method::Default, GrayThreshold::Method::Triangle };
// No particle is larger than this many pixels; the box shows it as "no limit".
constexpr double kNoLimit = 1e9;

QDoubleSpinBox* Spin(double low, double high, int decimals, double value, QWidget* parent)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setRange(low, high);
    box->setDecimals(decimals);
    box->setValue(value);
    return box;
}

} // namespace

CParticlesDlg::CParticlesDlg(const ParticleOptions& options, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Analyze Particles"));
    m_method = new QComboBox(this);
    m_method->addItem(tr("Gray levels from-to"));
    m_method->addItem(tr("Automatic (Otsu)"));
    m_method->addItem(tr("Automatic (ImageJ default)"));
    m_method->addItem(tr("Automatic (Triangle)"));
    int row = 0;
    for (int i = 0; i < 3; ++i)
        if (options.method == kMethods[i])
            row = i + 1;
    m_method->setCurrentIndex(row);
    m_low = new QSpinBox(this);
    m_high = new QSpinBox(this);
    m_low->setRange(0, 255);
    m_high->setRange(0, 255);
    m_low->setValue(options.low);
    m_high->setValue(options.high);
    m_dark = new QCheckBox(tr("Dark particles on a light background"), this);
    m_dark->setChecked(options.dark);
    m_minArea = Spin(0, kNoLimit, 0, options.minArea, this);
    m_maxArea = Spin(0, kNoLimit, 0, std::isfinite(options.maxArea) ? options.maxArea : kNoLimit, this);
    m_minCircularity = Spin(0, 1, 2, options.minCircularity, this);
    m_maxCircularity = Spin(0, 1, 2, options.maxCircularity, this);
    m_excludeEdges = new QCheckBox(tr("Exclude particles on the edges"), this);
    m_excludeEdges->setChecked(options.excludeEdges);
    m_includeHoles = new QCheckBox(tr("Include holes"), this);
    m_includeHoles->setChecked(options.includeHoles);
    m_watershed = new QCheckBox(tr("Split touching particles"), this);
    m_watershed->setChecked(options.watershed);

    auto* range = new QHBoxLayout;
    range->addWidget(m_low);
    range->addWidget(new QLabel(QStringLiteral("-"), this));
    range->addWidget(m_high);
    auto* area = new QHBoxLayout;
    area->addWidget(m_minArea);
    area->addWidget(new QLabel(QStringLiteral("-"), this));
    area->addWidget(m_maxArea);
    auto* round = new QHBoxLayout;
    round->addWidget(m_minCircularity);
    round->addWidget(new QLabel(QStringLiteral("-"), this));
    round->addWidget(m_maxCircularity);
    auto* form = new QFormLayout;
    form->addRow(tr("Threshold:"), m_method);
    form->addRow(tr("Gray levels:"), range);
    form->addRow(QString(), m_dark);
    form->addRow(tr("Area (pixels):"), area);
    form->addRow(tr("Circularity:"), round);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_excludeEdges);
    layout->addWidget(m_includeHoles);
    layout->addWidget(m_watershed);
    layout->addWidget(buttons);
    connect(m_method, &QComboBox::currentIndexChanged, this, &CParticlesDlg::UpdateRange);
    UpdateRange();
}

void CParticlesDlg::UpdateRange()
{
    // The range is typed for the first row; an automatic threshold finds it
    // and only needs to know which side the particles are on.
    const bool byHand = m_method->currentIndex() == 0;
    m_low->setEnabled(byHand);
    m_high->setEnabled(byHand);
    m_dark->setEnabled(!byHand);
}

ParticleOptions CParticlesDlg::Options() const
{
    ParticleOptions options;
    const int row = m_method->currentIndex();
    if (row > 0)
        options.method = kMethods[row - 1];
    options.low = std::min(m_low->value(), m_high->value());
    options.high = std::max(m_low->value(), m_high->value());
    options.dark = m_dark->isChecked();
    options.minArea = std::min(m_minArea->value(), m_maxArea->value());
    options.maxArea = m_maxArea->value() >= kNoLimit ? std::numeric_limits<double>::infinity()
                                                     : std::max(m_minArea->value(), m_maxArea->value());
    options.minCircularity = std::min(m_minCircularity->value(), m_maxCircularity->value());
    options.maxCircularity = std::max(m_minCircularity->value(), m_maxCircularity->value());
    options.excludeEdges = m_excludeEdges->isChecked();
    options.includeHoles = m_includeHoles->isChecked();
    options.watershed = m_watershed->isChecked();
    return options;
}
