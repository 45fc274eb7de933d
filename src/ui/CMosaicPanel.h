#pragma once

#include <QImage>
#include <QRectF>
#include <QWidget>

// A live mosaic as it grows: the picture built so far, fitted into the
// panel with the current field marked on it, green while the field is
// tracked and red where it was last seen once tracking is lost, and a line
// of text under it.
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

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
    QRectF m_area;
    QRectF m_covered;
    QRectF m_field;
    bool m_lost = false;
    QString m_text;
};
