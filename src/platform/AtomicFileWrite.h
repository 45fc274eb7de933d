#pragma once

#include <QByteArray>
#include <QString>

// Replaces a file's contents as a whole: the bytes go into a new file beside
// it, which is renamed over the old one only once every byte is written.
// Unbuffered, because QSaveFile does not notice a short write while flushing
// and would put a truncated file in place on a full disk. False, with `error`
// set when given, when the file could not be written; the old file is then
// untouched.
bool ReplaceFileContents(const QString& path, const QByteArray& bytes, QString* error = nullptr);
