#include "measure/CShapeHistory.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPolygon.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace {

template <typename Kind, typename Value>
bool SameAs(const CGVLShape& a, const CGVLShape& b, Value (*value)(const Kind&))
{
    const auto* ka = dynamic_cast<const Kind*>(&a);
    const auto* kb = dynamic_cast<const Kind*>(&b);
    return ka == nullptr ? kb == nullptr : kb != nullptr && value(*ka) == value(*kb);
}

// What a user sees of an element: its kind, id, points, text, number and a
// polygon's closing. Selection, hover and the rubber band are not edits.
bool SameEdit(const CGVLShape& a, const CGVLShape& b)
{
    const int type = a.GetType();
    if (type != b.GetType() || a.GetId() != b.GetId() || a.m_arCoord != b.m_arCoord)
        return false;
    // Only the kinds with more to them are looked at as their class: every
    // commit compares the whole list.
    switch (ShapeType(type)) {
    case ShapeType::Text:
        return SameAs<CGVLAnoText, QStringList>(a, b, [](const CGVLAnoText& t) { return t.m_arText; });
    case ShapeType::Counting:
        return SameAs<CGVLNo, int>(a, b, [](const CGVLNo& n) { return n.GetNumber(); });
    case ShapeType::Polygon:
        return SameAs<CGVLPolygon, bool>(a, b, [](const CGVLPolygon& p) { return p.IsClosed(); });
    default:
        return true;
    }
}

// The same, and the snapped places the values rest on: an element that
// differs only there goes into a step without making one.
bool SameContent(const CGVLShape& a, const CGVLShape& b)
{
    const auto edges = [](const CGVLShape& s) {
        std::vector<std::tuple<QPoint, double, double, double>> e;
        for (const EdgePoint& p : s.m_arEdge)
            e.emplace_back(p.coord, p.exact.x(), p.exact.y(), p.sigma);
        return e;
    };
    return SameEdit(a, b) && ((a.m_arEdge.empty() && b.m_arEdge.empty()) || edges(a) == edges(b));
}

// The calibration counts at the single precision the settings keep it in:
// the dialog closed unchanged rounds what the settings gave, and that is no
// edit.
auto UnitKey(const CalibrationRecord& unit)
{
    return std::make_tuple(unit.m_rtUnit, float(unit.m_dcxPerPixel), float(unit.m_dcyPerPixel),
        float(unit.m_dcxReal), float(unit.m_dcyReal));
}

} // namespace

CShapeHistory::CShapeHistory(CGVLElemMgr& mgr, std::size_t maxSteps)
    : m_mgr(mgr)
    , m_nMaxSteps(maxSteps)
{
    Reset();
}

CShapeHistory::~CShapeHistory() = default;

void CShapeHistory::Reset()
{
    const auto lock = m_mgr.Lock();
    m_states.clear();
    m_states.push_back(TakeState());
    m_steps.clear();
    m_current = 0;
    m_shapes.clear();
    for (const auto& shape : m_mgr.m_arShape)
        m_shapes.push_back(CopyShape(*shape));
}

CShapeHistory::State CShapeHistory::TakeState() const
{
    State state;
    state.count = m_mgr.GetCount();
    state.unit = m_mgr.GetUnit();
    const auto& shapes = m_mgr.m_arShape;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const CGVLShape& s = *shapes[i];
        if (s.m_bSelected || s.m_bDown || s.m_nHit != -1)
            state.flags.push_back({ i, s.m_bSelected, s.m_bDown, s.m_nHit, s.m_ptDragFrom });
    }
    return state;
}

bool CShapeHistory::Commit()
{
    const auto lock = m_mgr.Lock();
    const auto& shapes = m_mgr.m_arShape;
    const auto same = [](const Copy& kept, const std::unique_ptr<CGVLShape>& shape) {
        return kept && SameContent(*kept, *shape);
    };
    // The run that differs lies between the elements that stayed at the
    // front and those that stayed at the back.
    const std::size_t n = shapes.size();
    const std::size_t m = m_shapes.size();
    std::size_t head = 0;
    while (head < n && head < m && same(m_shapes[head], shapes[head]))
        ++head;
    std::size_t tail = 0;
    while (tail < n - head && tail < m - head && same(m_shapes[m - 1 - tail], shapes[n - 1 - tail]))
        ++tail;

    State state = TakeState();
    const State& now = m_states[m_current];
    bool edited = state.count != now.count || UnitKey(state.unit) != UnitKey(now.unit) || n != m;
    for (std::size_t i = head; !edited && i < n - tail; ++i)
        edited = !m_shapes[i] || !SameEdit(*m_shapes[i], *shapes[i]);
    if (!edited)
        return false;

    Step step;
    step.at = head;
    const auto first = m_shapes.begin() + std::ptrdiff_t(head);
    const auto last = m_shapes.begin() + std::ptrdiff_t(m - tail);
    step.before.assign(std::make_move_iterator(first), std::make_move_iterator(last));
    for (std::size_t i = head; i < n - tail; ++i)
        step.after.push_back(CopyShape(*shapes[i]));
    m_shapes.erase(first, last);
    m_shapes.insert(m_shapes.begin() + std::ptrdiff_t(head), step.after.begin(), step.after.end());

    m_steps.resize(m_current);
    m_states.resize(m_current + 1);
    m_steps.push_back(std::move(step));
    m_states.push_back(std::move(state));
    if (m_steps.size() > m_nMaxSteps) {
        m_steps.erase(m_steps.begin());
        m_states.erase(m_states.begin());
    }
    m_current = m_steps.size();
    return true;
}

void CShapeHistory::Apply(
    std::size_t at, const std::vector<Copy>& from, const std::vector<Copy>& with, const State& to)
{
    const auto lock = m_mgr.Lock();
    m_mgr.SetCount(to.count);
    m_mgr.SetUnit(to.unit);
    std::vector<const CGVLShape*> shapes;
    shapes.reserve(with.size());
    for (const Copy& shape : with)
        shapes.push_back(shape.get());
    m_mgr.ReplaceShapes(at, from.size(), shapes);
    // Every element comes back selected, held or at rest as it was when the
    // state was kept, as if the whole list had been put back.
    for (const auto& shape : m_mgr.m_arShape) {
        shape->m_bSelected = false;
        shape->m_bDown = false;
        shape->m_nHit = -1;
    }
    for (const Flags& f : to.flags) {
        if (f.index >= m_mgr.m_arShape.size())
            continue;
        CGVLShape& shape = *m_mgr.m_arShape[f.index];
        shape.m_bSelected = f.selected;
        shape.m_bDown = f.down;
        shape.m_nHit = f.hit;
        shape.m_ptDragFrom = f.dragFrom;
    }
    const auto first = m_shapes.begin() + std::ptrdiff_t(std::min(at, m_shapes.size()));
    m_shapes.erase(first, first + std::ptrdiff_t(std::min(from.size(), std::size_t(m_shapes.end() - first))));
    m_shapes.insert(
        m_shapes.begin() + std::ptrdiff_t(std::min(at, m_shapes.size())), with.begin(), with.end());
}

bool CShapeHistory::CanUndo() const
{
    return m_current > 0;
}

bool CShapeHistory::CanRedo() const
{
    return m_current < m_steps.size();
}

bool CShapeHistory::Undo()
{
    Commit();
    if (!CanUndo())
        return false;
    const Step& step = m_steps[m_current - 1];
    Apply(step.at, step.after, step.before, m_states[m_current - 1]);
    --m_current;
    return true;
}

bool CShapeHistory::Redo()
{
    if (!CanRedo())
        return false;
    const Step& step = m_steps[m_current];
    Apply(step.at, step.before, step.after, m_states[m_current + 1]);
    ++m_current;
    return true;
}
