#pragma once

#include "calibration/CalibrationRecord.h"
#include "image/PictureXmp.h"

#include <QByteArray>
#include <QString>

#include <optional>

class CGVLElemMgr;

// The measurements a saved picture keeps in our XMP properties: the
// calibration it was taken with and, unless they were burnt in, the shapes.
// The program's save and open and oculix-cli share these.
namespace MeasurementXmp {

struct Stored
{
    // Unit and per-pixel sizes, when the file holds a valid calibration.
    std::optional<CalibrationRecord> unit;
    // The file holds a calibration that is not: a unit outside 0..4 or a
    // per-pixel size that is not a finite positive number. It is not used.
    bool invalidUnit = false;
    // The real arm lengths are taken only when given and positive; otherwise
    // the record's own stay.
    bool hasXReal = false;
    bool hasYReal = false;
    // ShapesToJson's text; empty when the file keeps none.
    QByteArray shapes;

    // Puts the stored calibration into `record`, leaving what the file lacks.
    void ApplyTo(CalibrationRecord& record) const;
};

// Writes the manager's calibration, per-pixel sizes multiplied by the scale
// of a rescaled save, and with `withShapes` its shapes. False, with `error`
// set, when the file cannot take them.
bool Write(const QString& path, CGVLElemMgr& mgr, bool withShapes, double scaleX = 1.0, double scaleY = 1.0,
    QString* error = nullptr);

Stored Read(const QString& path);
// The same from the properties PictureXmp read.
Stored FromProperties(const PictureXmp::Properties& properties);

} // namespace MeasurementXmp
