#include "measure/ShapeKinds.h"

#include "measure/CGVLAngle.h"
#include "measure/CGVLAnoArrow.h"
#include "measure/CGVLAnoText.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLCircleT.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLLine.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPoint.h"
#include "measure/CGVLPolygon.h"
#include "measure/CGVLRect.h"
#include "measure/CGVLRuler.h"
#include "measure/CGVLScale.h"

#include <algorithm>
#include <array>
#include <typeinfo>

namespace {

// The constructor's arguments come from the manager alone, so the types of
// its parameters are named nowhere but in the element classes.
template <typename Kind> std::unique_ptr<CGVLShape> Make(CGVLElemMgr& mgr)
{
    return std::make_unique<Kind>(&mgr.m_unit, &mgr.m_color, mgr.GetWindow(), &mgr);
}

// A subclass under a borrowed id is not copied.
template <typename Kind> std::unique_ptr<CGVLShape> Copy(const CGVLShape& shape)
{
    const auto* kind = dynamic_cast<const Kind*>(&shape);
    if (!kind || typeid(*kind) != typeid(Kind))
        return nullptr;
    return std::make_unique<Kind>(*kind);
}

template <typename Kind> constexpr ShapeFactory kClass { &Make<Kind>, &Copy<Kind> };

double LengthOf(const CGVLShape& shape)
{
    return shape.GetLength();
}

double AreaOf(const CGVLShape& shape)
{
    return shape.GetArea();
}

double AngleOf(const CGVLShape& shape)
{
    const auto* angle = dynamic_cast<const CGVLAngle*>(&shape);
    return angle ? angle->GetAngle() : 0.0;
}

double RadiusOf(const CGVLShape& shape)
{
    if (const auto* circle = dynamic_cast<const CGVLCircle*>(&shape))
        return circle->GetRadius();
    if (const auto* circle = dynamic_cast<const CGVLCircleT*>(&shape))
        return circle->GetRadius();
    return 0.0;
}

using Unit = CsvRow::Unit;

constexpr CsvRow kLineRows[] { { "Line distance", Unit::Length, &LengthOf } };
constexpr CsvRow kAngleRows[] { { "Angle", Unit::Degree, &AngleOf } };
constexpr CsvRow kRectRows[] { { "Rect area", Unit::Area, &AreaOf } };
// Spelled so in every file ever written.
constexpr CsvRow kPolygonRows[] { { "Ploygon area", Unit::Area, &AreaOf } };
constexpr CsvRow kCircleRows[] { { "Circle radius", Unit::Length, &RadiusOf },
    { "Circle area", Unit::Area, &AreaOf } };
constexpr CsvRow kTriCircleRows[] { { "Tri-circle radius", Unit::Length, &RadiusOf },
    { "Tri-circle area", Unit::Area, &AreaOf } };

constexpr ShapeKind kKinds[] {
    { .type = ShapeType::Point,
        .tool = ToolCode::Point,
        .factory = kClass<CGVLPoint>,
        .storage = { true, 1 },
        .drawCursor = true },
    // Point 0 is where the drag ended.
    { .type = ShapeType::Line,
        .tool = ToolCode::Line,
        .factory = kClass<CGVLLine>,
        .csv = kLineRows,
        .storage = { true, 2 },
        .drawCursor = true },
    { .type = ShapeType::Angle,
        .tool = ToolCode::Angle,
        .factory = kClass<CGVLAngle>,
        .press = PressRoute::ContinuePlacing,
        .csv = kAngleRows,
        .storage = { true, 3 },
        .drawCursor = true },
    // The four corners, 0 and 3 diagonally opposite.
    { .type = ShapeType::Rect,
        .tool = ToolCode::Rect,
        .factory = kClass<CGVLRect>,
        .csv = kRectRows,
        .storage = { true, 4 },
        .drawCursor = true },
    { .type = ShapeType::Polygon,
        .tool = ToolCode::Polygon,
        .factory = kClass<CGVLPolygon>,
        .press = PressRoute::ContinueOpenPolygon,
        .csv = kPolygonRows,
        .storage = { true, 3, true },
        .drawCursor = true },
    // The centre, then a point of the rim.
    { .type = ShapeType::Circle,
        .tool = ToolCode::Circle,
        .factory = kClass<CGVLCircle>,
        .csv = kCircleRows,
        .storage = { true, 2 },
        .drawCursor = true },
    { .type = ShapeType::TriCircle,
        .tool = ToolCode::TriCircle,
        .factory = kClass<CGVLCircleT>,
        .press = PressRoute::ContinuePlacing,
        .csv = kTriCircleRows,
        .storage = { true, 3 },
        .drawCursor = true },
    // The ruler and the scale belong to the view: no tool draws them and no
    // picture keeps them.
    { .type = ShapeType::Ruler, .factory = kClass<CGVLRuler>, .storage = { false }, .permanent = true },
    { .type = ShapeType::Scale, .factory = kClass<CGVLScale>, .storage = { false }, .permanent = true },
    { .type = ShapeType::Counting,
        .tool = ToolCode::Counting,
        .factory = kClass<CGVLNo>,
        .storage = { true, 1 } },
    // Point 0 is where the drag ended, as for the line.
    { .type = ShapeType::Arrow,
        .tool = ToolCode::Arrow,
        .factory = kClass<CGVLAnoArrow>,
        .storage = { true, 2 } },
    { .type = ShapeType::Text,
        .tool = ToolCode::Text,
        .factory = kClass<CGVLAnoText>,
        .storage = { true, 1 } },
};

// The rows by type id: every exported element and every undo step looks one
// up per element.
constexpr std::size_t kTypeLimit = 1 + std::size_t(std::ranges::max(kKinds, {}, &ShapeKind::type).type);
constexpr auto kByType = [] {
    std::array<const ShapeKind*, kTypeLimit> rows {};
    for (const ShapeKind& kind : kKinds)
        rows[std::size_t(kind.type)] = &kind;
    return rows;
}();

} // namespace

std::span<const ShapeKind> ShapeKinds()
{
    return kKinds;
}

const ShapeKind* FindShapeKind(int type)
{
    return type >= 0 && std::size_t(type) < kTypeLimit ? kByType[std::size_t(type)] : nullptr;
}

std::unique_ptr<CGVLShape> CopyShape(const CGVLShape& shape)
{
    const ShapeKind* kind = FindShapeKind(shape.GetType());
    return kind ? kind->factory.copy(shape) : nullptr;
}

const ShapeKind* ShapeKindForTool(int tool)
{
    if (tool == int(ToolCode::None))
        return nullptr;
    const auto it = std::find_if(
        std::begin(kKinds), std::end(kKinds), [tool](const ShapeKind& k) { return int(k.tool) == tool; });
    return it == std::end(kKinds) ? nullptr : &*it;
}

bool ToolShowsDrawCursor(int tool)
{
    const ShapeKind* kind = ShapeKindForTool(tool);
    return tool == int(ToolCode::PressLast) || (kind && kind->drawCursor);
}
