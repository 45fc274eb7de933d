#include "app/CDocTemplate.h"
#include "app/CMeasureApp.h"
#include "app/CMeasureView.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication qapp(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Oculix"));
    CMeasureApp app;
    app.AddDocTemplate(CMeasureView::CreateDocTemplate());
    if (!app.InitInstance(QApplication::arguments()))
        return app.ExitInstance(app.GetExitCode());
    return app.ExitInstance(QApplication::exec());
}
