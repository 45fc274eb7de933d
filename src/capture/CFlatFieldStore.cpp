#include "capture/CFlatFieldStore.h"

#include "image/FlatField.h"
#include "image/ImageProcess.h"
#include "platform/AppPaths.h"
#include "platform/PrivateProfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSaveFile>

#include <cstring>
#include <vector>

namespace {

const QString kSettings = QStringLiteral("FlatFields.ini");

} // namespace

CFlatFieldStore::CFlatFieldStore(QString folder)
    : m_folder(std::move(folder))
{
    if (m_folder.isEmpty()) {
        const QString data = CurrentAppPaths().m_dataFolder;
        if (!data.isEmpty())
            m_folder = data + QStringLiteral("FlatFields");
    }
}

QString CFlatFieldStore::FileFor(const QString& camera, unsigned width, unsigned height) const
{
    // Camera names hold any character; the file is named by a digest.
    const QByteArray digest
        = QCryptographicHash::hash(camera.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QDir(m_folder).filePath(
        QStringLiteral("%1_%2x%3.png").arg(QString::fromLatin1(digest)).arg(width).arg(height));
}

bool CFlatFieldStore::Save(const QString& camera, const QImage& blank, QString* error) const
{
    if (m_folder.isEmpty() || !QDir().mkpath(m_folder)) {
        *error = QStringLiteral("the folder %1 cannot be made").arg(m_folder);
        return false;
    }
    QSaveFile file(FileFor(camera, unsigned(blank.width()), unsigned(blank.height())));
    if (!file.open(QIODevice::WriteOnly) || !blank.convertToFormat(QImage::Format_RGB888).save(&file, "PNG")
        || !file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

QImage CFlatFieldStore::Blank(const QString& camera, unsigned width, unsigned height) const
{
    if (m_folder.isEmpty())
        return {};
    QImage blank(FileFor(camera, width, height), "PNG");
    if (blank.width() != int(width) || blank.height() != int(height))
        return {};
    return blank;
}

std::shared_ptr<const FlatField> CFlatFieldStore::Correction(
    const QString& camera, unsigned width, unsigned height) const
{
    const QImage blank = Blank(camera, width, height).convertToFormat(QImage::Format_BGR888);
    if (blank.isNull())
        return nullptr;
    // The correction works on bottom-up rows padded to 4 bytes.
    const std::size_t stride = DibStride(width);
    std::vector<uchar> bits(stride * height, 0);
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(
            bits.data() + (height - 1 - y) * stride, blank.constScanLine(int(y)), std::size_t(width) * 3);
    const uchar* frames[] = { bits.data() };
    auto field = std::make_shared<FlatField>(FlatField::FromFrames(frames, nullptr, width, height));
    return field->IsNull() ? nullptr : field;
}

bool CFlatFieldStore::Enabled() const
{
    return !m_folder.isEmpty()
        && GetPrivateProfileInt(
               QStringLiteral("FlatField"), QStringLiteral("Enabled"), 0, QDir(m_folder).filePath(kSettings))
        != 0;
}

void CFlatFieldStore::SetEnabled(bool on) const
{
    if (m_folder.isEmpty() || !QDir().mkpath(m_folder))
        return;
    WritePrivateProfileString(QStringLiteral("FlatField"), QStringLiteral("Enabled"),
        on ? QStringLiteral("1") : QStringLiteral("0"), QDir(m_folder).filePath(kSettings));
}
