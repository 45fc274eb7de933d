#pragma once

#include "measure/CGVLMultiClick.h"

#include <QString>

// The polygon (type 5, tool 5): one vertex per click, a rubber band from the
// last vertex to the cursor while open, and the right button to close it
// (fewer than 3 vertices are then dropped). Only a closed polygon shows its
// area.
//
// The manager hands tool-5 presses to the last element while it is an open
// polygon, so only the last element takes vertices and drags the rubber
// band: a polygon left open when another element was made after it keeps
// what it has (until a right click closes it) instead of growing along with
// the new one.
class CGVLPolygon : public CGVLMultiClick
{
public:
    CGVLPolygon(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    // Shoelace rule on integer products, in calibrated units, made positive;
    // 0 with fewer than three vertices.
    double GetArea() const override;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnRButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    bool IsDegenerate() const override;
    // Closed, as every polygon a picture keeps.
    bool TakeStoredPoints(std::vector<QPoint> points) override;

    virtual int GetHit() const;
    // 1 when the point lies within 10 pixels (both ways) of a vertex of a
    // polygon with at least 4 vertices, else -1.
    virtual int HitVertex(const QPoint& point) const;

    bool IsClosed() const { return m_bClosed; }
    // Releases taken with the polygon tool.
    int UpCount() const { return m_nClick; }

private:
    bool IsLastElement() const;

    bool m_bClosed = false;
};
