#pragma once

#include "app/CCmdUI.h"

#include <functional>
#include <unordered_map>

// Something that can handle commands: the view, the document, the child
// frame, the main frame and the application, asked in that order. Handlers
// are data keyed by command id, so a class maps its commands in its
// constructor and a later feature adds more without touching the router.
class CCmdTarget
{
public:
    using Handler = std::function<void()>;
    using UpdateHandler = std::function<void(CCmdUI&)>;

    virtual ~CCmdTarget() = default;

    void MapCommand(int id, Handler handler);
    void MapUpdate(int id, UpdateHandler handler);

    // Runs the handler of id; false when this target has none, so that the
    // router asks the next one.
    virtual bool OnCmdMsg(int id);
    // Settles the state of ui when this target knows the command: its update
    // handler decides, and a command with a handler but no update handler is
    // enabled. False when this target knows nothing of the command.
    virtual bool OnUpdateCmdMsg(CCmdUI& ui);

private:
    std::unordered_map<int, Handler> m_handlers;
    std::unordered_map<int, UpdateHandler> m_updaters;
};
