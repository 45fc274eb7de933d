// The rois command: a saved picture's shapes as an ImageJ ROI set.

#include "cli/CliCommands.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "measure/CGVLElemMgr.h"
#include "measure/ImageJRois.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"

#include <QFileInfo>

int RunRois(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("rois"),
        QStringLiteral(
            "Export the shapes kept in a picture saved by Oculix as ImageJ ROIs, which ImageJ's ROI "
            "Manager opens and measures to the same numbers: lines, rectangles, polygons, circles "
            "(as ovals), angles, points and counting marks, arrows and texts, each named with its "
            "number and kind. A .zip is a ROI set; a .roi holds a single shape."));
    parser.AddOption({ { QStringLiteral("o"), QStringLiteral("out") },
        QStringLiteral("The ROI set (.zip) or single ROI (.roi) to write."), QStringLiteral("ROISET.zip") });
    parser.AddPositional(QStringLiteral("PICTURE"), QStringLiteral("A picture saved by Oculix."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString path = parser.OnePositional(QStringLiteral("PICTURE"));
    if (!parser.IsSet(QStringLiteral("out")))
        ThrowUsage(QStringLiteral("rois needs -o ROISET.zip"));
    const QString out = parser.Value(QStringLiteral("out"));
    const QString type = QFileInfo(out).suffix().toLower();
    if (type != QLatin1String("zip") && type != QLatin1String("roi"))
        ThrowUsage(QStringLiteral("%1: a ROI set is a .zip, a single ROI a .roi").arg(out));
    CheckOutputFolder(out);
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable())
        ThrowFailure(QStringLiteral("cannot read %1: no such file, or not readable").arg(path));

    const MeasurementXmp::Stored stored = MeasurementXmp::Read(path);
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    if (!stored.shapes.isEmpty())
        ShapesFromJson(mgr, stored.shapes);
    const std::vector<ImageJRoi> rois = ImageJRois::FromShapes(mgr);
    if (rois.empty())
        ThrowFailure(QStringLiteral("%1: no shapes stored in this picture").arg(path));
    if (type == QLatin1String("roi") && rois.size() > 1)
        ThrowFailure(QStringLiteral("%1 shapes need a ROI set (.zip), not a single .roi").arg(rois.size()));
    SaveFileBytes(
        out, type == QLatin1String("roi") ? ImageJRois::Encode(rois.front()) : ImageJRois::EncodeSet(rois));
    PrintProgress(QStringLiteral("Wrote %1 ROIs to %2").arg(rois.size()).arg(out));
    return kExitOk;
}
