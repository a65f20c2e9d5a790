#include "app/command_table.h"

#include <array>

namespace zolt {

namespace {

constexpr CommandRow item(int id, Menu menu, const char* submenu, const char* text,
                          const char* accelerator = "", bool frame = false) {
    return {id, id, menu, submenu, text, accelerator, "", "", "", frame};
}
constexpr CommandRow frameItem(int id, Menu menu, const char* text, const char* accelerator = "") {
    return item(id, menu, "", text, accelerator, true);
}
// Rows the frame fills at run time: recent files, saved formats, scripts.
constexpr CommandRow range(int first, int last, Menu menu, const char* submenu) {
    return {first, last, menu, submenu, "", "", "", "", "", true};
}
constexpr CommandRow tool(int id, const char* text, const char* key) {
    return {id, id, Menu::Tools, "", text, "", "", "", key, false};
}

constexpr Menu F = Menu::File, E = Menu::Edit, P = Menu::Page, O = Menu::Format, V = Menu::View,
               R = Menu::Process, S = Menu::Simulate, T = Menu::Tools, W = Menu::Window,
               H = Menu::Help;

constexpr std::array kRows{
    frameItem(101, F, "Open", "Ctrl+O"),
    frameItem(121, F, "Open Folder"),
    range(kFirstRecentFile, kLastRecentFile, F, "Recent Files"),
    item(151, F, "Recent Files", "Clear This Menu", "", true),
    item(103, F, "", "Close", "Ctrl+W"),
    item(104, F, "", "Save", "Ctrl+S"),
    item(105, F, "", "Save All", "Ctrl+Shift+S"),
    item(106, F, "", "Export...", "Ctrl+Shift+X"),
    item(107, F, "", "Export All..."),
    item(108, F, "", "Reload", "Ctrl+L"),
    item(109, F, "", "Extract", "Ctrl+E"),
    item(110, F, "", "Collapse", "Ctrl+Shift+E"),
    item(111, F, "", "Skyline"),
    item(112, F, "", "Repeat"),
    item(113, F, "", "Revert to Saved"),
    item(114, F, "", "Free Size"),
    item(115, F, "", "Page Setup...", "Ctrl+Alt+P"),
    item(116, F, "", "Print...", "Ctrl+P"),
    frameItem(702, F, "New Container", "Ctrl+Alt+N"),
    frameItem(117, F, "Exit"),

    item(201, E, "", "Undo", "Ctrl+Z"),
    item(202, E, "", "Cut", "Ctrl+X"),
    item(203, E, "", "Copy", "Ctrl+C"),
    item(251, E, "Copy...", "List of Peaks"),
    item(252, E, "Copy...", "Integrals"),
    item(253, E, "Copy...", "Display Parameters"),
    item(254, E, "Copy...", "Processing"),
    item(204, E, "", "Paste", "Ctrl+V"),
    item(205, E, "", "Delete"),
    item(206, E, "", "Select All", "Ctrl+A"),
    item(208, E, "", "Metadata"),
    item(209, E, "", "Original Parameters"),
    frameItem(210, E, "Call Open Babel"),
    item(211, E, "", "Tabulator"),

    item(301, P, "", "New Page"),
    item(302, P, "", "Toggle Sidebar"),
    item(303, P, "", "Delete Previous Pages"),
    item(304, P, "", "Delete This"),
    item(305, P, "", "Delete Subsequent Pages"),

    item(401, O, "", "Show Fonts", "Ctrl+T"),
    item(402, O, "", "Axes && Scales...", "Ctrl+G"),
    item(403, O, "", "Overlay...", "Ctrl+Shift+O"),
    item(404, O, "", "Level && Colors...", "Ctrl+U"),
    item(405, O, "", "Fast Plot", "Ctrl+Alt+U"),
    item(406, O, "", "Contours", "Ctrl+Shift+U"),
    item(407, O, "", "Gradient Contours", "Ctrl+Shift+C"),
    item(408, O, "", "Stacked"),
    item(409, O, "", "White-Washed"),
    item(410, O, "", "Arrayed"),
    item(411, O, "", "Chessboard"),
    range(kFirstSavedFormat, kLastSavedFormat, O, "Custom Format"),
    item(412, O, "", "Save Current Format..."),
    frameItem(413, O, "Organize Formats..."),

    item(501, V, "", "Full", "Ctrl+F"),
    item(502, V, "", "Full + Monitor", "Ctrl+Alt+F"),
    item(503, V, "", "Fix Inset", "Ctrl+Shift+F"),
    item(551, V, "Split Plot", "Horizontal Split"),
    item(552, V, "Split Plot", "Vertical Split"),
    item(553, V, "Split Plot", "Triptych"),
    item(504, V, "", "Remove Insets"),
    item(505, V, "", "Integral Values", "Ctrl+Y"),
    item(506, V, "", "Integral Curves", "Ctrl+Shift+Y"),
    // Shows Ctrl+I, which belongs to Define Systems...
    CommandRow{507, 507, V, "", "Auto/Integrate...", "", "", "Ctrl+I", "", false},
    item(508, V, "", "Integrate Now", "Ctrl+Shift+I"),
    item(509, V, "", "Delete All Integrals"),
    item(510, V, "", "J Couplings", "Ctrl+J"),
    item(516, V, "", "Prediction"),
    item(517, V, "", "Comparison"),
    item(511, V, "", "Peak Frequencies"),
    item(512, V, "", "Remove Frequencies"),
    item(513, V, "", "Peak Labels", "Ctrl+Shift+L"),
    item(514, V, "", "Document Notes"),
    frameItem(515, V, "Fast Selection"),

    item(601, R, "", "Fourier Transform...", "Ctrl+R"),
    item(602, R, "", "FT now", "Ctrl+Alt+R"),
    item(622, R, "", "Run", "Ctrl+Shift+R"),
    item(603, R, "", "Visual Weighting"),
    item(604, R, "", "Reference Deconvolution"),
    item(605, R, "", "Suppress..."),
    item(606, R, "", "Linear Prediction..."),
    item(607, R, "", "Phase Correction", "Ctrl+K"),
    item(608, R, "", "Phase Inversion", "Ctrl+Shift+K"),
    item(609, R, "", "Automatic Phase Corr.", "Ctrl+Alt+K"),
    item(610, R, "", "Magnitude"),
    item(611, R, "", "Baseline Correction", "Ctrl+B"),
    item(612, R, "", "Automatic Baseline C.", "Ctrl+Alt+B"),
    item(614, R, "", "Straight Line"),
    item(615, R, "", "Clear Correction"),
    item(616, R, "", "Make Real"),
    item(617, R, "", "Remove t1 Noise"),
    item(618, R, "", "Smooth"),
    item(651, R, "Symmetrize", "Square Matrix"),
    item(653, R, "Symmetrize", "Tilt J Resolved"),
    item(652, R, "Symmetrize", "Sym J Resolved"),
    item(654, R, "Symmetrize", "INADEQUATE"),
    item(655, R, "Symmetrize", "Covariance"),
    item(656, R, "Symmetrize", "Hybrid Covariance"),
    item(619, R, "", "Make Bins..."),
    item(661, R, "DOSY", "Mono-Exponential..."),
    item(662, R, "DOSY", "Diffuzion Coefficients..."),
    item(663, R, "DOSY", "Extract Components..."),
    item(620, R, "", "Process Folder..."),

    frameItem(701, S, "New Spectrum", "Ctrl+N"),
    item(703, S, "", "Define Systems...", "Ctrl+I"),
    frameItem(704, S, "First Order"),
    item(705, S, "", "Listing..."),
    item(706, S, "", "Fit Line Positions"),
    item(707, S, "", "Fit to Overlay"),
    item(708, S, "", "Dynamic"),
    item(709, S, "", "Your Constants"),
    frameItem(710, S, "Lock Equal Letters"),
    frameItem(711, S, "List of Peaks"),
    item(712, S, "", "Deconvolution", "Ctrl+D"),
    item(713, S, "", "Multiplet", "Ctrl+Shift+M"),

    frameItem(801, T, "Console", "Ctrl+0"),
    frameItem(802, T, "Palette", "Ctrl+1"),
    frameItem(803, T, "Cross Peaks M."),
    tool(850, "Pointer", "Esc"),
    tool(851, "Zoom", "z"),
    tool(852, "Cutter", "c"),
    tool(861, "Cross-Hair", "x"),
    frameItem(804, T, "Global Cross", "Ctrl+Shift+G"),
    tool(856, "Integrator", "i"),
    tool(854, "Peak-Picker", "v"),
    tool(855, "Interpolator", "j"),
    tool(853, "Monitor", "m"),
    tool(860, "Writer", "w"),
    tool(859, "Quiver", "a"),
    tool(858, "Frame/Bracket", "f"),
    tool(857, "Dragger", "d"),

    item(901, W, "", "Tile Vertically"),
    item(902, W, "", "Tile Horizontally"),
    item(903, W, "", "Do Not Tile"),
    item(904, W, "", "Synchronize"),
    item(905, W, "", "Smart Marks"),
    frameItem(906, W, "Tile && Synchronize...", "Ctrl+Shift+A"),

    frameItem(1000, H, "Zolt Help", "Ctrl+H"),
    frameItem(1001, H, "visual guides"),
    frameItem(1002, H, "email support"),
    frameItem(2, H, "Settings", "Ctrl+Q"),
    frameItem(3, H, "Timer"),
    CommandRow{1, 1, H, "", "About Zolt", "Alt+/", "Alt+?", "", "", true},

    range(kFirstScript, kLastScript, Menu::Scripts, ""),
};

}  // namespace

std::span<const CommandRow> commandTable() {
    return kRows;
}

const CommandRow* findCommand(int id) {
    for (const CommandRow& row : kRows)
        if (id >= row.id && id <= row.lastId) return &row;
    return nullptr;
}

std::string_view menuTitle(Menu menu) {
    static constexpr std::array<std::string_view, 11> kTitles{
        "File",     "Edit",  "Page",   "Format", "View",   "Process",
        "Simulate", "Tools", "Window", "Help",   "Scripts"};
    return kTitles[static_cast<size_t>(menu) - 1];
}

}  // namespace zolt
