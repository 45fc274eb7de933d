#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

class FCObjImage;

// The extensions of the picture types a command can write, lower case.
const QStringList& PictureTypes();

// Reads a picture file (made 24-bit when asked); a failure naming the path
// and the reason otherwise.
FCObjImage ReadPictureFile(const QString& path, bool to24Bit = true);

// path's extension must name a picture type that can be saved; bad usage
// naming the types otherwise.
void CheckPictureType(const QString& path);

// The output file's folder must exist and be writable; throws a one-line
// failure naming the path otherwise.
void CheckOutputFolder(const QString& path);

// Runs work with stderr sent nowhere: a codec library that fails prints its
// own complaint there, where scripts expect one line from us.
void WithoutCodecNoise(const std::function<void()>& work);

// Writes the picture under a temporary name beside path, lets finish() add
// to that file (a JPEG summary), then renames it over path: a failed or
// interrupted save never leaves a half-written file under the final name.
// Throws a one-line failure; `finishFailed` says why when finish() fails.
void SavePictureFile(const FCObjImage& picture, const QString& path,
    const std::function<bool(const QString& file)>& finish = {},
    const QString& finishFailed = QStringLiteral("the summary could not be added"));

// Writes the bytes under path in one step (ReplaceFileContents); throws a
// one-line failure, leaving no file behind and an older one as it was.
void SaveFileBytes(const QString& path, const QByteArray& bytes);

// A name beside path, in its folder and with its extension, not yet taken.
QString TemporaryNameBeside(const QString& path);
