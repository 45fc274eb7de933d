#pragma once

#include <QDialog>

// "&About...": the program's name, its version and a link to the user manual.
class CAboutDlg : public QDialog
{
    Q_OBJECT

public:
    static constexpr const char* kVersion = "V1.18.7.27";

    CAboutDlg(const QString& brandName, const QString& manualPath, QWidget* parent = nullptr);
};
