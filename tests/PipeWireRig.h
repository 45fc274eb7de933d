#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <sys/types.h>

// A real PipeWire for tests, on any machine: its own session bus (WirePlumber
// links a stream to a camera only with one), PipeWire and WirePlumber in a
// private runtime folder, and virtual cameras that GStreamer feeds. This
// process, and every program it starts, then sees only the rig's cameras.
// Everything is stopped by process id; docs/SimulatedCamera.md tells how to
// do the same by hand.
class PipeWireRig
{
public:
    // The programs the rig needs that are missing; empty when none is.
    static QStringList MissingTools();

    // Starts the bus, PipeWire and WirePlumber; Error() says what failed.
    PipeWireRig();
    // Stops every camera and daemon and gives the environment back.
    ~PipeWireRig();
    PipeWireRig(const PipeWireRig&) = delete;
    PipeWireRig& operator=(const PipeWireRig&) = delete;

    bool IsRunning() const { return m_error.isEmpty(); }
    QString Error() const { return m_error.isEmpty() ? m_cameraError : m_error; }

    // A camera named description (the node's description, which is the name
    // the program lists), streaming caps ("video/x-raw,format=YUY2,...") from
    // a videotestsrc of the properties given ("pattern=solid-color
    // foreground-color=0xffRRGGBB"). Returns its process id once PipeWire
    // lists its node, or 0 (and Error()) when it did not come up.
    // One virtual camera serves a few streams in a row reliably: its
    // pipewiresink stalls after some stops of a consumer, so a test starts
    // the cameras it streams from itself.
    pid_t StartCamera(
        const QString& description, const QString& caps, const QString& source = "pattern=smpte");
    // Takes the node away, as unplugging a camera does.
    void StopCamera(pid_t pid);

private:
    pid_t Spawn(const QString& program, const QStringList& arguments, const QString& log);
    bool WaitForNode(const QString& description, bool present, int timeoutMs);
    bool WaitForWirePlumber(int timeoutMs);
    QString PwCli(const QStringList& arguments) const;
    void SetEnv(const char* name, const QByteArray& value);
    static void Stop(pid_t pid);

    QTemporaryDir m_dir;
    QString m_error; // of the daemons
    QString m_cameraError;
    pid_t m_bus = 0;
    pid_t m_pipewire = 0;
    pid_t m_wireplumber = 0;
    std::map<pid_t, QString> m_cameras; // pid -> description
    // What this process had before, put back at the end (unset: null).
    std::map<QByteArray, std::unique_ptr<QByteArray>> m_savedEnv;
};
