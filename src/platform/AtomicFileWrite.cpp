#include "platform/AtomicFileWrite.h"

#include <QSaveFile>

bool ReplaceFileContents(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile out(path);
    const auto fail = [&] {
        if (error)
            *error = out.errorString();
        out.cancelWriting();
        return false;
    };
    if (!out.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return fail();
    if (out.write(bytes) != bytes.size() || out.error() != QFileDevice::NoError)
        return fail();
    if (!out.commit()) {
        if (error)
            *error = out.errorString();
        return false;
    }
    return true;
}
