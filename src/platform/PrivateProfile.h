#pragma once

#include <QString>

// Stand-ins for the Windows private-profile calls, keeping the rules an
// existing "Setting.ini" depends on. Nothing is cached: every read opens the
// file, every write changes the single key in the file at once.
//
// A null QString plays the platform's NULL: a null default reads as "", a
// null value removes the key, a null key removes the section. A null key (or
// section) on reading lists the section's key names (or all section names),
// each followed by a '\0'.

// Decimal digits after optional blanks and sign, wrapping modulo 2^32; the
// default for a missing or empty value, 0 for one that is not a number.
// Callers take the result as int, so "-1" reads -1.
unsigned GetPrivateProfileInt(const QString& section, const QString& key, int def, const QString& file);

QString GetPrivateProfileString(
    const QString& section, const QString& key, const QString& def, const QString& file);

// Writes beside the file and renames over it, under a lock shared with other
// processes, so a failed write leaves the old file whole. Writing a value the
// file already holds leaves the file untouched. The file's folder is never
// created. Returns false when the file could not be written, or when a name or
// value would read back as something else (line breaks, "=" in a key).
bool WritePrivateProfileString(
    const QString& section, const QString& key, const QString& value, const QString& file);
