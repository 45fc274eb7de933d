#pragma once

#include "measure/CGVLShape.h"

#include <QString>

// The axis-aligned rectangle (type 4, tool 4). Point 0 is the corner where
// the drag began, point 3 the opposite one; area and perimeter use only
// these two. Points 1 and 2 always sit at (x3, y0) and (x0, y3), so the
// edges are 0-1, 1-3, 0-2 and 2-3.
//
// Dragging a corner keeps the corner opposite it in place: moving point 0 or
// point 3 moves that corner and points 1 and 2 follow; moving point 1 sets
// x3 and y0, moving point 2 sets x0 and y3. The rectangle stays axis-aligned
// whichever handle is dragged.
class CGVLRect : public CGVLShape
{
public:
    // A drag shorter than this on both sides is dropped.
    static constexpr int kMinSide = 10;

    CGVLRect(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    double GetPerimeter() const override;
    double GetArea() const override;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    // Sets a corner as described above; the index rules are the base's.
    int SetCoord(int index, const QPoint& point) override;
    void ClearCoords() override;
    bool IsDegenerate() const override;

private:
    // Puts points 1 and 2 at the corners that points 0 and 3 define.
    void PlaceSideCorners();
};
