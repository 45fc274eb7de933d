#pragma once

#include <QString>

#include <gst/gst.h>

#include <span>
#include <vector>

// The kinds of camera source the program takes cameras from (V4L2, PipeWire,
// the simulated camera), one row each. The device list, the capture-device
// check, the binding, the device watcher, the camera controls and their
// store all ask the rows; a new kind of source is a new row.

// How a source's camera controls are reached, if at all.
enum class CameraControlAccess {
    None, // the properties dialog says the camera offers none
    DeviceNode, // the V4L2 control ioctls on the device node
    ElementProperties, // properties of the source element itself
};

struct CameraSource
{
    // For logs, messages and oculix-cli's "api": "v4l2", "pipewire", "simulated".
    const char* name;
    // The class the device monitor is asked for.
    const char* deviceClass;
    // Whether a device the monitor found is one of this source's cameras.
    // The first row that claims a device owns it; a device no row claims is
    // not listed.
    bool (*claims)(GstDevice* device);
    // Devices of a lower group are listed first, so a demo camera never
    // displaces a real one as the default; within a group, the monitor's order.
    int listGroup;
    // The camera behind a device, named the same whichever source lists it
    // (its V4L2 device node); null or empty when it cannot be matched. One
    // camera offered by two sources is listed once, through the source of the
    // lower preference; the other device is hidden.
    QString (*cameraNode)(GstDevice* device);
    int preference;
    // The source element's factory; tells a bound element's source.
    const char* elementFactory;
    // Makes that element for a device, with the properties it needs.
    GstElement* (*makeElement)(GstDevice* device, const char* name);
    // What, beside its name, keeps a camera's stored controls apart from
    // another of the same name (a serial number); null or empty when nothing.
    QString (*stableId)(GstDevice* device);
    CameraControlAccess controls;
};

using CameraSourceTable = std::span<const CameraSource>;

// The program's sources.
CameraSourceTable CameraSources();

// The row that owns a device, or null: the program takes a device as a
// camera when some row claims it.
const CameraSource* CameraSourceOf(GstDevice* device, CameraSourceTable sources = CameraSources());
// The row whose element this is, or null.
const CameraSource* CameraSourceOfElement(GstElement* element, CameraSourceTable sources = CameraSources());

// A device's display (friendly) name.
QString DeviceDisplayName(GstDevice* device);
// A string of the device's properties; empty when it has none.
QString DeviceProperty(GstDevice* device, const char* field);

// A monitor of every class the sources ask for, with the devices of hidden
// providers too: a desktop's PipeWire provider hides V4L2's.
GstDeviceMonitor* NewCameraMonitor(CameraSourceTable sources = CameraSources());

// What the listing makes of the devices a monitor found (in its order): the
// claimed ones, hidden duplicates left out, by list group. Each with a new
// reference the caller drops.
std::vector<GstDevice*> ArrangeCaptureDevices(
    const std::vector<GstDevice*>& found, CameraSourceTable sources = CameraSources());
// Whether another of the present devices shows the same camera through a
// preferred source.
bool IsHiddenDuplicate(
    GstDevice* device, const std::vector<GstDevice*>& present, CameraSourceTable sources = CameraSources());

// The capture devices attached now, arranged as above, each with a reference
// the caller drops. monitorFailed: no device monitor.
std::vector<GstDevice*> ListCaptureDevices(bool* monitorFailed);
// A running monitor (the device watcher's) that listing asks instead of
// making one of its own; null to stop. A provider's bus serves one monitor
// at a time: a second monitor coming and going would leave the running one
// deaf to cameras plugged in or out.
void ShareDeviceMonitor(GstDeviceMonitor* monitor);
