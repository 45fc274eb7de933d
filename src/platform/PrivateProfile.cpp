#include "platform/PrivateProfile.h"

#include "platform/AtomicFileWrite.h"
#include "platform/CIniDocument.h"
#include "platform/NumberText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <mutex>
#include <optional>

namespace {

// A settings file is a few kilobytes; anything this large is not one of ours
// and is neither parsed nor rewritten.
constexpr qint64 kMaxFileBytes = 16 * 1024 * 1024;
constexpr int kLockWaitMs = 5000;

enum class ReadResult { Ok, Missing, Unreadable };

ReadResult ReadFile(const QString& path, QByteArray& bytes)
{
    bytes.clear();
    if (path.isEmpty())
        return ReadResult::Unreadable;
    // Open first and ask about existence only on failure: while another
    // writer renames a new file into place, a stat of the path can catch the
    // old inode already unlinked, which Qt reports as missing.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QFileInfo::exists(path) ? ReadResult::Unreadable : ReadResult::Missing;
    if (file.size() > kMaxFileBytes)
        return ReadResult::Unreadable;
    // Asking for the most a file may hold allocates that much, for every key
    // read: ask for what it holds, and read on to the limit only when there
    // is more (it grew meanwhile, or it is no plain file).
    const qint64 size = file.size();
    bytes = file.read(size + 1);
    if (bytes.size() > size)
        bytes += file.read(kMaxFileBytes + 1 - bytes.size());
    if (file.error() != QFileDevice::NoError || bytes.size() > kMaxFileBytes)
        return ReadResult::Unreadable;
    return ReadResult::Ok;
}

QString NameList(const QStringList& names)
{
    QString out = QStringLiteral("");
    for (const QString& name : names) {
        out += name;
        out += QChar(u'\0');
    }
    return out;
}

QString WithoutTrailingBlanks(const QString& def)
{
    qsizetype end = def.size();
    while (end > 0 && (def[end - 1] == u' ' || def[end - 1] == u'\t'))
        --end;
    return def.isNull() ? QStringLiteral("") : def.left(end);
}

// Applies one write to the document; returns whether it changed.
bool Apply(CIniDocument& doc, const QString& section, const QString& key, const QString& value)
{
    if (key.isNull())
        return doc.RemoveSection(section);
    if (value.isNull())
        return doc.RemoveKey(section, key);
    return doc.SetValue(section, key, value);
}

// Threads of this process queue here; QLockFile keeps other processes out.
std::mutex g_writeMutex;

} // namespace

QString GetPrivateProfileString(
    const QString& section, const QString& key, const QString& def, const QString& file)
{
    QByteArray bytes;
    const bool ok = ReadFile(file, bytes) == ReadResult::Ok;
    if (section.isNull())
        return ok ? NameList(CIniDocument(bytes).SectionNames()) : QStringLiteral("");
    if (key.isNull()) {
        const auto keys = ok ? CIniDocument(bytes).KeyNames(section) : std::nullopt;
        return NameList(keys.value_or(QStringList()));
    }
    if (ok) {
        if (auto value = CIniDocument(bytes).Value(section, key))
            return value->isNull() ? QStringLiteral("") : *value;
    }
    return WithoutTrailingBlanks(def);
}

unsigned GetPrivateProfileInt(const QString& section, const QString& key, int def, const QString& file)
{
    if (section.isNull() || key.isNull())
        return static_cast<unsigned>(def);
    const QString text = GetPrivateProfileString(section, key, QString(), file);
    if (text.isEmpty())
        return static_cast<unsigned>(def);
    return NumberText::LeadingIntWrapped(text); // the platform's wrap modulo 2^32
}

bool WritePrivateProfileString(
    const QString& section, const QString& key, const QString& value, const QString& file)
{
    if (section.isNull())
        return key.isNull() && value.isNull(); // the platform's "flush the cache"; there is none
    if (file.isEmpty() || !CIniDocument::IsWritable(section, key, value))
        return false;
    const bool removing = key.isNull() || value.isNull();

    // Most writes store what the file already holds (every document writes
    // all its keys when it closes): settle those without locking or writing.
    QByteArray bytes;
    ReadResult read = ReadFile(file, bytes);
    if (read == ReadResult::Unreadable)
        return false;
    if (read == ReadResult::Missing && removing)
        return true;
    CIniDocument preview(bytes);
    if (!Apply(preview, section, key, value))
        return true;

    const QFileInfo info(file);
    if (!info.absoluteDir().exists())
        return false;
    // Writers agree on one lock however the path was spelt.
    QString target = info.canonicalFilePath();
    if (target.isEmpty())
        target = info.absoluteFilePath();

    std::lock_guard guard(g_writeMutex);
    QLockFile lock(target + QStringLiteral(".lock"));
    if (!lock.tryLock(kLockWaitMs))
        return false;

    // Read again under the lock: another process may have written meanwhile.
    read = ReadFile(target, bytes);
    if (read == ReadResult::Unreadable)
        return false;
    if (read == ReadResult::Missing && removing)
        return true;
    CIniDocument doc(bytes);
    if (!Apply(doc, section, key, value))
        return true;

    return ReplaceFileContents(target, doc.ToBytes());
}
