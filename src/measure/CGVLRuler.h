#pragma once

#include "measure/CGVLShape.h"

#include <QString>

#include <utility>

// The L-shaped calibration ruler, always element 0 of its manager. Point 0
// (P0) ends the horizontal arm, point 1 (P1) the vertical arm; the corner is
// (P1.x, P0.y). Dragging an arm end sets the pixel scale of the calibration
// record from the real lengths the arms were declared to measure.
class CGVLRuler : public CGVLShape
{
public:
    // Part taken by the last press.
    enum RulerHit {
        kHitNone = 0,
        kHitWhole = 1,
        kHitXEnd = 2, // end of the horizontal arm, P0
        kHitYEnd = 3, // end of the vertical arm, P1
    };

    CGVLRuler(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);

    void Draw(QPainter& dc, int hidden, int reserved) override;
    // Always -1, so the press still reaches the elements below.
    int OnLButtonDown(unsigned flags, const QPoint& point, int tool) override;
    int OnLButtonUp(unsigned flags, const QPoint& point, int tool) override;
    int OnMouseMove(unsigned flags, const QPoint& point, int tool) override;
    void UpdateElem() override;
    // A RulerHit; kHitNone (not -1) for a miss.
    int HitTest(const QPoint& point) const override;
    // The ruler is never emptied.
    void ClearCoords() override;

    // P1 and P0: the end of the vertical arm, then the end of the horizontal arm.
    std::pair<QPoint, QPoint> GetArms() const;
    // Puts the arm ends back where a calibration says (no scale is computed).
    void SetArms(const QPoint& p1, const QPoint& p0);

    // The arm labels: the real lengths at the manager's precision with a
    // spaced unit, empty outside precision 1..5.
    QString XLabel() const;
    QString YLabel() const;
    // Top-left corners of the label cells.
    QPoint XLabelPos() const;
    QPoint YLabelPos() const;

    int m_nRulerHit = kHitNone;
    QPoint m_ptRulerFrom;
    // The smallest coordinate the dragged arm end may take: one pixel past the
    // corner, so an arm never shrinks to nothing.
    int m_nRulerLimit = 0;

private:
    const QPoint& P0() const { return m_arCoord[0]; }
    const QPoint& P1() const { return m_arCoord[1]; }
    // Scale from the arms after an arm end moved, written into the manager's record.
    void Calibrate();
    QString Label(double value) const;
};
