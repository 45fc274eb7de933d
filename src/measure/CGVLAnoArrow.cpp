#include "measure/CGVLAnoArrow.h"

CGVLAnoArrow::CGVLAnoArrow(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLLine(unit, color, wnd, mgr, ShapeType::Arrow, kToolArrow, 10)
{
}

void CGVLAnoArrow::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    SetLabelBackground(dc);
    if (CoordCount() == 2)
        DrawArrow(dc, hidden, m_bSelected, m_arCoord[0], m_arCoord[1]);
    if (m_bSelected) {
        for (const QPoint& p : m_arCoord)
            DrawHandle(dc, hidden, p);
    }
}
