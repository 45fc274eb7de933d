#pragma once

#include <QByteArray>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

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

// What ffprobe finds in the file, counting the frames it can decode: empty
// when the file does not play.
inline QMap<QString, QString> ProbeVideo(const QString& file)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
        QStringLiteral("-v error -count_frames -select_streams v:0 -show_entries "
                       "stream=codec_name,width,height,nb_read_frames,avg_frame_rate -of default=nw=1")
                .split(' ')
            << file);
    QMap<QString, QString> found;
    if (ffprobe.waitForFinished(30000) && ffprobe.exitCode() == 0)
        for (const QString& line : QString::fromUtf8(ffprobe.readAllStandardOutput()).split('\n'))
            if (line.contains('='))
                found[line.section('=', 0, 0)] = line.section('=', 1);
    return found;
}

// Frames ffprobe decodes from the file; -1 when it does not play.
inline int PlayableFrames(const QString& file)
{
    return ProbeVideo(file).value(QStringLiteral("nb_read_frames"), QStringLiteral("-1")).toInt();
}
