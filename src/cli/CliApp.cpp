#include "cli/CliCommands.h"
#include "cli/CliOutput.h"

#include <QCoreApplication>

#include <map>

namespace {

struct Command
{
    int (*run)(const QStringList&);
    const char* summary;
};

const std::map<QString, Command>& Commands()
{
    static const std::map<QString, Command> commands {
        { QStringLiteral("devices"), { &RunDevices, "List the cameras and their formats." } },
        { QStringLiteral("snapshot"), { &RunSnapshot, "Take one processed picture and save it." } },
        { QStringLiteral("record"), { &RunRecord, "Record the live video to an AVI file." } },
        { QStringLiteral("timelapse"), { &RunTimelapse, "Take pictures at fixed intervals." } },
        { QStringLiteral("measure"),
            { &RunMeasure, "Export the measurements kept in saved pictures as CSV." } },
        { QStringLiteral("calibrate"), { &RunCalibrate, "Calibrate from a picture of a stage micrometer." } },
        { QStringLiteral("particles"), { &RunParticles, "Count and size the particles of a picture." } },
        { QStringLiteral("rois"), { &RunRois, "Export the shapes kept in a picture as an ImageJ ROI set." } },
        { QStringLiteral("stack"), { &RunStack, "Fuse a focus series into one picture sharp everywhere." } },
        { QStringLiteral("stitch"), { &RunStitch, "Stitch overlapping pictures of a scan into one." } },
        { QStringLiteral("process"),
            { &RunProcess, "Correct and process a picture file (flat field, white balance, operations)." } },
    };
    return commands;
}

QString MainHelp()
{
    QString text = QStringLiteral("Usage: oculix-cli COMMAND [options]\n"
                                  "The microscope camera of Oculix without a window, for scripts.\n\n"
                                  "Commands:\n");
    for (const auto& [name, command] : Commands())
        text += QStringLiteral("  %1%2\n").arg(name, -12).arg(QString::fromLatin1(command.summary));
    text += QStringLiteral(
        "\n\"oculix-cli COMMAND --help\" shows a command's options.\n"
        "Progress goes to stderr (--quiet: none), results to stdout.\n"
        "The simulated camera: --demo-camera or OCULIX_DEMO_CAMERA=1.\n"
        "Exit codes: 0 success, 1 the work failed (one line on stderr says why), 2 bad usage.\n");
    return text;
}

} // namespace

int RunCli(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    try {
        if (command.isEmpty())
            ThrowUsage(QStringLiteral("no command given"));
        if (command == QLatin1String("-h") || command == QLatin1String("--help")
            || command == QLatin1String("help")) {
            if (const QString about = arguments.value(2); Commands().count(about))
                return Commands().at(about).run({ arguments.value(0), about, QStringLiteral("--help") });
            PrintOut(MainHelp());
            return kExitOk;
        }
        if (command == QLatin1String("--version")) {
            PrintOut(QStringLiteral("oculix-cli %1\n").arg(QCoreApplication::applicationVersion()));
            return kExitOk;
        }
        const auto found = Commands().find(command);
        if (found == Commands().end())
            ThrowUsage(QStringLiteral("unknown command \"%1\"").arg(command));
        return found->second.run(arguments);
    } catch (const CliError& error) {
        QString line = QStringLiteral("oculix-cli: ") + error.text;
        if (error.code == kExitUsage)
            line += Commands().count(command) ? QStringLiteral(" (see oculix-cli %1 --help)").arg(command)
                                              : QStringLiteral(" (see oculix-cli --help)");
        PrintError(line + QLatin1Char('\n'));
        return error.code;
    }
}
