#pragma once

#include "platform/AppPaths.h"

#include <QTemporaryDir>

// The program's data folder moved to a temporary one for the life of this
// object; the one before comes back however the test ends.
class TemporaryDataFolder
{
public:
    TemporaryDataFolder()
    {
        AppPaths paths = m_saved;
        paths.m_dataFolder = m_dir.path() + QLatin1Char('/');
        SetCurrentAppPaths(paths);
    }
    ~TemporaryDataFolder() { SetCurrentAppPaths(m_saved); }
    TemporaryDataFolder(const TemporaryDataFolder&) = delete;
    TemporaryDataFolder& operator=(const TemporaryDataFolder&) = delete;

    bool IsValid() const { return m_dir.isValid(); }
    QString FilePath(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
    const AppPaths m_saved = CurrentAppPaths();
};
