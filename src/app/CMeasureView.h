#pragma once

#include "app/CView.h"

#include <QAbstractScrollArea>
#include <QPoint>
#include <QSize>

#include <memory>

class CDocTemplate;
class CGVLWnd;
class CMeasureDoc;
class CNoCameraHint;

// The measuring view: a scrolling area that centres the document's picture
// (or live video) at the zoom step and paints the margins gray. The picture
// area belongs to the overlay window, which takes the mouse for the shapes
// and, for the live document, holds the video.
class CMeasureView : public QAbstractScrollArea, public CView
{
    Q_OBJECT

public:
    explicit CMeasureView(CMeasureDoc& document, QWidget* parent = nullptr);
    ~CMeasureView() override;

    // The template of every measuring document: a new document may become
    // live, one made for a file never does.
    static std::unique_ptr<CDocTemplate> CreateDocTemplate();

    // The displayed size of a picture at a zoom step, each product truncated;
    // an index outside 0..9 shows nothing (0 x 0).
    static QSize DisplayedSize(const QSize& image, int zoomIndex);

    CMeasureDoc& GetMeasureDoc() const { return m_document; }
    CGVLWnd* GetOverlayWnd() const { return m_pOverlayWnd; }
    // Where the picture's top-left corner lies in the viewport, before scrolling.
    QPoint ImageOffset() const { return m_ptOffset; }

    void OnInitialUpdate() override;
    // Sizes, centres and scrolls the picture; after creation, resizing and zooming.
    void Layout();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void PlaceOverlayWindow();
    // "Use the Simulated Camera": opens it as the live document, which takes
    // this empty one's place.
    void UseSimulatedCamera();

    CMeasureDoc& m_document;
    CGVLWnd* m_pOverlayWnd;
    CNoCameraHint* m_pNoCamera = nullptr;
    QSize m_displayed;
    QPoint m_ptOffset;
};
