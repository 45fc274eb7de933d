#pragma once

// Python with Pillow, Debian's outside reader and writer of every picture
// format we write: the judge of whether other programs see our files as we do.
#include "image/FCObjImage.h"

#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdlib>
#include <gtest/gtest.h>

inline bool Near(QRgb p, QRgb q, int tolerance)
{
    return std::abs(qRed(p) - qRed(q)) <= tolerance && std::abs(qGreen(p) - qGreen(q)) <= tolerance
        && std::abs(qBlue(p) - qBlue(q)) <= tolerance;
}

// Runs setup in Pillow, then compares each named file there, pixel by pixel,
// with our reading of it (alpha too when withAlpha); only JPEG decoders may
// round differently. Returns the format names Pillow found.
inline QStringList PillowAgrees(
    const QTemporaryDir& dir, const QStringList& names, const QString& setup = {}, bool withAlpha = false)
{
    const QString script = QStringLiteral("from PIL import Image\nd = '%1'\n%2\nfor n in ['%3']:\n"
                                          "    im = Image.open(d + '/' + n)\n"
                                          "    print(n, im.format, im.size[0], ' '.join('%d,%d,%d,%d' % "
                                          "(c + (255,))[:4] for c in im.convert('%4').getdata()))\n")
                               .arg(dir.path(), setup, names.join("', '"), withAlpha ? "RGBA" : "RGB");
    QProcess python;
    python.start(QStandardPaths::findExecutable("python3", { "/usr/bin", "/bin" }), { "-c", script });
    python.waitForFinished(60000);
    const QStringList lines
        = QString::fromUtf8(python.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), names.size()) << python.readAllStandardError().toStdString();
    QStringList formats;
    for (const QString& line : lines) {
        const QStringList parts = line.split(' ');
        formats << parts[1];
        FCObjImage ours;
        if (!ours.Load(dir.filePath(parts[0]))) {
            ADD_FAILURE() << parts[0].toStdString() << " " << ours.ErrorString().toStdString();
            continue;
        }
        EXPECT_EQ(parts[2].toInt(), ours.Width()) << parts[0].toStdString();
        EXPECT_EQ(parts.size() - 3, ours.Width() * ours.Height()) << parts[0].toStdString();
        const int tolerance = parts[1] == "JPEG" ? 3 : 0;
        int wrong = 0;
        for (int i = 3; i < parts.size(); ++i) {
            const QStringList c = parts[i].split(',');
            const QRgb got = ours.GetPixelColor((i - 3) % ours.Width(), (i - 3) / ours.Width());
            wrong += !Near(got, qRgb(c[0].toInt(), c[1].toInt(), c[2].toInt()), tolerance)
                || (withAlpha && qAlpha(got) != c[3].toInt());
        }
        EXPECT_EQ(wrong, 0) << parts[0].toStdString();
    }
    return formats;
}
