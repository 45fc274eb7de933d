#include "cli/CliParser.h"

#include "capture/SimDeviceProvider.h"
#include "cli/CliOutput.h"

CliParser::CliParser(const QString& command, const QString& description)
    : m_command(command)
{
    m_parser.setApplicationDescription(description);
    m_parser.addOption(
        { { QStringLiteral("h"), QStringLiteral("help") }, QStringLiteral("Show this help.") });
    m_parser.addOption(
        { { QStringLiteral("q"), QStringLiteral("quiet") }, QStringLiteral("No progress on stderr.") });
    // The command's name comes first in the usage line.
    m_parser.addPositionalArgument(command, QString(), command);
}

void CliParser::AddPositional(const QString& name, const QString& description, const QString& syntax)
{
    m_parser.addPositionalArgument(name, description, syntax);
}

void CliParser::AddCameraOptions(bool withProcess)
{
    m_camera = true;
    m_parser.addOption({ QStringLiteral("device"),
        QStringLiteral("The camera by its name as \"oculix-cli devices\" lists it (default: the program's "
                       "camera, else the first)."),
        QStringLiteral("NAME") });
    m_parser.addOption({ QStringLiteral("format"),
        QStringLiteral("The camera format, WIDTHxHEIGHT[@FPS][:YUY2|MJPG], one the camera lists."),
        QStringLiteral("FORMAT") });
    if (withProcess)
        AddProcessOption();
    m_parser.addOption({ QStringLiteral("demo-camera"),
        QStringLiteral("List the simulated camera too (also OCULIX_DEMO_CAMERA=1).") });
}

void CliParser::AddProcessOption()
{
    m_process = true;
    m_parser.addOption({ QStringLiteral("process"),
        QStringLiteral("Processing, comma-separated: %1.").arg(ProcessSpecHelp()), QStringLiteral("LIST") });
}

bool CliParser::Parse(const QStringList& arguments)
{
    // arguments: the program, then the command and its own arguments.
    if (!m_parser.parse(arguments))
        ThrowUsage(m_parser.errorText());
    if (m_parser.isSet(QStringLiteral("help"))) {
        PrintOut(HelpText());
        return false;
    }
    SetQuiet(m_parser.isSet(QStringLiteral("quiet")));
    if (m_camera && IsSet(QStringLiteral("demo-camera")))
        EnableDemoCamera(true);
    // Values are checked now, so that bad usage never waits for a camera.
    Format();
    Process();
    return true;
}

QStringList CliParser::Positional() const
{
    QStringList out = m_parser.positionalArguments();
    if (!out.isEmpty())
        out.removeFirst();
    return out;
}

QString CliParser::OnePositional(const QString& name) const
{
    const QStringList positional = Positional();
    if (positional.size() != 1)
        ThrowUsage(positional.isEmpty()
                ? QStringLiteral("%1 is missing").arg(name)
                : QStringLiteral("one %1 only, not %2").arg(name, positional.join(QLatin1Char(' '))));
    return positional.front();
}

QString CliParser::HelpText() const
{
    return m_parser.helpText();
}

double CliParser::Seconds(const QString& name, double minimum, double fallback) const
{
    if (!IsSet(name))
        return fallback;
    double seconds = 0;
    if (!ParseSeconds(Value(name), minimum, &seconds))
        ThrowUsage(QStringLiteral("--%1 takes a number of seconds of at least %2, not \"%3\"")
                       .arg(name)
                       .arg(minimum)
                       .arg(Value(name)));
    return seconds;
}

int CliParser::Integer(const QString& name, int low, int high, int fallback) const
{
    if (!IsSet(name))
        return fallback;
    bool ok = false;
    const int value = Value(name).trimmed().toInt(&ok);
    if (!ok || value < low || value > high)
        ThrowUsage(QStringLiteral("--%1 takes a whole number from %2 to %3, not \"%4\"")
                       .arg(name)
                       .arg(low)
                       .arg(high)
                       .arg(Value(name)));
    return value;
}

std::optional<FormatRequest> CliParser::Format() const
{
    if (!m_camera || !IsSet(QStringLiteral("format")))
        return std::nullopt;
    FormatRequest request;
    QString error;
    if (!ParseFormatSpec(Value(QStringLiteral("format")), &request, &error))
        ThrowUsage(error);
    return request;
}

ProcessSwitches CliParser::Process() const
{
    ProcessSwitches switches;
    if (!m_process || !IsSet(QStringLiteral("process")))
        return switches;
    QString error;
    if (!ParseProcessSpec(Value(QStringLiteral("process")), &switches, &error))
        ThrowUsage(error);
    return switches;
}
