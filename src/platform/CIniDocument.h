#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// An INI file held as its lines, read and edited the way the Windows
// private-profile calls do it. Every line keeps its original bytes, so an edit
// rewrites only the line it touches; a user's comments, blank lines, spacing,
// line ends and odd bytes survive untouched.
//
// Matching of section and key names ignores case, and the first of several
// equal sections or keys wins, both for reading and for writing.
class CIniDocument
{
public:
    enum class Encoding { Utf8, Utf8Bom, Utf16LE, Utf16BE };

    explicit CIniDocument(QByteArrayView bytes = {});

    QByteArray ToBytes() const;
    Encoding FileEncoding() const { return m_encoding; }

    // The value of a key with one wrapping pair of matching quotes removed;
    // nullopt when the section or the key is missing.
    std::optional<QString> Value(const QString& section, const QString& key) const;
    QStringList SectionNames() const;
    // nullopt when the section is missing.
    std::optional<QStringList> KeyNames(const QString& section) const;

    // Each returns whether the document changed.
    bool SetValue(const QString& section, const QString& key, const QString& value);
    bool RemoveKey(const QString& section, const QString& key);
    bool RemoveSection(const QString& section);

    // Names and values that would read back as something else (line breaks,
    // a key that would parse as a comment or section, "=" in a key).
    static bool IsWritable(const QString& section, const QString& key, const QString& value);

private:
    enum class Kind { Blank, Comment, Section, Key, Other };
    struct Line
    {
        QByteArray m_raw; // the line's bytes in the file's encoding, without its end
        QByteArray m_eol; // "\r\n", "\n", "\r" (encoded) or empty for an unterminated last line
        Kind m_kind = Kind::Other;
        QString m_name; // section or key name
        QString m_value; // raw value text after "=", quotes kept
    };

    void SplitLines(QByteArrayView body);
    void Classify(Line& line, const QString& text) const;
    QByteArray Encode(const QString& text) const;
    Line MakeLine(const QString& text) const;
    // Index of the header of the first section of that name, or -1.
    qsizetype FindSection(const QString& section) const;
    // One past the last line of the section whose header is at 'header'.
    qsizetype SectionEnd(qsizetype header) const;
    qsizetype FindKey(qsizetype header, const QString& key) const;

    Encoding m_encoding = Encoding::Utf8;
    QList<Line> m_lines;
    QByteArray m_tail; // odd last byte of a UTF-16 file
};
