#include "capture/CCameraControlStore.h"
#include "capture/CDevicePropertiesDlg.h"
#include "capture/CDlgFullScreen.h"
#include "capture/CFormatDlg.h"
#include "capture/CProcessPropertiesDlg.h"
#include "capture/CVideoWidget.h"
#include "capture/CXCapGraph.h"
#include "platform/DebugLog.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

// The video window, full screen, the size, and the dialogs of the camera,
// its format and the processing element.

void CXCapGraph::EnsureVideoWidget(QWidget* owner)
{
    if (!m_videoWidget)
        m_videoWidget = new CVideoWidget(m_mailbox, owner);
    else if (m_videoWidget->parentWidget() != owner)
        m_videoWidget->setParent(owner);
}

CVideoWidget* CXCapGraph::VideoWidget() const
{
    return m_videoWidget.data();
}

int CXCapGraph::SetParentWnd(QWidget* owner, int x, int y, int width, int height)
{
    qCDebug(lcCapture, "SetParentWnd:%d, %d, %d, %d", x, y, width, height);
    m_owner = owner;
    if (!m_renderer) {
        Fail(QStringLiteral("Could not get video window interface"));
        return E_FAIL;
    }
    // Without a widget application (tools, benchmarks) there is nothing to
    // show the frames in; the grabber still keeps them.
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return S_OK;
    EnsureVideoWidget(owner);
    m_videoWidget->setGeometry(x, y, width, height);
    m_videoWidget->show();
    m_videoWidget->raise();
    return S_OK;
}

int CXCapGraph::ShowVideoWindow(int on)
{
    if (!m_graph)
        return E_POINTER;
    if (m_videoWidget)
        m_videoWidget->setVisible(on != 0);
    return S_OK;
}

int CXCapGraph::ToggleFullScreen(QWidget* dialog)
{
    if (!m_videoWidget)
        return E_FAIL;
    m_fullScreen = m_fullScreen ? 0 : -1;
    if (m_fullScreen) {
        if (!dialog) {
            if (!m_ownFullScreen)
                m_ownFullScreen = new CDlgFullScreen([this] {
                    if (IsFullScreen())
                        ToggleFullScreen(m_ownFullScreen);
                });
            dialog = m_ownFullScreen;
        }
        m_fullScreenDialog = dialog;
        m_savedWidth = m_videoWidget->width();
        m_savedHeight = m_videoWidget->height();
        m_videoWidget->setParent(dialog);
        dialog->showFullScreen();
        const QScreen* screen = dialog->screen() ? dialog->screen() : QGuiApplication::primaryScreen();
        const QSize area = screen ? screen->geometry().size() : dialog->size();
        const float videoW = float(std::max(1u, m_width.load()));
        const float videoH = float(std::max(1u, m_height.load()));
        const float sx = float(area.width()) / videoW;
        const float sy = float(area.height()) / videoH;
        int x = 0, y = 0, w = 0, h = 0;
        if (sx > sy) {
            w = int(videoW * sy);
            h = area.height();
            x = int(std::fabs((float(area.width()) - videoW * sy) * 0.5f));
        } else {
            w = area.width();
            h = int(videoH * sx);
            y = int(std::fabs((float(area.height()) - videoH * sx) * 0.5f));
        }
        m_videoWidget->setGeometry(x, y, w, h);
        m_videoWidget->show();
    } else {
        if (!dialog)
            dialog = m_fullScreenDialog;
        if (dialog)
            dialog->hide();
        m_videoWidget->hide();
        m_videoWidget->setParent(m_owner);
        m_videoWidget->setGeometry(0, 0, m_savedWidth, m_savedHeight);
        m_videoWidget->show();
        m_videoWidget->raise();
    }
    return S_OK;
}

int CXCapGraph::GetVideoSize(unsigned* width, unsigned* height) const
{
    if (!m_deviceBound)
        return E_POINTER;
    if (width)
        *width = m_width;
    if (height)
        *height = m_height;
    return S_OK;
}

int CXCapGraph::ChangeResolution(unsigned width, unsigned height)
{
    if (!m_device)
        return E_POINTER;
    DestroyGraph();
    m_width = width;
    m_height = height;
    BuildPreviewGraph();
    SetParentWnd(m_owner, 0, 0, int(width), int(height));
    return RunGraph();
}

int CXCapGraph::ShowFormatDialog(const QString& deviceName, QWidget* parent)
{
    if (!m_graph)
        return E_FAIL;
    if (deviceName != m_deviceName) {
        StopGraph();
        if (m_device) {
            gst_element_set_state(m_device, GST_STATE_NULL);
            gst_bin_remove(GST_BIN(m_graph), m_device);
        }
        if (FAILED(BindDeviceByName(deviceName)) || !m_device || !gst_bin_add(GST_BIN(m_graph), m_device))
            return E_FAIL;
        EnumFormats();
    }
    if (m_formats.empty())
        return E_FAIL;
    CFormatDlg dialog(m_formats, m_hasCurrentFormat ? m_currentFormat : m_formats.front(), parent);
    dialog.setWindowTitle(QGuiApplication::applicationDisplayName());
    if (dialog.exec() == QDialog::Accepted && dialog.SelectedIndex() >= 0) {
        m_selectedFormat = dialog.SelectedIndex();
        m_currentFormat = m_formats[std::size_t(m_selectedFormat)];
        m_hasCurrentFormat = true;
    }
    // The camera's format as it stands now gives the size.
    m_width = m_currentFormat.width;
    m_height = m_currentFormat.height;
    return S_OK;
}

int CXCapGraph::ShowDeviceProperties()
{
    if (!m_device)
        return E_FAIL;
    CDevicePropertiesDlg dialog(
        m_device, m_boundDevice, CCameraControlStore::CameraKey(m_deviceName, m_boundDevice), m_owner);
    dialog.setWindowTitle(QStringLiteral("%1 Properties").arg(m_deviceName));
    dialog.exec();
    return S_OK;
}

int CXCapGraph::ShowProcessProperties()
{
    if (!m_process)
        return E_FAIL;
    CProcessPropertiesDlg dialog(m_process, m_owner);
    dialog.exec();
    return S_OK;
}
