// The process command: the corrections and operations on a picture file.

#include "cli/CliCommands.h"
#include "cli/CliCorrection.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"

int RunProcess(const QStringList& arguments)
{
    CliParser parser(QStringLiteral("process"),
        QStringLiteral("Correct and process a picture file as the program processes a still: the flat field, "
                       "then the white balance, then the operations. OUT's extension gives its type."));
    CliCorrection::AddOptions(parser, true);
    parser.AddProcessOption();
    parser.AddOption({ { QStringLiteral("o"), QStringLiteral("output") },
        QStringLiteral("The picture file to write."), QStringLiteral("OUT") });
    parser.AddPositional(QStringLiteral("IN"), QStringLiteral("The picture file to read."));
    if (!parser.Parse(arguments))
        return kExitOk;
    const QString in = parser.OnePositional(QStringLiteral("IN"));
    if (!parser.IsSet(QStringLiteral("output")))
        ThrowUsage(QStringLiteral("process needs -o OUT"));
    const QString out = parser.Value(QStringLiteral("output"));
    CheckPictureType(out);
    const ProcessSwitches switches = parser.Process();
    const CliCorrection correction(parser);
    CheckOutputFolder(out);

    const FCObjImage result = correction.Processed(ReadPictureFile(in), switches);
    SavePictureFile(result, out);
    PrintProgress(
        QStringLiteral("Saved %1 x %2 picture to %3").arg(result.Width()).arg(result.Height()).arg(out));
    return kExitOk;
}
