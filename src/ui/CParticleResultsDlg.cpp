#include "ui/CParticleResultsDlg.h"

#include "platform/AtomicFileWrite.h"
#include "platform/MessageBox.h"
#include "platform/NumberText.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

// A cell that sorts by its number, not its text.
class NumberItem : public QTableWidgetItem
{
public:
    NumberItem(double value, const QString& text)
        : QTableWidgetItem(text)
    {
        setData(Qt::UserRole, value);
        setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        setFlags(flags() & ~Qt::ItemIsEditable);
    }
    bool operator<(const QTableWidgetItem& other) const override
    {
        return data(Qt::UserRole).toDouble() < other.data(Qt::UserRole).toDouble();
    }
};

// The size histogram: a bar per class of area, the range written under it.
class HistogramView : public QWidget
{
public:
    HistogramView(AreaHistogram histogram, QString range, QWidget* parent)
        : QWidget(parent)
        , m_histogram(std::move(histogram))
        , m_range(std::move(range))
    {
        setMinimumHeight(110);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const int text = fontMetrics().height() + 4;
        const QRect plot = rect().adjusted(4, 4, -4, -text);
        painter.drawLine(plot.bottomLeft(), plot.bottomRight());
        painter.drawText(rect().adjusted(4, 0, -4, 0), Qt::AlignBottom | Qt::AlignHCenter, m_range);
        const std::vector<int>& counts = m_histogram.counts;
        if (counts.empty())
            return;
        const int most = std::max(1, *std::max_element(counts.begin(), counts.end()));
        const double width = double(plot.width()) / double(counts.size());
        for (std::size_t i = 0; i < counts.size(); ++i) {
            const int height = int(std::lround(double(plot.height()) * counts[i] / most));
            const QRectF bar(plot.left() + width * double(i) + 1, plot.bottom() - height, width - 2, height);
            painter.fillRect(bar, palette().highlight());
        }
    }

private:
    AreaHistogram m_histogram;
    QString m_range;
};

} // namespace

CParticleResultsDlg::CParticleResultsDlg(
    std::vector<Particle> particles, const QString& unit, int precision, double pictureArea, QWidget* parent)
    : QDialog(parent)
    , m_particles(std::move(particles))
    , m_unit(unit)
    , m_precision(precision)
{
    setWindowTitle(tr("Particles"));
    setAttribute(Qt::WA_DeleteOnClose);
    const QString square = unit == QLatin1String("px") ? unit : unit + QStringLiteral("2");
    m_table = new QTableWidget(int(m_particles.size()), 7, this);
    m_table->setHorizontalHeaderLabels({ tr("No."), tr("Area (%1)").arg(square),
        tr("Perimeter (%1)").arg(unit), tr("Diameter (%1)").arg(unit), tr("Circularity"),
        tr("X (%1)").arg(unit), tr("Y (%1)").arg(unit) });
    m_table->verticalHeader()->hide();
    const auto text = [precision](double v) { return NumberText::FormatC("%.*f", precision, v); };
    for (std::size_t i = 0; i < m_particles.size(); ++i) {
        const Particle& p = m_particles[i];
        const int row = int(i);
        m_table->setItem(row, 0, new NumberItem(double(i + 1), QString::number(i + 1)));
        const double values[] = { p.area, p.perimeter, p.diameter, p.circularity, p.x, p.y };
        for (int c = 0; c < 6; ++c)
            m_table->setItem(row, c + 1, new NumberItem(values[c], text(values[c])));
    }
    m_table->setSortingEnabled(true);
    m_table->resizeColumnsToContents();

    const ParticleSummary s = Summarize(m_particles, pictureArea);
    m_summary
        = new QLabel(tr("%1 particles, mean area %2 %3 (standard deviation %4), total %5 %3, %6 % of the "
                        "picture")
                         .arg(s.count)
                         .arg(text(s.meanArea), square, text(s.areaDeviation), text(s.totalArea),
                             NumberText::FormatC("%.*f", precision, 100.0 * s.areaFraction)),
            this);
    m_summary->setWordWrap(true);
    constexpr int kClasses = 20;
    AreaHistogram histogram = HistogramOfAreas(m_particles, kClasses);
    const QString range = histogram.counts.empty()
        ? QString()
        : tr("Area %1 to %2 %3, %4 classes")
              .arg(text(histogram.from), text(histogram.from + histogram.classWidth * kClasses), square)
              .arg(kClasses);
    m_histogram = new HistogramView(std::move(histogram), range, this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* exportButton = buttons->addButton(tr("Export CSV..."), QDialogButtonBox::ActionRole);
    connect(exportButton, &QPushButton::clicked, this, &CParticleResultsDlg::OnExport);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_histogram);
    layout->addWidget(m_table);
    layout->addWidget(buttons);
    resize(640, 420);
}

bool CParticleResultsDlg::ExportCsv(const QString& path)
{
    QString error;
    if (ReplaceFileContents(path, ParticleCsv(m_particles, m_unit, m_precision), &error))
        return true;
    MessageBox(tr("Cannot write %1: %2").arg(path, error), tr("Export CSV"), MB_OK | MB_ICONWARNING);
    return false;
}

void CParticleResultsDlg::OnExport()
{
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Export CSV"), QStringLiteral("particles.csv"), tr("CSV (*.csv)"));
    if (!path.isEmpty())
        ExportCsv(path);
}
