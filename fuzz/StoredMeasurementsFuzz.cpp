// A picture's stored properties, as any program may have written them: the
// first five lines are the calibration's, the rest the shapes. Whatever they
// hold, a used calibration is a valid one, and the shapes read back are those
// the writer gives again, read as they were written.
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"

#include <QBuffer>
#include <QGuiApplication>

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Labels measure text, which wants fonts.
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QList<QByteArray> lines = bytes.split('\n');
    static const char* const names[] = { "Unit", "XPerPixel", "YPerPixel", "XReal", "YReal" };
    PictureXmp::Properties properties;
    qsizetype used = 0;
    for (int i = 0; i < 5 && i < lines.size(); ++i) {
        properties.insert(QLatin1String(names[i]), QString::fromUtf8(lines[i]));
        used += lines[i].size() + 1;
    }
    if (used < bytes.size())
        properties.insert(QStringLiteral("Shapes"), QString::fromUtf8(bytes.mid(used)));

    const MeasurementXmp::Stored stored = MeasurementXmp::FromProperties(properties);
    CalibrationRecord unit { 0, 0.2, 0.2, 10.0, 10.0 };
    stored.ApplyTo(unit);
    if (stored.unit && stored.invalidUnit)
        std::abort();
    if (!(unit.m_rtUnit >= 0 && unit.m_rtUnit <= 4 && std::isfinite(unit.m_dcxPerPixel)
            && unit.m_dcxPerPixel > 0 && std::isfinite(unit.m_dcyPerPixel) && unit.m_dcyPerPixel > 0))
        std::abort();

    CGVLElemMgr mgr;
    mgr.SetUnit(unit);
    mgr.CreateShape(ShapeType::Ruler);
    const ShapesRead read = ReadShapesJson(mgr, stored.shapes);
    if (read.made < 0 || (read.made == 0) != (mgr.m_arShape.size() == 1))
        std::abort();
    QBuffer csv;
    csv.open(QIODevice::WriteOnly);
    mgr.WriteCsv(csv);

    const QByteArray written = ShapesToJson(mgr);
    CGVLElemMgr again;
    again.CreateShape(ShapeType::Ruler);
    const ShapesRead back = ReadShapesJson(again, written);
    if (back.made != read.made || !back.Note().isEmpty() || ShapesToJson(again) != written)
        std::abort();
    return 0;
}
