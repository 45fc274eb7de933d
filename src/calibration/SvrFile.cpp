#include "calibration/SvrFile.h"

#include "platform/AtomicFileWrite.h"
#include "platform/NumberText.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

// Characters a text line never holds: a file with them is not ruler data.
bool IsControl(QChar c)
{
    return (c.unicode() < 0x20 && c != u'\t' && c != u'\r') || c.unicode() == 0x7F;
}

QByteArray TextLine(const QString& text)
{
    QString single = text;
    // A line break would shift every later value by a line; trailing CRs
    // would read back as part of the line end.
    for (QChar& c : single) {
        if (IsControl(c))
            c = u' ';
    }
    while (single.endsWith(u'\r'))
        single.chop(1);
    return single.toLocal8Bit() + "\r\r\n";
}

QByteArray IntLine(int value)
{
    return QByteArray::number(value) + "\r\r\n";
}

} // namespace

SvrData SvrData::Normalized() const
{
    SvrData data = *this;
    data.m_nXStart = SvrFile::kNormalStart;
    data.m_nXEnd = SvrFile::WrapAdd(SvrFile::kNormalStart, m_nXLenth);
    data.m_nYStart = SvrFile::kNormalStart;
    data.m_nYEnd = SvrFile::WrapAdd(SvrFile::kNormalStart, m_nYLenth);
    return data;
}

namespace SvrFile {

QByteArray ToBytes(const SvrData& data)
{
    const SvrData d = data.Normalized();
    QByteArray bytes;
    bytes += TextLine(d.m_strXPerPixel);
    bytes += TextLine(d.m_strYPerPixel);
    bytes += TextLine(d.m_strXReal);
    bytes += TextLine(d.m_strYReal);
    for (const int value :
        { d.m_nXStart, d.m_nXEnd, d.m_nXLenth, d.m_nYStart, d.m_nYEnd, d.m_nYLenth, d.m_nUnit })
        bytes += IntLine(value);
    return bytes;
}

std::optional<SvrData> FromBytes(QByteArrayView bytes)
{
    // Safeguard: an empty file, or one with control bytes or over-long lines
    // (a binary file), is refused; the dialog says so.
    if (bytes.isEmpty())
        return std::nullopt;
    QStringList lines;
    qsizetype pos = 0;
    while (pos < bytes.size() && lines.size() < kLineCount) {
        qsizetype end = bytes.indexOf('\n', pos);
        const qsizetype next = end < 0 ? bytes.size() : end + 1;
        if (end < 0)
            end = bytes.size();
        QByteArrayView raw = bytes.sliced(pos, end - pos);
        while (raw.endsWith('\r'))
            raw.chop(1);
        if (raw.size() > kMaxLineBytes)
            return std::nullopt;
        // A byte-order mark stays a character: it is text as any other, and
        // dropping it would change what a rewrite of the file holds.
        QStringDecoder decode(QStringConverter::System,
            QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
        const QString line = decode(raw);
        if (line.size() > kMaxLineChars || std::any_of(line.begin(), line.end(), IsControl))
            return std::nullopt;
        lines.append(line);
        pos = next;
    }

    // The reader's buffer keeps the last line it read when the file runs out.
    QString buffer;
    auto nextText = [&, index = 0]() mutable {
        if (index < lines.size())
            buffer = lines[index];
        ++index;
        return buffer;
    };
    SvrData data;
    data.m_strXPerPixel = nextText();
    data.m_strYPerPixel = nextText();
    data.m_strXReal = nextText();
    data.m_strYReal = nextText();
    for (int* value : { &data.m_nXStart, &data.m_nXEnd, &data.m_nXLenth, &data.m_nYStart, &data.m_nYEnd,
             &data.m_nYLenth, &data.m_nUnit })
        *value = NumberText::LeadingInt(nextText());
    return data;
}

Status Read(const QString& path, SvrData& data, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error
                = QCoreApplication::translate("SvrFile", "Cannot open %1.\n%2").arg(path, file.errorString());
        return Status::CannotOpen;
    }
    // Enough for eleven lines of the longest allowed length with their line
    // ends; a longer first line shows as a line too long.
    constexpr qint64 kHeadBytes = qint64(kLineCount) * (kMaxLineBytes + 3) + 1;
    const QByteArray head = file.read(kHeadBytes);
    if (file.error() != QFileDevice::NoError) {
        if (error)
            *error
                = QCoreApplication::translate("SvrFile", "Cannot read %1.\n%2").arg(path, file.errorString());
        return Status::CannotOpen;
    }
    const std::optional<SvrData> read = FromBytes(head);
    if (!read) {
        if (error)
            *error = QStringLiteral("%1 is not a ruler data file.").arg(path);
        return Status::NotRulerData;
    }
    data = *read;
    return Status::Ok;
}

Status Write(const QString& path, const SvrData& data, QString* error)
{
    QString reason;
    if (!ReplaceFileContents(path, ToBytes(data), &reason)) {
        if (error)
            *error = QCoreApplication::translate("SvrFile", "Cannot write %1.\n%2").arg(path, reason);
        return Status::CannotWrite;
    }
    return Status::Ok;
}

QString SaveName(const QString& chosen)
{
    // Kept as the first program did it: the file ends up without extension.
    if (chosen.endsWith(QStringLiteral(".svr"), Qt::CaseSensitive))
        return chosen.chopped(4);
    return chosen;
}

QString FactoryFileName(int magnification)
{
    static constexpr std::array<const char*, 5> kMagnifications = { "10", "20", "40", "60", "100" };
    if (magnification < 0 || magnification >= int(kMagnifications.size()))
        return {};
    return QString::fromLatin1(kMagnifications[std::size_t(magnification)])
        + QStringLiteral("-%1_%2.svr").arg(kFactoryWidth).arg(kFactoryHeight);
}

} // namespace SvrFile
