#include "app/CCommandLineInfo.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace {

struct Parser
{
    QCommandLineParser parser;
    QCommandLineOption demoCamera { QStringLiteral("demo-camera"),
        QCoreApplication::translate("CommandLine", "Use the simulated camera instead of a real one.") };
    QCommandLineOption help { { QStringLiteral("h"), QStringLiteral("help") },
        QCoreApplication::translate("CommandLine", "Show this help.") };

    Parser()
    {
        parser.setApplicationDescription(
            QCoreApplication::translate("CommandLine", "Measure on a microscope camera's live picture."));
        parser.addOption(demoCamera);
        parser.addOption(help);
        parser.addPositionalArgument(QStringLiteral("picture"),
            QCoreApplication::translate("CommandLine", "Picture file to open."),
            QStringLiteral("[picture ...]"));
    }
};

} // namespace

CCommandLineInfo CCommandLineInfo::Parse(const QStringList& arguments)
{
    Parser p;
    CCommandLineInfo info;
    QStringList args = arguments;
    if (args.isEmpty())
        args << QStringLiteral("Oculix");
    if (!p.parser.parse(args)) {
        info.m_strError = p.parser.errorText();
        return info;
    }
    info.m_bDemoCamera = p.parser.isSet(p.demoCamera);
    info.m_bShowHelp = p.parser.isSet(p.help);
    info.m_pictures = p.parser.positionalArguments();
    return info;
}

QString CCommandLineInfo::HelpText()
{
    Parser p;
    return p.parser.helpText();
}
