#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

// Our own XMP properties in a picture file (namespace kNamespace, prefix
// "oculix"), through Exiv2. Only JPEG, PNG and TIFF files hold them; other
// types are left alone. Other metadata of the file is kept. A JPEG packet too
// large for one segment is written, and read, in the multi-segment form
// (image/ExtendedXmp.h).
namespace PictureXmp {

inline constexpr char kNamespace[] = "http://ns.oculix.org/measure/1.0/";

// Property name (without prefix) to text.
using Properties = QMap<QString, QString>;

// The file type can carry the properties (by extension, any case).
bool CanHold(const QString& path);

// Replaces our properties in the file with `properties`, replacing the file
// as a whole so a failure leaves it as it was. False, with `error` set, when
// the file cannot be read, parsed or written.
bool Write(const QString& path, const Properties& properties, QString* error = nullptr);

// The same on a file's bytes: the rewritten file, or empty with `error` set.
QByteArray Rewritten(const QByteArray& file, const Properties& properties, QString* error = nullptr);

// Our properties in the file; empty for a file without them, of another type
// or that cannot be read.
Properties Read(const QString& path);

// The same from a file's bytes, whatever its name.
Properties ReadBytes(const QByteArray& file);

} // namespace PictureXmp
