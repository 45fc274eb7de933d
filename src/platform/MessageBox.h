#pragma once

#include <QString>

#include <functional>

// The program's message box, replaceable as a whole so that tests collect the
// messages instead of showing them. Flags and answers keep the platform's
// values, so callers read as they would with the native call. The box itself
// is a dialog of the user interface layer, which the program installs at
// start-up (SetMessageBoxDialog); the engine only routes the message.
enum MessageBoxFlags : unsigned {
    MB_OK = 0x0,
    MB_OKCANCEL = 0x1,
    MB_YESNOCANCEL = 0x3,
    MB_YESNO = 0x4,
    MB_ICONERROR = 0x10,
    MB_ICONQUESTION = 0x20,
    MB_ICONWARNING = 0x30,
    MB_ICONINFORMATION = 0x40,
    MB_TASKMODAL = 0x2000,
    MB_SETFOREGROUND = 0x10000,
};

enum MessageBoxAnswer : int {
    IDOK = 1,
    IDCANCEL = 2,
    IDYES = 6,
    IDNO = 7,
};

struct MessageBoxRequest
{
    QString text;
    QString caption;
    unsigned flags = MB_OK;
    // Shown behind the box's "Show Details..." button, e.g. a GStreamer error.
    QString details;
};

using MessageBoxHandler = std::function<int(const MessageBoxRequest&)>;

// Hands the message to the installed handler, else to the program's box, and
// returns the button pressed. With neither (the engine alone, a program
// without a graphical application) the message goes to the log and the
// answer is the safe one: OK, Cancel or No.
int MessageBox(
    const QString& text, const QString& caption, unsigned flags = MB_OK, const QString& details = {});

// Installs a handler (an empty one restores the program's box); returns the
// previous handler.
MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler);

// Installs the program's box, which shows what no handler takes (an empty one
// leaves the log alone).
void SetMessageBoxDialog(MessageBoxHandler box);

// The answer of a box closed without a choice: OK, Cancel or No by the buttons.
int SafeMessageBoxAnswer(unsigned flags);
// The log's answer: writes the message as a warning and returns the safe answer.
int LogMessageBox(const MessageBoxRequest& request);

// Installs a handler for the lifetime of the object.
class ScopedMessageBoxHandler
{
public:
    explicit ScopedMessageBoxHandler(MessageBoxHandler handler)
        : m_previous(SetMessageBoxHandler(std::move(handler)))
    {
    }
    ~ScopedMessageBoxHandler() { SetMessageBoxHandler(std::move(m_previous)); }
    ScopedMessageBoxHandler(const ScopedMessageBoxHandler&) = delete;
    ScopedMessageBoxHandler& operator=(const ScopedMessageBoxHandler&) = delete;

private:
    MessageBoxHandler m_previous;
};
