#pragma once

#include <QString>
#include <QStringList>

// What the command line asks for: Oculix [--demo-camera] [picture ...]
class CCommandLineInfo
{
public:
    // arguments as QCoreApplication::arguments() gives them, the program first
    // (Qt has already taken its own options out).
    static CCommandLineInfo Parse(const QStringList& arguments);
    static QString HelpText();

    bool m_bDemoCamera = false;
    bool m_bShowHelp = false;
    QStringList m_pictures; // opened as picture documents instead of a new document
    QString m_strError; // empty when the line was understood
};
