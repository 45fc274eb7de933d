#include "app/CommandTable.h"

#include "image/ProcessOperations.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

#define CMD(text) QT_TRANSLATE_NOOP("Command", text)

// English texts of the document menu and the status-bar prompts. Later
// features add their rows here and their ids to the layouts below.
const CommandInfo kCommands[] = {
    { ID_FILE_NEW, CMD("&New Preview\tCtrl+N"), CMD("New preview"), ":/icons/new.svg", false },
    { ID_FILE_OPEN, CMD("&Open...\tCtrl+O"), CMD("Open an existing image"), ":/icons/open.svg", false },
    { ID_FILE_CLOSE, CMD("&Close"), CMD("Close the active imaget"), nullptr, false },
    { ID_FILE_SAVE, CMD("&Save\tCtrl+S"), CMD("Save the active image"), ":/icons/save.svg", false },
    { ID_FILE_SAVE_AS, CMD("Save &As..."), CMD("Save the active image with a new name"), ":/icons/saveas.svg",
        false },
    { ID_FILE_SAVE_PLUS_MEASURE, CMD("Save plus measure"), "", nullptr, false },
    { ID_FILE_SAVE_ONLY_IMAGE, CMD("Save only image"), "", nullptr, false },
    { ID_FILE_SAVE_AS_ONLY_IMAGE, CMD("Save As only image"), "", nullptr, false },
    { ID_FILE_SAVE_AS_PLUS_MEASURE, CMD("Save As plus measure"), "", nullptr, false },
    { ID_SAVE_OPTION, CMD("Save &Option"), CMD("Setting save options"), nullptr, false },
    { ID_SAVE_RESOLUTION, "", CMD("Set resolution"), ":/icons/resolution.svg", false },
    { ID_APP_EXIT, CMD("E&xit"), "", nullptr, false },
    { ID_EDIT_UNDO, CMD("&Undo\tCtrl+Z"), CMD("Undo the last action"), nullptr, false },
    { ID_EDIT_REDO, CMD("&Redo\tCtrl+Y"), CMD("Redo the previously undone action"), nullptr, false },
    { ID_VIEW_STATUS_BAR, CMD("&Status Bar"), CMD("Show or hide the status bar"), nullptr, true },
    { ID_VIEW_TOOLBAR, CMD("&Tool Bar"), CMD("Show or hide the toolbar"), nullptr, true },
    { ID_VIEW_PROCESSBAR, CMD("&Process Bar"), CMD("Show or hide Process Bar"), nullptr, true },
    { ID_VIEW_MEASUREBAR, CMD("&Measure Bar"), CMD("Show or hide the measure bar"), nullptr, true },
    { ID_VIEW_HISTOGRAM, CMD("Hist&ogram"), CMD("Show or hide the live histogram"), nullptr, true },
    { ID_VIEW_FULLSCREEN, CMD("&Full Screen"), CMD("Toggles full screen mode On and Off"),
        ":/icons/fullscreen.svg", false },
    { ID_CAMERA_FULLSCREEN, "", CMD("Fullscreen camera video"), ":/icons/fullscreen.svg", false },
    { ID_VIDEO_ADJUST, CMD("&Adjust"), CMD("Show video adjusting dialog"), ":/icons/adjust.svg", false },
    { ID_PROCESS_ENABLE, CMD("&Enable"), CMD("Enable realtime process"), ":/icons/enable.svg", true },
    { ID_PROCESS_MIRROR, CMD("Flip &Horizontal"), CMD("Flip image horizontal "), ":/icons/mirror.svg", true },
    { ID_PROCESS_FLIP, CMD("Flip &Vertical"), CMD("Flip image vertical"), ":/icons/flip.svg", true },
    { ID_PROCESS_GRAY, CMD("&Gray"), CMD("Gray image"), ":/icons/gray.svg", true },
    { ID_PROCESS_NEGATIVE, CMD("&Negative"), CMD("Negative image"), ":/icons/negative.svg", true },
    { ID_PROCESS_EMBOSS, CMD("&Emboss"), CMD("Emboss image"), ":/icons/emboss.svg", true },
    { ID_PROCESS_SHARPEN, CMD("&Sharpen"), CMD("Sharpen image"), ":/icons/sharpen.svg", true },
    { ID_PROCESS_BINARY, CMD("&Binary"), CMD("Binary image"), ":/icons/binary.svg", false },
    { ID_PROCESS_RGB, CMD("&Rgb"), CMD("Rgb adjustment"), ":/icons/rgb.svg", false },
    { ID_PROCESS_STITCH, CMD("S&titch Pictures..."), CMD("Stitch overlapping pictures of a scan into one"),
        ":/icons/stitch.svg", false },
    { ID_PROCESS_PROPERTIES, "", CMD("Show the real-time processing settings"), ":/icons/processadjust.svg",
        false },
    { ID_PROCESS_FOCUS_STACK, CMD("&Focus Stack Pictures..."),
        CMD("Fuse pictures taken at different focus into one picture sharp everywhere"), nullptr, false },
    { ID_MEASURE_MOVE, CMD("Mo&ve"), CMD("Move elements"), ":/icons/move.svg", true, nullptr,
        ToolCode::Move },
    { ID_MEASURE_POINT, "", "", ":/icons/point.svg", true, CMD("Point"), ToolCode::Point },
    { ID_MEASURE_LINE, CMD("&Line"), CMD("Draw line"), ":/icons/line.svg", true, nullptr, ToolCode::Line },
    { ID_MEASURE_ANGLE, CMD("&Angle"), CMD("Draw angle "), ":/icons/angle.svg", true, nullptr,
        ToolCode::Angle },
    { ID_MEASURE_RECT, CMD("&Rect"), CMD("Draw rect"), ":/icons/rect.svg", true, nullptr, ToolCode::Rect },
    { ID_MEASURE_CIRCLE, CMD("&Circle"), CMD("Draw circle"), ":/icons/circle.svg", true, nullptr,
        ToolCode::Circle },
    { ID_MEASURE_TRICIRCLE, CMD("&TriCircle"), CMD("Draw tricircle"), ":/icons/tricircle.svg", true, nullptr,
        ToolCode::TriCircle },
    { ID_MEASURE_POLYGON, CMD("&Polygon"), CMD("Draw polygon"), ":/icons/polygon.svg", true, nullptr,
        ToolCode::Polygon },
    { ID_MEASURE_COUNTING, CMD("Count&ing"), CMD("Draw counting"), ":/icons/counting.svg", true, nullptr,
        ToolCode::Counting },
    { ID_MEASURE_DELETE, CMD("&Delete"), CMD("Delete one element"), ":/icons/delete.svg", true, nullptr,
        ToolCode::DeleteOne },
    { ID_MEASURE_DELETE_ALL, CMD("Delete&All"), CMD("Delete all elements"), ":/icons/deleteall.svg", false },
    { ID_MEASURE_CALIBRATION, CMD("Calibratio&n"), CMD("Calibration"), ":/icons/calibration.svg", false },
    { ID_MEASURE_SETTING, CMD("&Setting"), CMD("Measure setting"), ":/icons/setting.svg", false },
    { ID_MEASURE_EXPORT, CMD("Ex&port data"), CMD("Export measurement data to csv file"),
        ":/icons/export.svg", false },
    { ID_MEASURE_ARROW, CMD("A&rrow"), CMD("Draw Arrow Annotation"), ":/icons/arrow.svg", true, nullptr,
        ToolCode::Arrow },
    { ID_MEASURE_TEXT, CMD("&Text"), CMD("Draw Text Annotation"), ":/icons/text.svg", true, nullptr,
        ToolCode::Text },
    { ID_MEASURE_SNAP_EDGES, CMD("Snap to &Edges"),
        CMD("Put the ends of lines and the rims of circles on the nearest edge of the picture"),
        ":/icons/snapedges.svg", true },
    { ID_MEASURE_PARTICLES, CMD("Analyze &Particles..."), CMD("Count and size the particles of the picture"),
        ":/icons/particles.svg", false },
    { ID_MEASURE_EXPORT_ROIS, CMD("Export ImageJ &ROIs..."),
        CMD("Save the shapes as a ROI set that ImageJ opens and measures"), nullptr, false },
    { ID_MEASURE_IMPORT_ROIS, CMD("&Import ImageJ ROIs..."),
        CMD("Add the ROIs of an ImageJ ROI set or .roi file"), nullptr, false },
    { ID_VIEW_CROSSLINE, CMD("&Cross Line"), CMD("Solid crossline"), ":/icons/crossline.svg", true },
    { ID_VIEW_DASHED_CROSSLINE, CMD("Dashed C&ross Line"), CMD("Dashed crossline"),
        ":/icons/dashedcrossline.svg", true },
    { ID_VIDEO_DEVICE, CMD("Video Capture &Device..."), CMD("Change video capture device"),
        ":/icons/device.svg", false },
    { ID_VIDEO_RESOLUTION, CMD("Video &Resolution"), CMD("Setting video capture properties"), nullptr,
        false },
    { ID_VIDEO_FLAT_FIELD, CMD("&Flat-Field..."), CMD("Take a blank field to even out the shading"), nullptr,
        false },
    { ID_VIDEO_WHITE_BALANCE, CMD("&White Balance"), CMD("Make the rectangle drawn over a neutral area gray"),
        nullptr, false },
    { ID_VIDEO_FOCUS_PEAKING, CMD("Focus Pea&king"), CMD("Mark the edges in focus on the live picture"),
        nullptr, true },
    { ID_VIDEO_PEAKING_COLOR, CMD("Focus Peaking &Color..."), CMD("Choose the color of the focus marks"),
        nullptr, false },
    { ID_VIDEO_FOCUS_STACK, CMD("F&ocus Stack"),
        CMD("Start fusing the live frames while you sweep the focus; again to finish"), nullptr, true },
    { ID_VIDEO_FOCUS_STACK_CANCEL, CMD("&Cancel Focus Stack"), CMD("Stop focus stacking and keep nothing"),
        nullptr, false },
    { ID_VIDEO_MOSAIC, CMD("&Mosaic"), CMD("Stitch the live picture into one as the stage moves"), nullptr,
        true },
    { ID_VIDEO_PROPERTIES, CMD("Video &Properties"), CMD("Adjusting video capture filter properties"),
        nullptr, false },
    { ID_CAMERA_CAPTURE, "", CMD("Capture picture to an active view"), ":/icons/capture.svg", false },
    { ID_CAMERA_PREVIEW, "", CMD("Preview camera device"), ":/icons/preview.svg", false },
    { ID_CAMERA_PAUSE, "", CMD("Pause the camera video"), ":/icons/pause.svg", false },
    { ID_CAMERA_RECORD, "", CMD("Record camera video to file"), ":/icons/record.svg", false },
    { ID_CAMERA_INTERVAL, "", CMD("Interval capture frames"), ":/icons/interval.svg", false },
    { ID_ZOOM, "", CMD("Zoom display"), nullptr, false },
    { ID_WINDOW_CASCADE, CMD("&Cascade"), "", nullptr, false },
    { ID_WINDOW_TILE_HORZ, CMD("Tile &Horizontal"), "", nullptr, false },
    { ID_WINDOW_TILE_VERT, CMD("Tile &Vertical"), "", nullptr, false },
    { ID_FILE_OPEN_PICTURE_FOLDER, CMD("Open &Picture Folder"), CMD("Open pictures' saved folder"), nullptr,
        false },
    { ID_FILE_MRU_FILE1, CMD("Recent File"), CMD("Open this document"), nullptr, false },
    { ID_FILE_MRU_FILE1 + 1, CMD("Recent File"), CMD("Open this document"), nullptr, false },
    { ID_FILE_MRU_FILE1 + 2, CMD("Recent File"), CMD("Open this document"), nullptr, false },
    { ID_FILE_MRU_FILE1 + 3, CMD("Recent File"), CMD("Open this document"), nullptr, false },
    { ID_FILE_PRINT_PREVIEW, "", CMD("Display full pages"), ":/icons/printpreview.svg", false },
    { ID_HELP_CONTENT, "", CMD("Help content"), ":/icons/help.svg", false },
    { ID_VIEW_PRINTHELPBAR, CMD("Print and &Help Bar"), CMD("Show or hide the print and help bar"), nullptr,
        true },
    { ID_HELP_MANUAL, CMD("&Help"), CMD("How to use"), nullptr, false },
    { ID_APP_ABOUT, CMD("&About..."), "", nullptr, false },
    // Each language by its own name, the same in every language.
    { ID_LANGUAGE_ENGLISH, "English", "", nullptr, true },
    { ID_LANGUAGE_FRENCH, "Français", "", nullptr, true },
    { ID_LANGUAGE_CHINESE, "中文(简体)", "", nullptr, true },
};

constexpr int S = ID_SEPARATOR;

constexpr std::array kFileMenu { ID_FILE_NEW, ID_FILE_OPEN, ID_FILE_CLOSE, ID_FILE_SAVE, ID_FILE_SAVE_AS, S,
    ID_SAVE_OPTION, ID_FILE_OPEN_PICTURE_FOLDER, S, ID_FILE_MRU_FILE1, ID_FILE_MRU_FILE1 + 1,
    ID_FILE_MRU_FILE1 + 2, ID_FILE_MRU_FILE1 + 3, S, ID_APP_EXIT };
constexpr std::array kEditMenu { ID_EDIT_UNDO, ID_EDIT_REDO };
constexpr std::array kViewMenu { ID_VIEW_TOOLBAR, ID_VIEW_MEASUREBAR, ID_VIEW_PROCESSBAR,
    ID_VIEW_PRINTHELPBAR, ID_VIEW_STATUS_BAR, ID_VIEW_HISTOGRAM, S, ID_VIEW_FULLSCREEN, S, ID_VIEW_CROSSLINE,
    ID_VIEW_DASHED_CROSSLINE };
constexpr std::array kMeasureMenu { ID_MEASURE_MOVE, S, ID_MEASURE_LINE, ID_MEASURE_ANGLE, ID_MEASURE_RECT,
    ID_MEASURE_POLYGON, ID_MEASURE_CIRCLE, ID_MEASURE_TRICIRCLE, ID_MEASURE_COUNTING, ID_MEASURE_PARTICLES, S,
    ID_MEASURE_ARROW, ID_MEASURE_TEXT, S, ID_MEASURE_DELETE, ID_MEASURE_DELETE_ALL, S, ID_MEASURE_SNAP_EDGES,
    S, ID_MEASURE_CALIBRATION, ID_MEASURE_SETTING, ID_MEASURE_EXPORT };

// The processing operations' commands in menu and toolbar order. The layouts
// start a group, after a separator, wherever the list passes from operations
// that turn the picture over to those that change pixels, or back.
constexpr ProcessCommand kProcessCommands[] = {
    { ID_PROCESS_MIRROR, ProcessOp::Mirror },
    { ID_PROCESS_FLIP, ProcessOp::Flip },
    { ID_PROCESS_GRAY, ProcessOp::Gray },
    { ID_PROCESS_NEGATIVE, ProcessOp::Negative },
    { ID_PROCESS_EMBOSS, ProcessOp::Emboss },
    { ID_PROCESS_SHARPEN, ProcessOp::Sharpen },
    { ID_PROCESS_BINARY, ProcessOp::Binary },
    { ID_PROCESS_RGB, ProcessOp::Rgb },
};

constexpr bool EveryOperationHasOneCommand()
{
    for (const ProcessOperation& op : kProcessOperations) {
        int commands = 0;
        for (const ProcessCommand& command : kProcessCommands)
            commands += command.op == op.op;
        if (commands != 1)
            return false;
    }
    return std::size(kProcessCommands) == std::size(kProcessOperations);
}
static_assert(EveryOperationHasOneCommand(), "each processing operation needs its one command row");

// Enable, then the operations in groups, then `tail`.
template <std::size_t N> struct ProcessLayout
{
    std::array<int, 2 * std::size(kProcessCommands) + 1 + N> ids {};
    std::size_t count = 0;

    constexpr explicit ProcessLayout(const std::array<int, N>& tail)
    {
        ids[count++] = ID_PROCESS_ENABLE;
        for (std::size_t i = 0; i < std::size(kProcessCommands); ++i) {
            const bool geometric = Operation(kProcessCommands[i].op).geometric;
            if (i == 0 || geometric != Operation(kProcessCommands[i - 1].op).geometric)
                ids[count++] = S;
            ids[count++] = kProcessCommands[i].id;
        }
        for (int id : tail)
            ids[count++] = id;
    }
    constexpr std::span<const int> Ids() const { return { ids.data(), count }; }
};

constexpr ProcessLayout kProcessMenu(std::array { S, ID_PROCESS_FOCUS_STACK, ID_PROCESS_STITCH });
constexpr std::array kVideoMenu { ID_VIDEO_DEVICE, ID_VIDEO_RESOLUTION, ID_VIDEO_PROPERTIES, ID_VIDEO_ADJUST,
    S, ID_VIDEO_FLAT_FIELD, ID_VIDEO_WHITE_BALANCE, S, ID_VIDEO_FOCUS_PEAKING, ID_VIDEO_PEAKING_COLOR,
    ID_VIDEO_FOCUS_STACK, ID_VIDEO_FOCUS_STACK_CANCEL, S, ID_VIDEO_MOSAIC };
constexpr std::array kWindowMenu { ID_WINDOW_CASCADE, ID_WINDOW_TILE_HORZ, ID_WINDOW_TILE_VERT };
constexpr std::array kLanguageMenu { ID_LANGUAGE_ENGLISH, ID_LANGUAGE_FRENCH, ID_LANGUAGE_CHINESE };
constexpr std::array kHelpMenu { ID_HELP_MANUAL, S, ID_APP_ABOUT };

#define MENU(text) QT_TRANSLATE_NOOP("Menu", text)

const MenuInfo kMenus[] = {
    { MENU("&File"), kFileMenu, false },
    { MENU("&Edit"), kEditMenu, false },
    { MENU("&View"), kViewMenu, false },
    { MENU("&Measure"), kMeasureMenu, false },
    { MENU("&Process"), kProcessMenu.Ids(), false },
    { MENU("V&ideo"), kVideoMenu, false },
    { MENU("&Window"), kWindowMenu, true },
    { MENU("&Language"), kLanguageMenu, false },
    { MENU("&Help"), kHelpMenu, false },
};

constexpr std::array kStandardBar { ID_FILE_NEW, ID_FILE_OPEN, ID_FILE_SAVE, ID_FILE_SAVE_AS, S,
    ID_CAMERA_CAPTURE, ID_CAMERA_PREVIEW, ID_CAMERA_PAUSE, ID_CAMERA_FULLSCREEN, ID_CAMERA_RECORD,
    ID_CAMERA_INTERVAL, ID_SAVE_RESOLUTION, S, ID_ZOOM };
constexpr std::array kMeasureBar { ID_MEASURE_MOVE, S, ID_MEASURE_POINT, ID_MEASURE_LINE, ID_MEASURE_ANGLE,
    ID_MEASURE_RECT, ID_MEASURE_POLYGON, ID_MEASURE_CIRCLE, ID_MEASURE_TRICIRCLE, ID_MEASURE_COUNTING,
    ID_MEASURE_PARTICLES, S, ID_MEASURE_ARROW, ID_MEASURE_TEXT, S, ID_MEASURE_DELETE, ID_MEASURE_DELETE_ALL,
    S, ID_VIEW_CROSSLINE, ID_VIEW_DASHED_CROSSLINE, S, ID_MEASURE_SNAP_EDGES, S, ID_MEASURE_CALIBRATION,
    ID_MEASURE_SETTING, ID_MEASURE_EXPORT };
constexpr ProcessLayout kProcessBar(std::array { S, ID_PROCESS_PROPERTIES });

#define BAR(text) QT_TRANSLATE_NOOP("ToolBar", text)

constexpr std::array kPrintHelpBar { ID_FILE_PRINT_PREVIEW, S, ID_HELP_CONTENT };

const ToolBarInfo kToolBars[] = {
    { ID_VIEW_TOOLBAR, "StandardBar", BAR("Standard"), kStandardBar },
    { ID_VIEW_MEASUREBAR, "MeasureBar", BAR("Measure"), kMeasureBar },
    { ID_VIEW_PROCESSBAR, "ProcessBar", BAR("Process"), kProcessBar.Ids() },
    { ID_VIEW_PRINTHELPBAR, "PrintHelpBar", BAR("Print and Help"), kPrintHelpBar },
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

std::span<const ProcessCommand> ProcessCommands()
{
    return kProcessCommands;
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
