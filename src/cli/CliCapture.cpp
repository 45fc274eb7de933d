// The camera commands: devices, snapshot, record, timelapse.

#include "capture/SimDeviceProvider.h"
#include "cli/CliCamera.h"
#include "cli/CliCommands.h"
#include "cli/CliCorrection.h"
#include "cli/CliInterrupt.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FCObjImage.h"
#include "image/JpegSummary.h"
#include "platform/AppPaths.h"
#include "platform/QuickSaveName.h"
#include "platform/SettingsKeys.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>

namespace {

// The texts of the JPEG summary, in the order WriteJpegSummary takes them.
constexpr const char* kSummaryOptions[] = { "title", "subject", "author", "comment" };

// Paths longer than the capture graph keeps cannot be recorded to.
constexpr int kMaxRecordPath = 255;

} // namespace

int RunDevices(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("devices"),
        QStringLiteral("List the cameras and their formats, each in the form --format takes. Without any "
                       "camera the list is a failure (exit code 1); --json then prints [] and succeeds."));
    parser.AddOption({ QStringLiteral("json"),
        QStringLiteral("Print a JSON array of objects with \"name\", \"api\" (v4l2, pipewire, simulated) and "
                       "\"formats\".") });
    parser.AddOption({ QStringLiteral("demo-camera"),
        QStringLiteral("List the simulated camera too (also OCULIX_DEMO_CAMERA=1).") });
    if (!parser.Parse(arguments))
        return kExitOk;
    if (!parser.Positional().isEmpty())
        ThrowUsage(QStringLiteral("devices takes no arguments"));
    if (parser.IsSet(QStringLiteral("demo-camera")))
        EnableDemoCamera(true);
    const std::vector<CliCamera::Device> devices = CliCamera::ListDevices();
    if (parser.IsSet(QStringLiteral("json"))) {
        QJsonArray list;
        for (const CliCamera::Device& d : devices) {
            QJsonArray formats;
            for (const CaptureFormat& f : d.formats)
                formats.append(QJsonObject { { QStringLiteral("width"), int(f.width) },
                    { QStringLiteral("height"), int(f.height) }, { QStringLiteral("fps"), FormatFps(f) },
                    { QStringLiteral("format"), f.fourcc },
                    { QStringLiteral("argument"), FormatSpecText(f) } });
            list.append(QJsonObject { { QStringLiteral("name"), d.name }, { QStringLiteral("api"), d.api },
                { QStringLiteral("formats"), formats } });
        }
        PrintOut(QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Indented)));
        return kExitOk;
    }
    if (devices.empty())
        ThrowFailure(
            QStringLiteral("no camera found (connect one, or use --demo-camera for the simulated camera)"));
    QString text;
    for (const CliCamera::Device& d : devices) {
        text += d.name + QLatin1Char('\n');
        for (const CaptureFormat& f : d.formats)
            text += QStringLiteral("  ") + FormatSpecText(f) + QLatin1Char('\n');
    }
    PrintOut(text);
    return kExitOk;
}

int RunSnapshot(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("snapshot"),
        QStringLiteral("Take one processed picture from the camera and save it; the type follows OUT's "
                       "extension (.bmp, .jpg, .png, .tif, .tga, .pcx, .gif)."));
    parser.AddCameraOptions(true);
    CliCorrection::AddOptions(parser, true);
    for (const char* name : kSummaryOptions)
        parser.AddOption({ QString::fromLatin1(name),
            QStringLiteral("The %1 of the picture's summary (Exif), for .jpg only (elsewhere bad usage). "
                           "Every .jpg gets the summary, as the program saves it.")
                .arg(QString::fromLatin1(name)),
            QStringLiteral("TEXT") });
    parser.AddPositional(QStringLiteral("OUT"), QStringLiteral("The picture file to write."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString out = parser.OnePositional(QStringLiteral("OUT"));
    CheckPictureType(out);
    const QString type = QFileInfo(out).suffix().toLower();
    const bool jpeg = type == QLatin1String("jpg") || type == QLatin1String("jpeg");
    QStringList texts;
    for (const char* name : kSummaryOptions) {
        if (!jpeg && parser.IsSet(QString::fromLatin1(name)))
            ThrowUsage(QStringLiteral("--%1 applies to .jpg pictures only").arg(QString::fromLatin1(name)));
        texts.append(parser.Value(QString::fromLatin1(name)));
    }
    const ProcessSwitches switches = parser.Process();
    const CliCorrection correction(parser);
    CheckOutputFolder(out);

    CliCamera camera;
    camera.Open(parser.Device(), parser.Format());
    camera.StartPreview();
    const FCObjImage picture = correction.Processed(camera.GrabRaw(), switches);
    std::function<bool(const QString&)> summary;
    if (jpeg)
        summary = [&texts](const QString& file) {
            return WriteJpegSummary(file, texts[0], texts[1], texts[2], texts[3]);
        };
    SavePictureFile(picture, out, summary);
    PrintProgress(QStringLiteral("Saved %1 x %2 picture from \"%3\" to %4")
                      .arg(picture.Width())
                      .arg(picture.Height())
                      .arg(camera.DeviceName(), out));
    return kExitOk;
}

int RunRecord(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("record"),
        QStringLiteral("Record the processed live video to an AVI file (Motion JPEG), for --seconds or until "
                       "interrupted (Ctrl+C), which ends the file properly."));
    parser.AddCameraOptions(true);
    CliCorrection::AddOptions(parser, true);
    parser.AddOption(
        { QStringLiteral("seconds"), QStringLiteral("How long to record."), QStringLiteral("S") });
    parser.AddPositional(QStringLiteral("OUT.avi"), QStringLiteral("The AVI file to write."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString out = parser.OnePositional(QStringLiteral("OUT.avi"));
    if (QFileInfo(out).suffix().compare(QLatin1String("avi"), Qt::CaseInsensitive) != 0)
        ThrowUsage(QStringLiteral("%1: a recording is an .avi file").arg(out));
    const double seconds = parser.Seconds(QStringLiteral("seconds"), 0.1, 0);
    const ProcessSwitches switches = parser.Process();
    const CliCorrection correction(parser);
    CheckOutputFolder(out);

    WatchInterrupt();
    CliCamera camera;
    camera.Open(parser.Device(), parser.Format());
    camera.StartPreview();
    // The white balance is measured on a frame before the recording starts.
    const auto flat = correction.Any() ? correction.ForStream(camera.GrabRaw()) : nullptr;
    // The file grows under a temporary name and takes its own only when finished.
    const QString temporary = TemporaryNameBeside(QFileInfo(out).absoluteFilePath());
    if (temporary.size() > kMaxRecordPath) {
        QFile::remove(temporary);
        ThrowFailure(QStringLiteral("cannot write %1: the path is longer than %2 characters")
                         .arg(out)
                         .arg(kMaxRecordPath - 20));
    }
    try {
        // The file's stream starts with the pipeline, before the first frame
        // (which stands in until it comes): its length is this clock's.
        QElapsedTimer stream;
        stream.start();
        camera.StartRecording(temporary, switches, flat);
        const int start = camera.Frames();
        QElapsedTimer clock;
        clock.start();
        qint64 shown = 0;
        const qint64 limitMs = seconds > 0 ? qint64(std::llround(seconds * 1000)) : -1;
        camera.Pump(
            [&] {
                const qint64 now = clock.elapsed();
                if (now / 1000 > shown) {
                    shown = now / 1000;
                    PrintProgress(
                        QStringLiteral("Recording: %1 s, %2 frames").arg(shown).arg(camera.Frames() - start));
                }
                return limitMs >= 0 && now >= limitMs;
            },
            std::numeric_limits<int>::max());
        camera.StopRecording();
        if (std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(out).constData()) != 0)
            ThrowFailure(
                QStringLiteral("cannot write %1: %2").arg(out, QString::fromLocal8Bit(std::strerror(errno))));
        PrintProgress(QStringLiteral("Recorded %1 s from \"%2\" to %3")
                          .arg(double(stream.elapsed()) / 1000, 0, 'f', 1)
                          .arg(camera.DeviceName(), out));
    } catch (CliError& error) {
        // A camera lost on the way leaves the frames so far in a finished
        // file: it takes its name, and the command still fails.
        const bool kept = camera.RecordingKept()
            && std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(out).constData()) == 0;
        if (!kept)
            QFile::remove(temporary);
        if (error.code == kExitFailure && !error.text.startsWith(QLatin1String("cannot write")))
            error.text = QStringLiteral("recording to %1 failed: %2").arg(out, error.text);
        if (kept)
            error.text += QStringLiteral(" The frames recorded so far are kept in %1.").arg(out);
        throw;
    }
    return kExitOk;
}

int RunTimelapse(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("timelapse"),
        QStringLiteral("Take --count pictures, one every --interval seconds after a --wait countdown, named "
                       "as the program's quick save names them: PREFIX, running number, .jpg or .bmp. The "
                       "running number continues from the program's save settings and is stored back."));
    parser.AddCameraOptions(true);
    CliCorrection::AddOptions(parser, true);
    parser.AddOption(
        { QStringLiteral("interval"), QStringLiteral("Seconds between pictures."), QStringLiteral("S") });
    parser.AddOption(
        { QStringLiteral("count"), QStringLiteral("Number of pictures (1-15000)."), QStringLiteral("N") });
    parser.AddOption({ QStringLiteral("wait"),
        QStringLiteral("Countdown before the first interval (default 0)."), QStringLiteral("S") });
    parser.AddOption({ QStringLiteral("out"),
        QStringLiteral("The folder (default: the program's quick-save folder)."), QStringLiteral("DIR") });
    parser.AddOption({ QStringLiteral("prefix"),
        QStringLiteral("File name prefix (default: the program's quick-save prefix)."),
        QStringLiteral("P") });
    parser.AddOption(
        { QStringLiteral("bmp"), QStringLiteral("Save .bmp pictures (default: the program's choice).") });
    if (!parser.Parse(arguments))
        return kExitOk;
    if (!parser.Positional().isEmpty())
        ThrowUsage(QStringLiteral("timelapse takes no arguments besides its options"));
    if (!parser.IsSet(QStringLiteral("interval")) || !parser.IsSet(QStringLiteral("count")))
        ThrowUsage(QStringLiteral("timelapse needs --interval and --count"));
    const double interval = parser.Seconds(QStringLiteral("interval"), 0.1, 1);
    const int count = parser.Integer(QStringLiteral("count"), 1, 15000, 5);
    const double wait = parser.Seconds(QStringLiteral("wait"), 0, 0);
    const ProcessSwitches switches = parser.Process();
    const CliCorrection correction(parser);

    const AppPaths paths = CurrentAppPaths();
    const QString settings = paths.m_settingsFile;
    const QString folder = parser.IsSet(QStringLiteral("out"))
        ? parser.Value(QStringLiteral("out"))
        : ReadString(SettingsKeys::SaveFilePath, settings);
    const QString prefix = parser.IsSet(QStringLiteral("prefix"))
        ? parser.Value(QStringLiteral("prefix"))
        : ReadString(SettingsKeys::SavePrefix, settings);
    if (prefix.contains(QLatin1Char('/')))
        ThrowUsage(QStringLiteral("--prefix names no folder: %1").arg(prefix));
    const bool bmp = parser.IsSet(QStringLiteral("bmp")) || ReadInt(SettingsKeys::SaveBmp, settings) != 0;
    // As the program at start-up: the data folder holds the settings that
    // keep the running number. The quick save makes its folder when missing.
    CreateDataFolders(paths);
    const QString target = folder.isEmpty() ? paths.m_pictureFolder : folder;
    if (!target.isEmpty() && !QDir().mkpath(target))
        ThrowFailure(QStringLiteral("cannot write to %1: the folder cannot be made").arg(target));
    CheckOutputFolder(QuickSavePath(folder, paths.m_pictureFolder, prefix, 0, bmp));

    WatchInterrupt();
    CliCamera camera;
    camera.Open(parser.Device(), parser.Format());
    camera.StartPreview();

    // Picture k is due wait + k * interval seconds after the start: the
    // countdown first, then one full interval before each picture.
    QElapsedTimer clock;
    clock.start();
    qint64 shownWait = -1;
    int suffix = std::numeric_limits<int>::min();
    for (int k = 1; k <= count; ++k) {
        const qint64 due = qint64(std::llround((wait + k * interval) * 1000));
        const bool reached = camera.Pump(
            [&] {
                const qint64 now = clock.elapsed();
                if (wait > 0 && now < qint64(wait * 1000) && now / 1000 != shownWait) {
                    shownWait = now / 1000;
                    PrintProgress(
                        QStringLiteral("Starting in %1 s").arg(std::ceil(wait - double(now) / 1000)));
                }
                return now >= due;
            },
            std::numeric_limits<int>::max());
        if (!reached)
            ThrowFailure(QStringLiteral("interrupted after %1 of %2 pictures").arg(k - 1).arg(count));
        // The number is read at each picture, as the quick save does, but
        // never goes back: settings that cannot be written must not make
        // every picture overwrite the first.
        suffix = std::max(suffix, ReadInt(SettingsKeys::SaveSuffix, settings));
        const QString path = QuickSavePath(folder, paths.m_pictureFolder, prefix, suffix, bmp);
        SavePictureFile(correction.Processed(camera.GrabRaw(), switches), path);
        ++suffix;
        WriteInt(SettingsKeys::SaveSuffix, suffix, settings);
        PrintProgress(QStringLiteral("Picture %1/%2: %3").arg(k).arg(count).arg(path));
    }
    return kExitOk;
}
