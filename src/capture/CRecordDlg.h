#pragma once

#include <QDialog>
#include <QString>

#include <functional>

class CDialogTimers;
class ILiveDocument;
class QLabel;
class QPushButton;

// Records the live, processed video into an AVI file: switches the live
// document's graph to the record topology and back, with a running status
// line. Stop unlocks only after the sixth second of the first start; Pause
// keeps the file open and Start resumes into it.
class CRecordDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kTimerRecord = 1;
    static constexpr int kTickMs = 1000;

    explicit CRecordDlg(ILiveDocument* document, QWidget* parent = nullptr);
    ~CRecordDlg() override;

    // The default name for a recording started at that local time:
    // "%d%d%d%d%d%d.avi" of year, month, day, hour, minute, second.
    static QString DefaultFileName(const QDateTime& localTime);
    // ".avi" appended unless the path ends in exactly that (case-sensitive).
    static QString WithAviExtension(const QString& path);

    // Asks for the file: the chosen path, or empty on cancel. Replaceable as
    // a whole (tests); returns the previous one.
    using BrowseHandler = std::function<QString(QWidget* parent, const QString& defaultName)>;
    static BrowseHandler SetBrowseHandler(BrowseHandler handler);

    // The buttons' handlers, callable directly (tests) or by the buttons.
    void OnBrowse();
    void OnStart();
    void OnPause();
    void OnStop();
    void OnTimer(int id);
    // The live document is going away: the timer stops and the dialog
    // closes; the document's own teardown finishes the file.
    void OnDocumentClosed();

    // Closing the dialog while a recording exists stops it first, so the
    // file is always finished.
    void reject() override;

    CDialogTimers& Timers() { return *m_timers; }
    QString RecordPath() const { return m_recordPath; }
    bool IsStarted() const { return m_started != 0; }
    QString StateText() const;
    QString PathText() const;
    // Elapsed recording time and file size beside the state line.
    QString InfoText() const;
    QPushButton* BrowseButton() const { return m_btnBrowse; }
    QPushButton* StartButton() const { return m_btnStart; }
    QPushButton* PauseButton() const { return m_btnPause; }
    QPushButton* StopButton() const { return m_btnStop; }

private:
    void SetState(int string, const QString& dots = {});
    void ShowInfo();
    // True while the graph still records; a camera pulled out or a full disk
    // has taken it down, and the graph has said why.
    bool GraphAlive() const;
    qint64 RecordedMs() const;

    ILiveDocument* m_document;
    CDialogTimers* m_timers;
    QString m_recordPath;
    int m_started = 0;
    int m_tick = 0;
    bool m_running = false;
    bool m_ended = false;
    qint64 m_recordedMs = 0;
    qint64 m_runStart = 0;

    QLabel* m_state;
    QLabel* m_path;
    QLabel* m_info;
    QPushButton* m_btnBrowse;
    QPushButton* m_btnStart;
    QPushButton* m_btnPause;
    QPushButton* m_btnStop;
};
