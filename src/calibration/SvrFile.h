#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <optional>

// The eleven values of a ruler data file (".svr"), as the calibration dialog
// holds them: per-pixel and real lengths stay text, the ruler's pixel
// extents are integers, the unit is an index into the unit table.
struct SvrData
{
    QString m_strXPerPixel;
    QString m_strYPerPixel;
    QString m_strXReal;
    QString m_strYReal;
    int m_nXStart = 0;
    int m_nXEnd = 0;
    int m_nXLenth = 0;
    int m_nYStart = 0;
    int m_nYEnd = 0;
    int m_nYLenth = 0;
    int m_nUnit = 0;

    // As a file keeps it: the start corner at (100, 100), the ends one length further.
    SvrData Normalized() const;

    bool operator==(const SvrData&) const = default;
};

// Reading and writing ruler data files: text, one value per line, in the
// order of SvrData. Lines are written ending CR CR LF, as the first program
// that wrote these files left them; the reader also takes CR LF and LF.
namespace SvrFile {

inline constexpr int kLineCount = 11;
inline constexpr int kNormalStart = 100;
// A longer line (before its line end) means the file is not ruler data: in
// characters, and in bytes before they are decoded.
inline constexpr int kMaxLineChars = 1024;
inline constexpr int kMaxLineBytes = 4 * kMaxLineChars;

enum class Status {
    Ok,
    CannotOpen, // missing or unreadable
    NotRulerData, // empty, binary, or a line too long
    CannotWrite,
};

// The file's bytes, normalised; texts in the local 8-bit encoding.
QByteArray ToBytes(const SvrData& data);

// The values of the bytes, or nothing when they are not ruler data. A file
// of fewer than eleven lines gives the remaining values from its last line,
// as the reader's line buffer still holds it. Trailing CRs are line ends.
std::optional<SvrData> FromBytes(QByteArrayView bytes);

// Only the first lines of a file are read, however large it is. On failure
// `data` is unchanged and `error` says why, in words for the user.
Status Read(const QString& path, SvrData& data, QString* error = nullptr);
// Replaces the file whole, or leaves it as it was.
Status Write(const QString& path, const SvrData& data, QString* error = nullptr);

// The name a "Save" writes to: a chosen path ending in ".svr" (exactly those
// letters) loses them, so that file has no extension.
QString SaveName(const QString& chosen);

// Factory calibration of the magnification list's entry (0 "10X" ... 4
// "100X"), made for a 1280 x 1024 frame; empty outside the list.
QString FactoryFileName(int magnification);
inline constexpr int kFactoryWidth = 1280;
inline constexpr int kFactoryHeight = 1024;

// Sums and differences of ruler coordinates as the file's first writer
// computed them, wrapping instead of overflowing for the absurd lengths a
// hand-edited file may hold.
inline int WrapAdd(int a, int b)
{
    return int(std::uint32_t(a) + std::uint32_t(b));
}
inline int WrapSub(int a, int b)
{
    return int(std::uint32_t(a) - std::uint32_t(b));
}

} // namespace SvrFile
