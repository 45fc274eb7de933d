// The commands on saved pictures: measure and calibrate.

#include "calibration/GraticuleDetector.h"
#include "calibration/MeasureTables.h"
#include "calibration/SvrFile.h"
#include "cli/CliCommands.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FCObjImage.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "measure/ShapesJson.h"
#include "platform/AppPaths.h"
#include "platform/NumberText.h"
#include "platform/SettingsKeys.h"

#include <QBuffer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The arms of the ruler a fresh calibration lays out, in pixels; the ruler
// data file keeps the real length they measure.
constexpr int kRulerArm = 200;

// The program's export of the picture's stored measurements, or nothing when
// the picture keeps no shapes.
QByteArray PictureCsv(const QString& path, const SettingsKeys::DocumentSettings& settings, bool semicolon)
{
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(path);
    if (stored.invalidUnit)
        PrintError(QStringLiteral("oculix-cli: %1: this picture's calibration is not valid; the current "
                                  "calibration is used\n")
                       .arg(path));
    CGVLElemMgr mgr;
    // As a document opens a picture: the settings first, then what the file keeps.
    CalibrationRecord unit { settings.m_rtUnit, settings.m_dcxPerPixel, settings.m_dcyPerPixel,
        settings.m_dcxReal, settings.m_dcyReal };
    stored.ApplyTo(unit);
    mgr.SetUnit(unit);
    CGVLElemMgr::Appearance look = mgr.GetAppearance();
    look.precision = settings.m_precision;
    mgr.SetAppearance(look);
    mgr.CreateShape(ShapeType::Ruler);
    if (stored.shapes.isEmpty())
        return {};
    const ShapesRead read = ReadShapesJson(mgr, stored.shapes);
    if (const QString note = read.Note(); !note.isEmpty())
        PrintError(QStringLiteral("oculix-cli: %1: %2\n").arg(path, note));
    if (read.made == 0)
        return {};
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (semicolon)
        mgr.WriteCsvSemicolon(buffer);
    else
        mgr.WriteCsv(buffer);
    return buffer.data();
}

} // namespace

int RunMeasure(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("measure"),
        QStringLiteral(
            "Export the measurements kept in pictures saved by Oculix (JPEG, PNG, TIFF with their shapes not "
            "burnt in), in the program's CSV format with each picture's own calibration and the precision of "
            "the settings. One picture gives exactly the program's export; several give one block each, "
            "headed by a line \"File,PICTURE\" and followed by an empty line. A picture without stored "
            "measurements is named on stderr and skipped; when no picture had any, the exit code is 1."));
    parser.AddOption({ QStringLiteral("csv"),
        QStringLiteral("Write the table to this file instead of stdout."), QStringLiteral("OUT") });
    parser.AddOption({ QStringLiteral("semicolon"),
        QStringLiteral("Separate the fields by semicolons, as the French interface exports them.") });
    parser.AddOption({ QStringLiteral("precision"),
        QStringLiteral("Decimals of the results, 1 to 5, as the precision setting gives them (default: the "
                       "setting)."),
        QStringLiteral("N") });
    parser.AddPositional(
        QStringLiteral("PICTURE"), QStringLiteral("Pictures saved by Oculix."), QStringLiteral("PICTURE..."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QStringList pictures = parser.Positional();
    if (pictures.isEmpty())
        ThrowUsage(QStringLiteral("PICTURE is missing"));
    const bool semicolon = parser.IsSet(QStringLiteral("semicolon"));
    SettingsKeys::DocumentSettings settings
        = SettingsKeys::ReadDocumentSettings(CurrentAppPaths().m_settingsFile);
    settings.m_precision = parser.Integer(QStringLiteral("precision"), 1, 5, settings.m_precision);
    const QString out = parser.Value(QStringLiteral("csv"));
    if (parser.IsSet(QStringLiteral("csv")))
        CheckOutputFolder(out);
    for (const QString& picture : pictures)
        if (!QFileInfo(picture).isFile() || !QFileInfo(picture).isReadable())
            ThrowFailure(QStringLiteral("cannot read %1: no such file, or not readable").arg(picture));

    const char separator = semicolon ? ';' : ',';
    QByteArray table;
    int measured = 0;
    for (const QString& picture : pictures) {
        const QByteArray csv = PictureCsv(picture, settings, semicolon);
        if (csv.isEmpty()) {
            const QString why = QStringLiteral("%1: no measurements stored in this picture").arg(picture);
            if (pictures.size() == 1)
                ThrowFailure(why);
            PrintError(QStringLiteral("oculix-cli: ") + why + QLatin1Char('\n'));
            continue;
        }
        ++measured;
        if (pictures.size() == 1)
            table = csv;
        else
            table += "File" + QByteArray(1, separator) + CsvField(picture, separator) + '\n' + csv + '\n';
    }
    if (measured == 0)
        ThrowFailure(QStringLiteral("none of the pictures holds measurements"));
    if (parser.IsSet(QStringLiteral("csv"))) {
        SaveFileBytes(out, table);
        PrintProgress(QStringLiteral("Wrote the measurements of %1 of %2 pictures to %3")
                          .arg(measured)
                          .arg(pictures.size())
                          .arg(out));
    } else {
        PrintOut(QString::fromUtf8(table));
    }
    return kExitOk;
}

int RunCalibrate(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("calibrate"),
        QStringLiteral("Find a stage micrometer in a picture and print the pixel size with its uncertainty "
                       "(about 95 %), as \"Detect from micrometer\" does. The calibration is kept in the "
                       "division's unit, or in micrometres when a pixel is below 0.1 of it. No micrometer "
                       "found: exit code 1, nothing written."));
    parser.AddOption({ QStringLiteral("division"),
        QStringLiteral("The length of one division of the micrometer with its unit: um, mm, cm, dm or inch "
                       "(e.g. 0.01mm, 10um)."),
        QStringLiteral("LENGTH") });
    parser.AddOption({ QStringLiteral("save"),
        QStringLiteral("Also write the calibration as a ruler data file (.svr), as the calibration dialog "
                       "saves it, under exactly this name."),
        QStringLiteral("NAME.svr") });
    parser.AddOption({ QStringLiteral("json"),
        QStringLiteral("Print one JSON object with \"unit\", \"x_per_pixel\", \"y_per_pixel\", "
                       "\"x_uncertainty\" and \"y_uncertainty\".") });
    parser.AddPositional(QStringLiteral("PICTURE"), QStringLiteral("The picture of the micrometer."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString path = parser.OnePositional(QStringLiteral("PICTURE"));
    if (!parser.IsSet(QStringLiteral("division")))
        ThrowUsage(QStringLiteral("calibrate needs --division, e.g. --division 0.01mm"));
    Division division;
    QString error;
    if (!ParseDivision(parser.Value(QStringLiteral("division")), &division, &error))
        ThrowUsage(error);
    const QString save = parser.Value(QStringLiteral("save"));
    if (parser.IsSet(QStringLiteral("save")))
        CheckOutputFolder(save);

    const FCObjImage picture = ReadPictureFile(path, false);
    const GraticuleFit fit = DetectGraticule(picture.ToQImage(), division.micrometres);
    if (!fit.found)
        ThrowFailure(QStringLiteral("%1: %2").arg(path, fit.reason.simplified()));

    const int unit = MeasureTables::CalibrationUnit(fit.perPixel, division.unit);
    const double perPixel = fit.perPixel / MeasureTables::MicrometresPer(unit);
    const double uncertainty = fit.perPixelU / MeasureTables::MicrometresPer(unit);
    if (parser.IsSet(QStringLiteral("save"))) {
        // As the calibration dialog keeps an accepted detection: the real
        // length of the ruler's arms, and the pixel size they give.
        SvrData data;
        const QString real = QString::number(perPixel * kRulerArm, 'f', 6);
        const QString per = NumberText::FormatC("%.4f", NumberText::LeadingReal(real) / kRulerArm);
        data.m_strXReal = data.m_strYReal = real;
        data.m_strXPerPixel = data.m_strYPerPixel = per;
        data.m_nXLenth = data.m_nYLenth = kRulerArm;
        data.m_nUnit = unit;
        if (SvrFile::Write(save, data.Normalized(), &error) != SvrFile::Status::Ok)
            ThrowFailure(QStringLiteral("cannot write %1: %2").arg(save, error.simplified()));
        PrintProgress(QStringLiteral("Saved the calibration to %1").arg(save));
    }
    if (parser.IsSet(QStringLiteral("json"))) {
        const QJsonObject result { { QStringLiteral("unit"),
                                       QString::fromLatin1(MeasureTables::UnitText(unit)) },
            { QStringLiteral("x_per_pixel"), perPixel }, { QStringLiteral("y_per_pixel"), perPixel },
            { QStringLiteral("x_uncertainty"), uncertainty },
            { QStringLiteral("y_uncertainty"), uncertainty },
            { QStringLiteral("ticks"), int(fit.ticks.size()) }, { QStringLiteral("angle"), fit.angleDeg } };
        PrintOut(QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact)) + QLatin1Char('\n'));
    } else {
        PrintOut(GraticuleResultText(fit) + QLatin1Char('\n'));
    }
    return kExitOk;
}
