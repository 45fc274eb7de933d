#include "measure/MeasurementXmp.h"

#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

#include <cmath>

namespace {

// Property names of our XMP namespace.
const QString kXmpUnit = QStringLiteral("Unit");
const QString kXmpXPerPixel = QStringLiteral("XPerPixel");
const QString kXmpYPerPixel = QStringLiteral("YPerPixel");
const QString kXmpXReal = QStringLiteral("XReal");
const QString kXmpYReal = QStringLiteral("YReal");
const QString kXmpShapes = QStringLiteral("Shapes");

QString Number(double value)
{
    return QString::number(value, 'g', 17);
}

} // namespace

namespace MeasurementXmp {

void Stored::ApplyTo(CalibrationRecord& record) const
{
    if (!unit)
        return;
    record.m_rtUnit = unit->m_rtUnit;
    record.m_dcxPerPixel = unit->m_dcxPerPixel;
    record.m_dcyPerPixel = unit->m_dcyPerPixel;
    if (hasXReal)
        record.m_dcxReal = unit->m_dcxReal;
    if (hasYReal)
        record.m_dcyReal = unit->m_dcyReal;
}

bool Write(
    const QString& path, CGVLElemMgr& mgr, bool withShapes, double scaleX, double scaleY, QString* error)
{
    PictureXmp::Properties properties;
    const CalibrationRecord unit = mgr.GetUnit();
    properties.insert(kXmpUnit, QString::number(unit.m_rtUnit));
    properties.insert(kXmpXPerPixel, Number(unit.m_dcxPerPixel * scaleX));
    properties.insert(kXmpYPerPixel, Number(unit.m_dcyPerPixel * scaleY));
    properties.insert(kXmpXReal, Number(unit.m_dcxReal));
    properties.insert(kXmpYReal, Number(unit.m_dcyReal));
    if (withShapes)
        properties.insert(kXmpShapes, QString::fromUtf8(ShapesToJson(mgr)));
    return PictureXmp::Write(path, properties, error);
}

Stored Read(const QString& path)
{
    return FromProperties(PictureXmp::Read(path));
}

Stored FromProperties(const PictureXmp::Properties& properties)
{
    Stored stored;
    // A size is a finite positive number, or it is not one.
    auto size = [&properties](const QString& name, double& to) {
        bool ok = false;
        to = properties.value(name).toDouble(&ok);
        return ok && std::isfinite(to) && to > 0;
    };
    bool ok = false;
    const int unitIndex = properties.value(kXmpUnit).toInt(&ok);
    double x = 0;
    double y = 0;
    const bool xSize = size(kXmpXPerPixel, x);
    const bool sizes = size(kXmpYPerPixel, y) && xSize;
    if (ok && unitIndex >= 0 && unitIndex <= 4 && sizes) {
        CalibrationRecord unit;
        unit.m_rtUnit = unitIndex;
        unit.m_dcxPerPixel = x;
        unit.m_dcyPerPixel = y;
        stored.hasXReal = size(kXmpXReal, unit.m_dcxReal);
        stored.hasYReal = size(kXmpYReal, unit.m_dcyReal);
        stored.unit = unit;
    } else {
        stored.invalidUnit = properties.contains(kXmpUnit) || properties.contains(kXmpXPerPixel)
            || properties.contains(kXmpYPerPixel);
    }
    stored.shapes = properties.value(kXmpShapes).toUtf8();
    return stored;
}

} // namespace MeasurementXmp
