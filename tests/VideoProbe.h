#pragma once

#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

// What ffprobe finds in a video file, counting the frames it can decode
// (codec_name, width, height, nb_read_frames, avg_frame_rate): empty when the
// file does not play.
inline QMap<QString, QString> ProbeVideo(const QString& file)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
        QStringLiteral("-v error -count_frames -select_streams v:0 -show_entries "
                       "stream=codec_name,width,height,nb_read_frames,avg_frame_rate -of default=nw=1")
                .split(QLatin1Char(' '))
            << file);
    QMap<QString, QString> found;
    if (ffprobe.waitForFinished(60000) && ffprobe.exitCode() == 0)
        for (const QString& line :
            QString::fromUtf8(ffprobe.readAllStandardOutput()).split(QLatin1Char('\n')))
            if (line.contains(QLatin1Char('=')))
                found[line.section(QLatin1Char('='), 0, 0)] = line.section(QLatin1Char('='), 1);
    return found;
}
