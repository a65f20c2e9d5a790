// The dialogs and boxes the frame opens for its commands, in one place: the phase dialog, the
// console, the palette, settings, timer, about box, page setup and printing.
#include "app/command_table.h"
#include "gui/main_window.h"

namespace zolt {

using namespace command_ids;

namespace {

bool isFrameDialog(int id) {
    switch (id) {
        case kPhaseCorrection:
        case kConsole:
        case kPalette:
        case kSettings:
        case kTimer:
        case kAbout:
        case kPageSetup:
        case kPrint:
            return true;
        default:
            return false;
    }
}

void showPhaseDialog(MainWindow&) {}
void toggleConsole(MainWindow&) {}
void showPalette(MainWindow&) {}
void showSettings(MainWindow&) {}
void showTimer(MainWindow&) {}
void showAbout(MainWindow&) {}
void showPageSetup(MainWindow&) {}
void print(MainWindow&) {}

}  // namespace

// None of these dialogs is part of the program yet.
bool frameDialogReady(int id) {
    return !isFrameDialog(id);
}

bool MainWindow::frameDialog(int id) {
    switch (id) {
        case kPhaseCorrection:
            showPhaseDialog(*this);
            return true;
        case kConsole:
            toggleConsole(*this);
            return true;
        case kPalette:
            showPalette(*this);
            return true;
        case kSettings:
            showSettings(*this);
            return true;
        case kTimer:
            showTimer(*this);
            return true;
        case kAbout:
            showAbout(*this);
            return true;
        case kPageSetup:
            showPageSetup(*this);
            return true;
        case kPrint:
            print(*this);
            return true;
        default:
            return false;
    }
}

}  // namespace zolt
