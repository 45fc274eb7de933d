#pragma once

#include <QDialog>
#include <QString>

#include <functional>

class CDialogTimers;
class ILiveDocument;
class QLabel;
class QLineEdit;
class QPushButton;

// Interval (time-lapse) capture: after a countdown of "Wait" seconds, one
// silent quick save of the live document every "Interval" seconds until
// "Images" pictures are saved. The run stops when the dialog or the live
// document closes; nothing is written after that.
class CIntervalCapDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kTimerCapture = 1;
    static constexpr int kTimerCountdown = 2;
    enum Field { Wait, Interval, Images };

    // quickSave: the live document's quick save without its message, which
    // names the picture from the "Save" settings and advances "Suffix".
    CIntervalCapDlg(ILiveDocument* document, std::function<void()> quickSave, QWidget* parent = nullptr);
    ~CIntervalCapDlg() override;

    void OnStart();
    void OnStop();
    void OnTimer(int id);
    void OnDocumentClosed();

    // The field's text as typed; validation runs as for a key press.
    void SetFieldText(Field field, const QString& text);
    QString FieldText(Field field) const;
    int Value(Field field) const;
    // Spin ranges: wait 0..100, interval 1..100, images 1..15000.
    static int Minimum(Field field);
    static int Maximum(Field field);
    // One step of a field's spin buttons.
    void Step(Field field, int steps);

    QString CurrentText() const;
    QString FileNameText() const;
    QString NumberText() const;
    bool IsRunning() const;
    CDialogTimers& Timers() { return *m_timers; }
    QPushButton* StartButton() const { return m_btnStart; }
    QPushButton* StopButton() const { return m_btnStop; }

private:
    void Validate(Field field);
    void ClearTexts();
    void ShowRunning(bool running);
    QString NextFileName() const;

    ILiveDocument* m_document;
    std::function<void()> m_quickSave;
    CDialogTimers* m_timers;
    int m_wait = 1;
    int m_interval = 1;
    int m_images = 5;
    int m_imageCounter = 0;
    int m_waitCounter = 0;

    QLineEdit* m_edits[3];
    QLabel* m_current;
    QLabel* m_fileName;
    QLabel* m_number;
    QPushButton* m_btnStart;
    QPushButton* m_btnStop;
};
