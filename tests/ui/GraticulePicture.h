#pragma once

#include <QImage>
#include <QPainter>

// Dark ticks every 8 pixels from x = 80 to 560 over y = 160..200: with 0.01 mm
// divisions, 1.25 um per pixel. baseLine adds the scale's line along y = 200.
inline QImage GraticulePicture(QImage::Format format, bool baseLine)
{
    QImage image(640, 400, format);
    image.fill(QColor(220, 220, 210));
    QPainter p(&image);
    for (int x = 80; x <= 560; x += 8)
        p.fillRect(QRect(x - 1, 160, 3, 40), QColor(30, 30, 30));
    if (baseLine)
        p.fillRect(QRect(79, 200, 483, 3), QColor(30, 30, 30));
    return image;
}
