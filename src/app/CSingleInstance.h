#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

// One running copy per user: the first copy listens on a local socket and
// names its process id beside it, a later one connects, asks the first to
// come forward and ends. A socket left behind by a copy that crashed answers
// nobody and is taken over; one whose copy still lives but does not answer
// (it hangs) is not, and the later copy ends too.
class CSingleInstance : public QObject
{
    Q_OBJECT

public:
    // The instance mutex's name, kept exactly (its G is not a hex digit).
    static constexpr const char* kMutexName = "{1AB792D6-EAF2-3267-9A84-91356G1127A4}";

    explicit CSingleInstance(QObject* parent = nullptr);
    ~CSingleInstance() override;

    // The socket's name: the mutex name and the user, in the user's runtime
    // folder ($XDG_RUNTIME_DIR, else the temporary folder).
    static QString ServerName();

    // True when this copy is now the one instance; false when another copy
    // runs and has been told to come forward, or does not answer.
    bool Acquire();
    // After Acquire answered false: the other copy lives but did not answer.
    bool OtherDoesNotAnswer() const { return m_bNoAnswer; }
    bool IsOwner() const;
    // Frees the name for the next copy; the destructor does it too.
    void Release();

signals:
    // A second copy started and ended.
    void activationRequested();

private:
    bool TellRunningCopy(const QString& name);
    // The process id the holder of the socket wrote, while that process
    // lives and runs this program; else 0.
    static qint64 LivingHolder(const QString& name);

    QLocalServer* m_server = nullptr;
    bool m_bNoAnswer = false;
};
