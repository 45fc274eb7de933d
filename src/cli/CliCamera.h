#pragma once

#include "capture/CXCapGraph.h"
#include "cli/CliOptions.h"
#include "platform/MessageBox.h"

#include <QMetaObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class FCObjImage;
class FlatField;

// The live document's camera work without a window: the same capture graph,
// device choice and topologies. Message boxes the graph would show are
// collected and end the command as one-line errors (CliError).
class CliCamera
{
public:
    CliCamera();
    ~CliCamera();
    CliCamera(const CliCamera&) = delete;
    CliCamera& operator=(const CliCamera&) = delete;

    // Binds the camera: device empty takes the settings' device (falling
    // back to the first, as the program does); a named one must be listed.
    // Then the format asked for, when one was.
    void Open(const QString& device, const std::optional<FormatRequest>& format);
    // Builds and runs the preview topology and waits for settled frames.
    void StartPreview();
    // The current frame, unprocessed; the preview must run.
    FCObjImage GrabRaw();
    // Switches to the recording topology writing into file, with the live
    // processing element applying switches, after the flat field when one
    // is given.
    void StartRecording(const QString& file, const ProcessSwitches& switches,
        std::shared_ptr<const FlatField> flat = nullptr);
    // Ends the file properly; throws when it could not be written.
    void StopRecording();
    // After a failure: whether the camera was lost and the file finished
    // with the frames so far.
    bool RecordingKept() const { return m_graph.RecordingFinishedOnError(); }

    // Runs the event loop until done() holds, the time is up (false), an
    // interrupt arrives (false) or the stream fails (throws).
    bool Pump(const std::function<bool()>& done, int timeoutMs);
    // Frames the processing element has seen since the graph was built.
    int Frames();
    QSize VideoSize() const;
    QString DeviceName() const { return m_graph.DeviceName(); }

    // The listed cameras with their formats, as the device chooser lists them.
    struct Device
    {
        QString name;
        QString api; // the camera source: "v4l2", "pipewire", "simulated"
        std::vector<CaptureFormat> formats;
    };
    static std::vector<Device> ListDevices();

private:
    // Throws the first collected message as the failure of what.
    void ThrowIfFailed(const QString& what);

    std::vector<MessageBoxRequest> m_messages;
    ScopedMessageBoxHandler m_handler;
    CXCapGraph m_graph;
    QMetaObject::Connection m_removed;
    QString m_streamError;
    QSize m_size; // asked for by --format
};
