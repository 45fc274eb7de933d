#pragma once

#include <QString>

// The reason every picture reader gives for a file shorter than its header
// says, the user's answer to "why does it not open".
inline QString TruncatedText(qint64 rowsPresent, qint64 rows)
{
    return QStringLiteral("the file is truncated (%1 of %2 rows)").arg(rowsPresent).arg(rows);
}
