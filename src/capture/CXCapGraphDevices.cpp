#include "capture/CXCapGraph.h"
#include "capture/CameraModels.h"
#include "capture/CameraSources.h"
#include "platform/DebugLog.h"
#include "platform/MessageBox.h"

#include <QGuiApplication>

// Listing the cameras, binding one by name, by index or as the default, and
// changing to another while the preview runs.

// ---------------------------------------------------------------- devices

void CXCapGraph::EnumDevices()
{
    ReleaseDeviceList();
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListCaptureDevices(&monitorFailed);
    if (monitorFailed) {
        Fail(QStringLiteral("Error Creating Device Enumerator"));
        return;
    }
    if (devices.empty()) {
        MessageBox(QStringLiteral("Sorry, you have no video capture hardware.\r\n\r\n"
                                  "Video capture will not function properly."),
            QGuiApplication::applicationDisplayName(), MB_OK | MB_ICONWARNING);
        return;
    }
    for (GstDevice* d : devices) {
        const QString name = DeviceDisplayName(d);
        if (m_deviceCount < kMaxDevices && !name.isEmpty() && IsSupportedCamera(name, d)) {
            m_devices.push_back(GST_DEVICE(gst_object_ref(d)));
            m_deviceNames.push_back(name);
            m_deviceCount = int(m_devices.size());
        }
        gst_object_unref(d);
    }
}

void CXCapGraph::ReleaseDeviceList()
{
    for (GstDevice* d : m_devices)
        gst_object_unref(d);
    m_devices.clear();
    m_deviceNames.clear();
    m_deviceCount = 0;
}

QString CXCapGraph::DeviceNameAt(int index) const
{
    return index >= 0 && index < m_deviceNames.size() ? m_deviceNames[index] : QString();
}

int CXCapGraph::Bind(GstDevice* device, GstElement** filter)
{
    const CameraSource* source = CameraSourceOf(device);
    GstElement* element = source ? source->makeElement(device, "Cap") : nullptr;
    if (!element)
        return E_FAIL;
    gst_object_ref_sink(element);
    if (m_device) {
        if (m_graph && GST_OBJECT_PARENT(m_device) == GST_OBJECT(m_graph)) {
            gst_element_set_state(m_device, GST_STATE_NULL);
            gst_bin_remove(GST_BIN(m_graph), m_device);
        }
        gst_element_set_state(m_device, GST_STATE_NULL);
        gst_object_unref(m_device);
    }
    if (m_boundDevice)
        gst_object_unref(m_boundDevice);
    m_device = element;
    m_boundDevice = GST_DEVICE(gst_object_ref(device));
    m_deviceBound = true;
    m_hasCurrentFormat = false;
    if (filter)
        *filter = element;
    return S_OK;
}

int CXCapGraph::GetSpecCapDevice(GstElement** filter, const QString& name)
{
    if (name.isEmpty())
        return GetDefaultCapDevice(filter);
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListCaptureDevices(&monitorFailed);
    if (monitorFailed)
        return S_FALSE; // nothing bound; callers only treat failures as fatal
    int hr = E_FAIL;
    for (GstDevice* d : devices) {
        const QString found = DeviceDisplayName(d);
        qCDebug(lcCapture) << "GetSpecCapDevice" << found << name;
        if (FAILED(hr) && found == name && IsSupportedCamera(found, d))
            hr = Bind(d, filter);
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    if (FAILED(hr))
        return GetDefaultCapDevice(filter);
    m_deviceName = name.left(kMaxNameChars);
    const QSize size = ModelDefaultSize(name, true);
    m_width = unsigned(size.width());
    m_height = unsigned(size.height());
    return hr;
}

int CXCapGraph::GetDefaultCapDevice(GstElement** filter)
{
    qCDebug(lcCapture) << "Into function GetDefaultCapDevice";
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListCaptureDevices(&monitorFailed);
    int hr = E_FAIL;
    QString bound;
    for (GstDevice* d : devices) {
        const QString name = DeviceDisplayName(d);
        qCDebug(lcCapture) << "GetDefaultCapDevice" << name;
        if (FAILED(hr) && IsSupportedCamera(name, d)) {
            hr = Bind(d, filter);
            if (SUCCEEDED(hr))
                bound = name;
        }
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    if (FAILED(hr))
        return hr;
    m_deviceName = bound.left(kMaxNameChars);
    qCDebug(lcCapture) << "BindToObject'Device:" << bound;
    const QSize size = ModelDefaultSize(bound, false);
    m_width = unsigned(size.width());
    m_height = unsigned(size.height());
    return hr;
}

int CXCapGraph::BindDeviceByIndex(int index)
{
    if (index < 0 || index >= m_deviceCount)
        return E_INVALIDARG;
    return Bind(m_devices[std::size_t(index)], nullptr);
}

int CXCapGraph::BindDeviceByName(const QString& name)
{
    bool monitorFailed = false;
    std::vector<GstDevice*> devices = ListCaptureDevices(&monitorFailed);
    int hr = E_FAIL;
    for (GstDevice* d : devices) {
        const QString found = DeviceDisplayName(d);
        if (FAILED(hr) && found == name && IsSupportedCamera(found, d)) {
            hr = Bind(d, nullptr);
            if (SUCCEEDED(hr))
                m_deviceName = name.left(kMaxNameChars);
        }
    }
    for (GstDevice* d : devices)
        gst_object_unref(d);
    return hr;
}

void CXCapGraph::SelectCurrentDevice()
{
    for (int i = 0; i < kMaxDevices && i < m_deviceNames.size(); ++i) {
        if (m_deviceNames[i].isEmpty())
            return;
        if (m_deviceNames[i] == m_deviceName) {
            m_selectedDevice = i;
            return;
        }
    }
}

int CXCapGraph::ChangeDevice(int index, unsigned* width, unsigned* height)
{
    StopGraph();
    DestroyGraph();
    ReleaseAll();
    EnumDevices();
    int hr = BindDeviceByIndex(index);
    if (FAILED(hr))
        return hr;
    m_deviceName = m_deviceNames[index].left(kMaxNameChars);
    m_selectedDevice = index;
    if (FAILED(hr = InitGraphForBoundDevice()))
        return hr;
    EnumFormats();
    unsigned w = 0;
    unsigned h = 0;
    GetVideoSize(&w, &h);
    hr = ChangeResolution(w, h);
    GetVideoSize(width, height);
    return hr;
}

bool CXCapGraph::OnDeviceRemoved(const QString& name)
{
    if (!m_device || name != m_deviceName)
        return false;
    // The driver usually reports a read error first; when the removal comes
    // first, or the graph is paused and reads nothing, it is the same loss.
    OnStreamError(QStringLiteral("The device was removed."), {}, QStringLiteral("camera"));
    return true;
}

int CXCapGraph::Reconnect()
{
    const unsigned width = m_width;
    const unsigned height = m_height;
    StopGraph();
    DestroyGraph();
    ReleaseAll();
    int hr = InitGraph();
    if (FAILED(hr))
        return hr;
    EnumFormats();
    return ChangeResolution(width, height);
}
