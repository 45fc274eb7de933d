#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <clocale>
#include <cstdlib>

// Switches LC_NUMERIC to a decimal comma: German when it is installed, else
// a locale of that one category compiled on the spot (quick, and needs no
// locale sources). False when neither can be had.
inline bool UseCommaLocale()
{
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        return true;
    static QTemporaryDir dir; // the compiled locale is loaded from here
    QFile source(dir.filePath("comma.src"));
    if (!dir.isValid() || !source.open(QIODevice::WriteOnly))
        return false;
    source.write("LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n");
    source.close();
    // -c: the other categories are left out on purpose; it warns about each.
    QProcess localedef;
    localedef.setStandardOutputFile(QProcess::nullDevice());
    localedef.setStandardErrorFile(QProcess::nullDevice());
    localedef.start(
        "localedef", { "-c", "-i", source.fileName(), "-f", "ANSI_X3.4-1968", dir.filePath("comma") });
    localedef.waitForFinished();
    setenv("LOCPATH", QFile::encodeName(dir.path()).constData(), 1);
    return std::setlocale(LC_NUMERIC, "comma") != nullptr;
}
