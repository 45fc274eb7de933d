#pragma once

#include <QStringList>

#include <memory>

class QDialog;
class QObject;
class QPlainTextEdit;
class QPushButton;
class QWidget;

// "Input Text": asks for the lines of a text annotation. Enter presses OK,
// Ctrl+Enter starts a new line; OK replaces the lines it was given, each cut
// at 128 characters, Cancel leaves them as they were.
class CInputTextDlg
{
public:
    static constexpr int kMaxLineLength = 128;

    // `lines`: the text of the element being edited; it must outlive the dialog.
    explicit CInputTextDlg(QStringList* lines, QWidget* parent = nullptr);
    ~CInputTextDlg();
    CInputTextDlg(const CInputTextDlg&) = delete;
    CInputTextDlg& operator=(const CInputTextDlg&) = delete;

    // Shows the dialog with an empty edit and waits for it: true after OK.
    bool DoModal();

    // The element manager's text input (CGVLElemMgr::TextInput): the dialog
    // over the window, when the window is a widget.
    static bool AskTextWithDialog(QObject* window, QStringList& lines);

    // The window, its edit and OK button, for driving the dialog without a user.
    QDialog* Window() const { return m_pDialog.get(); }
    QPlainTextEdit* Edit() const { return m_pEdit; }
    QPushButton* OkButton() const { return m_pOk; }

private:
    void OnInitDialog();
    void OnOK();

    QStringList* m_pLines;
    std::unique_ptr<QDialog> m_pDialog;
    QPlainTextEdit* m_pEdit = nullptr;
    QPushButton* m_pOk = nullptr;
};
