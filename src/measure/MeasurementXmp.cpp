#include "measure/MeasurementXmp.h"

#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"

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
    const PictureXmp::Properties properties = PictureXmp::Read(path);
    Stored stored;
    bool ok[3] = {};
    const int unitIndex = properties.value(kXmpUnit).toInt(&ok[0]);
    const double x = properties.value(kXmpXPerPixel).toDouble(&ok[1]);
    const double y = properties.value(kXmpYPerPixel).toDouble(&ok[2]);
    if (ok[0] && ok[1] && ok[2] && unitIndex >= 0 && unitIndex <= 4 && x > 0 && y > 0) {
        CalibrationRecord unit;
        unit.m_rtUnit = unitIndex;
        unit.m_dcxPerPixel = x;
        unit.m_dcyPerPixel = y;
        bool real = false;
        if (const double v = properties.value(kXmpXReal).toDouble(&real); real && v > 0) {
            unit.m_dcxReal = v;
            stored.hasXReal = true;
        }
        if (const double v = properties.value(kXmpYReal).toDouble(&real); real && v > 0) {
            unit.m_dcyReal = v;
            stored.hasYReal = true;
        }
        stored.unit = unit;
    }
    stored.shapes = properties.value(kXmpShapes).toUtf8();
    return stored;
}

} // namespace MeasurementXmp
