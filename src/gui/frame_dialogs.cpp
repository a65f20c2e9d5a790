// The dialogs and boxes the frame opens for its commands, in one place: the phase dialog, the
// console, the palette, settings, timer, about box, page setup and printing.
#include "app/application.h"
#include "app/command_table.h"
#include "app/settings_store.h"
#include "gui/about_box.h"
#include "gui/console_window.h"
#include "gui/document_window.h"
#include "gui/main_window.h"
#include "gui/phase_dialog.h"
#include "gui/plot_view.h"
#include "gui/printing.h"
#include "gui/settings_dialog.h"
#include "gui/timer_dialog.h"

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

// Modeless, so that clicks in the plot set the pivot; it closes with its window.
void showPhaseDialog(MainWindow& frame) {
    DocumentWindow* window = frame.frontWindow();
    if (!window) return;
    auto* dialog = new PhaseDialog(frame.application(), *window->plotView(), window->plotView());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void showPalette(MainWindow&) {}

// Without the user's settings (a frame made by a test) the dialog's values last for this run.
void showSettings(MainWindow& frame, SettingsStore* settings) {
    MemorySettingsStore scratch;
    SettingsDialog(frame.application(), settings ? *settings : scratch, &frame).exec();
    // The preferences draw too (the fast plot's palette).
    frame.scriptsRan();
}

// The frame parents the dialog so that the timer restoring the preferences outlives it.
void showTimer(MainWindow& frame) {
    TimerDialog(frame.application(), &frame).exec();
}

void showAbout(MainWindow& frame) {
    showAboutBox(&frame);
}

}  // namespace

// The palette is not part of the program yet.
bool frameDialogReady(int id) {
    return !isFrameDialog(id) || id != kPalette;
}

void MainWindow::print() {
    if (SpectrumDocument* doc = app_.frontDocument())
        printDocument(*doc, app_.preferences(), printer_, this);
}

void MainWindow::pageSetup() {
    zolt::pageSetup(printer_, this);
}

// Shown and hidden, never closed here: closing the console ends the script host with it.
void MainWindow::toggleConsole() {
    if (!console_) {
        console_ = new ConsoleWindow(app_, this);
        connect(console_, &ConsoleWindow::commandsRan, this, &MainWindow::scriptsRan);
    }
    if (console_->isVisible()) {
        console_->hide();
    } else {
        console_->show();
        console_->raise();
        console_->activateWindow();
    }
}

bool MainWindow::frameDialog(int id) {
    switch (id) {
        case kPhaseCorrection:
            showPhaseDialog(*this);
            return true;
        case kConsole:
            toggleConsole();
            return true;
        case kPalette:
            showPalette(*this);
            return true;
        case kSettings:
            showSettings(*this, settings_);
            return true;
        case kTimer:
            showTimer(*this);
            return true;
        case kAbout:
            showAbout(*this);
            return true;
        case kPageSetup:
            pageSetup();
            return true;
        case kPrint:
            print();
            return true;
        default:
            return false;
    }
}

}  // namespace zolt
