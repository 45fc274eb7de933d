#include "app/CMeasureApp.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication qapp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Oculix"));
    CMeasureApp app;
    if (!app.InitInstance(QApplication::arguments()))
        return app.GetExitCode();
    return app.ExitInstance(QApplication::exec());
}
