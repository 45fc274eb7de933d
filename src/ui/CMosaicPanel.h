#pragma once

#include <QImage>
#include <QRectF>
#include <QWidget>

// A live mosaic as it grows: the picture built so far, fitted into the
// panel with the current field marked on it, green while the field is
// tracked and red where it was last seen once tracking is lost, and a line
// of text under it. The wheel zooms about the pointer, as far as the
// picture's own resolution allows, a drag pans, a double click fits it again:
// all from the reduced picture the mosaic keeps for display, never its tiles.
class CMosaicPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CMosaicPanel(QWidget* parent = nullptr);

    // `area`: the part of the mosaic's plane the picture shows, of which
    // `covered` is built; `field`: the current field in the same plane.
    void SetMosaic(
        const QImage& picture, const QRectF& area, const QRectF& covered, const QRectF& field, bool lost);
    void SetText(const QString& text);
    QString Text() const { return m_text; }
    bool Lost() const { return m_lost; }

    QSize sizeHint() const override { return { 320, 260 }; }

    // The part of the mosaic's plane in view and where it is drawn.
    QRectF ShownArea() const;
    QRectF PictureRoom() const;
    // The point of the plane drawn at a pixel of the panel.
    QPointF PlaneAt(QPointF pixel) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void KeepInView();
    int TextLine() const;

    QImage m_picture;
    QRectF m_area;
    QRectF m_covered;
    QRectF m_field;
    bool m_lost = false;
    QString m_text;
    // 1: all of it fitted in; above, m_centre (in the plane) is in the middle.
    double m_zoom = 1.0;
    QPointF m_centre;
    QPointF m_dragFrom;
};
