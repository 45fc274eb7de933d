#include "platform/KeyLockState.h"

#include <QDir>
#include <QFile>

namespace {

QString LedSuffix(KeyLock lock)
{
    switch (lock) {
    case KeyLock::Caps:
        return QStringLiteral("::capslock");
    case KeyLock::Num:
        return QStringLiteral("::numlock");
    case KeyLock::Scroll:
        return QStringLiteral("::scrolllock");
    }
    return {};
}

} // namespace

bool GetKeyLockState(KeyLock lock, const QString& ledRoot)
{
    const QDir root(ledRoot);
    const QString suffix = LedSuffix(lock);
    // The entries are symbolic links into the device tree.
    for (const QString& led : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::System)) {
        if (!led.endsWith(suffix))
            continue;
        QFile brightness(root.filePath(led + QStringLiteral("/brightness")));
        if (brightness.open(QIODevice::ReadOnly) && brightness.read(16).trimmed().toInt() > 0)
            return true;
    }
    return false;
}
