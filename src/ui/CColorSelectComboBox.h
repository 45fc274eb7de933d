#pragma once

#include <QComboBox>

#include <cstdint>

// A drop-down list of colour swatches. Each item carries a colour value
// (0x00BBGGRR); filled with the palette, a position is a palette index.
class CColorSelectComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CColorSelectComboBox(QWidget* parent = nullptr);

    // Appends the colour unless the list holds it already; its position.
    int AddColor(std::uint32_t colorRef);
    // Position of the colour, or -1.
    int FindColor(std::uint32_t colorRef) const;
    // The colour of the item at the position, or 0 (black) outside the list.
    std::uint32_t GetColor(int index) const;
    // The palette in index order, the first item selected.
    void FillPalette();

protected:
    void paintEvent(QPaintEvent* event) override;
};
