#include "app/CommandTable.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {


// English texts of the document menu and the status-bar prompts. Later
// features add their rows here and their ids to the layouts below.
const CommandInfo kCommands[] = {
    { ID_FILE_NEW, QT_TRANSLATE_NOOP("Command", "&New Preview\tCtrl+N"), QT_TRANSLATE_NOOP("Command", "New preview"), ":/icons/new.svg", false },
    { ID_FILE_OPEN, QT_TRANSLATE_NOOP("Command", "&Open...\tCtrl+O"), QT_TRANSLATE_NOOP("Command", "Open an existing image"), ":/icons/open.svg", false },
    { ID_FILE_CLOSE, QT_TRANSLATE_NOOP("Command", "&Close"), QT_TRANSLATE_NOOP("Command", "Close the active imaget"), nullptr, false },
    { ID_APP_EXIT, QT_TRANSLATE_NOOP("Command", "E&xit"), "", nullptr, false },
    { ID_VIEW_STATUS_BAR, QT_TRANSLATE_NOOP("Command", "&Status Bar"), QT_TRANSLATE_NOOP("Command", "Show or hide the status bar"), nullptr, true },
    { ID_VIEW_TOOLBAR, QT_TRANSLATE_NOOP("Command", "&Tool Bar"), QT_TRANSLATE_NOOP("Command", "Show or hide the toolbar"), nullptr, true },
    { ID_VIEW_PROCESSBAR, QT_TRANSLATE_NOOP("Command", "&Process Bar"), QT_TRANSLATE_NOOP("Command", "Show or hide Process Bar"), nullptr, true },
    { ID_VIEW_MEASUREBAR, QT_TRANSLATE_NOOP("Command", "&Measure Bar"), QT_TRANSLATE_NOOP("Command", "Show or hide the measure bar"), nullptr, true },
    { ID_VIEW_FULLSCREEN, QT_TRANSLATE_NOOP("Command", "&Full Screen"), QT_TRANSLATE_NOOP("Command", "Toggles full screen mode On and Off"),
        ":/icons/fullscreen.svg", false },
    { ID_CAMERA_FULLSCREEN, "", QT_TRANSLATE_NOOP("Command", "Fullscreen camera video"), ":/icons/fullscreen.svg", false },
    { ID_VIDEO_ADJUST, QT_TRANSLATE_NOOP("Command", "&Adjust"), QT_TRANSLATE_NOOP("Command", "Show video adjusting dialog"), ":/icons/adjust.svg", false },
    { ID_PROCESS_ENABLE, QT_TRANSLATE_NOOP("Command", "&Enable"), QT_TRANSLATE_NOOP("Command", "Enable realtime process"), ":/icons/enable.svg", true },
    { ID_PROCESS_MIRROR, QT_TRANSLATE_NOOP("Command", "Flip &Horizontal"), QT_TRANSLATE_NOOP("Command", "Flip image horizontal "), ":/icons/mirror.svg", true },
    { ID_PROCESS_FLIP, QT_TRANSLATE_NOOP("Command", "Flip &Vertical"), QT_TRANSLATE_NOOP("Command", "Flip image vertical"), ":/icons/flip.svg", true },
    { ID_PROCESS_GRAY, QT_TRANSLATE_NOOP("Command", "&Gray"), QT_TRANSLATE_NOOP("Command", "Gray image"), ":/icons/gray.svg", true },
    { ID_PROCESS_NEGATIVE, QT_TRANSLATE_NOOP("Command", "&Negative"), QT_TRANSLATE_NOOP("Command", "Negative image"), ":/icons/negative.svg", true },
    { ID_PROCESS_EMBOSS, QT_TRANSLATE_NOOP("Command", "&Emboss"), QT_TRANSLATE_NOOP("Command", "Emboss image"), ":/icons/emboss.svg", true },
    { ID_PROCESS_SHARPEN, QT_TRANSLATE_NOOP("Command", "&Sharpen"), QT_TRANSLATE_NOOP("Command", "Sharpen image"), ":/icons/sharpen.svg", true },
    { ID_PROCESS_BINARY, QT_TRANSLATE_NOOP("Command", "&Binary"), QT_TRANSLATE_NOOP("Command", "Binary image"), ":/icons/binary.svg", false },
    { ID_MEASURE_MOVE, QT_TRANSLATE_NOOP("Command", "Mo&ve"), QT_TRANSLATE_NOOP("Command", "Move elements"), ":/icons/move.svg", true },
    { ID_MEASURE_POINT, "", "", ":/icons/point.svg", true, QT_TRANSLATE_NOOP("Command", "Point") },
    { ID_MEASURE_LINE, QT_TRANSLATE_NOOP("Command", "&Line"), QT_TRANSLATE_NOOP("Command", "Draw line"), ":/icons/line.svg", true },
    { ID_MEASURE_ANGLE, QT_TRANSLATE_NOOP("Command", "&Angle"), QT_TRANSLATE_NOOP("Command", "Draw angle "), ":/icons/angle.svg", true },
    { ID_MEASURE_RECT, QT_TRANSLATE_NOOP("Command", "&Rect"), QT_TRANSLATE_NOOP("Command", "Draw rect"), ":/icons/rect.svg", true },
    { ID_MEASURE_CIRCLE, QT_TRANSLATE_NOOP("Command", "&Circle"), QT_TRANSLATE_NOOP("Command", "Draw circle"), ":/icons/circle.svg", true },
    { ID_MEASURE_TRICIRCLE, QT_TRANSLATE_NOOP("Command", "&TriCircle"), QT_TRANSLATE_NOOP("Command", "Draw tricircle"), ":/icons/tricircle.svg", true },
    { ID_MEASURE_POLYGON, QT_TRANSLATE_NOOP("Command", "&Polygon"), QT_TRANSLATE_NOOP("Command", "Draw polygon"), ":/icons/polygon.svg", true },
    { ID_MEASURE_COUNTING, QT_TRANSLATE_NOOP("Command", "Count&ing"), QT_TRANSLATE_NOOP("Command", "Draw counting"), ":/icons/counting.svg", true },
    { ID_MEASURE_DELETE, QT_TRANSLATE_NOOP("Command", "&Delete"), QT_TRANSLATE_NOOP("Command", "Delete one element"), ":/icons/delete.svg", true },
    { ID_MEASURE_DELETE_ALL, QT_TRANSLATE_NOOP("Command", "Delete&All"), QT_TRANSLATE_NOOP("Command", "Delete all elements"), ":/icons/deleteall.svg", false },
    { ID_MEASURE_CALIBRATION, QT_TRANSLATE_NOOP("Command", "Calibratio&n"), QT_TRANSLATE_NOOP("Command", "Calibration"), ":/icons/calibration.svg", false },
    { ID_MEASURE_SETTING, QT_TRANSLATE_NOOP("Command", "&Setting"), QT_TRANSLATE_NOOP("Command", "Measure setting"), ":/icons/setting.svg", false },
    { ID_MEASURE_EXPORT, QT_TRANSLATE_NOOP("Command", "Ex&port data"), QT_TRANSLATE_NOOP("Command", "Export measurement data to csv file"),
        ":/icons/export.svg", false },
    { ID_MEASURE_ARROW, QT_TRANSLATE_NOOP("Command", "A&rrow"), QT_TRANSLATE_NOOP("Command", "Draw Arrow Annotation"), ":/icons/arrow.svg", true },
    { ID_MEASURE_TEXT, QT_TRANSLATE_NOOP("Command", "&Text"), QT_TRANSLATE_NOOP("Command", "Draw Text Annotation"), ":/icons/text.svg", true },
    { ID_VIEW_CROSSLINE, QT_TRANSLATE_NOOP("Command", "&Cross Line"), QT_TRANSLATE_NOOP("Command", "Solid crossline"), ":/icons/crossline.svg", true },
    { ID_VIEW_DASHED_CROSSLINE, QT_TRANSLATE_NOOP("Command", "Dashed C&ross Line"), QT_TRANSLATE_NOOP("Command", "Dashed crossline"),
        ":/icons/dashedcrossline.svg", true },
    { ID_VIDEO_DEVICE, QT_TRANSLATE_NOOP("Command", "Video Capture &Device..."), QT_TRANSLATE_NOOP("Command", "Change video capture device"),
        ":/icons/device.svg", false },
    { ID_VIDEO_RESOLUTION, QT_TRANSLATE_NOOP("Command", "Video &Resolution"), QT_TRANSLATE_NOOP("Command", "Setting video capture properties"), nullptr,
        false },
    { ID_VIDEO_PROPERTIES, QT_TRANSLATE_NOOP("Command", "Video &Properties"), QT_TRANSLATE_NOOP("Command", "Adjusting video capture filter properties"),
        nullptr, false },
    { ID_CAMERA_CAPTURE, "", QT_TRANSLATE_NOOP("Command", "Capture picture to an active view"), ":/icons/capture.svg", false },
    { ID_CAMERA_PREVIEW, "", QT_TRANSLATE_NOOP("Command", "Preview camera device"), ":/icons/preview.svg", false },
    { ID_CAMERA_PAUSE, "", QT_TRANSLATE_NOOP("Command", "Pause the camera video"), ":/icons/pause.svg", false },
    { ID_ZOOM, "", QT_TRANSLATE_NOOP("Command", "Zoom display"), nullptr, false },
    { ID_WINDOW_CASCADE, QT_TRANSLATE_NOOP("Command", "&Cascade"), "", nullptr, false },
    { ID_WINDOW_TILE_HORZ, QT_TRANSLATE_NOOP("Command", "Tile &Horizontal"), "", nullptr, false },
    { ID_WINDOW_TILE_VERT, QT_TRANSLATE_NOOP("Command", "Tile &Vertical"), "", nullptr, false },
    { ID_FILE_OPEN_PICTURE_FOLDER, QT_TRANSLATE_NOOP("Command", "Open &Picture Folder"),
        QT_TRANSLATE_NOOP("Command", "Open pictures' saved folder"), nullptr, false },
    { ID_FILE_MRU_FILE1, QT_TRANSLATE_NOOP("Command", "Recent File"), QT_TRANSLATE_NOOP("Command", "Open this document"),
        nullptr, false },
    { ID_FILE_MRU_FILE1 + 1, QT_TRANSLATE_NOOP("Command", "Recent File"),
        QT_TRANSLATE_NOOP("Command", "Open this document"), nullptr, false },
    { ID_FILE_MRU_FILE1 + 2, QT_TRANSLATE_NOOP("Command", "Recent File"),
        QT_TRANSLATE_NOOP("Command", "Open this document"), nullptr, false },
    { ID_FILE_MRU_FILE1 + 3, QT_TRANSLATE_NOOP("Command", "Recent File"),
        QT_TRANSLATE_NOOP("Command", "Open this document"), nullptr, false },
    { ID_FILE_PRINT_PREVIEW, "", QT_TRANSLATE_NOOP("Command", "Display full pages"), ":/icons/printpreview.svg", false },
    { ID_HELP_CONTENT, "", QT_TRANSLATE_NOOP("Command", "Help content"), ":/icons/help.svg", false },
    { ID_VIEW_PRINTHELPBAR, QT_TRANSLATE_NOOP("Command", "Print and &Help Bar"),
        QT_TRANSLATE_NOOP("Command", "Show or hide the print and help bar"), nullptr, true },
    { ID_HELP_MANUAL, QT_TRANSLATE_NOOP("Command", "&Help"), QT_TRANSLATE_NOOP("Command", "How to use"), nullptr, false },
    { ID_APP_ABOUT, QT_TRANSLATE_NOOP("Command", "&About..."), "", nullptr, false },
    // Each language by its own name, the same in every language.
    { ID_LANGUAGE_ENGLISH, "English", "", nullptr, true },
    { ID_LANGUAGE_FRENCH, "Français", "", nullptr, true },
    { ID_LANGUAGE_CHINESE, "中文(简体)", "", nullptr, true },
};

constexpr int S = ID_SEPARATOR;

constexpr std::array kFileMenu { ID_FILE_NEW, ID_FILE_OPEN, ID_FILE_CLOSE, S, ID_FILE_OPEN_PICTURE_FOLDER, S, ID_FILE_MRU_FILE1,
    ID_FILE_MRU_FILE1 + 1, ID_FILE_MRU_FILE1 + 2, ID_FILE_MRU_FILE1 + 3, S, ID_APP_EXIT };
constexpr std::array kViewMenu { ID_VIEW_TOOLBAR, ID_VIEW_MEASUREBAR, ID_VIEW_PROCESSBAR, ID_VIEW_PRINTHELPBAR, ID_VIEW_STATUS_BAR,
    S, ID_VIEW_FULLSCREEN, S, ID_VIEW_CROSSLINE, ID_VIEW_DASHED_CROSSLINE };
constexpr std::array kMeasureMenu { ID_MEASURE_MOVE, S, ID_MEASURE_LINE, ID_MEASURE_ANGLE, ID_MEASURE_RECT,
    ID_MEASURE_POLYGON, ID_MEASURE_CIRCLE, ID_MEASURE_TRICIRCLE, ID_MEASURE_COUNTING, S, ID_MEASURE_ARROW,
    ID_MEASURE_TEXT, S, ID_MEASURE_DELETE, ID_MEASURE_DELETE_ALL, S, ID_MEASURE_CALIBRATION,
    ID_MEASURE_SETTING, ID_MEASURE_EXPORT };
constexpr std::array kProcessMenu { ID_PROCESS_ENABLE, S, ID_PROCESS_MIRROR, ID_PROCESS_FLIP, S,
    ID_PROCESS_GRAY, ID_PROCESS_NEGATIVE, ID_PROCESS_EMBOSS, ID_PROCESS_SHARPEN, ID_PROCESS_BINARY };
constexpr std::array kVideoMenu { ID_VIDEO_DEVICE, ID_VIDEO_RESOLUTION, ID_VIDEO_PROPERTIES,
    ID_VIDEO_ADJUST };
constexpr std::array kWindowMenu { ID_WINDOW_CASCADE, ID_WINDOW_TILE_HORZ, ID_WINDOW_TILE_VERT };
constexpr std::array kLanguageMenu { ID_LANGUAGE_ENGLISH, ID_LANGUAGE_FRENCH, ID_LANGUAGE_CHINESE };
constexpr std::array kHelpMenu { ID_HELP_MANUAL, S, ID_APP_ABOUT };


const MenuInfo kMenus[] = {
    { QT_TRANSLATE_NOOP("Menu", "&File"), kFileMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "&View"), kViewMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "&Measure"), kMeasureMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "&Process"), kProcessMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "V&ideo"), kVideoMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "&Window"), kWindowMenu, true },
    { QT_TRANSLATE_NOOP("Menu", "&Language"), kLanguageMenu, false },
    { QT_TRANSLATE_NOOP("Menu", "&Help"), kHelpMenu, false },
};

constexpr std::array kStandardBar { ID_FILE_NEW, ID_FILE_OPEN, S, ID_CAMERA_CAPTURE, ID_CAMERA_PREVIEW,
    ID_CAMERA_PAUSE, ID_CAMERA_FULLSCREEN, S, ID_ZOOM };
constexpr std::array kMeasureBar { ID_MEASURE_MOVE, S, ID_MEASURE_POINT, ID_MEASURE_LINE, ID_MEASURE_ANGLE,
    ID_MEASURE_RECT, ID_MEASURE_POLYGON, ID_MEASURE_CIRCLE, ID_MEASURE_TRICIRCLE, ID_MEASURE_COUNTING, S,
    ID_MEASURE_ARROW, ID_MEASURE_TEXT, S, ID_MEASURE_DELETE, ID_MEASURE_DELETE_ALL, S, ID_VIEW_CROSSLINE,
    ID_VIEW_DASHED_CROSSLINE, S, ID_MEASURE_CALIBRATION, ID_MEASURE_SETTING, ID_MEASURE_EXPORT };
constexpr std::array kProcessBar { ID_PROCESS_ENABLE, S, ID_PROCESS_MIRROR, ID_PROCESS_FLIP, S,
    ID_PROCESS_GRAY, ID_PROCESS_NEGATIVE, ID_PROCESS_EMBOSS, ID_PROCESS_SHARPEN, ID_PROCESS_BINARY, S,
    ID_VIDEO_ADJUST };


constexpr std::array kPrintHelpBar { ID_FILE_PRINT_PREVIEW, S, ID_HELP_CONTENT };

const ToolBarInfo kToolBars[] = {
    { ID_VIEW_TOOLBAR, "StandardBar", QT_TRANSLATE_NOOP("ToolBar", "Standard"), kStandardBar },
    { ID_VIEW_MEASUREBAR, "MeasureBar", QT_TRANSLATE_NOOP("ToolBar", "Measure"), kMeasureBar },
    { ID_VIEW_PROCESSBAR, "ProcessBar", QT_TRANSLATE_NOOP("ToolBar", "Process"), kProcessBar },
    { ID_VIEW_PRINTHELPBAR, "PrintHelpBar", QT_TRANSLATE_NOOP("ToolBar", "Print and Help"), kPrintHelpBar },
};

constexpr std::array<const char*, 10> kZoomLabels { "250%", "200%", "150%", "125%", "100%", "75%", "67%",
    "50%", "33%", "25%" };

QString Translate(const char* text)
{
    return (text && *text) ? QCoreApplication::translate("Command", text) : QString();
}

} // namespace

std::span<const CommandInfo> Commands()
{
    return kCommands;
}

const CommandInfo* FindCommand(int id)
{
    auto it = std::find_if(
        std::begin(kCommands), std::end(kCommands), [id](const CommandInfo& c) { return c.id == id; });
    return it == std::end(kCommands) ? nullptr : &*it;
}

std::span<const MenuInfo> Menus()
{
    return kMenus;
}

std::span<const ToolBarInfo> ToolBars()
{
    return kToolBars;
}

QString CommandText(const CommandInfo& info)
{
    return Translate(info.menuText).section(QLatin1Char('\t'), 0, 0);
}

QString CommandShortcut(const CommandInfo& info)
{
    return Translate(info.menuText).section(QLatin1Char('\t'), 1, 1);
}

QString CommandPrompt(const CommandInfo& info)
{
    return Translate(info.prompt);
}

QString CommandToolTip(const CommandInfo& info)
{
    if (info.prompt && *info.prompt)
        return CommandPrompt(info).trimmed();
    if (info.menuText && *info.menuText)
        return CommandText(info).remove(QLatin1Char('&'));
    return Translate(info.tip);
}

std::span<const char* const> ZoomLabels()
{
    return kZoomLabels;
}
