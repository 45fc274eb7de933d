#include "app/SaveSettings.h"

#include "platform/QuickSaveName.h"
#include "platform/SettingsKeys.h"

namespace K = SettingsKeys;

QuickSaveSettings QuickSaveSettings::Read(const QString& file)
{
    QuickSaveSettings s;
    s.overlay.time = K::ReadInt(K::SaveTime, file) != 0;
    s.overlay.measure = K::ReadInt(K::SaveMeasure, file) != 0;
    s.overlay.ruler = K::ReadInt(K::SaveRuler, file) != 0;
    s.overlay.scale = K::ReadInt(K::SaveScale, file) != 0;
    s.overlay.title = K::ReadInt(K::SaveTitleOn, file) != 0;
    s.bmp = K::ReadInt(K::SaveBmp, file) == 1;
    s.author = K::ReadString(K::SaveAuthor, file);
    s.filePath = K::ReadString(K::SaveFilePath, file);
    s.suffix = K::ReadInt(K::SaveSuffix, file);
    s.title = K::ReadString(K::SaveTitle, file);
    s.prefix = K::ReadString(K::SavePrefix, file);
    return s;
}

bool QuickSaveSettings::Write(const QString& file) const
{
    bool ok = K::WriteInt(K::SaveMeasure, overlay.measure, file);
    ok &= K::WriteInt(K::SaveTime, overlay.time, file);
    ok &= K::WriteInt(K::SaveTitleOn, overlay.title, file);
    ok &= K::WriteInt(K::SaveRuler, overlay.ruler, file);
    ok &= K::WriteInt(K::SaveScale, overlay.scale, file);
    ok &= K::WriteInt(K::SaveSuffix, suffix, file);
    ok &= K::WriteInt(K::SaveBmp, bmp, file);
    ok &= K::WriteString(K::SaveAuthor, author, file);
    ok &= K::WriteString(K::SaveTitle, title, file);
    ok &= K::WriteString(K::SavePrefix, prefix, file);
    ok &= K::WriteString(K::SaveFilePath, filePath, file);
    return ok;
}

QString QuickSaveSettings::Folder(const QString& pictureFolder) const
{
    return filePath.isEmpty() ? pictureFolder : filePath;
}

QString QuickSaveSettings::PathIn(const QString& folder) const
{
    return QuickSavePath(folder, {}, prefix, suffix, bmp);
}

SaveAsSettings SaveAsSettings::Read(const QString& file)
{
    SaveAsSettings s;
    s.overlay.time = K::ReadInt(K::SaveAsTime, file) != 0;
    s.overlay.measure = K::ReadInt(K::SaveAsMeasure, file) != 0;
    s.overlay.ruler = K::ReadInt(K::SaveAsRuler, file) != 0;
    s.overlay.scale = K::ReadInt(K::SaveAsScale, file) != 0;
    s.overlay.title = K::ReadInt(K::SaveAsTitleOn, file) != 0;
    s.texts.author = K::ReadString(K::SaveAsAuthor, file);
    s.texts.title = K::ReadString(K::SaveAsTitle, file);
    s.texts.subject = K::ReadString(K::SaveAsSubject, file);
    s.texts.comment = K::ReadString(K::SaveAsComment, file);
    s.filePath = K::ReadString(K::SaveAsFilePath, file);
    return s;
}

bool SaveAsSettings::Write(const QString& file) const
{
    bool ok = K::WriteInt(K::SaveAsMeasure, overlay.measure, file);
    ok &= K::WriteInt(K::SaveAsTime, overlay.time, file);
    ok &= K::WriteInt(K::SaveAsTitleOn, overlay.title, file);
    ok &= K::WriteInt(K::SaveAsRuler, overlay.ruler, file);
    ok &= K::WriteInt(K::SaveAsScale, overlay.scale, file);
    ok &= K::WriteString(K::SaveAsAuthor, texts.author, file);
    ok &= K::WriteString(K::SaveAsSubject, texts.subject, file);
    ok &= K::WriteString(K::SaveAsTitle, texts.title, file);
    ok &= K::WriteString(K::SaveAsComment, texts.comment, file);
    ok &= K::WriteString(K::SaveAsFilePath, filePath, file);
    return ok;
}

QString JoinSavePath(const QString& folder, const QString& name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}
