#pragma once

#include "image/ProcessSwitches.h"
#include "measure/ShapeKinds.h"

#include <QString>

#include <span>

// Command ids, shared with the menus, toolbars and the documents that handle
// them. The values are the ones the settings and the translations key on.
constexpr int ID_FILE_NEW = 57600;
constexpr int ID_FILE_OPEN = 57601;
constexpr int ID_FILE_CLOSE = 57602;
constexpr int ID_FILE_SAVE = 57603;
constexpr int ID_FILE_SAVE_AS = 57604;
constexpr int ID_FILE_SAVE_PLUS_MEASURE = 32857;
constexpr int ID_FILE_SAVE_ONLY_IMAGE = 32858;
constexpr int ID_FILE_SAVE_AS_ONLY_IMAGE = 32859;
constexpr int ID_FILE_SAVE_AS_PLUS_MEASURE = 32860;
constexpr int ID_SAVE_OPTION = 32877;
constexpr int ID_SAVE_RESOLUTION = 32926;
constexpr int ID_APP_EXIT = 57665;
constexpr int ID_WINDOW_CASCADE = 57650;
constexpr int ID_WINDOW_TILE_HORZ = 57651;
constexpr int ID_WINDOW_TILE_VERT = 57652;
constexpr int ID_APP_ABOUT = 57664;
constexpr int ID_FILE_PRINT_PREVIEW = 57609;
// The recent-file list: four entries from the first.
constexpr int ID_FILE_MRU_FILE1 = 57616;
constexpr int kRecentFileCount = 4;
constexpr int ID_FILE_OPEN_PICTURE_FOLDER = 32938;
constexpr int ID_HELP_CONTENT = 32883; // a button without an action
// The fourth toolbar's toggle; the other three have ids of their own.
constexpr int ID_VIEW_PRINTHELPBAR = 32990;
constexpr int ID_HELP_MANUAL = 32939;

// Undo and redo of the active document's shapes and calibration.
constexpr int ID_EDIT_UNDO = 57643;
constexpr int ID_EDIT_REDO = 57644;

// Each sets the interface language and restarts the program.
constexpr int ID_LANGUAGE_ENGLISH = 32929;
constexpr int ID_LANGUAGE_FRENCH = 32930;
constexpr int ID_LANGUAGE_CHINESE = 32931;

constexpr int ID_VIEW_TOOLBAR = 59392;
constexpr int ID_VIEW_STATUS_BAR = 59393;
constexpr int ID_VIEW_MEASUREBAR = 32770;
constexpr int ID_VIEW_PROCESSBAR = 32919;
constexpr int ID_VIEW_FULLSCREEN = 32886;
constexpr int ID_VIEW_CROSSLINE = 32927;
constexpr int ID_VIEW_DASHED_CROSSLINE = 32928;
constexpr int ID_VIEW_HISTOGRAM = 33300;

constexpr int ID_CAMERA_CAPTURE = 32842;
constexpr int ID_CAMERA_PREVIEW = 32843;
constexpr int ID_CAMERA_PAUSE = 32900;
constexpr int ID_CAMERA_FULLSCREEN = 32901;
constexpr int ID_CAMERA_RECORD = 32902;
constexpr int ID_CAMERA_INTERVAL = 32903;
constexpr int ID_ZOOM = 32920;

constexpr int ID_VIDEO_DEVICE = 32876;
constexpr int ID_VIDEO_ADJUST = 32889;
constexpr int ID_VIDEO_RESOLUTION = 32917;
constexpr int ID_VIDEO_PROPERTIES = 32918;
constexpr int ID_VIDEO_FLAT_FIELD = 33301;
constexpr int ID_VIDEO_WHITE_BALANCE = 33302;
// Focus aids on the live picture (CLiveFocus).
constexpr int ID_VIDEO_FOCUS_PEAKING = 33303;
constexpr int ID_VIDEO_PEAKING_COLOR = 33304;
constexpr int ID_VIDEO_FOCUS_STACK = 33305;
constexpr int ID_VIDEO_FOCUS_STACK_CANCEL = 33306;
// Stitches the live picture into one as the stage moves; again: stops.
constexpr int ID_VIDEO_MOSAIC = 33310;

constexpr int ID_PROCESS_FLIP = 32904;
constexpr int ID_PROCESS_MIRROR = 32905;
constexpr int ID_PROCESS_GRAY = 32906;
constexpr int ID_PROCESS_NEGATIVE = 32907;
constexpr int ID_PROCESS_EMBOSS = 32908;
constexpr int ID_PROCESS_SHARPEN = 32909;
constexpr int ID_PROCESS_ENABLE = 32911;
constexpr int ID_PROCESS_BINARY = 32912;
constexpr int ID_PROCESS_PROPERTIES = 32913;
// Fuses chosen picture files of a focus series into a new picture document.
constexpr int ID_PROCESS_FOCUS_STACK = 33001;
constexpr int ID_PROCESS_RGB = 32914;
constexpr int ID_PROCESS_STITCH = 33002;

constexpr int ID_MEASURE_POINT = 32850;
constexpr int ID_MEASURE_LINE = 32851;
constexpr int ID_MEASURE_DELETE = 32854;
constexpr int ID_MEASURE_DELETE_ALL = 32855;
constexpr int ID_MEASURE_CALIBRATION = 32869;
constexpr int ID_MEASURE_SETTING = 32870;
constexpr int ID_MEASURE_MOVE = 32891;
constexpr int ID_MEASURE_ANGLE = 32896;
constexpr int ID_MEASURE_RECT = 32897;
constexpr int ID_MEASURE_CIRCLE = 32898;
constexpr int ID_MEASURE_TRICIRCLE = 32899;
constexpr int ID_MEASURE_COUNTING = 32921;
constexpr int ID_MEASURE_EXPORT = 32922;
constexpr int ID_MEASURE_POLYGON = 32923;
constexpr int ID_MEASURE_ARROW = 32924;
constexpr int ID_MEASURE_TEXT = 32925;
// Lines and circles put their points on the picture's edges.
constexpr int ID_MEASURE_SNAP_EDGES = 32995;
// Counts and sizes the particles of the picture.
constexpr int ID_MEASURE_PARTICLES = 32996;
// The shapes to and from ImageJ's ROI sets.
constexpr int ID_MEASURE_EXPORT_ROIS = 32997;
constexpr int ID_MEASURE_IMPORT_ROIS = 32998;

// The separator in menu and toolbar layouts.
constexpr int ID_SEPARATOR = 0;

// One row of the command table. Texts are untranslated source strings in the
// "Command" translation context; menuText may carry "\t" and an accelerator.
struct CommandInfo
{
    int id;
    const char* menuText; // "" for toolbar-only commands
    const char* prompt; // status-bar text, "" when there is none
    const char* icon; // resource path of the toolbar image, or nullptr
    bool checkable;
    const char* tip = nullptr; // tooltip for a button that has neither menu text nor prompt
    ToolCode tool = ToolCode::None; // the tool the command selects in the document
};

struct MenuInfo
{
    const char* title;
    std::span<const int> ids; // ID_SEPARATOR between groups
    bool windowList; // the open documents are listed after the ids
};

struct ToolBarInfo
{
    int toggleId; // the View command that shows and hides the bar
    const char* objectName;
    const char* title;
    std::span<const int> ids; // ID_ZOOM stands for the zoom box
};

// The command of a processing operation (see image/ProcessOperations.h).
struct ProcessCommand
{
    int id;
    ProcessOp op;
};

std::span<const CommandInfo> Commands();
// In the order of the process menu and bar.
std::span<const ProcessCommand> ProcessCommands();
const CommandInfo* FindCommand(int id);
std::span<const MenuInfo> Menus();
std::span<const ToolBarInfo> ToolBars();

// Translated texts of a command: the menu text without its accelerator, the
// accelerator ("" when none), the status-bar prompt and a tooltip (the prompt,
// or the menu text without '&' when there is no prompt).
QString CommandText(const CommandInfo& info);
QString CommandShortcut(const CommandInfo& info);
QString CommandPrompt(const CommandInfo& info);
QString CommandToolTip(const CommandInfo& info);

// The zoom box's labels in box order; the box position is the zoom index.
std::span<const char* const> ZoomLabels();
constexpr int kInitialZoomBoxPosition = 3;
