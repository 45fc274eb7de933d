#include "measure/CGVLScale.h"

#include "measure/GdiPainter.h"

#include <QPainter>

CGVLScale::CGVLScale(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : CGVLShape(unit, color, wnd, mgr)
{
    m_nType = int(ShapeType::Scale);
}

int CGVLScale::TickReach(int i)
{
    if (i % 10 == 0)
        return 15;
    if (i % 5 == 0)
        return 10;
    return 5;
}

void CGVLScale::Draw(QPainter& dc, int hidden, int)
{
    if (hidden)
        return;
    const Gdi::Pen pen { RulerColor(), 1, Gdi::PenStyle::Solid };
    const int cx = m_nWidth / 2;
    const int cy = m_nHeight / 2;
    const int n = TickCount();

    Gdi::Line(dc, pen, QPoint(0, cy), QPoint(m_nWidth, cy));
    for (int i = 1; i <= n; ++i) {
        const int d = int(i * (m_nStepX / 10.0));
        const int reach = TickReach(i);
        for (const int x : { cx - d, cx + d })
            Gdi::Line(dc, pen, QPoint(x, cy - reach), QPoint(x, cy + reach));
    }
    Gdi::Line(dc, pen, QPoint(cx, 0), QPoint(cx, m_nHeight));
    for (int i = 1; i <= n; ++i) {
        const int d = int(i * (m_nStepY / 10.0));
        const int reach = TickReach(i);
        for (const int y : { cy - d, cy + d })
            Gdi::Line(dc, pen, QPoint(cx - reach, y), QPoint(cx + reach, y));
    }
}

void CGVLScale::UpdateElem()
{
    const int cx = m_nWidth / 2;
    const int cy = m_nHeight / 2;
    Invalidate({ 0, cy - 100, m_nWidth, cy + 100 });
    Invalidate({ cx - 100, 0, cx + 100, m_nHeight });
}
