#include "measure/CGVLRuler.h"

#include "calibration/MeasureTables.h"
#include "measure/CGVLElemMgr.h"
#include "measure/GdiPainter.h"
#include "measure/WindowCalls.h"

#include <QPainter>

#include <algorithm>
#include <cstdlib>

CGVLRuler::CGVLRuler(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Ruler);
    AddOneCoord(QPoint(100, 50));
    AddOneCoord(QPoint(50, 100));
}

void CGVLRuler::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    const Gdi::Pen pen { RulerColor(), 1, Gdi::PenStyle::Solid };
    const QPoint& p0 = P0();
    const QPoint& p1 = P1();
    Gdi::Line(dc, pen, QPoint(p1.x() - 5, p0.y()), p0);
    Gdi::Line(dc, pen, QPoint(p0.x(), p0.y() - 5), QPoint(p0.x(), p0.y() + 5));
    Gdi::Line(dc, pen, QPoint(p1.x(), p0.y() - 5), p1);
    Gdi::Line(dc, pen, QPoint(p1.x() - 5, p1.y()), QPoint(p1.x() + 5, p1.y()));

    // The ruler's labels keep the small font whatever the label size setting.
    dc.setFont(Gdi::MakeFont(20, 8, 400));
    SetLabelBackground(dc);
    const QPoint x = XLabelPos();
    const QPoint y = YLabelPos();
    Gdi::TextOut(dc, x.x(), x.y(), XLabel(), TextColor());
    Gdi::TextOut(dc, y.x(), y.y(), YLabel(), TextColor());
}

QString CGVLRuler::Label(double value) const
{
    return MeasureTables::FormatLabel(
        MeasureTables::kValueFormats, Precision(), value, MeasureTables::SpacedUnitText(Unit().m_rtUnit));
}

QString CGVLRuler::XLabel() const
{
    return Label(Unit().m_dcxReal);
}

QString CGVLRuler::YLabel() const
{
    return Label(Unit().m_dcyReal);
}

QPoint CGVLRuler::XLabelPos() const
{
    return QPoint(P0().x() + 10, P0().y() - 5);
}

QPoint CGVLRuler::YLabelPos() const
{
    return QPoint(P1().x(), P1().y() + 5);
}

int CGVLRuler::HitTest(const QPoint& point) const
{
    const QPoint& p0 = P0();
    const QPoint& p1 = P1();
    // The body first: a press on the corner region that is also near P0 takes
    // the whole ruler.
    if (GdiRect { p1.x() - 5, p0.y() - 5, p0.x() - 4, p1.y() - 4 }.Contains(point))
        return kHitWhole;
    if (GdiRect { p0.x() - 5, p0.y() - 5, p0.x() + 5, p0.y() + 5 }.Contains(point))
        return kHitXEnd;
    if (GdiRect { p1.x() - 5, p1.y() - 5, p1.x() + 5, p1.y() + 5 }.Contains(point))
        return kHitYEnd;
    return kHitNone;
}

int CGVLRuler::OnLButtonDown(unsigned, const QPoint& point, int)
{
    // Safeguard: a ruler that is not on screen takes nothing, so dragging a
    // shape's handle near an invisible arm end cannot recalibrate behind the
    // user's back.
    if (m_pMgr && !m_pMgr->IsRulerShown()) {
        m_nRulerHit = kHitNone;
        return -1;
    }
    m_nRulerHit = HitTest(point);
    switch (m_nRulerHit) {
    case kHitWhole:
        m_ptRulerFrom = point;
        break;
    case kHitXEnd:
        m_nRulerLimit = P1().x() + 1;
        break;
    case kHitYEnd:
        m_nRulerLimit = P0().y() + 1;
        break;
    default:
        break;
    }
    return -1;
}

int CGVLRuler::OnMouseMove(unsigned, const QPoint& point, int tool)
{
    if (tool != kToolNone && tool != kToolMove)
        return -1;
    switch (m_nRulerHit) {
    case kHitWhole:
        UpdateElem();
        for (QPoint& p : m_arCoord)
            p += point - m_ptRulerFrom;
        m_ptRulerFrom = point;
        UpdateElem();
        SendCalibrationChanged(m_hWnd);
        break;
    case kHitXEnd:
        UpdateElem();
        m_arCoord[0].setX(std::max(m_nRulerLimit, point.x()));
        UpdateElem();
        Calibrate();
        break;
    case kHitYEnd:
        UpdateElem();
        m_arCoord[1].setY(std::max(m_nRulerLimit, point.y()));
        UpdateElem();
        Calibrate();
        break;
    default:
        break;
    }
    return -1;
}

void CGVLRuler::Calibrate()
{
    CalibrationRecord unit = Unit();
    const int xPixels = std::abs(P0().x() - P1().x());
    const int yPixels = std::abs(P0().y() - P1().y());
    // An arm of no length (only a loaded calibration can leave one) keeps its scale.
    if (xPixels != 0)
        unit.m_dcxPerPixel = unit.m_dcxReal / xPixels;
    if (yPixels != 0)
        unit.m_dcyPerPixel = unit.m_dcyReal / yPixels;
    SetUnit(unit);
    SendCalibrationChanged(m_hWnd);
}

int CGVLRuler::OnLButtonUp(unsigned, const QPoint&, int)
{
    // Not held: every release reaches the ruler, and this one leaves it as it is.
    if (m_nRulerHit == kHitNone)
        return -1;
    UpdateElem();
    m_nRulerHit = kHitNone;
    return -1;
}

void CGVLRuler::UpdateElem()
{
    // Both labels lie inside: right of P0 and below P1.
    Invalidate({ P1().x() - 5, P0().y() - 5, P0().x() + 100, P1().y() + 50 });
}

void CGVLRuler::ClearCoords()
{
}

std::pair<QPoint, QPoint> CGVLRuler::GetArms() const
{
    return { P1(), P0() };
}

void CGVLRuler::SetArms(const QPoint& p1, const QPoint& p0)
{
    UpdateElem();
    m_arCoord[1] = p1;
    m_arCoord[0] = p0;
    UpdateElem();
}
