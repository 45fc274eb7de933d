// Focus peaking and live focus stacking: commands of the live document,
// whichever document is active.

#include "app/CLiveFocus.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"

void CMeasureDoc::MapFocusCommands()
{
    const auto onLive = [](void (*act)(CLiveFocus&)) {
        return [act] {
            if (CMeasureDoc* live = GetLiveDocument())
                act(live->LiveFocus());
        };
    };
    MapCommand(ID_VIDEO_FOCUS_PEAKING, onLive([](CLiveFocus& f) { f.SetPeaking(!f.IsPeaking()); }));
    MapCommand(ID_VIDEO_PEAKING_COLOR, [this] { m_liveFocus->ChoosePeakingColor(); });
    MapCommand(ID_VIDEO_FOCUS_STACK, onLive([](CLiveFocus& f) {
        if (f.IsStacking())
            f.FinishStack();
        else
            f.StartStack();
    }));
    MapCommand(ID_VIDEO_FOCUS_STACK_CANCEL, onLive([](CLiveFocus& f) { f.CancelStack(); }));

    MapUpdate(ID_VIDEO_FOCUS_PEAKING, [this](CCmdUI& ui) {
        UpdateCameraCommand(ui, true);
        CMeasureDoc* live = GetLiveDocument();
        ui.SetCheck(live && live->LiveFocus().IsPeaking());
    });
    MapUpdate(ID_VIDEO_PEAKING_COLOR, [](CCmdUI& ui) { ui.Enable(); });
    MapUpdate(ID_VIDEO_FOCUS_STACK, [this](CCmdUI& ui) {
        CMeasureDoc* live = GetLiveDocument();
        // Stop stays reachable whatever became of the video meanwhile.
        if (live && live->LiveFocus().IsStacking())
            ui.Enable();
        else
            UpdateCameraCommand(ui, true);
        ui.SetCheck(live && live->LiveFocus().IsStacking());
    });
    MapUpdate(ID_VIDEO_FOCUS_STACK_CANCEL, [](CCmdUI& ui) {
        CMeasureDoc* live = GetLiveDocument();
        ui.Enable(live && live->LiveFocus().IsStacking());
    });
}
