// The stitch command: pictures of a scan into one.

#include "cli/CliCommands.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FCObjImage.h"
#include "image/Stitcher.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QFileInfo>

int RunStitch(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("stitch"),
        QStringLiteral(
            "Stitch overlapping pictures of a scan into one. Give them in the order they were taken, each "
            "overlapping an earlier one by about 20 % or more; their places are found from the pictures. "
            "The result covers all of them in the first picture's scale and orientation, its origin at "
            "their top-left corner, with seams feathered and vignetting and exposure evened out, and keeps "
            "the first picture's calibration (in .jpg, .png and .tif files). A picture that fits nowhere "
            "is an error: exit code 1, nothing written."));
    parser.AddOption({ { QStringLiteral("o"), QStringLiteral("output") },
        QStringLiteral("The picture to write; the type follows the extension (.bmp, .jpg, .png, .tif, .tga, "
                       ".pcx, .gif)."),
        QStringLiteral("OUT") });
    parser.AddOption({ QStringLiteral("positions"),
        QStringLiteral("Also write where each picture went: one line \"file,x,y\" per picture, its top-left "
                       "corner in the result's pixels."),
        QStringLiteral("POS.csv") });
    parser.AddPositional(QStringLiteral("PICTURE"), QStringLiteral("The pictures, in the order taken."),
        QStringLiteral("PICTURE..."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QStringList pictures = parser.Positional();
    if (pictures.isEmpty())
        ThrowUsage(QStringLiteral("PICTURE is missing"));
    if (!parser.IsSet(QStringLiteral("output")))
        ThrowUsage(QStringLiteral("stitch needs -o OUT"));
    const QString out = parser.Value(QStringLiteral("output"));
    CheckPictureType(out);
    const bool withPositions = parser.IsSet(QStringLiteral("positions"));
    const QString positions = parser.Value(QStringLiteral("positions"));
    CheckOutputFolder(out);
    if (withPositions)
        CheckOutputFolder(positions);

    Stitcher stitcher;
    for (const QString& path : pictures) {
        FCObjImage picture;
        if (!QFileInfo(path).isFile() || !picture.Load(path))
            ThrowFailure(
                QStringLiteral("cannot read %1: %2")
                    .arg(path,
                        QFileInfo(path).isFile() ? picture.ErrorString() : QStringLiteral("no such file")));
        QString why;
        if (!stitcher.Add(picture.ToQImage(), &why))
            ThrowFailure(QStringLiteral("%1 cannot be placed: %2").arg(path, why));
        PrintProgress(
            QStringLiteral("Placed %1 (%2 of %3)").arg(path).arg(stitcher.Count()).arg(pictures.size()));
    }

    FCObjImage result;
    if (!result.FromQImage(stitcher.Compose()))
        ThrowFailure(QStringLiteral("the stitched picture of %1 x %2 pixels is too large")
                         .arg(stitcher.Size().width())
                         .arg(stitcher.Size().height()));
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(pictures.first());
    std::function<bool(const QString&)> keepCalibration;
    QString xmpError;
    CGVLElemMgr calibration;
    if (stored.unit) {
        CalibrationRecord unit;
        stored.ApplyTo(unit);
        calibration.SetUnit(unit);
        keepCalibration = [&](const QString& file) {
            return MeasurementXmp::Write(file, calibration, false, 1.0, 1.0, &xmpError);
        };
    }
    SavePictureFile(result, out, keepCalibration,
        QStringLiteral("the calibration of %1 could not be kept").arg(pictures.first()));

    if (withPositions) {
        QByteArray table;
        for (int i = 0; i < stitcher.Count(); ++i) {
            const QPointF at = stitcher.Position(i);
            table += CsvField(pictures[i], ',') + ',' + QByteArray::number(at.x(), 'f', 3) + ','
                + QByteArray::number(at.y(), 'f', 3) + '\n';
        }
        SaveFileBytes(positions, table);
    }
    PrintProgress(QStringLiteral("Stitched %1 pictures into a %2 x %3 picture, %4")
                      .arg(stitcher.Count())
                      .arg(result.Width())
                      .arg(result.Height())
                      .arg(out));
    return kExitOk;
}
