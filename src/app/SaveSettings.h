#pragma once

#include "measure/CPictureSaver.h"

#include <QString>

// The "Save" section: the quick save's options.
struct QuickSaveSettings
{
    SaveOverlay overlay;
    bool bmp = false;
    QString author;
    QString title;
    QString filePath;
    QString prefix;
    int suffix = 0;

    static QuickSaveSettings Read(const QString& settingsFile);
    // In the order of the options dialog; false when a key was not written.
    bool Write(const QString& settingsFile) const;
    // "FilePath", or the picture folder when it is empty.
    QString Folder(const QString& pictureFolder) const;
    // folder/prefix<suffix>.bmp or .jpg: no date, no time.
    QString PathIn(const QString& folder) const;
};

// The "SaveAs" section: the save-as dialog's fields.
struct SaveAsSettings
{
    SaveOverlay overlay;
    SaveTexts texts;
    QString filePath;

    static SaveAsSettings Read(const QString& settingsFile);
    bool Write(const QString& settingsFile) const;
};

// folder + "/" unless it already ends with one + name.
QString JoinSavePath(const QString& folder, const QString& name);
