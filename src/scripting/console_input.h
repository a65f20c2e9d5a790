// The console's behaviour without its window: the keys of the input line, the Run button, the
// amplification arrows and the shortcut buttons. The desktop console only shows what these
// leave in the host: the log, the message line and the input line.
#pragma once

#include <cstddef>

#include "scripting/script_host.h"

namespace zolt {

enum class ConsoleKey { Enter, Escape, PageUp, PageDown, Up, Down };

// Run button and Enter: nothing for an empty line; otherwise the message line is cleared, the
// line is echoed in the log, kept in the history, cleared and run as "input". False when
// nothing ran or the chunk failed.
bool executeInputLine(ScriptHost& host);

// A key typed in the input line; the console takes every one of these from the edit control.
// Escape redraws with "amp()"; Page Up and Page Down copy the message line into the input line;
// Up and Down walk the history.
void pressConsoleKey(ScriptHost& host, ConsoleKey key);

// One step of the amplification arrows: a negative delta enlarges, any other one reduces.
void stepAmplification(ScriptHost& host, int delta);

// Shortcut button `index` (from 0) runs the script named by its text; there is no button
// beyond the names.
void pressShortcut(ScriptHost& host, size_t index);

}  // namespace zolt
