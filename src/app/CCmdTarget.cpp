#include "app/CCmdTarget.h"

void CCmdTarget::MapCommand(int id, Handler handler)
{
    m_handlers[id] = std::move(handler);
}

void CCmdTarget::MapUpdate(int id, UpdateHandler handler)
{
    m_updaters[id] = std::move(handler);
}

bool CCmdTarget::OnCmdMsg(int id)
{
    auto it = m_handlers.find(id);
    if (it == m_handlers.end())
        return false;
    // A handler may remap commands or destroy targets; run a copy.
    Handler handler = it->second;
    handler();
    return true;
}

bool CCmdTarget::OnUpdateCmdMsg(CCmdUI& ui)
{
    if (auto it = m_updaters.find(ui.GetID()); it != m_updaters.end()) {
        ui.Enable(true);
        it->second(ui);
        return true;
    }
    if (m_handlers.contains(ui.GetID())) {
        ui.Enable(true);
        return true;
    }
    return false;
}
