#pragma once

#include "measure/CGVLShape.h"

#include <QStringList>

// The text annotation (type 14, tool 205): lines of free text whose cell's
// top-left corner is the one point. The manager asks for the text right after
// the click. No value, no result row, no handles or frame drawn.
class CGVLAnoText : public CGVLShape
{
public:
    CGVLAnoText(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    // The text's box reaches 40 pixels above and left of the anchor, so a
    // click just above the text takes it; a handle under the point wins.
    bool IsPtOnShape(const QPoint& point) const override;
    void ClearCoords() override;

    // The lines, one entry per line.
    QStringList m_arText;
    // The label font's character width and height at the last draw; the
    // hit box and the repaint area follow them.
    int m_nCharWidth = 0;
    int m_nCharHeight = 0;
};
