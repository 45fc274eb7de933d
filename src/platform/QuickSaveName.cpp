#include "platform/QuickSaveName.h"

QString QuickSaveExtension(bool bmp)
{
    return bmp ? QStringLiteral(".bmp") : QStringLiteral(".jpg");
}

QString QuickSaveFileName(const QString& prefix, int suffix, bool bmp)
{
    return prefix + QString::number(suffix) + QuickSaveExtension(bmp);
}

QString QuickSavePath(
    const QString& folder, const QString& pictureFolder, const QString& prefix, int suffix, bool bmp)
{
    QString path = folder.isEmpty() ? pictureFolder : folder;
    // Settings written on Windows end their folders with a backslash.
    if (!path.isEmpty() && !path.endsWith(QLatin1Char('/')) && !path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('/');
    return path + QuickSaveFileName(prefix, suffix, bmp);
}
