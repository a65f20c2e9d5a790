// The frame's command table: every menu row with its identifier, menu, text and accelerator, in
// menu order. The desktop program builds its menus and shortcuts from it; the routing and the
// menu enabling read which rows the frame handles itself.
#pragma once

#include <span>
#include <string_view>

namespace zolt {

// The top-level menus, counted as the menu enabling counts them.
enum class Menu : int {
    File = 1,
    Edit,
    Page,
    Format,
    View,
    Process,
    Simulate,
    Tools,
    Window,
    Help,
    Scripts,
};

struct CommandRow {
    int id = 0;
    int lastId = 0;  // the end of a range of rows filled at run time, else id
    Menu menu = Menu::File;
    const char* submenu;            // "" for items of the menu itself
    const char* text;               // "&&" shows one "&"; ranges have none of their own
    const char* accelerator;        // the shortcut, "" for none
    const char* secondAccelerator;  // a second shortcut to the same command, "" for none
    const char* shownKey;  // what the item shows beside its text when no shortcut of its own
    const char* toolKey;   // the single key of a tool, handled by the document window
    bool frame = false;    // the frame handles it itself
};

// Every row in menu order; ranges (recent files, saved formats, scripts) once each.
std::span<const CommandRow> commandTable();
// The row holding the identifier (inside a range too); nullptr when none does.
const CommandRow* findCommand(int id);
// The caption of a top-level menu as the menu bar shows it.
std::string_view menuTitle(Menu menu);

// The identifier ranges the frame fills at run time.
inline constexpr int kFirstRecentFile = 140, kLastRecentFile = 150;
inline constexpr int kFirstSavedFormat = 450, kLastSavedFormat = 499;
inline constexpr int kFirstScript = 5000, kLastScript = 61471;

// Identifiers the frame and the document windows refer to by name.
namespace command_ids {
inline constexpr int kOpen = 101, kOpenFolder = 121, kClearRecent = 151, kClose = 103, kSave = 104,
                     kSaveAll = 105, kExport = 106, kReload = 108, kRevertToSaved = 113,
                     kPageSetup = 115, kPrint = 116, kNewContainer = 702, kExit = 117;
inline constexpr int kUndo = 201, kCut = 202, kCopy = 203, kCopyPeaks = 251, kCopyIntegrals = 252,
                     kCopyDisplayParameters = 253, kCopyProcessing = 254, kPaste = 204,
                     kCallOpenBabel = 210;
inline constexpr int kFastPlot = 405, kChessboard = 411, kSaveFormat = 412, kOrganizeFormats = 413;
inline constexpr int kFull = 501, kIntegralValues = 505, kIntegralCurves = 506, kIntegrateNow = 508,
                     kDeleteIntegrals = 509, kPeakFrequencies = 511, kRemoveFrequencies = 512,
                     kPeakLabels = 513, kFastSelection = 515;
inline constexpr int kFtNow = 602, kPhaseCorrection = 607, kPhaseInversion = 608,
                     kAutomaticPhase = 609, kMagnitude = 610, kAutomaticBaseline = 612,
                     kStraightLine = 614, kClearCorrection = 615;
inline constexpr int kNewSpectrum = 701, kFirstOrder = 704, kLockEqualLetters = 710,
                     kSimulationPeaks = 711;
inline constexpr int kConsole = 801, kPalette = 802, kCrossPeaks = 803, kGlobalCross = 804,
                     kPointer = 850, kCrossHair = 861;
inline constexpr int kSynchronize = 904, kSmartMarks = 905;
inline constexpr int kAbout = 1, kSettings = 2, kTimer = 3;
}  // namespace command_ids

}  // namespace zolt
