#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

#include <sys/resource.h>
#include <unistd.h>

// User plus system time of this process, in seconds.
inline double SelfCpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// User plus system time of another process, in seconds; negative when gone.
inline double ProcessCpuSeconds(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (pid <= 0 || !stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = stat.readAll();
    // Fields after the command name, which may hold spaces: state is 3rd,
    // utime the 14th and stime the 15th of the whole line.
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    return double(fields[11].toLongLong() + fields[12].toLongLong()) / double(sysconf(_SC_CLK_TCK));
}
