#pragma once

#include "measure/GdiRect.h"

#include <QColor>
#include <QFont>
#include <QPoint>
#include <QSize>
#include <QString>

class QPainter;

// The drawing rules of the platform the shapes were designed on, reproduced on
// a QPainter once so every shape draws the same pixels. Nothing is
// antialiased: the live overlay keys on exact colours.
namespace Gdi {

enum class PenStyle {
    Solid,
    Dot, // 3 pixels on, 3 off
    Dash, // 18 on, 6 off
};

struct Pen
{
    QColor color;
    int width = 1;
    PenStyle style = PenStyle::Solid;
};

// The state of a freshly made device context: opaque background mode, white
// background colour, no antialiasing, no brush. The painter then keeps every
// change made by a drawing call, as a device context does.
void ResetDC(QPainter& dc);

// Background behind text and behind the gaps of dotted and dashed pens.
void SetBkMode(QPainter& dc, bool opaque);
void SetBkColor(QPainter& dc, const QColor& color);

// MoveTo(a) then LineTo(b): the pixels from a towards b, b itself excluded,
// whichever way the line runs. Styled pens start their pattern at a and fill
// the gaps with the background colour in opaque mode; a pen wider than one
// pixel is always solid.
void Line(QPainter& dc, const Pen& pen, const QPoint& a, const QPoint& b);

// Unfilled ellipse inside the rectangle, right and bottom edges excluded.
void Ellipse(QPainter& dc, const Pen& pen, const GdiRect& rect);

// Counter-clockwise arc of the ellipse in `box`, from where the ray from the
// centre through `start` leaves it to the ray through `end`; equal rays give
// the whole ellipse.
void Arc(QPainter& dc, const Pen& pen, const GdiRect& box, const QPoint& start, const QPoint& end);

// "Arial" with a cell of `height` pixels (ascent + descent) and an average
// character width of `width` pixels, not antialiased. Any thread.
QFont MakeFont(int height, int width, int weight);

// Text whose cell's top-left corner is (x, y), in the painter's font. An opaque
// background fills the cell with the background colour.
void TextOut(QPainter& dc, int x, int y, const QString& text, const QColor& color);

// Width and height of the text's cell in `font`.
QSize TextExtent(const QFont& font, const QString& text);

} // namespace Gdi
