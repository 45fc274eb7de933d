#pragma once

#include <cstddef>
#include <memory>
#include <span>

class CGVLElemMgr;
class CGVLShape;

// The type id of an element (CGVLShape::m_nType). Pictures keep shapes by
// these numbers, so a kind keeps its number for good and a new kind takes an
// unused one.
enum class ShapeType : int {
    Point = 1,
    Line = 2,
    Angle = 3,
    Rect = 4,
    Polygon = 5,
    Circle = 6,
    TriCircle = 7,
    Ruler = 9,
    Scale = 10,
    Counting = 11,
    Arrow = 12,
    Text = 14,
};

// The document's current tool, handed with every mouse event to the manager
// and the elements (as an int, CGVLShape::kTool*). The measuring tools have
// the numbers of the types they draw; the annotation tools do not.
enum class ToolCode : int {
    None = 0,
    Point = 1,
    Line = 2,
    Angle = 3,
    Rect = 4,
    Polygon = 5,
    Circle = 6,
    TriCircle = 7,
    PressLast = 8, // the press goes to the last element
    Move = 9,
    DeleteOne = 200,
    DeleteAll = 201,
    Counting = 202,
    Arrow = 203,
    Ignore = 204, // presses reach no element
    Text = 205,
};

// Which element a press of a kind's tool reaches.
enum class PressRoute {
    // A new element every press.
    New,
    // The element of the kind still being placed (down), so the clicks of
    // one element never go to an older one left half-placed; else a new one.
    ContinuePlacing,
    // The last element while it is an open polygon, so one left open further
    // up keeps what it has; else a new one.
    ContinueOpenPolygon,
};

// One row of the CSV export: "No.,<label>,<value>,<unit>".
struct CsvRow
{
    enum class Unit {
        Length, // the calibration's unit, " um"
        Area, // the same squared, " um2"
        Degree, // "degree"
    };
    const char* label;
    Unit unit;
    double (*value)(const CGVLShape& shape);
};

// How a picture keeps an element: its type and points (ShapesJson), from
// which it is rebuilt directly (CGVLShape::TakeStoredPoints).
struct ShapeStorage
{
    // False for the kinds that belong to the view, not to the picture.
    bool kept = false;
    // The points it needs: exactly so many, or at least so many with orMore.
    std::size_t points = 0;
    bool orMore = false;
};

// Makes the elements of one class: `make` a new one in a manager, with the
// manager's calibration, colours and window; `copy` a copy for the undo
// history, null for an element of another class.
struct ShapeFactory
{
    std::unique_ptr<CGVLShape> (*make)(CGVLElemMgr& mgr);
    std::unique_ptr<CGVLShape> (*copy)(const CGVLShape& shape);
};

// Everything the engine knows about an element kind besides its class.
struct ShapeKind
{
    ShapeType type;
    // The tool that draws it; None for kinds no tool makes.
    ToolCode tool = ToolCode::None;
    ShapeFactory factory;
    PressRoute press = PressRoute::New;
    // Its rows in the CSV export; a kind without rows gets no number there.
    std::span<const CsvRow> csv = {};
    ShapeStorage storage;
    // Never deleted: the ruler and the scale.
    bool permanent = false;
    // The pointer shows the drawing cursor while its tool is on.
    bool drawCursor = false;
};

// Every kind, one row each, in type order.
std::span<const ShapeKind> ShapeKinds();
// The kind of a type id, or null for a number that is no kind.
const ShapeKind* FindShapeKind(int type);
// A copy as the class the element's type id names (its kind's
// factory.copy), or null.
std::unique_ptr<CGVLShape> CopyShape(const CGVLShape& shape);
// The kind a tool draws, or null for the other tools.
const ShapeKind* ShapeKindForTool(int tool);
// The drawing cursor: the drawing kinds' tools and the press-last tool.
bool ToolShowsDrawCursor(int tool);
