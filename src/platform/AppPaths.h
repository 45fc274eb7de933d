#pragma once

#include <QProcessEnvironment>
#include <QString>

// The brand and the process-wide folders. Every folder path ends with "/".

struct Brand
{
    QString m_name; // "Oculix", "OCULIX", "KORVAL", "ZEPHRA"
    QString m_folderName; // data folder, window title, help file stem
};

// Row of the brand table; dsp is clamped to 0..3.
Brand BrandForDsp(int dsp);

struct AppPaths
{
    QString m_programFolder; // the executable's folder
    int m_dsp = 0; // brand selector after clamping
    Brand m_brand;
    QString m_brandFile; // <config home>/Oculix/Config.ini, read once, never created
    QString m_dataFolder;
    QString m_settingsFile; // data folder + "Setting.ini"
    QString m_pictureFolder; // data folder + "Images/"
    QString m_calibrationFolder; // data folder + "svrdata/": where ".svr" files are saved
    QString m_factoryCalibrationFolder; // program folder + "svrdata/": where they are loaded from
};

// $XDG_CONFIG_HOME (else ~/.config) + "/Oculix/Config.ini".
QString BrandFilePath(const QProcessEnvironment& env);
// The program's own per-user settings beside the brand file (Oculix.conf):
// the chosen language and the recent files, never the data folder's settings.
QString UserSettingsFilePath(const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());

// Reads the brand from the brand file and works out the data folder:
// $OCULIX_DATA_DIR when set; else the program folder's brand subfolder when it
// is a writable folder or can be created there (a portable install); else
// $XDG_DATA_HOME (else ~/.local/share) + "/" + brand folder name.
AppPaths ResolveAppPaths(const QString& programFolder, const QProcessEnvironment& env);
// The same for this executable and this process's environment.
AppPaths ResolveAppPaths();

// Creates the data folder, "Images/" and "svrdata" where missing; failures
// are left for the first write to report.
void CreateDataFolders(const AppPaths& paths);

// Set once by start-up; empty paths until then (reads give defaults, writes
// fail).
AppPaths CurrentAppPaths();
void SetCurrentAppPaths(const AppPaths& paths);
