// "Snap to edges": the toggle, where it is kept, and the picture the shapes
// of a document snap to.
#include "app/CCmdUI.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "measure/CGVLElemMgr.h"
#include "platform/AppPaths.h"

#include <QSettings>
#include <QWidget>

#include <optional>

namespace {

const QString kSnapKey = QStringLiteral("Measure/SnapToEdges");

// Read from the file once; the user interface asks for it at every idle update.
std::optional<bool> g_snapToEdges;

} // namespace

bool CMeasureDoc::SnapToEdges()
{
    if (!g_snapToEdges)
        g_snapToEdges
            = QSettings(UserSettingsFilePath(), QSettings::IniFormat).value(kSnapKey, false).toBool();
    return *g_snapToEdges;
}

void CMeasureDoc::SetSnapToEdges(bool on)
{
    g_snapToEdges = on;
    QSettings(UserSettingsFilePath(), QSettings::IniFormat).setValue(kSnapKey, on);
    // Only the live document pays for keeping its frames clean, and only
    // while snapping is on.
    if (CMeasureDoc* live = GetLiveDocument())
        live->m_graph.KeepCleanFrames(on);
}

QImage CMeasureDoc::SnapPicture() const
{
    if (!SnapToEdges())
        return QImage();
    // The live frame, running or frozen, has the shapes blended into it:
    // the processing element keeps the one from before the overlay.
    if (m_bLive)
        return m_graph.CleanFrame();
    return m_image.IsValidImage() ? m_image.ToQImage() : QImage();
}

void CMeasureDoc::MapSnapCommand()
{
    m_pElemMgr->SetSnapSource([this] { return SnapPicture(); });
    MapCommand(ID_MEASURE_SNAP_EDGES, [] { SetSnapToEdges(!SnapToEdges()); });
    MapUpdate(ID_MEASURE_SNAP_EDGES, [](CCmdUI& ui) {
        ui.Enable();
        ui.SetCheck(SnapToEdges());
    });
}
