#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "capture/CIntervalCapDlg.h"
#include "capture/CRecordDlg.h"
#include "capture/CRgbDlg.h"

#include <gst/gst.h>

// The capture dialogs act on the live document, whichever document is active.
void CMeasureDoc::MapCaptureDialogs()
{
    const auto onLive = [](void (CMeasureDoc::*open)()) {
        return [open] {
            if (CMeasureDoc* live = GetLiveDocument())
                (live->*open)();
        };
    };
    MapCommand(ID_CAMERA_RECORD, onLive(&CMeasureDoc::OnRecord));
    MapCommand(ID_CAMERA_INTERVAL, onLive(&CMeasureDoc::OnIntervalCapture));
    // A still picture is white-balanced through its RGB offsets, which "Rgb"
    // takes off again; otherwise both act on the live picture.
    const auto still = [this] { return !m_bLive && m_image.IsValidImage(); };
    MapCommand(ID_PROCESS_RGB, [this, still, live = onLive(&CMeasureDoc::OnRgb)] {
        if (still() && m_switches.rgb)
            ToggleOperation(ProcessOp::Rgb);
        else
            live();
    });
    MapCommand(ID_VIDEO_FLAT_FIELD, onLive(&CMeasureDoc::OnFlatField));
    MapCommand(ID_VIDEO_WHITE_BALANCE, [this, still, live = onLive(&CMeasureDoc::OnWhiteBalance)] {
        if (still())
            OnWhiteBalance();
        else
            live();
    });
    MapUpdate(ID_CAMERA_RECORD, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
    MapUpdate(ID_VIDEO_FLAT_FIELD, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
    MapUpdate(ID_PROCESS_RGB, [this, still](CCmdUI& ui) {
        if (still() && m_switches.rgb) {
            ui.Enable(true);
            ui.SetCheck(true);
        } else
            UpdateCameraCommand(ui, true);
    });
    MapUpdate(ID_VIDEO_WHITE_BALANCE, [this, still](CCmdUI& ui) {
        if (still())
            ui.Enable(true);
        else
            UpdateCameraCommand(ui, true);
    });
    // A paused picture is saved as well as a moving one.
    MapUpdate(ID_CAMERA_INTERVAL, [this](CCmdUI& ui) { UpdateCameraCommand(ui, false); });
}

// Each dialog is told when this document goes away under it (the program is
// ended while it is open); nothing touches the document after exec returns.
void CMeasureDoc::OnRecord()
{
    CRecordDlg dialog(this, DialogParent());
    connect(this, &QObject::destroyed, &dialog, &CRecordDlg::OnDocumentClosed);
    dialog.exec();
}

// Closing this document stops a running series: nothing is saved after it.
void CMeasureDoc::OnIntervalCapture()
{
    CIntervalCapDlg dialog(
        this, [this] { SilentQuickSave(); }, DialogParent());
    connect(this, &QObject::destroyed, &dialog, &CIntervalCapDlg::OnDocumentClosed);
    dialog.exec();
}

void CMeasureDoc::OnRgb()
{
    CRgbDlg dialog(this, DialogParent());
    dialog.exec();
}

void CMeasureDoc::UpdateLiveView()
{
    // A graph that runs again after a failure (a camera plugged back in, a
    // recording ended on a full disk) gets its overlay worker back.
    if (m_bLive && m_graph.Pipeline()) {
        GstState state = GST_STATE_NULL, pending = GST_STATE_VOID_PENDING;
        gst_element_get_state(m_graph.Pipeline(), &state, &pending, 0);
        if ((pending == GST_STATE_VOID_PENDING ? state : pending) == GST_STATE_PLAYING) {
            m_bPreviewRunning = true;
            m_overlay.Start();
        }
    }
    emit layoutNeeded();
}
