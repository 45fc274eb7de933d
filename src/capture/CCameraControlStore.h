#pragma once

#include "capture/CCameraControls.h"

#include <QString>

#include <gst/gst.h>

// The camera controls a user set, kept per camera in their own settings file
// (one section per camera: its name, and its source's stable id where there
// is one, a V4L2 camera's serial number) and applied again whenever that
// camera starts, so a camera plugged out and in again, or the next run, looks
// as it was left.
class CCameraControlStore
{
public:
    // file: empty takes "CameraControls.ini" in the data folder.
    explicit CCameraControlStore(QString file = {});

    // The section a camera's values live in.
    static QString CameraKey(const QString& name, GstDevice* device);

    void Remember(const QString& camera, const CameraControl& control, int value) const;
    // The stored value of a control, or false.
    bool Stored(const QString& camera, const CameraControl& control, int* value) const;
    // Sets every stored control the camera still offers: switches and modes
    // first, so a manual value lands after its automatic mode is off. Answers
    // how many were set.
    int ApplyTo(const QString& camera, CCameraControls& controls) const;

    QString File() const { return m_file; }

private:
    QString m_file;
};
