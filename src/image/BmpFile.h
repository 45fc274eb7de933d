#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Qt's BMP reader takes a file too short for its rows as a whole picture and
// leaves the pixels an RLE stream skips (or never reaches) uninitialised.
// So BMP files pass here first: run-length files are decoded here, skipped
// pixels taking palette index 0 as in other readers, and a stream that ends
// before its last row is refused; uncompressed files are refused when they
// are shorter than their rows. The rest is Qt's.
enum class BmpOutcome { LeaveToQt, Read, Refused };

BmpOutcome ReadBmpFile(const QByteArray& file, QImage& image, QString& why);
