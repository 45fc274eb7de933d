#pragma once

#include <QObject>
#include <QPointF>

class CMeasureDoc;
class QWidget;

// A drag with the right button over the live picture moves the simulated
// camera's stage, as a hand moves the slide: the specimen follows the mouse.
// Only while the stage is shown; the press itself still reaches the shapes
// (it ends a polygon), and without the stage nothing changes.
class CStageDrag : public QObject
{
public:
    CStageDrag(CMeasureDoc& document, QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    CMeasureDoc& m_document;
    QWidget* m_window;
    QPointF m_last;
    bool m_dragging = false;
};
