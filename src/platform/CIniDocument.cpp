#include "platform/CIniDocument.h"

namespace {

bool IsBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\v' || c == u'\f';
}

QString TrimBlanks(const QString& s)
{
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && IsBlank(s[begin]))
        ++begin;
    while (end > begin && IsBlank(s[end - 1]))
        --end;
    return s.mid(begin, end - begin);
}

QString TrimTrailingBlanks(const QString& s)
{
    qsizetype end = s.size();
    while (end > 0 && IsBlank(s[end - 1]))
        --end;
    return s.left(end);
}

QString TrimLeadingBlanks(const QString& s)
{
    qsizetype begin = 0;
    while (begin < s.size() && IsBlank(s[begin]))
        ++begin;
    return s.mid(begin);
}

bool SameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

void AppendCodePoint(QString& out, char32_t cp)
{
    if (QChar::requiresSurrogates(cp)) {
        out += QChar(QChar::highSurrogate(cp));
        out += QChar(QChar::lowSurrogate(cp));
    } else {
        out += QChar(static_cast<char16_t>(cp));
    }
}

// Files without a byte-order mark are taken as UTF-8; a byte that does not
// start a well-formed UTF-8 sequence is read as Latin-1, so files written in
// a Western code page still read sensibly.
QString DecodeUtf8OrLatin1(QByteArrayView bytes)
{
    QString out;
    out.reserve(bytes.size());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        const auto lead = static_cast<uchar>(bytes[i]);
        int length = 0;
        char32_t cp = 0;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            cp = lead & 0x1F;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            cp = lead & 0x0F;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            cp = lead & 0x07;
        }
        bool valid = length > 0 && i + length <= n;
        for (int k = 1; valid && k < length; ++k) {
            const auto next = static_cast<uchar>(bytes[i + k]);
            valid = (next & 0xC0) == 0x80;
            cp = (cp << 6) | (next & 0x3F);
        }
        if (valid && length == 3)
            valid = cp >= 0x800 && (cp < 0xD800 || cp > 0xDFFF);
        if (valid && length == 4)
            valid = cp >= 0x10000 && cp <= 0x10FFFF;
        if (valid) {
            AppendCodePoint(out, cp);
            i += length;
        } else {
            out += QChar(static_cast<char16_t>(lead));
            ++i;
        }
    }
    return out;
}

char16_t Utf16Unit(QByteArrayView bytes, qsizetype at, bool littleEndian)
{
    const auto b0 = static_cast<uchar>(bytes[at]);
    const auto b1 = static_cast<uchar>(bytes[at + 1]);
    return littleEndian ? char16_t(b0 | (b1 << 8)) : char16_t((b0 << 8) | b1);
}

QString DecodeUtf16(QByteArrayView bytes, bool littleEndian)
{
    QString out;
    out.reserve(bytes.size() / 2);
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        out += QChar(Utf16Unit(bytes, i, littleEndian));
    return out;
}

QByteArrayView Bom(CIniDocument::Encoding encoding)
{
    switch (encoding) {
    case CIniDocument::Encoding::Utf8Bom:
        return "\xEF\xBB\xBF";
    case CIniDocument::Encoding::Utf16LE:
        return "\xFF\xFE";
    case CIniDocument::Encoding::Utf16BE:
        return "\xFE\xFF";
    case CIniDocument::Encoding::Utf8:
        break;
    }
    return {};
}

} // namespace

CIniDocument::CIniDocument(QByteArrayView bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        m_encoding = Encoding::Utf8Bom;
    else if (bytes.startsWith("\xFF\xFE"))
        m_encoding = Encoding::Utf16LE;
    else if (bytes.startsWith("\xFE\xFF"))
        m_encoding = Encoding::Utf16BE;
    SplitLines(bytes.sliced(Bom(m_encoding).size()));
}

void CIniDocument::SplitLines(QByteArrayView body)
{
    const bool utf16 = m_encoding == Encoding::Utf16LE || m_encoding == Encoding::Utf16BE;
    const bool littleEndian = m_encoding == Encoding::Utf16LE;
    const qsizetype unit = utf16 ? 2 : 1;
    auto at = [&](qsizetype i) -> char16_t {
        return utf16 ? Utf16Unit(body, i, littleEndian) : char16_t(static_cast<uchar>(body[i]));
    };
    auto decode = [&](QByteArrayView raw) {
        return utf16 ? DecodeUtf16(raw, littleEndian) : DecodeUtf8OrLatin1(raw);
    };

    qsizetype start = 0;
    qsizetype i = 0;
    // Whole code units only. An odd trailing byte of a UTF-16 file is kept
    // apart, at the very end, so that added lines stay aligned.
    const qsizetype limit = body.size() - body.size() % unit;
    m_tail = body.sliced(limit).toByteArray();
    while (i < limit) {
        const char16_t c = at(i);
        if (c != u'\r' && c != u'\n') {
            i += unit;
            continue;
        }
        qsizetype eolLength = unit;
        if (c == u'\r' && i + unit < limit && at(i + unit) == u'\n')
            eolLength = 2 * unit;
        Line line;
        line.m_raw = body.sliced(start, i - start).toByteArray();
        line.m_eol = body.sliced(i, eolLength).toByteArray();
        Classify(line, decode(line.m_raw));
        m_lines.append(std::move(line));
        i += eolLength;
        start = i;
    }
    if (start < limit) {
        Line line;
        line.m_raw = body.sliced(start, limit - start).toByteArray();
        Classify(line, decode(line.m_raw));
        m_lines.append(std::move(line));
    }
}

void CIniDocument::Classify(Line& line, const QString& text) const
{
    const QString t = TrimBlanks(text);
    line.m_name.clear();
    line.m_value.clear();
    if (t.isEmpty()) {
        line.m_kind = Kind::Blank;
        return;
    }
    if (t.front() == u';') {
        line.m_kind = Kind::Comment;
        return;
    }
    if (t.front() == u'[') {
        // The name runs to the last ']' of the line; without one the line
        // is read like any other.
        const qsizetype close = t.lastIndexOf(u']');
        if (close > 0) {
            line.m_kind = Kind::Section;
            line.m_name = TrimBlanks(t.mid(1, close - 1));
            return;
        }
    }
    const qsizetype eq = t.indexOf(u'=');
    if (eq < 0) {
        line.m_kind = Kind::Other;
        return;
    }
    line.m_kind = Kind::Key;
    line.m_name = TrimTrailingBlanks(t.left(eq));
    line.m_value = TrimLeadingBlanks(t.mid(eq + 1));
}

QByteArray CIniDocument::Encode(const QString& text) const
{
    if (m_encoding == Encoding::Utf8 || m_encoding == Encoding::Utf8Bom)
        return text.toUtf8();
    QByteArray out;
    out.reserve(text.size() * 2);
    const bool littleEndian = m_encoding == Encoding::Utf16LE;
    for (const QChar c : text) {
        const auto lo = static_cast<char>(c.unicode() & 0xFF);
        const auto hi = static_cast<char>(c.unicode() >> 8);
        out.append(littleEndian ? lo : hi);
        out.append(littleEndian ? hi : lo);
    }
    return out;
}

CIniDocument::Line CIniDocument::MakeLine(const QString& text) const
{
    Line line;
    line.m_raw = Encode(text);
    line.m_eol = Encode(QStringLiteral("\r\n"));
    Classify(line, text);
    return line;
}

QByteArray CIniDocument::ToBytes() const
{
    QByteArray out = Bom(m_encoding).toByteArray();
    for (const Line& line : m_lines) {
        out += line.m_raw;
        out += line.m_eol;
    }
    return out + m_tail;
}

qsizetype CIniDocument::FindSection(const QString& section) const
{
    const QString name = TrimBlanks(section);
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (m_lines[i].m_kind == Kind::Section && SameName(m_lines[i].m_name, name))
            return i;
    }
    return -1;
}

qsizetype CIniDocument::SectionEnd(qsizetype header) const
{
    qsizetype i = header + 1;
    while (i < m_lines.size() && m_lines[i].m_kind != Kind::Section)
        ++i;
    return i;
}

qsizetype CIniDocument::FindKey(qsizetype header, const QString& key) const
{
    const QString name = TrimBlanks(key);
    const qsizetype end = SectionEnd(header);
    for (qsizetype i = header + 1; i < end; ++i) {
        if (m_lines[i].m_kind == Kind::Key && SameName(m_lines[i].m_name, name))
            return i;
    }
    return -1;
}

std::optional<QString> CIniDocument::Value(const QString& section, const QString& key) const
{
    const qsizetype header = FindSection(section);
    if (header < 0)
        return std::nullopt;
    const qsizetype at = FindKey(header, key);
    if (at < 0)
        return std::nullopt;
    const QString& value = m_lines[at].m_value;
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'')
        && value.back() == value.front())
        return value.mid(1, value.size() - 2);
    return value;
}

QStringList CIniDocument::SectionNames() const
{
    QStringList names;
    for (const Line& line : m_lines) {
        if (line.m_kind == Kind::Section)
            names.append(line.m_name);
    }
    return names;
}

std::optional<QStringList> CIniDocument::KeyNames(const QString& section) const
{
    const qsizetype header = FindSection(section);
    if (header < 0)
        return std::nullopt;
    QStringList names;
    const qsizetype end = SectionEnd(header);
    for (qsizetype i = header + 1; i < end; ++i) {
        if (m_lines[i].m_kind == Kind::Key)
            names.append(m_lines[i].m_name);
    }
    return names;
}

bool CIniDocument::SetValue(const QString& section, const QString& key, const QString& value)
{
    const QString keyName = TrimBlanks(key);
    const qsizetype header = FindSection(section);
    const QByteArray crlf = Encode(QStringLiteral("\r\n"));
    if (header < 0) {
        if (!m_lines.isEmpty() && m_lines.back().m_eol.isEmpty())
            m_lines.back().m_eol = crlf;
        m_lines.append(MakeLine(u'[' + TrimBlanks(section) + u']'));
        m_lines.append(MakeLine(keyName + u'=' + value));
        return true;
    }
    const qsizetype at = FindKey(header, keyName);
    if (at >= 0) {
        Line& line = m_lines[at];
        if (line.m_value == value)
            return false;
        // Rewritten in place under the spelling the file already uses.
        Line changed = MakeLine(line.m_name + u'=' + value);
        changed.m_eol = line.m_eol;
        line = std::move(changed);
        return true;
    }
    // A new key follows the section's last key, so that blank lines and
    // comments ahead of the next section stay with that section.
    qsizetype insertAt = header + 1;
    const qsizetype end = SectionEnd(header);
    for (qsizetype i = header + 1; i < end; ++i) {
        if (m_lines[i].m_kind == Kind::Key)
            insertAt = i + 1;
    }
    if (m_lines[insertAt - 1].m_eol.isEmpty())
        m_lines[insertAt - 1].m_eol = crlf;
    m_lines.insert(insertAt, MakeLine(keyName + u'=' + value));
    return true;
}

bool CIniDocument::RemoveKey(const QString& section, const QString& key)
{
    const qsizetype header = FindSection(section);
    if (header < 0)
        return false;
    const qsizetype at = FindKey(header, key);
    if (at < 0)
        return false;
    m_lines.removeAt(at);
    return true;
}

bool CIniDocument::RemoveSection(const QString& section)
{
    const qsizetype header = FindSection(section);
    if (header < 0)
        return false;
    m_lines.remove(header, SectionEnd(header) - header);
    return true;
}

bool CIniDocument::IsWritable(const QString& section, const QString& key, const QString& value)
{
    auto breaksLine
        = [](const QString& s) { return s.contains(u'\r') || s.contains(u'\n') || s.contains(QChar(u'\0')); };
    if (breaksLine(section) || breaksLine(key) || breaksLine(value))
        return false;
    const QString keyName = TrimBlanks(key);
    if (keyName.contains(u'=') || keyName.startsWith(u';') || keyName.startsWith(u'['))
        return false;
    return true;
}
