#pragma once

#include "cli/CliOptions.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

// One command's options over QCommandLineParser: --help, --quiet and, for
// commands that use the camera, --device, --format, --process and
// --demo-camera. Bad usage throws CliError with kExitUsage.
class CliParser
{
public:
    CliParser(const QString& command, const QString& description);

    void AddOption(const QCommandLineOption& option) { m_parser.addOption(option); }
    void AddPositional(const QString& name, const QString& description, const QString& syntax = {});
    void AddCameraOptions(bool withProcess);
    // --process alone, for a command without a camera.
    void AddProcessOption();

    // False when --help was asked for (the help has been printed).
    bool Parse(const QStringList& arguments);

    bool IsSet(const QString& name) const { return m_parser.isSet(name); }
    QString Value(const QString& name) const { return m_parser.value(name); }
    // The positional arguments after the command's name.
    QStringList Positional() const;
    // The one positional argument; bad usage when there is none or more.
    QString OnePositional(const QString& name) const;
    QString HelpText() const;

    // A number of seconds at least minimum, or the fallback when not given.
    double Seconds(const QString& name, double minimum, double fallback) const;
    int Integer(const QString& name, int low, int high, int fallback) const;

    // The camera options, once parsed.
    QString Device() const { return m_camera ? Value(QStringLiteral("device")) : QString(); }
    std::optional<FormatRequest> Format() const;
    ProcessSwitches Process() const;

private:
    QString m_command;
    QCommandLineParser m_parser;
    bool m_camera = false;
    bool m_process = false;
};
