#pragma once

#include "RequiredTools.h"

#include <QFile>
#include <QProcess>
#include <QString>

// ImageJ itself (Debian's imagej), run headless under a virtual display on
// a macro, as the yardstick for what Oculix measures and writes.
inline QString ImageJJar()
{
    for (const char* jar : { "/usr/share/java/ij.jar", "/usr/share/imagej/ij.jar" })
        if (QFile::exists(QString::fromLatin1(jar)))
            return QString::fromLatin1(jar);
    return {};
}

inline bool HaveImageJ()
{
    return !ImageJJar().isEmpty() && HaveProgram("xvfb-run") && HaveProgram("java");
}

// What the macro printed; the macro file is written at `macroPath` and removed.
inline QString RunImageJ(const QString& macro, const QString& macroPath)
{
    QFile file(macroPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return {};
    file.write(macro.toUtf8());
    file.close();
    QProcess imagej;
    imagej.start(QStringLiteral("xvfb-run"), { "-a", "java", "-jar", ImageJJar(), "-batch", macroPath });
    const bool finished = imagej.waitForFinished(120000);
    QFile::remove(macroPath);
    return finished ? QString::fromUtf8(imagej.readAllStandardOutput()) : QString();
}
