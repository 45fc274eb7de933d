#include "platform/SettingsKeys.h"

#include "platform/NumberText.h"
#include "platform/PrivateProfile.h"

namespace SettingsKeys {

namespace {

Key Indexed(const char* pattern, int index, const char* def)
{
    return { QStringLiteral("RGBGAIN"), QString::fromLatin1(pattern).arg(index), Format::String, 0,
        QString::fromLatin1(def) };
}

} // namespace

Key RgbGainName(int index)
{
    return Indexed("RGBGAINNAME%1", index, "RgbGainName");
}

Key RgbGainRed(int index)
{
    return Indexed("RGAIN%1", index, "32");
}

Key RgbGainGreen(int index)
{
    return Indexed("GGAIN%1", index, "32");
}

Key RgbGainBlue(int index)
{
    return Indexed("BGAIN%1", index, "32");
}

int ReadInt(const Key& key, const QString& file)
{
    return static_cast<int>(GetPrivateProfileInt(key.m_section, key.m_name, key.m_intDefault, file));
}

QString ReadString(const Key& key, const QString& file)
{
    return GetPrivateProfileString(key.m_section, key.m_name, key.m_textDefault, file)
        .left(key.m_bufferChars - 1);
}

double ReadReal(const Key& key, const QString& file)
{
    const float fallback = NumberText::LeadingFloat(key.m_textDefault).value_or(0.0f);
    return NumberText::LeadingFloat(ReadString(key, file)).value_or(fallback);
}

QSize ReadCameraSize(const CameraSection& camera, const QString& file)
{
    return { ReadInt(camera.m_width, file), ReadInt(camera.m_height, file) };
}

bool WriteInt(const Key& key, int value, const QString& file)
{
    return WritePrivateProfileString(key.m_section, key.m_name, QString::number(value), file);
}

bool WriteReal(const Key& key, double value, const QString& file)
{
    return WritePrivateProfileString(key.m_section, key.m_name, FormatReal(value), file);
}

bool WriteString(const Key& key, const QString& value, const QString& file)
{
    // A null value would remove the key; this call always stores a string.
    return WritePrivateProfileString(
        key.m_section, key.m_name, value.isNull() ? QStringLiteral("") : value, file);
}

QString FormatReal(double value)
{
    return NumberText::FormatC("%.2f", value);
}

const QList<Key>& DocumentWriteOrder()
{
    static const QList<Key> order {
        VideoCameraType,
        VideoDisplayMode,
        VideoDevice,
        VideoCurSel,
        ProcessFlip,
        ProcessMirror,
        MeasureXPerPixel,
        MeasureYPerPixel,
        MeasureUnit,
        MeasureXReal,
        MeasureYReal,
        MeasureColorAdjust,
        MeasureColorCoord,
        MeasureColorRuler,
        MeasureColorText,
        MeasurePrecision,
        MeasureFontSize,
        MeasureFontBackground,
    };
    return order;
}

DocumentSettings ReadDocumentSettings(const QString& file)
{
    DocumentSettings s;
    s.m_cameraType = ReadInt(VideoCameraType, file);
    s.m_device = ReadString(VideoDevice, file);
    s.m_curSel = ReadInt(VideoCurSel, file);
    s.m_bFlip = ReadInt(ProcessFlip, file);
    s.m_bMirror = ReadInt(ProcessMirror, file);
    s.m_dcxPerPixel = ReadReal(MeasureXPerPixel, file);
    s.m_dcyPerPixel = ReadReal(MeasureYPerPixel, file);
    s.m_rtUnit = ReadInt(MeasureUnit, file);
    s.m_dcxReal = ReadReal(MeasureXReal, file);
    s.m_dcyReal = ReadReal(MeasureYReal, file);
    s.m_ctAdjust = ReadInt(MeasureColorAdjust, file);
    s.m_ctCoord = ReadInt(MeasureColorCoord, file);
    s.m_ctRuler = ReadInt(MeasureColorRuler, file);
    s.m_ctText = ReadInt(MeasureColorText, file);
    s.m_precision = ReadInt(MeasurePrecision, file);
    s.m_fontSize = ReadInt(MeasureFontSize, file);
    s.m_fontBackground = ReadInt(MeasureFontBackground, file);
    return s;
}

bool WriteDocumentSettings(const DocumentSettings& s, const QString& file)
{
    // Same order as DocumentWriteOrder().
    const QString values[] = {
        QString::number(s.m_cameraType),
        QString::number(s.m_displayMode),
        s.m_device.isNull() ? QStringLiteral("") : s.m_device,
        QString::number(s.m_curSel),
        QString::number(s.m_bFlip),
        QString::number(s.m_bMirror),
        FormatReal(s.m_dcxPerPixel),
        FormatReal(s.m_dcyPerPixel),
        QString::number(s.m_rtUnit),
        FormatReal(s.m_dcxReal),
        FormatReal(s.m_dcyReal),
        QString::number(s.m_ctAdjust),
        QString::number(s.m_ctCoord),
        QString::number(s.m_ctRuler),
        QString::number(s.m_ctText),
        QString::number(s.m_precision),
        QString::number(s.m_fontSize),
        QString::number(s.m_fontBackground),
    };
    const QList<Key>& keys = DocumentWriteOrder();
    Q_ASSERT(keys.size() == qsizetype(std::size(values)));
    bool ok = true;
    for (qsizetype i = 0; i < keys.size(); ++i)
        ok = WritePrivateProfileString(keys[i].m_section, keys[i].m_name, values[i], file) && ok;
    return ok;
}

} // namespace SettingsKeys
