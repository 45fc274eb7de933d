#include "ui/CInputTextDlg.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>

namespace {

// A single-line-style multi-line edit: Enter belongs to the dialog, and only
// Ctrl+Enter breaks the line.
class EnterFilter : public QObject
{
public:
    EnterFilter(QPlainTextEdit* edit, QPushButton* ok, QObject* parent)
        : QObject(parent)
        , m_edit(edit)
        , m_ok(ok)
    {
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched != m_edit || event->type() != QEvent::KeyPress)
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
            return false;
        if (key->modifiers() & Qt::ControlModifier)
            m_edit->textCursor().insertBlock();
        else
            m_ok->click();
        return true;
    }

private:
    QPlainTextEdit* m_edit;
    QPushButton* m_ok;
};

// At most `length` characters, never half of a surrogate pair.
QString CutLine(const QString& line, int length)
{
    if (line.size() <= length)
        return line;
    if (line.at(length - 1).isHighSurrogate())
        --length;
    return line.left(length);
}

} // namespace

CInputTextDlg::CInputTextDlg(QStringList* lines, QWidget* parent)
    : m_pLines(lines)
    , m_pDialog(std::make_unique<QDialog>(parent))
{
    QDialog* dialog = m_pDialog.get();
    dialog->setWindowTitle(QCoreApplication::translate("CInputTextDlg", "Input Text"));
    auto* label = new QLabel(
        QCoreApplication::translate("CInputTextDlg", "Text(New line by pressing CTRL+ENTER)"), dialog);
    m_pEdit = new QPlainTextEdit(dialog);
    // Each paragraph is one line of the annotation, however wide.
    m_pEdit->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_pEdit->setTabChangesFocus(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    m_pOk = buttons->button(QDialogButtonBox::Ok);
    m_pOk->setText(QCoreApplication::translate("CInputTextDlg", "OK"));
    buttons->button(QDialogButtonBox::Cancel)
        ->setText(QCoreApplication::translate("CInputTextDlg", "Cancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [this] { OnOK(); });
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    m_pEdit->installEventFilter(new EnterFilter(m_pEdit, m_pOk, dialog));

    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(label);
    layout->addWidget(m_pEdit);
    layout->addWidget(buttons);
    OnInitDialog();
}

CInputTextDlg::~CInputTextDlg() = default;

bool CInputTextDlg::DoModal()
{
    OnInitDialog();
    return m_pDialog->exec() == QDialog::Accepted;
}

void CInputTextDlg::OnInitDialog()
{
    m_pEdit->clear();
    m_pEdit->setFocus();
}

void CInputTextDlg::OnOK()
{
    if (m_pLines) {
        m_pLines->clear();
        for (QTextBlock block = m_pEdit->document()->begin(); block.isValid(); block = block.next())
            m_pLines->append(CutLine(block.text(), kMaxLineLength));
    }
    m_pDialog->accept();
}

bool CInputTextDlg::AskTextWithDialog(QObject* window, QStringList& lines)
{
    CInputTextDlg dialog(&lines, qobject_cast<QWidget*>(window));
    return dialog.DoModal();
}
