#include "measure/CGVLShape.h"

#include "calibration/MeasureTables.h"
#include "measure/CGVLElemMgr.h"
#include "measure/WindowCalls.h"
#include "platform/DebugLog.h"
#include "platform/TickCount.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 kLabelLimit = 1 << 24;

} // namespace

CGVLShape::CGVLShape(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr)
    : m_hWnd(wnd)
    , m_pMgr(mgr)
    , m_dwId(GetTickCount())
    , m_pUnit(unit)
    , m_pColor(color)
{
    qCDebug(lcMeasure, "Shape id:%d created", int(m_dwId));
}

CGVLShape::~CGVLShape() = default;

int CGVLShape::GetType() const
{
    return m_nType;
}

std::uint32_t CGVLShape::GetId() const
{
    return m_dwId;
}

void CGVLShape::SetUnit(const CalibrationRecord& unit)
{
    if (m_pUnit && *m_pUnit != unit) {
        *m_pUnit = unit;
        if (m_pMgr)
            m_pMgr->NoteChange();
    }
}

void CGVLShape::SetColor(const ColorRecord& color)
{
    if (m_pColor && !(*m_pColor == color)) {
        *m_pColor = color;
        if (m_pMgr)
            m_pMgr->NoteChange();
    }
}

double CGVLShape::GetLength() const
{
    return 0.0;
}

double CGVLShape::GetPerimeter() const
{
    return 0.0;
}

double CGVLShape::GetArea() const
{
    return 0.0;
}

void CGVLShape::Draw(QPainter&, int, int)
{
}

int CGVLShape::OnLButtonDown(unsigned, const QPoint&, int)
{
    return -1;
}

int CGVLShape::OnRButtonDown(unsigned, const QPoint&, int)
{
    return -1;
}

int CGVLShape::OnLButtonUp(unsigned, const QPoint&, int)
{
    return -1;
}

int CGVLShape::OnMouseMove(unsigned, const QPoint&, int)
{
    return -1;
}

void CGVLShape::UpdateElem()
{
}

int CGVLShape::HitTest(const QPoint& point) const
{
    // The body wins over the handles: a press on both drags the whole shape.
    if (IsPtOnShape(point))
        return kHitBody;
    return HitHandle(point);
}

void CGVLShape::SetSelected(bool selected)
{
    m_bSelected = selected;
}

int CGVLShape::AddOneCoord(const QPoint& point)
{
    m_arCoord.push_back(point);
    qCDebug(lcMeasure, "AddOneCoord:%d,%d", point.x(), point.y());
    return CoordCount();
}

QPoint* CGVLShape::GetCoord(int index)
{
    if (index >= CoordCount())
        return nullptr;
    // A negative index reaches the array's own bounds check.
    return &m_arCoord.at(static_cast<std::size_t>(index));
}

int CGVLShape::SetCoord(int index, const QPoint& point)
{
    if (index < 0 || index > CoordCount())
        return -1;
    // The count itself passes the check above and fails in the array.
    m_arCoord.at(static_cast<std::size_t>(index)) = point;
    return index;
}

int CGVLShape::DragBy(const QPoint& point)
{
    if (m_nHit == kHitBody) {
        const QPoint delta = point - m_ptDragFrom;
        for (QPoint& p : m_arCoord)
            p += delta;
        m_ptDragFrom = point;
    }
    return m_nHit;
}

int CGVLShape::HitHandle(const QPoint& point) const
{
    for (int i = 0; i < CoordCount(); ++i) {
        const QPoint& p = m_arCoord[static_cast<std::size_t>(i)];
        if (GdiRect { p.x() - 6, p.y() - 6, p.x() + 7, p.y() + 7 }.Contains(point))
            return i;
    }
    return -1;
}

bool CGVLShape::IsPtOnShape(const QPoint&) const
{
    return false;
}

void CGVLShape::DrawHandle(QPainter& dc, int hidden, const QPoint& point)
{
    if (hidden || m_arCoord.empty())
        return;
    Gdi::Ellipse(dc, Gdi::Pen { AdjustColor(), 1, Gdi::PenStyle::Solid },
        GdiRect { point.x() - 5, point.y() - 5, point.x() + 5, point.y() + 5 });
}

void CGVLShape::DrawLine(QPainter& dc, int hidden, bool dotted, const QPoint& a, const QPoint& b)
{
    if (hidden)
        return;
    Gdi::Line(dc, StrokePen(dotted), a, b);
}

void CGVLShape::DrawArc(
    QPainter& dc, int hidden, bool dotted, const GdiRect& box, const QPoint& start, const QPoint& end)
{
    if (hidden)
        return;
    Gdi::Arc(dc, StrokePen(dotted), box, start, end);
}

void CGVLShape::DrawEllipse(QPainter& dc, int hidden, bool dotted, const GdiRect& rect)
{
    if (hidden)
        return;
    Gdi::Ellipse(dc, StrokePen(dotted), rect);
}

void CGVLShape::DrawArrow(QPainter& dc, int, bool dotted, const QPoint& from, const QPoint& to)
{
    // Drawn even when hidden, as it always was.
    const Gdi::Pen pen = StrokePen(dotted, 3);
    Gdi::Line(dc, pen, from, to);
    const double a = std::atan2(double(from.y() - to.y()), double(from.x() - to.x()));
    const double c = std::cos(a - 3.1415926);
    const double s = std::sin(a - 3.1415926);
    const QPoint barb1(to.x() - int(15 * c + 7.5 * s), to.y() + int(7.5 * c - 15 * s));
    const QPoint barb2(to.x() + int(7.5 * s - 15 * c), to.y() - int(15 * s + 7.5 * c));
    Gdi::Line(dc, pen, to, barb1);
    Gdi::Line(dc, pen, to, barb2);
}

void CGVLShape::ClearCoords()
{
}

void CGVLShape::SetRefPoint(const QPoint& point)
{
    m_ptRef = point;
}

bool CGVLShape::IsRefPoint(const QPoint& point) const
{
    return point == m_ptRef;
}

QString CGVLShape::AreaText() const
{
    return MeasureTables::FormatLabel(MeasureTables::kAreaFormats, Precision(), GetArea(), UnitText());
}

QPoint CGVLShape::AreaLabelPos() const
{
    if (m_arCoord.empty())
        return {};
    // The stored size, not the one the font falls back to: a hand-edited 7
    // puts the label 80 pixels up, in Small letters.
    // Clamped only so that absurd settings cannot overflow the arithmetic.
    const qint64 y = m_arCoord[0].y() - (qint64(FontSize()) + 1) * 10;
    return { m_arCoord[0].x(), int(std::clamp<qint64>(y, -kLabelLimit, kLabelLimit)) };
}

void CGVLShape::InvalidateWithAreaLabel(const GdiRect& box) const
{
    const QPoint label = AreaLabelPos();
    const int labelBottom = label.y() + LabelCell(FontSize()).height();
    Invalidate({ box.left - 10, std::min(box.top - 90, label.y() - 10),
        std::max(box.right, m_arCoord[0].x() + 300) + 10, std::max(box.bottom, labelBottom) + 10 });
}

bool CGVLShape::IsSnapped() const
{
    if (m_arCoord.empty() || m_arEdge.size() != m_arCoord.size())
        return false;
    for (std::size_t i = 0; i < m_arCoord.size(); ++i) {
        if (!(m_arEdge[i].sigma > 0.0) || m_arEdge[i].coord != m_arCoord[i])
            return false;
    }
    return true;
}

QPointF CGVLShape::ExactCoord(int index) const
{
    const auto i = std::size_t(index);
    if (i < m_arEdge.size() && m_arEdge[i].sigma > 0.0 && m_arEdge[i].coord == m_arCoord.at(i))
        return m_arEdge[i].exact;
    return QPointF(m_arCoord.at(i));
}

double CGVLShape::CoordSigma(int index) const
{
    const auto i = std::size_t(index);
    if (i < m_arEdge.size() && i < m_arCoord.size() && m_arEdge[i].coord == m_arCoord[i])
        return m_arEdge[i].sigma;
    return 0.0;
}

QImage CGVLShape::SnapPicture() const
{
    const QImage picture = m_pMgr ? m_pMgr->SnapPicture() : QImage();
    // Converted once here rather than by every search line.
    return picture.isNull() || picture.format() == QImage::Format_Grayscale8
        ? picture
        : picture.convertToFormat(QImage::Format_Grayscale8);
}

bool CGVLShape::SnapPoints(const std::vector<QPointF>& directions)
{
    const QImage picture = SnapPicture();
    if (picture.isNull() || directions.size() != m_arCoord.size())
        return false;
    std::vector<EdgePoint> found;
    for (std::size_t i = 0; i < m_arCoord.size(); ++i) {
        const std::optional<EdgePoint> edge = SnapToEdge(picture, m_arCoord[i], directions[i]);
        if (!edge)
            return false;
        found.push_back(*edge);
    }
    SetSnapped(found);
    return true;
}

void CGVLShape::SetSnapped(const std::vector<EdgePoint>& points)
{
    UpdateElem();
    for (std::size_t i = 0; i < points.size() && i < m_arCoord.size(); ++i)
        m_arCoord[i] = points[i].coord;
    m_arEdge = points;
    UpdateElem();
}

int CGVLShape::StandardLButtonDown(const QPoint& point, int tool, int ownTool)
{
    m_nHit = HitTest(point);
    if (tool == kToolDeleteOne) {
        // Answers -1 even after deleting, so one press deletes every element under it.
        if (m_bSelected || m_nHit != -1)
            ClearCoords();
        return -1;
    }
    if (tool == ownTool) {
        AddOneCoord(point);
        m_bDown = true;
        m_bSelected = true;
        m_nHit = 0;
    } else if (tool == kToolMove) {
        if (m_nHit != -1) {
            m_bDown = true;
            m_bSelected = true;
            m_ptDragFrom = point;
        } else {
            m_bSelected = false;
        }
    }
    UpdateElem();
    return m_nHit;
}

int CGVLShape::ReleaseOrDiscard(int tool, int ownTool, bool tooSmall)
{
    const bool discard = CoordCount() == 1 || tooSmall;
    // Every element hears every release: one it leaves as it is is not repainted.
    if (!discard && !m_bDown && m_nHit == -1 && !(m_bSelected && tool == ownTool))
        return -1;
    UpdateElem();
    m_bDown = false;
    m_nHit = -1;
    if (tool == ownTool)
        m_bSelected = false;
    QObject* const wnd = m_hWnd;
    CGVLElemMgr* const mgr = m_pMgr;
    if (discard)
        ClearCoords(); // may leave the manager: only locals from here on
    if (mgr && discard)
        mgr->NoteChange();
    else if (mgr)
        mgr->NoteShapeChange(*this);
    InvalidateWindow(wnd);
    return -1;
}

int CGVLShape::StandardMouseMove(const QPoint& point)
{
    m_bSelected = true;
    UpdateElem();
    if (m_nHit != -1 && m_nHit != kHitBody && m_nHit < CoordCount())
        SetCoord(m_nHit, point);
    DragBy(point);
    UpdateElem();
    return m_nHit;
}

void CGVLShape::LeaveManager()
{
    m_arCoord.clear();
    if (CGVLElemMgr* mgr = m_pMgr)
        mgr->DeleteShape(this);
}

int CGVLShape::Precision() const
{
    return m_pMgr ? m_pMgr->GetAppearance().precision : 2;
}

int CGVLShape::FontSize() const
{
    return m_pMgr ? m_pMgr->GetAppearance().fontSize : 2;
}

int CGVLShape::FontBackground() const
{
    return m_pMgr ? m_pMgr->GetAppearance().fontBackground : 1;
}

const CalibrationRecord& CGVLShape::Unit() const
{
    static const CalibrationRecord fallback;
    return m_pUnit ? *m_pUnit : fallback;
}

const ColorRecord& CGVLShape::Colors() const
{
    static const ColorRecord fallback;
    return m_pColor ? *m_pColor : fallback;
}

QColor CGVLShape::RulerColor() const
{
    return MeasureTables::PaletteColor(Colors().m_ctRuler);
}

QColor CGVLShape::AdjustColor() const
{
    return MeasureTables::PaletteColor(Colors().m_ctAdjust);
}

QColor CGVLShape::CoordColor() const
{
    return MeasureTables::PaletteColor(Colors().m_ctCoord);
}

QColor CGVLShape::TextColor() const
{
    return MeasureTables::PaletteColor(Colors().m_ctText);
}

const char* CGVLShape::UnitText() const
{
    return MeasureTables::UnitText(Unit().m_rtUnit);
}

QSize CGVLShape::LabelCell(int fontSize)
{
    switch (fontSize) {
    case 3:
        return { 14, 36 };
    case 2:
        return { 10, 28 };
    default:
        return { 8, 20 };
    }
}

QFont CGVLShape::LabelFont() const
{
    const QSize cell = LabelCell(FontSize());
    return Gdi::MakeFont(cell.height(), cell.width(), 400);
}

void CGVLShape::SetLabelBackground(QPainter& dc, int fontBackground)
{
    if (fontBackground == 1) {
        Gdi::SetBkMode(dc, false);
    } else {
        Gdi::SetBkMode(dc, true);
        Gdi::SetBkColor(dc, MeasureTables::kLabelGray);
    }
}

void CGVLShape::SetLabelBackground(QPainter& dc) const
{
    SetLabelBackground(dc, FontBackground());
}

void CGVLShape::DrawLabel(QPainter& dc, const QPoint& topLeft, const QString& text) const
{
    dc.setFont(LabelFont());
    SetLabelBackground(dc);
    Gdi::TextOut(dc, topLeft.x(), topLeft.y(), text, TextColor());
}

void CGVLShape::Invalidate(const GdiRect& rect) const
{
    if (m_pMgr)
        m_pMgr->NoteShapeChange(*this);
    InvalidateWindow(m_hWnd, rect.Normalized().ToQRect());
}

void CGVLShape::InvalidateAll() const
{
    if (m_pMgr)
        m_pMgr->NoteShapeChange(*this);
    InvalidateWindow(m_hWnd);
}

Gdi::Pen CGVLShape::StrokePen(bool dotted, int width) const
{
    return Gdi::Pen { RulerColor(), width, dotted ? Gdi::PenStyle::Dot : Gdi::PenStyle::Solid };
}

bool CGVLShape::IsDegenerate() const
{
    return false;
}

bool CGVLShape::TakeStoredPoints(std::vector<QPoint> points)
{
    m_arCoord = std::move(points);
    return !IsDegenerate();
}
