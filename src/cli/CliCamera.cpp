#include "cli/CliCamera.h"

#include "capture/CDeviceWatcher.h"
#include "capture/CameraSources.h"
#include "capture/GrabPicture.h"
#include "cli/CliInterrupt.h"
#include "cli/CliOutput.h"
#include "image/FCObjImage.h"
#include "image/ProcessOperations.h"
#include "platform/AppPaths.h"
#include "platform/SettingsKeys.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

namespace {

// Frames a camera gets to settle (exposure, first-frame garbage) before a picture is taken.
constexpr int kSettleFrames = 5;
constexpr int kFirstFramesTimeoutMs = 10000;

// The process's device watcher, made once: one with PipeWire's provider is
// never stopped anyway (see CDeviceWatcher), and the command ends with the
// process. Its running monitor also lists the cameras in the program's order,
// where a probe gives PipeWire's newest first.
CDeviceWatcher& ProcessWatcher()
{
    static CDeviceWatcher* const watcher = new CDeviceWatcher;
    return *watcher;
}

QString FirstLine(const QString& text)
{
    return text.section(QLatin1Char('\n'), 0, 0).trimmed();
}

} // namespace

CliCamera::CliCamera()
    : m_handler([this](const MessageBoxRequest& r) {
        m_messages.push_back(r);
        return IDOK;
    })
{
    m_graph.SetStreamErrorHandler([this](const QString& message) {
        if (m_streamError.isEmpty())
            m_streamError = message;
    });
    // A camera gone from the list is lost, as in the program: a PipeWire
    // source does not fail but waits for its node to come back.
    m_removed = QObject::connect(&ProcessWatcher(), &CDeviceWatcher::DeviceRemoved,
        [this](const QString& name) { m_graph.OnDeviceRemoved(name); });
}

CliCamera::~CliCamera()
{
    QObject::disconnect(m_removed);
    m_graph.SetStreamErrorHandler({});
    m_graph.ReleaseAll();
}

void CliCamera::ThrowIfFailed(const QString& what)
{
    if (m_messages.empty())
        return;
    const MessageBoxRequest& r = m_messages.front();
    QString text = what + QStringLiteral(": ") + FirstLine(r.text);
    if (const QString details = FirstLine(r.details); !details.isEmpty())
        text += QStringLiteral(" (") + details + QLatin1Char(')');
    ThrowFailure(text);
}

std::vector<CliCamera::Device> CliCamera::ListDevices()
{
    CliCamera camera;
    camera.m_graph.EnumDevices();
    std::vector<Device> out;
    for (int i = 0; i < camera.m_graph.DeviceCount(); ++i) {
        Device d;
        d.name = camera.m_graph.DeviceNameAt(i);
        if (camera.m_graph.BindDeviceByIndex(i) == S_OK) {
            if (const CameraSource* source = CameraSourceOfElement(camera.m_graph.DeviceElement()))
                d.api = QString::fromLatin1(source->name);
            camera.m_graph.EnumFormats();
            d.formats = camera.m_graph.Formats();
        }
        out.push_back(std::move(d));
    }
    return out;
}

void CliCamera::Open(const QString& device, const std::optional<FormatRequest>& format)
{
    m_graph.EnumDevices();
    if (m_graph.DeviceCount() == 0)
        ThrowFailure(
            QStringLiteral("no camera found (connect one, or use --demo-camera for the simulated camera)"));
    m_messages.clear();
    QString wanted = device;
    if (wanted.isEmpty()) {
        wanted = ReadString(SettingsKeys::VideoDevice, CurrentAppPaths().m_settingsFile);
    } else {
        QStringList names;
        for (int i = 0; i < m_graph.DeviceCount(); ++i)
            names << m_graph.DeviceNameAt(i);
        if (!names.contains(device))
            ThrowFailure(QStringLiteral("no camera named \"%1\" (cameras: %2)")
                             .arg(device, names.join(QStringLiteral(", "))));
    }
    m_graph.SetDeviceName(wanted);
    if (m_graph.InitGraph() != S_OK)
        ThrowIfFailed(QStringLiteral("the camera could not be opened"));
    ThrowIfFailed(QStringLiteral("the camera could not be opened"));
    m_graph.EnumFormats();
    if (m_graph.Formats().empty())
        ThrowFailure(
            QStringLiteral("camera \"%1\" offers no format this program can read").arg(DeviceName()));
    if (format) {
        const int index = FindFormat(m_graph.Formats(), *format);
        if (index < 0) {
            QStringList offered;
            for (const CaptureFormat& f : m_graph.Formats())
                offered << FormatSpecText(f);
            throw CliError { kExitUsage,
                QStringLiteral("camera \"%1\" offers no format %2x%3%4 (formats: %5)")
                    .arg(DeviceName())
                    .arg(format->width)
                    .arg(format->height)
                    .arg(format->fourcc.isEmpty() ? QString() : QLatin1Char(':') + format->fourcc)
                    .arg(offered.join(QStringLiteral(", "))) };
        }
        m_graph.SetSelectedFormat(index);
        m_size = QSize(int(format->width), int(format->height));
    }
}

void CliCamera::StartPreview()
{
    m_messages.clear();
    // The chosen format's size, else the one the device's model starts at.
    int hr = S_OK;
    if (m_size.isEmpty()) {
        m_graph.BuildPreviewGraph();
        ThrowIfFailed(QStringLiteral("the live video could not be built"));
        hr = m_graph.RunGraph();
    } else {
        hr = m_graph.ChangeResolution(unsigned(m_size.width()), unsigned(m_size.height()));
        ThrowIfFailed(QStringLiteral("the live video could not be built"));
    }
    if (hr != S_OK)
        ThrowFailure(QStringLiteral("camera \"%1\" could not be started").arg(DeviceName()));
    const int start = Frames();
    if (!Pump([&] { return Frames() >= start + kSettleFrames; }, kFirstFramesTimeoutMs)) {
        if (Interrupted())
            ThrowFailure(QStringLiteral("interrupted"));
        ThrowFailure(QStringLiteral("camera \"%1\" sent no pictures").arg(DeviceName()));
    }
}

FCObjImage CliCamera::GrabRaw()
{
    // Unprocessed: the still-picture chain applies the switches afterwards.
    // A frame processed before the switch may still be the grabber's.
    m_graph.SetProcessEnable(0);
    const int start = Frames();
    if (!Pump([&] { return m_graph.WaitGrabbedAfter(start, {}); }, kFirstFramesTimeoutMs))
        ThrowFailure(QStringLiteral("camera \"%1\" stopped sending pictures").arg(DeviceName()));
    FCObjImage picture;
    if (!GrabPicture(m_graph, picture))
        ThrowFailure(QStringLiteral("no picture could be taken from camera \"%1\"").arg(DeviceName()));
    return picture;
}

void CliCamera::StartRecording(
    const QString& file, const ProcessSwitches& s, std::shared_ptr<const FlatField> flat)
{
    m_messages.clear();
    m_graph.StopGraph();
    m_graph.DestroyGraph();
    m_graph.SetRecordFileName(file);
    m_graph.BuildRecordGraph();
    ThrowIfFailed(QStringLiteral("the recording could not be started"));
    m_graph.SetProcessEnable(0);
    if (m_graph.RunGraph() != S_OK)
        ThrowFailure(QStringLiteral("camera \"%1\" could not be started").arg(DeviceName()));
    for (const ProcessOperation& op : kProcessOperations)
        m_graph.SetOperation(op.op, s);
    m_graph.SetFlatField(std::move(flat));
    m_graph.SetProcessEnable(1);
    // The time asked for counts from the first frame on its way to the file:
    // a camera starting again at 4K takes a second, which a short recording
    // would otherwise spend without a frame.
    const int start = Frames();
    if (!Pump([&] { return Frames() > start; }, kFirstFramesTimeoutMs)) {
        if (Interrupted())
            ThrowFailure(QStringLiteral("interrupted"));
        ThrowFailure(QStringLiteral("camera \"%1\" sent no pictures").arg(DeviceName()));
    }
}

void CliCamera::StopRecording()
{
    // A failed stream has already been taken down and reported.
    if (m_streamError.isEmpty())
        m_graph.StopGraph();
    QCoreApplication::processEvents();
    if (!m_streamError.isEmpty())
        ThrowFailure(m_streamError);
    ThrowIfFailed(QStringLiteral("the recording could not be finished"));
}

bool CliCamera::Pump(const std::function<bool()>& done, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (!m_streamError.isEmpty())
            ThrowFailure(m_streamError);
        if (done())
            return true;
        if (Interrupted() || timer.elapsed() > timeoutMs)
            return false;
        QThread::msleep(5);
    }
}

int CliCamera::Frames()
{
    int frames = 0;
    m_graph.GetStateB(&frames);
    return frames;
}

QSize CliCamera::VideoSize() const
{
    unsigned width = 0, height = 0;
    m_graph.GetVideoSize(&width, &height);
    return QSize(int(width), int(height));
}
