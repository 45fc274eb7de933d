#pragma once

#include <QString>

// The quick save's naming, shared by the program's quick save, its interval
// capture and the command-line tool: prefix, running number, extension.

// ".bmp" when bmp is set, else ".jpg".
QString QuickSaveExtension(bool bmp);

// Prefix + the running number written with "%d" + the extension:
// ("slide", 7, false) gives "slide7.jpg". No date or time enters the name.
QString QuickSaveFileName(const QString& prefix, int suffix, bool bmp);

// The folder (an empty one means pictureFolder), a separator unless the
// folder already ends with one, then the file name: "D:/pics" and "D:/pics/"
// give the same path.
QString QuickSavePath(
    const QString& folder, const QString& pictureFolder, const QString& prefix, int suffix, bool bmp);
