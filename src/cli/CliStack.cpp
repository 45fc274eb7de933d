// The stack command: extended depth of field from saved pictures.

#include "cli/CliCommands.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FCObjImage.h"
#include "image/FocusStack.h"
#include "image/PictureXmp.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"

#include <QFileInfo>

namespace {

// Saves the picture with the calibration the first picture kept, if any.
void SaveWithCalibration(const QImage& picture, const QString& path, const MeasurementXmp::Stored& stored)
{
    FCObjImage file;
    if (!file.FromQImage(picture))
        ThrowFailure(QStringLiteral("cannot write %1: %2").arg(path, file.ErrorString()));
    std::function<bool(const QString&)> calibrate;
    if (stored.unit && PictureXmp::CanHold(path))
        calibrate = [&stored](const QString& written) {
            CalibrationRecord unit;
            stored.ApplyTo(unit);
            CGVLElemMgr mgr;
            mgr.SetUnit(unit);
            return MeasurementXmp::Write(written, mgr, false);
        };
    SavePictureFile(file, path, calibrate);
    if (stored.unit && !PictureXmp::CanHold(path))
        PrintProgress(QStringLiteral("%1: this type of file keeps no calibration").arg(path));
}

} // namespace

int RunStack(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("stack"),
        QStringLiteral(
            "Fuse pictures of one field taken at different focus into one picture sharp everywhere (extended "
            "depth of field). Each picture is aligned to the first (shift and the small change of "
            "magnification with focus), so the result has the first picture's size and place and carries "
            "the calibration the first picture keeps. The type of OUT follows its extension."));
    parser.AddOption({ { QStringLiteral("o"), QStringLiteral("out") },
        QStringLiteral("The fused picture to write."), QStringLiteral("OUT") });
    parser.AddOption({ QStringLiteral("depth"),
        QStringLiteral("Also write the depth map: per pixel, the picture that was sharpest there, as gray "
                       "levels from 0 (the first picture) to 255 (the last)."),
        QStringLiteral("DEPTH") });
    parser.AddPositional(QStringLiteral("PICTURE"),
        QStringLiteral("At least two pictures of the same size, in focus order."),
        QStringLiteral("PICTURE..."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QStringList pictures = parser.Positional();
    if (!parser.IsSet(QStringLiteral("out")))
        ThrowUsage(QStringLiteral("stack needs -o OUT"));
    if (pictures.size() < 2)
        ThrowUsage(QStringLiteral("stack needs at least two pictures"));
    const QString out = parser.Value(QStringLiteral("out"));
    const QString depth = parser.Value(QStringLiteral("depth"));
    CheckPictureType(out);
    CheckOutputFolder(out);
    if (parser.IsSet(QStringLiteral("depth"))) {
        CheckPictureType(depth);
        CheckOutputFolder(depth);
    }
    for (const QString& picture : pictures)
        if (!QFileInfo(picture).isFile() || !QFileInfo(picture).isReadable())
            ThrowFailure(QStringLiteral("cannot read %1: no such file, or not readable").arg(picture));

    FocusStack stack;
    for (const QString& picture : pictures) {
        FCObjImage frame;
        bool loaded = false;
        WithoutCodecNoise([&] { loaded = frame.Load(picture); });
        if (!loaded) {
            // The reader names the file; the line names it once.
            QString why = frame.ErrorString();
            why.remove(picture + QStringLiteral(": "));
            ThrowFailure(QStringLiteral("cannot read %1: %2").arg(picture, why));
        }
        if (!stack.Add(frame.ToQImage()))
            ThrowFailure(QStringLiteral("%1: %2").arg(picture, stack.ErrorString()));
    }
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(pictures.first());
    SaveWithCalibration(stack.Result(), out, stored);
    PrintProgress(QStringLiteral("Saved the fusion of %1 pictures to %2").arg(stack.Count()).arg(out));
    if (parser.IsSet(QStringLiteral("depth"))) {
        SaveWithCalibration(stack.DepthPicture(), depth, stored);
        PrintProgress(QStringLiteral("Saved the depth map to %1").arg(depth));
    }
    return kExitOk;
}
