#pragma once

#include <QString>

// The reason every picture reader gives for a file shorter than its header
// says, the user's answer to "why does it not open"; with the rows there
// where the reader counts them.
inline QString TruncatedFileText()
{
    return QStringLiteral("the file is truncated");
}

inline QString TruncatedText(qint64 rowsPresent, qint64 rows)
{
    return QStringLiteral("%1 (%2 of %3 rows)").arg(TruncatedFileText()).arg(rowsPresent).arg(rows);
}
