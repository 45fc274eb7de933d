#pragma once

#include "capture/CameraSources.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <gst/gst.h>

// One adjustable setting of a camera, as the camera describes it.
struct CameraControl
{
    enum class Type { Integer, Boolean, Menu, Button };

    QString name;
    Type type = Type::Integer;
    int minimum = 0;
    int maximum = 0;
    int step = 1;
    int defaultValue = 0;
    int value = 0;
    // Menu entries and the value each stands for.
    QStringList menuItems;
    QList<int> menuValues;
    // Present but not adjustable now (a manual exposure while the automatic
    // one is on) or never.
    bool inactive = false;
    bool readOnly = false;

    // Where it lives: a V4L2 control id, or a property of the source element.
    quint32 v4l2Id = 0;
    QByteArray property;
};

// The controls of a bound camera, reached as its source says
// (CameraSource::controls): a V4L2 camera's through the control ioctls on its
// device node (brightness, contrast, exposure and its automatic mode, white
// balance, ... whatever the driver lists), or the simulated camera's own
// properties. Changes apply at once.
class CCameraControls
{
public:
    CCameraControls(GstElement* source, GstDevice* device);
    ~CCameraControls();
    CCameraControls(const CCameraControls&) = delete;
    CCameraControls& operator=(const CCameraControls&) = delete;

    // Whether any control can be reached; Error() says why not.
    bool IsAvailable() const;
    QString Error() const { return m_error; }

    // The controls with their current values and states.
    QList<CameraControl> Query() const;
    // Sets one control; false (and Error()) when the camera refused.
    bool Set(const CameraControl& control, int value);

private:
    bool HasPropertyControls() const;
    QList<CameraControl> QueryV4l2() const;
    QList<CameraControl> QueryProperties() const;

    GstElement* m_source = nullptr;
    CameraControlAccess m_access = CameraControlAccess::DeviceNode;
    int m_fd = -1;
    mutable QString m_error;
};
