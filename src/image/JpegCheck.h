#pragma once

#include <QByteArray>
#include <QString>

// Qt's JPEG reader fills the rows of a file cut short with gray and reports
// success. So a JPEG passes here first: its segments and entropy-coded data
// are walked to the end-of-image marker. False, with the reason, when the
// file ends before it; true otherwise (including layouts not followed here,
// which Qt's reader judges).
bool JpegComplete(const QByteArray& file, QString& why);
