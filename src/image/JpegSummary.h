#pragma once

#include <QString>

// Puts the four Windows summary texts (XPTitle, XPComment, XPAuthor,
// XPSubject) into a JPEG file as an APP1 "Exif" segment right after its first
// 20 bytes (start of image and the 16-byte JFIF header our codec writes).
// Every text gets two trailing spaces and is stored as UTF-16LE with a
// terminating zero. The file is replaced as a whole, so a failure leaves it as
// it was. False when the file cannot be read or written.
bool WriteJpegSummary(const QString& path, const QString& title, const QString& subject,
    const QString& author, const QString& comment);
