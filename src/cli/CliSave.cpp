#include "cli/CliSave.h"

#include "cli/CliOutput.h"
#include "image/FCObjImage.h"
#include "platform/AtomicFileWrite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The codecs often say only "Unknown error" when the disk refuses a write;
// the system's error, still set after the failed save, says why.
QString WriteErrorText(int error, const QString& codecText)
{
    switch (error) {
    case ENOSPC:
        return QStringLiteral("the disk is full (%1)").arg(QString::fromLocal8Bit(std::strerror(error)));
    case EDQUOT:
        return QStringLiteral("the disk quota is used up (%1)")
            .arg(QString::fromLocal8Bit(std::strerror(error)));
    case EFBIG:
        return QStringLiteral("no more room for the file (%1)")
            .arg(QString::fromLocal8Bit(std::strerror(error)));
    default:
        return codecText;
    }
}

} // namespace

const QStringList& PictureTypes()
{
    static const QStringList types { QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
        QStringLiteral("png"), QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("gif"),
        QStringLiteral("tga"), QStringLiteral("pcx") };
    return types;
}

FCObjImage ReadPictureFile(const QString& path, bool to24Bit)
{
    FCObjImage picture;
    if (!QFileInfo(path).isFile() || !picture.Load(path))
        ThrowFailure(
            QStringLiteral("cannot read %1: %2")
                .arg(
                    path, QFileInfo(path).isFile() ? picture.ErrorString() : QStringLiteral("no such file")));
    if (to24Bit && picture.ColorBits() != 24 && !picture.ConvertTo24Bit())
        ThrowFailure(QStringLiteral("cannot read %1: not enough memory").arg(path));
    return picture;
}

void CheckPictureType(const QString& path)
{
    if (!PictureTypes().contains(QFileInfo(path).suffix().toLower()))
        ThrowUsage(QStringLiteral("%1: the extension names no picture type (%2)")
                       .arg(path, PictureTypes().join(QStringLiteral(", "))));
}

void CheckOutputFolder(const QString& path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        ThrowFailure(
            QStringLiteral("cannot write %1: folder %2 does not exist").arg(path, folder.filePath()));
    if (!folder.isWritable())
        ThrowFailure(
            QStringLiteral("cannot write %1: folder %2 is not writable").arg(path, folder.filePath()));
}

QString TemporaryNameBeside(const QString& path)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    QTemporaryFile reserve(info.absoluteDir().filePath(
        QLatin1Char('.') + info.completeBaseName() + QStringLiteral(".XXXXXX.part") + suffix));
    reserve.setAutoRemove(false);
    if (!reserve.open())
        ThrowFailure(QStringLiteral("cannot write %1: %2").arg(path, reserve.errorString()));
    // The finished file gets the permissions a new file gets, not a temporary's 0600.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(reserve.handle(), 0666 & ~mask);
    return reserve.fileName();
}

void WithoutCodecNoise(const std::function<void()>& work)
{
    const int keep = ::dup(STDERR_FILENO);
    const int null = ::open("/dev/null", O_WRONLY);
    if (null >= 0)
        ::dup2(null, STDERR_FILENO);
    work();
    if (keep >= 0)
        ::dup2(keep, STDERR_FILENO);
    for (int fd : { keep, null })
        if (fd >= 0)
            ::close(fd);
}

void SavePictureFile(const FCObjImage& picture, const QString& path,
    const std::function<bool(const QString& file)>& finish, const QString& finishFailed)
{
    CheckOutputFolder(path);
    const QString temporary = TemporaryNameBeside(path);
    auto fail = [&](QString why) {
        QFile::remove(temporary);
        // The codec names the file it wrote; the user knows only the final name.
        why.remove(temporary + QStringLiteral(": "));
        ThrowFailure(QStringLiteral("cannot write %1: %2").arg(path, why));
    };
    bool saved = false;
    int written = 0;
    WithoutCodecNoise([&] {
        errno = 0;
        saved = picture.Save(temporary);
        written = errno;
    });
    if (!saved)
        fail(WriteErrorText(written, picture.ErrorString()));
    if (finish && !finish(temporary))
        fail(finishFailed);
    // rename(2) replaces an existing file in one step.
    if (std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) != 0)
        fail(QString::fromLocal8Bit(std::strerror(errno)));
}

void SaveFileBytes(const QString& path, const QByteArray& bytes)
{
    CheckOutputFolder(path);
    QString error;
    errno = 0;
    if (!ReplaceFileContents(path, bytes, &error)) {
        const int written = errno;
        ThrowFailure(QStringLiteral("cannot write %1: %2").arg(path, WriteErrorText(written, error)));
    }
}
