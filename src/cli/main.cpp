#include "capture/CameraModels.h"
#include "cli/CliCommands.h"
#include "platform/AppPaths.h"

#include <QGuiApplication>

#include <cstdio>

namespace {

// stderr carries progress and one-line errors; library chatter would break
// scripts that read it. QT_LOGGING_RULES (diagnostics asked for) lets it through.
void QuietMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg || qEnvironmentVariableIsSet("QT_LOGGING_RULES"))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

int main(int argc, char** argv)
{
    // Never a window: the simulated camera draws its slide with fonts, which
    // need a GUI application, but no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(&QuietMessages);
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("oculix-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(OCULIX_VERSION));
    // The program's data folder and settings, as the program finds them.
    const AppPaths paths = ResolveAppPaths();
    SetCurrentAppPaths(paths);
    LoadCameraModelSizes(paths.m_settingsFile);
    return RunCli(QCoreApplication::arguments());
}
