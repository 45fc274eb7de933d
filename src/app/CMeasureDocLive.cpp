#include "app/CMeasureDoc.h"
#include "app/IDocumentHost.h"
#include "capture/CChooseDeviceDlg.h"
#include "image/ProcessOperations.h"
#include "measure/CGVLElemMgr.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

bool CMeasureDoc::StartLive(QWidget* videoOwner)
{
    if (!m_bHasCamera || s_pLiveDocument)
        return false;
    s_pLiveDocument = this;
    m_graph.BuildPreviewGraph();
    if (m_graph.RunGraph() != S_OK) {
        s_pLiveDocument = nullptr;
        m_graph.ReleaseAll();
        m_bHasCamera = false;
        return false;
    }
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    m_nImageWidth = int(width);
    m_nImageHeight = int(height);
    m_videoOwner = videoOwner;
    m_graph.SetParentWnd(videoOwner, 0, 0, int(width), int(height));
    m_graph.SetStreamErrorHandler([this](const QString&) {
        // The graph is down: as when paused, the last frame stays to measure on.
        StopOverlayWorker();
        m_bPreviewRunning = false;
        if (Snapshot(m_image)) {
            m_unprocessed = m_image;
            m_bHasImage = true;
        }
        m_graph.ShowVideoWindow(0);
        RepaintOverlayWindow();
    });
    m_overlay.Allocate(width, height);
    m_graph.KeepCleanFrames(SnapToEdges());
    m_graph.SetProcessEnable(1);
    m_graph.SetOverlay(1, m_overlay.PublishedPointer());
    ReadBackState();
    m_bPreviewRunning = true;
    m_bLive = true;
    m_overlay.Start();
    return true;
}

COverlayWorker::Frames CMeasureDoc::OverlayFrames()
{
    return {
        [this] { return m_bLive && m_bPreviewRunning; },
        [this] {
            unsigned width = 0, height = 0;
            m_graph.GetVideoSize(&width, &height);
            return QSize(int(width), int(height));
        },
        [this](const uchar* buffer) { m_graph.WaitOverlayUnused(buffer); },
    };
}

void CMeasureDoc::StopOverlayWorker()
{
    // Off at the element first, so no frame takes a buffer again once the
    // worker has waited for the last one that did.
    if (m_graph.HasProcess())
        m_graph.SetOverlay(0, m_overlay.PublishedPointer());
    m_overlay.Stop();
}

void CMeasureDoc::StopLive()
{
    if (s_pLiveDocument != this) {
        StopOverlayWorker();
        return;
    }
    StopOverlayWorker();
    m_graph.SetStreamErrorHandler({});
    m_graph.StopGraph();
    m_graph.DestroyGraph();
    m_graph.ReleaseAll();
    s_pLiveDocument = nullptr;
    m_bLive = false;
    m_bPreviewRunning = false;
    m_overlay.Release();
}

// The operations that turn the picture over are pushed before they are read,
// so the document's survive a rebuild; every other switch comes from the
// processing element.
void CMeasureDoc::ReadBackState()
{
    int on = 0, a = 0, b = 0;
    if (m_graph.GetProcessEnable(&on) == S_OK)
        m_bProcessEnabled = on != 0;
    for (const ProcessOperation& op : kProcessOperations) {
        if (op.geometric)
            m_graph.SetOperation(op.op, m_switches);
        m_graph.GetOperation(op.op, &m_switches);
    }
    m_graph.GetStateA(&a, &b);
    m_graph.GetStateB(&a);
}

void CMeasureDoc::Pause()
{
    if (!m_bLive || !m_bPreviewRunning)
        return;
    m_bPreviewRunning = false;
    if (Snapshot(m_image)) {
        m_unprocessed = m_image;
        m_bHasImage = true;
    }
    m_graph.PauseGraph();
    m_graph.ShowVideoWindow(0);
    RepaintOverlayWindow();
}

void CMeasureDoc::OnCameraUnplugged(const QString& name)
{
    if (!m_bLive || name != m_graph.DeviceName())
        return;
    m_bCameraLost = true;
    // Takes the graph down through the error handler, unless the camera's
    // read error already did.
    m_graph.OnDeviceRemoved(name);
}

void CMeasureDoc::OnCameraPlugged(const QString& name)
{
    if (!m_bLive || !m_bCameraLost || name != m_graph.DeviceName())
        return;
    StopOverlayWorker();
    if (m_graph.Reconnect() != S_OK)
        return; // shown by the graph; the next plug-in tries again
    m_bCameraLost = false;
    AfterGraphRebuilt();
}

void CMeasureDoc::Preview()
{
    if (!m_bLive || m_bPreviewRunning)
        return;
    if (m_bCameraLost) {
        MessageBox(tr("The camera \"%1\" is not connected. Plug it in again to go on with the live video.")
                       .arg(m_graph.DeviceName()),
            tr("Preview"), MB_OK | MB_ICONWARNING);
        return;
    }
    m_bPreviewRunning = true;
    m_graph.StopGraph();
    m_graph.RunGraph();
    m_graph.ShowVideoWindow(1);
    // After a camera failure the worker was stopped and the overlay taken off.
    if (!m_overlay.IsRunning()) {
        m_graph.SetOverlay(1, m_overlay.PublishedPointer());
        m_overlay.Start();
    }
}

void CMeasureDoc::OnVideoDoubleClick()
{
    if (m_bLive && m_bPreviewRunning)
        OnFullScreen();
}

void CMeasureDoc::OnFullScreen()
{
    m_graph.ToggleFullScreen();
}

void CMeasureDoc::OnChangeDevice()
{
    CChooseDeviceDlg dialog(
        &m_graph,
        [this](int index, const QString& name) {
            StopOverlayWorker();
            unsigned width = 0, height = 0;
            m_graph.ChangeDevice(index, &width, &height);
            m_strDevice = name;
            AfterGraphRebuilt();
        },
        DialogParent());
    dialog.exec();
}

void CMeasureDoc::OnVideoResolution()
{
    if (m_graph.ShowFormatDialog(m_graph.DeviceName(), DialogParent()) != S_OK)
        return;
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    StopOverlayWorker();
    m_graph.ChangeResolution(width, height);
    AfterGraphRebuilt();
}

// After the graph was rebuilt at a possibly new size: new buffers, the
// processing element told again, the worker back, the view laid out.
void CMeasureDoc::AfterGraphRebuilt()
{
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    m_nImageWidth = int(width);
    m_nImageHeight = int(height);
    m_overlay.Allocate(width, height);
    m_graph.SetProcessEnable(1);
    m_graph.SetOverlay(1, m_overlay.PublishedPointer());
    ReadBackState();
    m_bLive = true;
    m_bPreviewRunning = true;
    m_overlay.Start();
    emit layoutNeeded();
}

void CMeasureDoc::CaptureToNewDocument()
{
    if (IDocumentHost* host = IDocumentHost::Instance())
        host->OnFileNew();
}
