#include "platform/MessageBox.h"

#include <QtGlobal>

#include <mutex>

namespace {

std::mutex g_mutex;
MessageBoxHandler g_handler;
MessageBoxHandler g_dialog;

} // namespace

int SafeMessageBoxAnswer(unsigned flags)
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

int LogMessageBox(const MessageBoxRequest& r)
{
    qWarning("%s: %s %s", qPrintable(r.caption), qPrintable(r.text), qPrintable(r.details));
    return SafeMessageBoxAnswer(r.flags);
}

int MessageBox(const QString& text, const QString& caption, unsigned flags, const QString& details)
{
    MessageBoxHandler handler;
    {
        std::lock_guard lock(g_mutex);
        handler = g_handler ? g_handler : g_dialog;
    }
    const MessageBoxRequest request { text, caption, flags, details };
    return handler ? handler(request) : LogMessageBox(request);
}

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler)
{
    std::lock_guard lock(g_mutex);
    std::swap(g_handler, handler);
    return handler;
}

void SetMessageBoxDialog(MessageBoxHandler box)
{
    std::lock_guard lock(g_mutex);
    g_dialog = std::move(box);
}
