#include "cli/CliOutput.h"

#include <atomic>
#include <cstdio>

namespace {
std::atomic<bool> g_quiet { false };
}

void PrintOut(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void PrintError(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

void SetQuiet(bool quiet)
{
    g_quiet = quiet;
}

void PrintProgress(const QString& text)
{
    if (!g_quiet)
        PrintError(text + QLatin1Char('\n'));
}

QByteArray CsvField(const QString& text, char separator)
{
    QByteArray bytes = text.toUtf8();
    if (!bytes.contains(separator) && !bytes.contains('"') && !bytes.contains('\n') && !bytes.contains('\r'))
        return bytes;
    bytes.replace("\"", "\"\"");
    return '"' + bytes + '"';
}
