#include "ui/MessageBoxDialog.h"

#include <QApplication>
#include <QMessageBox>

int ShowMessageBoxDialog(const MessageBoxRequest& r)
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return LogMessageBox(r);
    QMessageBox box;
    box.setWindowTitle(r.caption);
    box.setText(r.text);
    if (!r.details.isEmpty())
        box.setDetailedText(r.details);
    switch (r.flags & 0xF0) {
    case MB_ICONERROR:
        box.setIcon(QMessageBox::Critical);
        break;
    case MB_ICONQUESTION:
        box.setIcon(QMessageBox::Question);
        break;
    case MB_ICONWARNING:
        box.setIcon(QMessageBox::Warning);
        break;
    case MB_ICONINFORMATION:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        break;
    }
    switch (r.flags & 0xF) {
    case MB_OKCANCEL:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case MB_YESNOCANCEL:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case MB_YESNO:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    default:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    }
    if (r.flags & MB_SETFOREGROUND)
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
    switch (box.exec()) {
    case QMessageBox::Ok:
        return IDOK;
    case QMessageBox::Yes:
        return IDYES;
    case QMessageBox::No:
        return IDNO;
    default:
        return SafeMessageBoxAnswer(r.flags);
    }
}

void InstallMessageBoxDialog()
{
    SetMessageBoxDialog(ShowMessageBoxDialog);
}
