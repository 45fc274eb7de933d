#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

// One running copy per user: the first copy listens on a local socket, a
// later one connects, asks the first to come forward and ends. A socket left
// behind by a copy that crashed answers nobody and is taken over.
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
    // runs and has been told to come forward.
    bool Acquire();
    bool IsOwner() const;
    // Frees the name for the next copy; the destructor does it too.
    void Release();

signals:
    // A second copy started and ended.
    void activationRequested();

private:
    bool TellRunningCopy(const QString& name);

    QLocalServer* m_server = nullptr;
};
