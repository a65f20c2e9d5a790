#include "app/command_routing.h"

#include "app/command_table.h"

namespace zolt {

namespace {
constexpr int kFirstSystemCommand = 1100;
}

Route routeCommand(int id, CommandTargets& targets) {
    if (id >= kFirstScript && id <= kLastScript) {
        targets.runScriptEntry(id - kFirstScript);
        return Route::ScriptEntry;
    }
    if (targets.frontDocumentHandles(id)) return Route::FrontDocument;
    if (id >= kFirstRecentFile && id <= kLastRecentFile) {
        targets.openRecentFile(id - kFirstRecentFile);
        return Route::RecentFile;
    }
    if (id >= kFirstSavedFormat && id <= kLastSavedFormat) {
        targets.applySavedFormat(id - kFirstSavedFormat);
        return Route::SavedFormat;
    }
    if (targets.frameHandles(id)) return Route::Frame;
    return id < kFirstSystemCommand ? Route::Ignored : Route::System;
}

}  // namespace zolt
