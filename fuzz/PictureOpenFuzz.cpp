// Any bytes given to "Open", under each name the program reads by: the
// picture either loads or is refused with a reason, and its measurements are
// read, Extended XMP and all, into a manager without a crash or a hang.
#include "image/FCObjImage.h"
#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"

#include <QGuiApplication>
#include <QImageReader>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    FCObjImage::RegisterFormats();
    // Small inputs may claim huge pictures; the fuzzer wants many quick runs.
    QImageReader::setAllocationLimit(4);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    // The first byte picks the name, as the extension picks the reader.
    static const char* const names[] = { "a.jpg", "a.png", "a.tif", "a.bmp", "a.gif", "a.tga", "a.pcx" };
    const QString name = QLatin1String(names[data[0] % 7]);
    FCObjImage picture;
    const bool loaded = picture.LoadBytes(bytes.mid(1), name);
    if (!loaded && picture.ErrorString().isEmpty())
        std::abort(); // refused without a reason
    if (loaded && (picture.Width() <= 0 || picture.Height() <= 0))
        std::abort();

    const MeasurementXmp::Stored stored = MeasurementXmp::FromProperties(PictureXmp::ReadBytes(bytes.mid(1)));
    CGVLElemMgr mgr;
    CalibrationRecord unit { 0, 0.2, 0.2, 10.0, 10.0 };
    stored.ApplyTo(unit);
    mgr.SetUnit(unit);
    mgr.CreateShape(ShapeType::Ruler);
    ReadShapesJson(mgr, stored.shapes);
    return 0;
}
