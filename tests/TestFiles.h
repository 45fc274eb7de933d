#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// A missing file reads as "<missing>", so that a comparison with the bytes
// expected fails loudly instead of matching an empty expectation.
inline QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

inline bool WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
