#include "ui/CColorSelectComboBox.h"

#include "calibration/MeasureTables.h"

#include <QPainter>
#include <QStylePainter>
#include <QStyledItemDelegate>

#include <array>

namespace {

constexpr int kColorRole = Qt::UserRole;

const std::array<const char*, MeasureTables::kPaletteSize> kColorNames
    = { "Black", "White", "Red", "Green", "Blue", "Cyan", "Magenta", "Yellow" };

QColor FromColorRef(std::uint32_t ref)
{
    return QColor(int(ref & 0xFF), int((ref >> 8) & 0xFF), int((ref >> 16) & 0xFF));
}

QString ColorName(std::uint32_t ref)
{
    for (int i = 0; i < MeasureTables::kPaletteSize; ++i) {
        if (MeasureTables::kPalette[std::size_t(i)] == ref)
            return QString::fromLatin1(kColorNames[std::size_t(i)]);
    }
    return QStringLiteral("#%1").arg(ref, 6, 16, QLatin1Char('0'));
}

// A swatch inside the rectangle, framed so that black and white both show.
void DrawSwatch(QPainter& painter, const QRect& rect, const QColor& color)
{
    const QRect swatch = rect.adjusted(3, 2, -3, -2);
    painter.fillRect(swatch, color);
    painter.setPen(QColor(64, 64, 64));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}

class SwatchDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        // The selection highlight around the swatch.
        if (option.state & QStyle::State_Selected)
            painter->fillRect(option.rect, option.palette.highlight());
        else
            painter->fillRect(option.rect, option.palette.base());
        DrawSwatch(*painter, option.rect, FromColorRef(index.data(kColorRole).toUInt()));
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), 18));
        return size;
    }
};

} // namespace

CColorSelectComboBox::CColorSelectComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setItemDelegate(new SwatchDelegate(this));
    setMinimumWidth(100);
}

int CColorSelectComboBox::AddColor(std::uint32_t colorRef)
{
    const int found = FindColor(colorRef);
    if (found >= 0)
        return found;
    // The name stays out of sight, for screen readers and tooltips.
    addItem(QString());
    const int index = count() - 1;
    setItemData(index, colorRef, kColorRole);
    setItemData(index, ColorName(colorRef), Qt::ToolTipRole);
    setItemData(index, ColorName(colorRef), Qt::AccessibleTextRole);
    return index;
}

int CColorSelectComboBox::FindColor(std::uint32_t colorRef) const
{
    return findData(colorRef, kColorRole);
}

std::uint32_t CColorSelectComboBox::GetColor(int index) const
{
    if (index < 0 || index >= count())
        return 0;
    return itemData(index, kColorRole).toUInt();
}

void CColorSelectComboBox::FillPalette()
{
    for (const std::uint32_t color : MeasureTables::kPalette)
        AddColor(color);
    setCurrentIndex(0);
}

void CColorSelectComboBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    option.currentText.clear();
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    if (currentIndex() < 0)
        return;
    const QRect field
        = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    DrawSwatch(painter, field, FromColorRef(GetColor(currentIndex())));
}
