#pragma once

#include <QByteArray>

// True when a file with PNG's signature ends before its IEND chunk: the
// reason Qt's reader does not give when it refuses such a file (it says
// "Unable to read image data").
bool PngTruncated(const QByteArray& file);
