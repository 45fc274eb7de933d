#pragma once

#include "calibration/CalibrationRecord.h"
#include "calibration/ColorRecord.h"
#include "measure/EdgeSnap.h"
#include "measure/GdiPainter.h"
#include "measure/GdiRect.h"
#include "measure/ShapeKinds.h"

#include <QColor>
#include <QFont>
#include <QPoint>
#include <QSize>

#include <cstdint>
#include <vector>

class CGVLElemMgr;
class QObject;
class QPainter;

// Base of every measurement and annotation element drawn over the video or a
// picture. An element owns its input points, takes mouse input, hit-tests,
// moves and draws itself, and computes its measured values in the calibrated
// unit. The element manager owns the elements and routes the mouse to them.
//
// Mouse operations answer the element's m_nHit after the event, or -1 when
// the event did not concern it. All coordinates are client pixels of the
// overlay window.
class CGVLShape
{
public:
    // Result of a hit on the body (drag the whole element) rather than a handle.
    static constexpr int kHitBody = 10000;
    // The tool codes (ToolCode) as the mouse operations take them.
    static constexpr int kToolNone = int(ToolCode::None);
    static constexpr int kToolPoint = int(ToolCode::Point);
    static constexpr int kToolLine = int(ToolCode::Line);
    static constexpr int kToolAngle = int(ToolCode::Angle);
    static constexpr int kToolRect = int(ToolCode::Rect);
    static constexpr int kToolPolygon = int(ToolCode::Polygon);
    static constexpr int kToolCircle = int(ToolCode::Circle);
    static constexpr int kToolTriCircle = int(ToolCode::TriCircle);
    static constexpr int kToolPressLast = int(ToolCode::PressLast);
    static constexpr int kToolMove = int(ToolCode::Move);
    static constexpr int kToolDeleteOne = int(ToolCode::DeleteOne);
    static constexpr int kToolDeleteAll = int(ToolCode::DeleteAll);
    static constexpr int kToolCounting = int(ToolCode::Counting);
    static constexpr int kToolArrow = int(ToolCode::Arrow);
    static constexpr int kToolIgnore = int(ToolCode::Ignore);
    static constexpr int kToolText = int(ToolCode::Text);

    CGVLShape(CalibrationRecord* unit, ColorRecord* color, QObject* wnd, CGVLElemMgr* mgr);
    CGVLShape& operator=(const CGVLShape&) = delete;

    // The operations every element offers, in this order.
    virtual ~CGVLShape();
    virtual int GetType() const;
    virtual std::uint32_t GetId() const;
    virtual void SetUnit(const CalibrationRecord& unit);
    virtual void SetColor(const ColorRecord& color);
    virtual double GetLength() const;
    virtual double GetPerimeter() const;
    virtual double GetArea() const;
    virtual void Draw(QPainter& dc, int hidden, int reserved);
    virtual int OnLButtonDown(unsigned flags, const QPoint& point, int tool);
    virtual int OnRButtonDown(unsigned flags, const QPoint& point, int tool);
    virtual int OnLButtonUp(unsigned flags, const QPoint& point, int tool);
    virtual int OnMouseMove(unsigned flags, const QPoint& point, int tool);
    virtual void UpdateElem();
    virtual int HitTest(const QPoint& point) const;
    virtual void SetSelected(bool selected);
    virtual int AddOneCoord(const QPoint& point);
    // The stored point, valid until points are added or cleared; null at or
    // past the count; a negative index throws std::out_of_range.
    virtual QPoint* GetCoord(int index);
    // Returns index, or -1 for a negative index or one past the count; an
    // index equal to the count throws std::out_of_range.
    virtual int SetCoord(int index, const QPoint& point);
    virtual int DragBy(const QPoint& point);
    virtual int HitHandle(const QPoint& point) const;
    virtual bool IsPtOnShape(const QPoint& point) const;
    virtual void DrawHandle(QPainter& dc, int hidden, const QPoint& point);
    virtual void DrawLine(QPainter& dc, int hidden, bool dotted, const QPoint& a, const QPoint& b);
    virtual void DrawArc(
        QPainter& dc, int hidden, bool dotted, const GdiRect& box, const QPoint& start, const QPoint& end);
    virtual void DrawEllipse(QPainter& dc, int hidden, bool dotted, const GdiRect& rect);
    virtual void DrawArrow(QPainter& dc, int hidden, bool dotted, const QPoint& from, const QPoint& to);
    // Empties the element; elements that can be emptied then leave their
    // manager, which destroys them. Touch nothing of the element after it.
    virtual void ClearCoords();
    virtual void SetRefPoint(const QPoint& point);
    virtual bool IsRefPoint(const QPoint& point) const;
    // Too small or too thin to measure. The kinds that check it when drawn
    // drop such an element at release; one read from a picture is dropped.
    virtual bool IsDegenerate() const;
    // Takes the points a picture kept as those of a finished element,
    // nothing being placed or dragged; false when they make it degenerate.
    virtual bool TakeStoredPoints(std::vector<QPoint> points);

    // A rectangle that holds every pixel Draw paints, found without drawing,
    // so a repaint of another area can pass the element by; null when the
    // element cannot tell, and is then always drawn.
    virtual QRect DrawnBounds() const { return {}; }

    int CoordCount() const { return int(m_arCoord.size()); }
    // Every point still sits where "Snap to edges" placed it.
    bool IsSnapped() const;
    // Where point `index` really is: its edge when snapped, else the point.
    QPointF ExactCoord(int index) const;
    // The standard uncertainty of ExactCoord along its search line; 0 when
    // the point is not snapped.
    double CoordSigma(int index) const;
    // "S=" with GetArea(); empty outside precision 1..5.
    QString AreaText() const;

    // The label font's cell for a font size setting: 8 x 20, 10 x 28 or
    // 14 x 36 (width x height); any other size gives the Small cell.
    static QSize LabelCell(int fontSize);
    // Background of labels: transparent for FontBackground 1, else opaque gray.
    static void SetLabelBackground(QPainter& dc, int fontBackground);

    QObject* m_hWnd;
    QPoint m_ptRef;
    CGVLElemMgr* m_pMgr;
    std::uint32_t m_dwId;
    CalibrationRecord* m_pUnit;
    ColorRecord* m_pColor;
    int m_nType = 0;
    std::vector<QPoint> m_arCoord;
    bool m_bDown = false;
    bool m_bSelected = false;
    QPoint m_ptDragFrom;
    int m_nHit = -1;
    // The points snapping placed, by index; see EdgePoint.
    std::vector<EdgePoint> m_arEdge;
    // The manager's change count when this element last changed
    // (CGVLElemMgr::NoteShapeChange); written under the manager's lock.
    mutable std::uint64_t m_nChangedAt = 0;

protected:
    // The picture under the overlay while "Snap to edges" is on, grayscale;
    // null when snapping is off or there is no picture.
    QImage SnapPicture() const;
    // Puts every point on the nearest edge along its direction (one per
    // point) and returns true; or, when one of them finds none, moves none: a
    // value is snapped whole or not at all.
    bool SnapPoints(const std::vector<QPointF>& directions);
    // Takes points found by snapping (one per point) as the shape's own.
    void SetSnapped(const std::vector<EdgePoint>& points);

    // Copied only as the concrete kind (CGVLElemMgr::CopyShapes, for the undo
    // history); a copy keeps the id and the manager.
    CGVLShape(const CGVLShape&) = default;

    // The usual press of a shape created by `ownTool`: delete with tool 200,
    // first point with the own tool, select and start a drag with tool 9.
    int StandardLButtonDown(const QPoint& point, int tool, int ownTool);
    // The usual move while the button is down: the handle being dragged
    // follows the mouse, or the whole shape moves.
    int StandardMouseMove(const QPoint& point);
    // The usual release of a shape dragged out with `ownTool`: the drag ends,
    // the own tool deselects, and a shape with one point or `tooSmall` is
    // discarded. `this` may be gone afterwards. Returns -1.
    int ReleaseOrDiscard(int tool, int ownTool, bool tooSmall);
    // ClearCoords of an element that can be emptied: drop the points and leave
    // the manager. `this` may be gone afterwards.
    void LeaveManager();

    // Appearance settings read from the manager at each draw (defaults when
    // the element has no manager).
    int Precision() const;
    int FontSize() const;
    int FontBackground() const;
    const CalibrationRecord& Unit() const;
    const ColorRecord& Colors() const;
    QColor RulerColor() const;
    QColor AdjustColor() const;
    QColor CoordColor() const;
    QColor TextColor() const;
    const char* UnitText() const;

    // The label font of the font size setting, sized by LabelCell.
    QFont LabelFont() const;
    // The label background of the FontBackground setting.
    void SetLabelBackground(QPainter& dc) const;
    // Label font, text colour and background on the painter, then the text
    // with its cell's top-left at `topLeft`.
    void DrawLabel(QPainter& dc, const QPoint& topLeft, const QString& text) const;
    // Where rectangles and polygons put their area label: (FontSize + 1) * 10
    // pixels above point 0 with the setting as stored, so 20, 30 or 40 for the
    // listed sizes; only the font falls back to Small for another size.
    QPoint AreaLabelPos() const;
    // Repaints the shape's box and the area label, which sits at AreaLabelPos
    // and runs to its right. Needs at least one point.
    void InvalidateWithAreaLabel(const GdiRect& box) const;
    // Repaint a rectangle, or the whole window, of m_hWnd.
    void Invalidate(const GdiRect& rect) const;
    void InvalidateAll() const;

    Gdi::Pen StrokePen(bool dotted, int width = 1) const;
};
