#include "app/menu_enabling.h"

#include "app/preferences.h"

namespace zolt {

using namespace command_ids;

namespace {
ItemState item(int id, bool enabled, bool checked = false, std::string text = {}) {
    return {id, enabled, checked, std::move(text)};
}
}  // namespace

uint32_t toggledFlag(int id) {
    switch (id) {
        case kCallOpenBabel:
            return pref_flags::kCallOpenBabel;
        case kFastSelection:
            return pref_flags::kFastSelection;
        case kFirstOrder:
            return pref_flags::kFirstOrder;
        case kLockEqualLetters:
            return pref_flags::kLockEqualLetters;
        case kGlobalCross:
            return pref_flags::kGlobalCross;
        default:
            return 0;
    }
}

std::vector<ItemState> frameMenuItems(Menu menu, const FrameState& s) {
    // The switches show their bit as a check mark.
    auto on = [&](int id) { return (s.flags & toggledFlag(id)) != 0; };
    switch (menu) {
        case Menu::File:
            return {item(kOpen, true), item(kNewContainer, true), item(kOpenFolder, true),
                    item(kExit, true)};
        case Menu::Edit:
            return {item(kUndo, s.focusWidget), item(kCut, s.focusWidget),
                    item(kCopy, s.focusWidget), item(kPaste, s.focusWidget),
                    item(kCallOpenBabel, true, on(kCallOpenBabel))};
        case Menu::Format:
            return {item(kSaveFormat, s.frontDocument && s.savedFormats < kMaxSavedFormats),
                    item(kOrganizeFormats, s.savedFormats >= 1)};
        case Menu::View:
            return {item(kFastSelection, true, on(kFastSelection))};
        case Menu::Simulate:
            return {item(kNewSpectrum, true), item(kFirstOrder, true, on(kFirstOrder)),
                    item(kSimulationPeaks, true),
                    item(kLockEqualLetters, true, on(kLockEqualLetters))};
        case Menu::Tools:
            return {
                item(kPointer, true), item(kPalette, true),
                item(kConsole, true, false, s.consoleShown ? kHideConsoleText : kShowConsoleText),
                item(kCrossPeaks, !s.crossPeaksOpen), item(kGlobalCross, true, on(kGlobalCross))};
        case Menu::Window:
            return {item(kSynchronize, s.documents >= 2, s.synchronisation == 2),
                    item(kSmartMarks, s.documents >= 1, s.synchronisation == 1)};
        default:
            return {};
    }
}

}  // namespace zolt
