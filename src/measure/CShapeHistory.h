#pragma once

#include "calibration/CalibrationRecord.h"

#include <QPoint>

#include <cstddef>
#include <memory>
#include <vector>

class CGVLElemMgr;
class CGVLShape;

// Undo and redo for one document: after each finished edit (a gesture, a
// command, a calibration applied) what changed since the last step is kept
// as one step, unless nothing a user can see changed: the run of elements
// that differ (ruler included) as they were and as they are, the counting
// number and the calibration record. Stepping back or forth puts copies of
// the kept elements into the manager in place of that run.
//
// A copy of the list as the current step left it is kept to tell what the
// next edit changed; the steps share their elements with it, so a long
// counting session costs one copy of the list and the elements each step
// touched.
//
// Threads: user-interface thread only. Steps are taken and put back under
// the manager's lock, so a live overlay worker drawing meanwhile sees either
// the old list or the new one, never a half-replaced one.
class CShapeHistory
{
public:
    // Steps kept; older ones are forgotten.
    static constexpr std::size_t kMaxSteps = 100;

    explicit CShapeHistory(CGVLElemMgr& mgr, std::size_t maxSteps = kMaxSteps);
    ~CShapeHistory();
    CShapeHistory(const CShapeHistory&) = delete;
    CShapeHistory& operator=(const CShapeHistory&) = delete;

    // Forgets every step: the state as it stands is where undo stops.
    void Reset();
    // Keeps what changed since the current step as a new step when a user
    // can see it, dropping the steps that could be redone. True for a step.
    bool Commit();
    bool CanUndo() const;
    bool CanRedo() const;
    // An edit not yet committed is committed first, so undo always goes back
    // to before the last change. False when there is nothing to go to.
    bool Undo();
    bool Redo();

private:
    using Copy = std::shared_ptr<const CGVLShape>;

    // An element that was selected, held or hit when its state was kept;
    // the others were at rest.
    struct Flags
    {
        std::size_t index = 0;
        bool selected = false;
        bool down = false;
        int hit = -1;
        QPoint dragFrom;
    };
    // What goes with the elements of one state.
    struct State
    {
        int count = 0;
        CalibrationRecord unit;
        std::vector<Flags> flags;
    };
    // From one state to the next: the elements from `at` on, `before`
    // replaced by `after`.
    struct Step
    {
        std::size_t at = 0;
        std::vector<Copy> before;
        std::vector<Copy> after;
    };

    // Under the manager's lock.
    State TakeState() const;
    // Puts back state `to` by replacing `from` with `with` at `at`.
    void Apply(std::size_t at, const std::vector<Copy>& from, const std::vector<Copy>& with, const State& to);

    CGVLElemMgr& m_mgr;
    std::size_t m_nMaxSteps;
    // m_steps[i] leads from m_states[i] to m_states[i + 1].
    std::vector<State> m_states;
    std::vector<Step> m_steps;
    std::size_t m_current = 0;
    // The elements of m_states[m_current].
    std::vector<Copy> m_shapes;
};
