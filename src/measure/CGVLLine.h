#pragma once

#include "measure/CGVLShape.h"

#include <QString>

// The measuring line (type 2, tool 2): two points, labelled with its
// calibrated length. Point 0 is the end that followed the mouse (the release
// point), point 1 where the drag began.
class CGVLLine : public CGVLShape
{
public:
    CGVLLine(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    double GetLength() const override;
    void Draw(QPainter& dc, int hidden, int reserved) override;
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    bool IsPtOnShape(const QPoint& point) const override;
    void ClearCoords() override;
    bool IsDegenerate() const override;

    // Top-left of the label's cell, beside the middle of the line.
    QPoint LabelPos() const;
    // "L=" with the length at the manager's precision; empty outside 1..5.
    // A snapped line adds its uncertainty: "L=12.34±0.052um".
    QString LabelText() const;
    // The expanded uncertainty of GetLength for a snapped line, else 0.
    double LengthUncertainty() const;

protected:
    // For shapes made the same way with another tool and minimum size.
    CGVLLine(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr, ShapeType type,
        int ownTool, int minSize);

    void DrawEndBars(QPainter& dc, int hidden);

    const int m_nOwnTool;
    // A drag shorter than this along both axes is dropped at release.
    const int m_nMinSize;
};
