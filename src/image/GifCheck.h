#pragma once

#include <QByteArray>
#include <QString>

// Qt's GIF reader takes a file whose first frame's data stops short as a
// whole picture, the missing rows made up. So a GIF passes here first: the
// blocks up to the first frame are walked and its LZW codes counted (not
// decoded into pixels). False, with the reason, when the frame is cut short
// or the file ends before it; true otherwise, Qt then reading it.
bool GifFrameComplete(const QByteArray& file, QString& why);
