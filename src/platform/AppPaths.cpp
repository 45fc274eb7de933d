#include "platform/AppPaths.h"

#include "platform/PrivateProfile.h"
#include "platform/SettingsKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <mutex>

namespace {

// An absolute, clean folder path with exactly one "/" at its end.
QString Folder(const QString& path)
{
    QString folder = QDir::cleanPath(QDir(path).absolutePath());
    if (!folder.endsWith(u'/'))
        folder += u'/';
    return folder;
}

// An XDG base directory: the variable when it holds an absolute path,
// else the fallback under the home folder.
QString XdgHome(const QProcessEnvironment& env, const QString& variable, const QString& underHome)
{
    const QString value = env.value(variable);
    if (!value.isEmpty() && QDir::isAbsolutePath(value))
        return Folder(value);
    QString home = env.value(QStringLiteral("HOME"));
    if (home.isEmpty())
        home = QDir::homePath();
    return Folder(home + u'/' + underHome);
}

bool UsableOrCreated(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.exists())
        return info.isDir() && info.isWritable();
    return QDir().mkdir(folder);
}

std::mutex g_currentMutex;
AppPaths g_current;

} // namespace

Brand BrandForDsp(int dsp)
{
    switch (std::clamp(dsp, 0, 3)) {
    case 1:
        return { QStringLiteral("OCULIX"), QStringLiteral("Oculix") };
    case 2:
        return { QStringLiteral("KORVAL"), QStringLiteral("KorvalCam") };
    case 3:
        return { QStringLiteral("ZEPHRA"), QStringLiteral("ZephraCam") };
    default:
        return { QStringLiteral("Oculix"), QStringLiteral("Oculix") };
    }
}

QString UserSettingsFilePath(const QProcessEnvironment& env)
{
    return XdgHome(env, QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral(".config"))
        + QStringLiteral("Oculix/Oculix.conf");
}

QString BrandFilePath(const QProcessEnvironment& env)
{
    return XdgHome(env, QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral(".config"))
        + QStringLiteral("Oculix/Config.ini");
}

AppPaths ResolveAppPaths(const QString& programFolder, const QProcessEnvironment& env)
{
    AppPaths paths;
    paths.m_programFolder = Folder(programFolder);
    paths.m_brandFile = BrandFilePath(env);
    paths.m_dsp = std::clamp(SettingsKeys::ReadInt(SettingsKeys::ConfigDsp, paths.m_brandFile), 0, 3);
    paths.m_brand = BrandForDsp(paths.m_dsp);

    const QString overridden = env.value(QStringLiteral("OCULIX_DATA_DIR"));
    const QString portable = paths.m_programFolder + paths.m_brand.m_folderName + u'/';
    if (!overridden.isEmpty())
        paths.m_dataFolder = Folder(overridden);
    else if (UsableOrCreated(portable))
        paths.m_dataFolder = portable;
    else
        paths.m_dataFolder = XdgHome(env, QStringLiteral("XDG_DATA_HOME"), QStringLiteral(".local/share"))
            + paths.m_brand.m_folderName + u'/';

    paths.m_settingsFile = paths.m_dataFolder + QStringLiteral("Setting.ini");
    paths.m_pictureFolder = paths.m_dataFolder + QStringLiteral("Images/");
    paths.m_calibrationFolder = paths.m_dataFolder + QStringLiteral("svrdata/");
    paths.m_factoryCalibrationFolder = paths.m_programFolder + QStringLiteral("svrdata/");
    return paths;
}

AppPaths ResolveAppPaths()
{
    return ResolveAppPaths(QCoreApplication::applicationDirPath(), QProcessEnvironment::systemEnvironment());
}

void CreateDataFolders(const AppPaths& paths)
{
    if (paths.m_dataFolder.isEmpty())
        return;
    QDir dir;
    dir.mkpath(paths.m_dataFolder);
    dir.mkpath(paths.m_pictureFolder);
    dir.mkpath(paths.m_calibrationFolder);
}

AppPaths CurrentAppPaths()
{
    std::lock_guard guard(g_currentMutex);
    return g_current;
}

void SetCurrentAppPaths(const AppPaths& paths)
{
    std::lock_guard guard(g_currentMutex);
    g_current = paths;
}
