// Where a menu command or accelerator goes: a Scripts entry, the front document, the recent
// files, the saved formats, the frame itself, or nowhere.
#pragma once

namespace zolt {

// What the frame offers a command to, in routing order.
class CommandTargets {
public:
    virtual ~CommandTargets() = default;
    // Runs the Scripts menu entry at this position.
    virtual void runScriptEntry(int index) = 0;
    // The front document's handler; false when there is none or it does not take the command.
    virtual bool frontDocumentHandles(int id) = 0;
    virtual void openRecentFile(int index) = 0;
    // Applied to the front document only when there is one.
    virtual void applySavedFormat(int index) = 0;
    // One of the frame's own commands; false when the frame does not know it.
    virtual bool frameHandles(int id) = 0;
};

enum class Route { ScriptEntry, FrontDocument, RecentFile, SavedFormat, Frame, Ignored, System };

// Sends the command on its way and tells where it went. From 1100 upwards, commands nobody
// took belong to the platform's own frame handling (System).
Route routeCommand(int id, CommandTargets& targets);

}  // namespace zolt
