#include "scripting/console_input.h"

#include <string>

namespace zolt {

bool executeInputLine(ScriptHost& host) {
    std::string line = host.inputLine();
    if (line.empty()) return false;
    host.setInputLine("");
    return host.executeInput(line);
}

void pressConsoleKey(ScriptHost& host, ConsoleKey key) {
    switch (key) {
        case ConsoleKey::Enter:
            executeInputLine(host);
            break;
        case ConsoleKey::Escape:
            host.runChunk("amp()", kInputChunkName);
            break;
        case ConsoleKey::PageUp:
        case ConsoleKey::PageDown:
            host.setInputLine(host.messageLine());
            break;
        case ConsoleKey::Up:
            if (auto entry = host.historyUp(host.inputLine())) host.setInputLine(*entry);
            break;
        case ConsoleKey::Down:
            if (auto entry = host.historyDown()) host.setInputLine(*entry);
            break;
    }
}

void stepAmplification(ScriptHost& host, int delta) {
    host.runChunk(delta < 0 ? "amp(1.1)" : "amp(0.9)", kInputChunkName);
}

void pressShortcut(ScriptHost& host, size_t index) {
    if (index < host.shortcuts().size()) host.runScript(host.shortcuts()[index]);
}

}  // namespace zolt
