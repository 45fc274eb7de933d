// The particles command: count and size the particles of a saved picture.

#include "calibration/MeasureTables.h"
#include "cli/CliCommands.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FCObjImage.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CPictureSaver.h"
#include "measure/MeasurementXmp.h"
#include "measure/ParticleAnalyzer.h"
#include "platform/AppPaths.h"
#include "platform/SettingsKeys.h"

#include <QFileInfo>
#include <QStringList>

namespace {

// Only these keep shapes that can be edited again (XMP).
const QStringList kShapePictureTypes = { QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("png"),
    QStringLiteral("tif"), QStringLiteral("tiff") };

double AreaOption(const CliParser& parser, const QString& name, double fallback)
{
    if (!parser.IsSet(name))
        return fallback;
    bool ok = false;
    const double value = parser.Value(name).trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value) || value < 0)
        ThrowUsage(QStringLiteral("--%1 takes a number of pixels, not \"%2\"").arg(name, parser.Value(name)));
    return value;
}

double CircularityOption(const CliParser& parser, const QString& name, double fallback)
{
    if (!parser.IsSet(name))
        return fallback;
    bool ok = false;
    const double value = parser.Value(name).trimmed().toDouble(&ok);
    if (!ok || !(value >= 0.0 && value <= 1.0))
        ThrowUsage(
            QStringLiteral("--%1 takes a number from 0 to 1, not \"%2\"").arg(name, parser.Value(name)));
    return value;
}

} // namespace

int RunParticles(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("particles"),
        QStringLiteral(
            "Count and size the particles of a picture as ImageJ's \"Analyze Particles\" does: gray levels "
            "(R+G+B)/3, 8-connected particles, the outline traced along the pixel edges. One CSV row per "
            "particle: area (in the picture's calibrated unit squared), perimeter, diameter of the circle of "
            "the same area, circularity (4 pi area / perimeter^2) and centre; the unit is \"px\" when the "
            "picture keeps no calibration."));
    parser.AddOption({ QStringLiteral("threshold"),
        QStringLiteral("The gray levels taken as particles: LOW:HIGH (inclusive, 0-255), or an automatic "
                       "threshold: otsu, default (ImageJ's) or triangle."),
        QStringLiteral("LEVELS") });
    parser.AddOption({ QStringLiteral("dark"),
        QStringLiteral("With an automatic threshold: the particles are darker than the background (without: "
                       "lighter).") });
    parser.AddOption({ QStringLiteral("min-area"),
        QStringLiteral("Leave out particles of fewer pixels than this."), QStringLiteral("PX") });
    parser.AddOption({ QStringLiteral("max-area"),
        QStringLiteral("Leave out particles of more pixels than this."), QStringLiteral("PX") });
    parser.AddOption({ QStringLiteral("min-circularity"),
        QStringLiteral("Leave out particles less round than this (0-1)."), QStringLiteral("C") });
    parser.AddOption({ QStringLiteral("max-circularity"),
        QStringLiteral("Leave out particles rounder than this (0-1)."), QStringLiteral("C") });
    parser.AddOption({ QStringLiteral("exclude-edges"),
        QStringLiteral("Leave out particles touching the picture's edge.") });
    parser.AddOption({ QStringLiteral("include-holes"),
        QStringLiteral("Count the holes in a particle, and what lies in them, as part of it.") });
    parser.AddOption({ QStringLiteral("watershed"),
        QStringLiteral("Split touching round particles along the narrowest place between them.") });
    parser.AddOption({ QStringLiteral("precision"),
        QStringLiteral("Decimals of the results, 1 to 5 (default: the program's precision setting)."),
        QStringLiteral("N") });
    parser.AddOption({ QStringLiteral("csv"),
        QStringLiteral("Write the table to this file instead of stdout."), QStringLiteral("OUT") });
    parser.AddOption({ QStringLiteral("annotate"),
        QStringLiteral("Save the picture with each particle's outline as a polygon shape the program opens "
                       "for editing (.jpg, .png or .tif)."),
        QStringLiteral("OUT") });
    parser.AddPositional(QStringLiteral("PICTURE"), QStringLiteral("The picture to analyse."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString path = parser.OnePositional(QStringLiteral("PICTURE"));
    if (!parser.IsSet(QStringLiteral("threshold")))
        ThrowUsage(QStringLiteral("particles needs --threshold, e.g. --threshold otsu or --threshold 0:120"));
    ParticleOptions options;
    QString error;
    if (!ParseThreshold(parser.Value(QStringLiteral("threshold")), &options, &error))
        ThrowUsage(error);
    options.dark = parser.IsSet(QStringLiteral("dark"));
    options.minArea = AreaOption(parser, QStringLiteral("min-area"), options.minArea);
    options.maxArea = AreaOption(parser, QStringLiteral("max-area"), options.maxArea);
    if (options.minArea > options.maxArea)
        ThrowUsage(QStringLiteral("--min-area is above --max-area"));
    options.minCircularity = CircularityOption(parser, QStringLiteral("min-circularity"), 0.0);
    options.maxCircularity = CircularityOption(parser, QStringLiteral("max-circularity"), 1.0);
    if (options.minCircularity > options.maxCircularity)
        ThrowUsage(QStringLiteral("--min-circularity is above --max-circularity"));
    options.excludeEdges = parser.IsSet(QStringLiteral("exclude-edges"));
    options.includeHoles = parser.IsSet(QStringLiteral("include-holes"));
    options.watershed = parser.IsSet(QStringLiteral("watershed"));
    const SettingsKeys::DocumentSettings settings
        = SettingsKeys::ReadDocumentSettings(CurrentAppPaths().m_settingsFile);
    const int precision
        = parser.Integer(QStringLiteral("precision"), 1, 5, std::clamp(settings.m_precision, 1, 5));
    const QString csvOut = parser.Value(QStringLiteral("csv"));
    if (parser.IsSet(QStringLiteral("csv")))
        CheckOutputFolder(csvOut);
    const QString annotate = parser.Value(QStringLiteral("annotate"));
    if (parser.IsSet(QStringLiteral("annotate"))) {
        if (!kShapePictureTypes.contains(QFileInfo(annotate).suffix().toLower()))
            ThrowUsage(
                QStringLiteral("--annotate %1: only .jpg, .png and .tif pictures keep shapes").arg(annotate));
        CheckOutputFolder(annotate);
    }

    const FCObjImage picture = ReadPictureFile(path, false);
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(path);
    const ParticleResult result
        = AnalyzeParticles(picture.ToQImage(), options, stored.unit ? &*stored.unit : nullptr);
    const QString unit = stored.unit ? QString::fromLatin1(MeasureTables::UnitText(stored.unit->m_rtUnit))
                                     : QStringLiteral("px");
    const QByteArray csv = ParticleCsv(result.particles, unit, precision);

    if (parser.IsSet(QStringLiteral("annotate"))) {
        // As the program would keep them: the picture opened with the
        // settings' calibration and its own, the outlines drawn on it.
        CGVLElemMgr mgr;
        CalibrationRecord calibration { settings.m_rtUnit, settings.m_dcxPerPixel, settings.m_dcyPerPixel,
            settings.m_dcxReal, settings.m_dcyReal };
        stored.ApplyTo(calibration);
        mgr.SetUnit(calibration);
        mgr.CreateShape(ShapeType::Ruler);
        AddOutlineShapes(mgr, result.particles);
        CPictureSaver saver(mgr, SaveOverlay {}, SaveTexts {});
        if (!saver.Save(picture, annotate))
            ThrowFailure(
                QStringLiteral("cannot write %1: %2").arg(annotate, saver.ErrorString().simplified()));
        if (saver.XmpFailed())
            ThrowFailure(QStringLiteral("%1 was written without its outlines: %2")
                             .arg(annotate, saver.XmpError().simplified()));
    }
    if (parser.IsSet(QStringLiteral("csv")))
        SaveFileBytes(csvOut, csv);
    else
        PrintOut(QString::fromUtf8(csv));
    PrintProgress(QStringLiteral("%1 particles, gray levels %2 to %3")
                      .arg(result.particles.size())
                      .arg(result.low)
                      .arg(result.high));
    return kExitOk;
}
