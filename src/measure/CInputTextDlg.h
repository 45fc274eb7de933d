#pragma once

#include <QStringList>

#include <memory>

class QDialog;
class QPlainTextEdit;
class QPushButton;
class QWidget;

// "Input Text": asks for the lines of a text annotation. Enter presses OK,
// Ctrl+Enter starts a new line; OK replaces the lines it was given, each cut
// at 128 characters, Cancel leaves them as they were. The dialog widget is
// kept behind this class so that the engine, which shows it, stays free of
// widget headers.
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
