#pragma once

#include <QString>
#include <QStringList>

// The commands of oculix-cli. Each takes the whole argument list (the
// program, the command, its arguments), returns an exit code and throws
// CliError for failures and bad usage.
int RunDevices(const QStringList& arguments);
int RunSnapshot(const QStringList& arguments);
int RunRecord(const QStringList& arguments);
int RunTimelapse(const QStringList& arguments);
int RunMeasure(const QStringList& arguments);
int RunCalibrate(const QStringList& arguments);
int RunParticles(const QStringList& arguments);
int RunRois(const QStringList& arguments);
int RunStack(const QStringList& arguments);
int RunStitch(const QStringList& arguments);
int RunProcess(const QStringList& arguments);

// Dispatches to the command, prints failures as one line on stderr and
// returns the exit code.
int RunCli(const QStringList& arguments);
