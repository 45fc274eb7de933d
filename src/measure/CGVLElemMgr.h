#pragma once

#include "calibration/CalibrationRecord.h"
#include "calibration/ColorRecord.h"
#include "image/ImageProcess.h"
#include "measure/CGVLShape.h"
#include "measure/CShapeLayer.h"
#include "measure/ShapeKinds.h"

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class CGVLAnoText;
class QIODevice;
class QObject;
class QPainter;

// Owns the elements of one document, turns the overlay window's mouse events
// into creating, selecting, dragging and deleting elements by the current
// tool code, and draws the elements: on the screen, into the live video's
// overlay bitmap and into the overlay burnt into a saved picture.
//
// Threads: the live overlay worker calls DrawToBits while the user interface
// thread edits elements. Every operation below, the setters and getters
// included, holds the manager's lock, so the worker draws each setting whole,
// either as it was or as it is. Code that reads the public fields directly
// while a worker may be drawing holds Lock() for as long as it does. Stop the
// worker before destroying the manager.
class CGVLElemMgr
{
public:
    // What the measure setting dialog edits: the colours every element draws
    // with and how labels are written.
    struct Appearance
    {
        ColorRecord color { 4, 3, 3, 4 };
        // Decimals of every value; outside 1..5 no value is written.
        int precision = 2;
        // The label font: 1 small, 2 medium, 3 large (CGVLShape::LabelCell).
        int fontSize = 2;
        // 1 transparent labels, else labels on opaque gray.
        int fontBackground = 1;
        bool operator==(const Appearance&) const = default;
    };

    CGVLElemMgr();
    ~CGVLElemMgr();
    CGVLElemMgr(const CGVLElemMgr&) = delete;
    CGVLElemMgr& operator=(const CGVLElemMgr&) = delete;

    // Constructs an element of the type id and appends it; null (and nothing
    // appended) for a number that is no kind (ShapeKinds).
    CGVLShape* CreateShape(int type);
    CGVLShape* CreateShape(ShapeType type);
    // Appends finished elements made by this manager's factories (a
    // picture's stored ones) in one step: counting markers are numbered on
    // from the count, every element takes the origin as its reference point.
    void AppendShapes(std::vector<std::unique_ptr<CGVLShape>> shapes);

    // With the text tool the press is followed by the text question (see
    // SetWindow), run without the lock held; do not call it while holding
    // Lock().
    void OnLButtonDown(unsigned flags, const QPoint& point, int tool);
    void OnLButtonUp(unsigned flags, const QPoint& point, int tool);
    void OnMouseMove(unsigned flags, const QPoint& point, int tool);
    void OnRButtonDown(unsigned flags, const QPoint& point, int tool);

    // Index of the first element with the id, or -1.
    int FindById(std::uint32_t id) const;
    // Deletes the first element with the id: -1 when there is none; the
    // permanent kinds stay and give their type minus ShapeType::Ruler (0 for
    // the ruler, 1 for the scale); else the index the element had.
    int DeleteById(unsigned id);
    // The same rules for this very element: ids are tick counts and may be
    // shared, so an element that removes itself is found by address. The
    // element is destroyed when the outermost manager call returns, so a
    // shape may still return through its own code after asking.
    int DeleteShape(CGVLShape* shape);
    // Deletes every element but element 0 (the ruler) and restarts counting.
    void DeleteAll();
    void SetOrigin(const QPoint& point);

    // Copies of every element as it stands, ruler included, for the undo
    // history; the copies are drawn by no one until they come back.
    std::vector<std::unique_ptr<CGVLShape>> CopyShapes() const;
    // Puts copies of `shapes` (a CopyShapes list) in place of every element,
    // in this manager's current window and origin, with their labels brought
    // up to date. Hold Lock() around it together with the setters restoring
    // what goes with it, so a drawing worker sees all or nothing.
    void ReplaceShapes(const std::vector<std::unique_ptr<CGVLShape>>& shapes);
    // The same for the `count` elements from `first` on (both cut to the
    // list): copies of `shapes` (null ones left out) take their place, the
    // elements around them stay as they are.
    void ReplaceShapes(std::size_t first, std::size_t count, const std::vector<const CGVLShape*>& shapes);

    // With a clip on the painter, elements whose DrawnBounds lie outside it
    // are passed by.
    void DrawAll(QPainter& dc, int width, int height);
    // The live overlay: a bottom-up 24-bit buffer, rows padded to 4 bytes
    // (DibStride(width) bytes each), filled with 1 before drawing, so 1,1,1 marks pixels no element covers.
    // Never touches a window; safe on the overlay worker.
    void DrawToBits(uchar* buffer, int width, int height);
    // DrawToBits unless ChangeCount() is still `drawnAt` (unset: never
    // drawn), which then takes the count the drawing shows; true when it
    // drew. Count and drawing are taken under one lock, so no change falls
    // between them.
    bool DrawToBitsIfChanged(uchar* buffer, int width, int height, std::optional<std::uint64_t>& drawnAt);
    // The overlay of a saved picture, same layout, filled with 0 first (black
    // is transparent when it is laid over the picture).
    void DrawToImage(uchar* buffer, int width, int height, bool elements, bool ruler, int reserved, bool date,
        bool text, const QString& title);

    // The measured values as CSV ("No.,Type,Result,Unit" and the rows of each
    // element's kind, ShapeKind::csv), LF line ends, periods as decimal
    // separators in any locale, UTF-8. Nothing at all when the list holds
    // element 0 alone. A failed write shows in the device's error state;
    // nothing is reported here.
    void WriteCsv(QIODevice& file);
    // The same with semicolons, for a French interface.
    void WriteCsvSemicolon(QIODevice& file);

    // Asks the user for the lines of a new text element: true for OK, with
    // `lines` replaced; false for Cancel, which removes the element. `window`
    // is the manager's window.
    using TextInput = std::function<bool(QObject* window, QStringList& lines)>;

    // Holds the manager's lock for direct access to the public fields and
    // elements, and to keep several calls together as one change.
    [[nodiscard]] std::unique_lock<std::recursive_mutex> Lock() const;

    // The element type a creating tool makes, or 0 for the other tools.
    static int TypeForTool(int tool);

    // The settings, each changed whole. The setters of what is drawn repaint
    // the whole window; none of them tells the calibration dialog.
    void SetUnit(const CalibrationRecord& unit);
    CalibrationRecord GetUnit() const;
    void SetAppearance(const Appearance& appearance);
    Appearance GetAppearance() const;
    void SetCrossLines(bool solid, bool dashed);
    bool IsCrossSolid() const;
    bool IsCrossDashed() const;
    // Element 0 (the ruler) is drawn and takes presses only while shown.
    void SetRulerShown(bool shown);
    bool IsRulerShown() const;
    // Every element drawn hidden (the `hidden` of CGVLShape::Draw).
    void SetHidden(bool hidden);

    // The overlay window, which repaints and calibration news go to as
    // events (measure/WindowCalls.h), with the question for a new text
    // element: the view sets both as it attaches its window and clears both
    // as it lets it go. New elements take the window; existing ones keep
    // theirs. A null window is none; an unset question cancels a text press.
    void SetWindow(QObject* window, TextInput textInput);
    QObject* GetWindow() const;
    // Replaces the question alone; returns the one it replaced.
    TextInput SetTextInput(TextInput textInput);

    // Where the picture under the overlay comes from, without the overlay,
    // that lines and circles snap their points to as a drag ends; it answers
    // a null picture while "Snap to edges" is off.
    void SetSnapSource(std::function<QImage()> source);
    // That picture now: null without a source.
    QImage SnapPicture() const;

    // Moves with every change to what the elements draw: an element made,
    // moved, edited or deleted, a selection, the calibration, the appearance,
    // the cross lines, the ruler shown, hidden, the window or its scroll
    // origin. Drawing, exports, a setter given what it has and a hover that
    // moves nothing leave it. The live overlay is redrawn only when it moved.
    std::uint64_t ChangeCount() const;
    // Counts a change to what every element may draw.
    void NoteChange();
    // Counts a change to `shape` alone. Elements call it whenever they ask
    // for a repaint, so whatever the window repaints the live overlay redraws
    // too.
    void NoteShapeChange(const CGVLShape& shape);

    // The number the last counting marker got; the next one gets one more.
    void SetCount(int count);
    int GetCount() const;
    // A left press was taken and not yet released.
    bool IsMouseDown() const;

    // The elements, element 0 the ruler. Read under Lock(); changed only by
    // the manager's operations (tests put stand-in elements in).
    std::vector<std::unique_ptr<CGVLShape>> m_arShape;
    // The calibration and colour records every element shares by pointer
    // (CGVLShape::m_pUnit, m_pColor). Read under Lock(); written only through
    // SetUnit and SetAppearance, and by the elements under the lock (the
    // ruler calibrating, CGVLShape::SetUnit).
    CalibrationRecord m_unit { 0, 0.2, 0.2, 10.0, 10.0 };
    ColorRecord m_color { 4, 3, 3, 4 };

private:
    class Call;

    // Routes a press; returns the text element that now needs its text.
    CGVLAnoText* Press(unsigned flags, const QPoint& point, int tool);
    CGVLShape* Append(int type);
    CGVLShape* LastShape() const;
    // The elements as they stand, for walks during which elements may leave.
    std::vector<CGVLShape*> Snapshot() const;
    // The same, the last (topmost) element first.
    std::vector<CGVLShape*> TopDown() const;
    bool HasLeft(const CGVLShape* shape) const;
    void DrawCrossLines(QPainter& dc, int width, int height);
    // The elements from `from` to before `to`, element 0 being the ruler.
    void DrawRange(QPainter& dc, std::size_t from, std::size_t to);
    // DrawToBits over the layer of the settled elements, made or grown first.
    void DrawLayered(uchar* buffer, int width, int height);
    template <typename Draw> void Paint(uchar* buffer, int width, int height, Draw&& draw);
    QByteArray CsvBytes() const;
    void WriteCsvWith(QIODevice& file, char separator);
    template <typename Draw> void RenderBits(uchar* buffer, int width, int height, uchar fill, Draw&& draw);

    int m_bHide = 0;
    QObject* m_hWnd = nullptr;
    int m_bMouseDown = 0;
    QPoint m_ptOrigin;
    int m_bShowRuler = 0;
    int m_bCrossSolid = 0;
    int m_bCrossDashed = 0;
    int m_nCount = 0;
    int m_nPrecision = 2;
    int m_nFontSize = 2;
    int m_nFontBackground = 1;
    TextInput m_fnTextInput;
    std::function<QImage()> m_fnSnapPicture;

    mutable std::recursive_mutex m_mutex;
    int m_nCallDepth = 0;
    std::uint64_t m_nChanges = 0;
    // The last change to what every element draws (NoteChange).
    std::uint64_t m_nEverythingAt = 0;
    // From this many elements on, the live overlay keeps those that stand
    // still as a drawn layer: below, drawing them costs less than copying it.
    static constexpr std::size_t kLayerFrom = 100;
    CShapeLayer m_layer;
    // Elements that left the list during the current call, destroyed when the
    // outermost call returns.
    std::vector<std::unique_ptr<CGVLShape>> m_arLeft;
    // Text elements whose text is being asked for, with the lock released;
    // an element that leaves the list meanwhile is taken off.
    std::vector<CGVLShape*> m_arAsking;
};
