#pragma once

#include "calibration/CalibrationRecord.h"

#include <QByteArray>

#include <cstddef>
#include <memory>
#include <vector>

class CGVLElemMgr;
class CGVLShape;

// Undo and redo for one document: after each finished edit (a gesture, a
// command, a calibration applied) the whole element list, ruler included,
// the counting number and the calibration record are kept as one step,
// unless nothing a user can see changed. Stepping back or forth puts copies
// of a kept state into the manager.
//
// Threads: user-interface thread only. The states are taken and put back
// under the manager's lock, so a live overlay worker drawing meanwhile sees
// either the old list or the new one, never a half-replaced one.
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
    // Keeps the state as it stands as a new step when it differs from the
    // current one, dropping the steps that could be redone. True for a step.
    bool Commit();
    bool CanUndo() const;
    bool CanRedo() const;
    // An edit not yet committed is committed first, so undo always goes back
    // to before the last change. False when there is nothing to go to.
    bool Undo();
    bool Redo();

private:
    struct State
    {
        std::vector<std::unique_ptr<CGVLShape>> shapes;
        int count = 0;
        CalibrationRecord unit;
        // What the user sees of the state, for telling a real change.
        QByteArray key;
    };

    State Take() const;
    void Restore(const State& state);

    CGVLElemMgr& m_mgr;
    std::size_t m_nMaxSteps;
    std::vector<State> m_states;
    std::size_t m_current = 0;
};
