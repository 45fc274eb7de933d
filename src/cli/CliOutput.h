#pragma once

#include <QByteArray>
#include <QString>

#include <stdexcept>

// Exit codes of oculix-cli.
enum CliExit : int {
    kExitOk = 0,
    kExitFailure = 1, // the work failed; one line on stderr says why
    kExitUsage = 2, // bad arguments
};

// Ends a command: main prints "oculix-cli: <text>" and exits with the code.
struct CliError
{
    int code = kExitFailure;
    QString text;
};

[[noreturn]] inline void ThrowFailure(const QString& text)
{
    throw CliError { kExitFailure, text };
}
[[noreturn]] inline void ThrowUsage(const QString& text)
{
    throw CliError { kExitUsage, text };
}

// Results go to stdout, everything else to stderr.
void PrintOut(const QString& text);
void PrintError(const QString& text);
// Progress of long work on stderr, unless --quiet.
void SetQuiet(bool quiet);
void PrintProgress(const QString& text);

// A text field of a CSV file, quoted when it holds the separator, a quote or a line end.
QByteArray CsvField(const QString& text, char separator);
