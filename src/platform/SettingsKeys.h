#pragma once

#include <QList>
#include <QSize>
#include <QString>

// Every section and key of the brand file and of "Setting.ini", with its
// default and the way it is stored. Values are read and written key by key at
// the moment of use; nothing is cached. Integers are stored with "%d", reals
// with "%.2f" (a period whatever the locale), strings as they stand.
namespace SettingsKeys {

enum class Format { Int, Real, String };

struct Key
{
    QString m_section;
    QString m_name;
    Format m_format = Format::Int;
    int m_intDefault = 0; // Int keys
    QString m_textDefault; // String keys, and Real keys, which are read as text
    int m_bufferChars = 256; // a string read keeps at most m_bufferChars - 1 characters
};

// Config.ini (brand file)
inline const Key ConfigDsp { "Config", "DSP", Format::Int, 0, {} };

// "Lang"
inline const Key LangEnRes { "Lang", "EnRes", Format::String, 0, "EnRes.dll" };
inline const Key LangCnRes { "Lang", "CnRes", Format::String, 0, "CnRes.dll" };
inline const Key LangFranceRes { "Lang", "FranceRes", Format::String, 0, "FranceRes.dll" };
inline const Key LangId { "Lang", "LangId", Format::Int, 0, {} }; // written only

// Default capture size per camera model.
struct CameraSection
{
    Key m_width;
    Key m_height;
};
inline const CameraSection Camera130H { { "Camera130H", "Width", Format::Int, 1280, {} },
    { "Camera130H", "Height", Format::Int, 1024, {} } };
inline const CameraSection Camera300 { { "Camera300", "Width", Format::Int, 640, {} },
    { "Camera300", "Height", Format::Int, 480, {} } };
inline const CameraSection Camera500 { { "Camera500", "Width", Format::Int, 640, {} },
    { "Camera500", "Height", Format::Int, 480, {} } };
inline const CameraSection Camera900 { { "Camera900", "Width", Format::Int, 640, {} },
    { "Camera900", "Height", Format::Int, 480, {} } };
inline const CameraSection Camera1000 { { "Camera1000", "Width", Format::Int, 640, {} },
    { "Camera1000", "Height", Format::Int, 480, {} } };

// "Measure": the calibration record and the appearance settings.
inline const Key MeasureXPerPixel { "Measure", "m_unit.m_dcxPerPixel", Format::Real, 0, "0.2" };
inline const Key MeasureYPerPixel { "Measure", "m_unit.m_dcyPerPixel", Format::Real, 0, "0.2" };
inline const Key MeasureUnit { "Measure", "m_unit.m_rtUnit", Format::Int, 1, {} };
inline const Key MeasureXReal { "Measure", "m_unit.m_dcxReal", Format::Real, 0, "0.2" };
inline const Key MeasureYReal { "Measure", "m_unit.m_dcyReal", Format::Real, 0, "0.2" };
inline const Key MeasureColorAdjust { "Measure", "m_color.m_ctAdjust", Format::Int, 1, {} };
inline const Key MeasureColorCoord { "Measure", "m_color.m_ctCoord", Format::Int, 1, {} };
inline const Key MeasureColorRuler { "Measure", "m_color.m_ctRuler", Format::Int, 1, {} };
inline const Key MeasureColorText { "Measure", "m_color.m_ctText", Format::Int, 1, {} };
inline const Key MeasurePrecision { "Measure", "Precision", Format::Int, 1, {} };
inline const Key MeasureFontSize { "Measure", "FontSize", Format::Int, 1, {} };
inline const Key MeasureFontBackground { "Measure", "FontBackground", Format::Int, 1, {} };

// "Process"
inline const Key ProcessFlip { "Process", "bFlip", Format::Int, 0, {} };
inline const Key ProcessMirror { "Process", "bMirror", Format::Int, 0, {} };

// "Video"
inline const Key VideoCameraType { "Video", "CameraType", Format::Int, 1, {} };
inline const Key VideoDisplayMode { "Video", "DisplayMode", Format::Int, 2, {} }; // written only, always 2
inline const Key VideoDevice { "Video", "Device", Format::String, 0, "" };
inline const Key VideoCurSel { "Video", "CurSel", Format::Int, 4, {} };

// "Image"
inline const Key ImageDefaultName { "Image", "DefaultImageName", Format::String, 0, "default_image.bmp" };

// "Save": the quick save. Folder, author and title are read into 260 characters.
inline const Key SaveTime { "Save", "bTime", Format::Int, 0, {} };
inline const Key SaveMeasure { "Save", "bMeasure", Format::Int, 0, {} };
inline const Key SaveRuler { "Save", "bRuler", Format::Int, 0, {} };
inline const Key SaveScale { "Save", "bScale", Format::Int, 0, {} };
inline const Key SaveTitleOn { "Save", "bTitle", Format::Int, 0, {} };
inline const Key SaveBmp { "Save", "bBmp", Format::Int, 0, {} };
inline const Key SaveAuthor { "Save", "Author", Format::String, 0, "", 260 };
inline const Key SaveTitle { "Save", "Title", Format::String, 0, "", 260 };
inline const Key SaveFilePath { "Save", "FilePath", Format::String, 0, "", 260 };
inline const Key SavePrefix { "Save", "Prefix", Format::String, 0, "" };
inline const Key SaveSuffix { "Save", "Suffix", Format::Int, 0, {} };

// "SaveAs"
inline const Key SaveAsTime { "SaveAs", "bTime", Format::Int, 0, {} };
inline const Key SaveAsMeasure { "SaveAs", "bMeasure", Format::Int, 0, {} };
inline const Key SaveAsRuler { "SaveAs", "bRuler", Format::Int, 0, {} };
inline const Key SaveAsScale { "SaveAs", "bScale", Format::Int, 0, {} };
inline const Key SaveAsTitleOn { "SaveAs", "bTitle", Format::Int, 0, {} };
inline const Key SaveAsAuthor { "SaveAs", "Author", Format::String, 0, "", 260 };
inline const Key SaveAsTitle { "SaveAs", "Title", Format::String, 0, "", 260 };
inline const Key SaveAsSubject { "SaveAs", "Subject", Format::String, 0, "" };
inline const Key SaveAsComment { "SaveAs", "Comment", Format::String, 0, "" };
inline const Key SaveAsFilePath { "SaveAs", "FilePath", Format::String, 0, "", 260 };

// The focus peaking marks' colour, 0xRRGGBB.
inline const Key FocusPeakingColor { "FocusPeaking", "Color", Format::Int, 0x00FF00, {} };

// "RGBGAIN": named gain presets, numbered from 0. Gains are kept as text.
inline const Key RgbGainTotal { "RGBGAIN", "Total", Format::Int, 0, {} };
Key RgbGainName(int index);
Key RgbGainRed(int index);
Key RgbGainGreen(int index);
Key RgbGainBlue(int index);

// "Gerneral" is spelt so in every existing settings file.
inline const Key GeneralAppName { "Gerneral", "AppName", Format::String, 0, "Oculix.exe" };

int ReadInt(const Key& key, const QString& file);
QString ReadString(const Key& key, const QString& file);
// Scanned as "%f" into a single-precision float and widened, so a
// calibration never carries more than float precision.
double ReadReal(const Key& key, const QString& file);
QSize ReadCameraSize(const CameraSection& camera, const QString& file);
inline QSize DefaultCameraSize(const CameraSection& camera)
{
    return { camera.m_width.m_intDefault, camera.m_height.m_intDefault };
}

bool WriteInt(const Key& key, int value, const QString& file);
bool WriteReal(const Key& key, double value, const QString& file);
bool WriteString(const Key& key, const QString& value, const QString& file);

// "%.2f" with a period: 0.123 gives "0.12", 0.004 gives "0.00".
QString FormatReal(double value);

// The keys a document reads when it is created and writes when it is
// destroyed: "Video", "Process", "Measure".
struct DocumentSettings
{
    int m_cameraType = 0;
    int m_displayMode = 2;
    QString m_device;
    int m_curSel = 0;
    int m_bFlip = 0;
    int m_bMirror = 0;
    double m_dcxPerPixel = 0;
    double m_dcyPerPixel = 0;
    int m_rtUnit = 0;
    double m_dcxReal = 0;
    double m_dcyReal = 0;
    int m_ctAdjust = 0;
    int m_ctCoord = 0;
    int m_ctRuler = 0;
    int m_ctText = 0;
    int m_precision = 0;
    int m_fontSize = 0;
    int m_fontBackground = 0;
};

// Every key but "DisplayMode", which is never read (m_displayMode stays 2).
// Missing keys take the table's defaults.
DocumentSettings ReadDocumentSettings(const QString& file);
// Writes in DocumentWriteOrder(); returns false when any write failed.
bool WriteDocumentSettings(const DocumentSettings& settings, const QString& file);
const QList<Key>& DocumentWriteOrder();

} // namespace SettingsKeys
