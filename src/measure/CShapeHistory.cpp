#include "measure/CShapeHistory.h"

#include "measure/CGVLAnoText.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLNo.h"
#include "measure/CGVLPolygon.h"

#include <QDataStream>
#include <QIODevice>

CShapeHistory::CShapeHistory(CGVLElemMgr& mgr, std::size_t maxSteps)
    : m_mgr(mgr)
    , m_nMaxSteps(maxSteps)
{
    Reset();
}

CShapeHistory::~CShapeHistory() = default;

void CShapeHistory::Reset()
{
    m_states.clear();
    m_states.push_back(Take());
    m_current = 0;
}

CShapeHistory::State CShapeHistory::Take() const
{
    State state;
    const auto lock = m_mgr.Lock();
    state.shapes = m_mgr.CopyShapes();
    state.count = m_mgr.GetCount();
    state.unit = m_mgr.GetUnit();

    // Selection, hover and the rubber band are not edits; points, ids, texts,
    // numbers, a polygon's closing and the calibration are. The calibration
    // counts at the single precision the settings keep it in: the dialog
    // closed unchanged rounds what the settings gave, and that is no edit.
    QDataStream out(&state.key, QIODevice::WriteOnly);
    out << state.count << state.unit.m_rtUnit << float(state.unit.m_dcxPerPixel)
        << float(state.unit.m_dcyPerPixel) << float(state.unit.m_dcxReal) << float(state.unit.m_dcyReal);
    for (const auto& shape : state.shapes) {
        out << shape->GetType() << shape->GetId() << qint64(shape->m_arCoord.size());
        for (const QPoint& p : shape->m_arCoord)
            out << p;
        if (const auto* text = dynamic_cast<const CGVLAnoText*>(shape.get()))
            out << text->m_arText;
        if (const auto* marker = dynamic_cast<const CGVLNo*>(shape.get()))
            out << marker->GetNumber();
        if (const auto* polygon = dynamic_cast<const CGVLPolygon*>(shape.get()))
            out << polygon->IsClosed();
    }
    return state;
}

void CShapeHistory::Restore(const State& state)
{
    const auto lock = m_mgr.Lock();
    m_mgr.SetCount(state.count);
    m_mgr.SetUnit(state.unit);
    m_mgr.ReplaceShapes(state.shapes);
}

bool CShapeHistory::Commit()
{
    State state = Take();
    if (state.key == m_states[m_current].key)
        return false;
    m_states.erase(m_states.begin() + std::ptrdiff_t(m_current) + 1, m_states.end());
    m_states.push_back(std::move(state));
    if (m_states.size() > m_nMaxSteps + 1)
        m_states.erase(m_states.begin());
    m_current = m_states.size() - 1;
    return true;
}

bool CShapeHistory::CanUndo() const
{
    return m_current > 0;
}

bool CShapeHistory::CanRedo() const
{
    return m_current + 1 < m_states.size();
}

bool CShapeHistory::Undo()
{
    Commit();
    if (!CanUndo())
        return false;
    Restore(m_states[--m_current]);
    return true;
}

bool CShapeHistory::Redo()
{
    if (!CanRedo())
        return false;
    Restore(m_states[++m_current]);
    return true;
}
