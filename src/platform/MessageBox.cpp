#include "platform/MessageBox.h"

#include <QApplication>
#include <QMessageBox>

#include <mutex>

namespace {

std::mutex g_mutex;
MessageBoxHandler g_handler;

int SafeAnswer(unsigned flags)
{
    switch (flags & 0xF) {
    case MB_OKCANCEL:
    case MB_YESNOCANCEL:
        return IDCANCEL;
    case MB_YESNO:
        return IDNO;
    default:
        return IDOK;
    }
}

int ShowBox(const MessageBoxRequest& r)
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        qWarning("%s: %s %s", qPrintable(r.caption), qPrintable(r.text), qPrintable(r.details));
        return SafeAnswer(r.flags);
    }
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
        return SafeAnswer(r.flags);
    }
}

} // namespace

int MessageBox(const QString& text, const QString& caption, unsigned flags, const QString& details)
{
    MessageBoxHandler handler;
    {
        std::lock_guard lock(g_mutex);
        handler = g_handler;
    }
    const MessageBoxRequest request { text, caption, flags, details };
    return handler ? handler(request) : ShowBox(request);
}

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler)
{
    std::lock_guard lock(g_mutex);
    std::swap(g_handler, handler);
    return handler;
}
