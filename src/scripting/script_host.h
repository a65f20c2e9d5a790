// The Lua 5.1 interpreter of the program: set-up, console log and history, target list,
// running chunks and named scripts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scripting/script_context.h"

struct lua_State;

namespace zolt {

inline constexpr size_t kLogCapacity = 16384;
// Past this length the oldest bytes of the log go.
inline constexpr size_t kLogLimit = 16382;
inline constexpr size_t kHistoryLimit = 24;
inline constexpr size_t kTargetTableLimit = 9000;
inline constexpr const char* kInputChunkName = "input";
inline constexpr const char* kInitScriptName = "Lua.init";

class ScriptHost {
public:
    // Sets the interpreter up and runs "Lua.init" from the scripts folder.
    explicit ScriptHost(ScriptContext& context);
    ~ScriptHost();
    ScriptHost(const ScriptHost&) = delete;
    ScriptHost& operator=(const ScriptHost&) = delete;

    // Errors go to the message line and the log; false when the chunk failed.
    bool runChunk(std::string_view text, const std::string& chunkName);
    // The scripts folder's "<name>.lua", its "Lua.init" for an empty name, or the name itself
    // when it is an absolute path. False when nothing could be run or the script failed.
    bool runScript(const std::string& name);
    // The console's Run: echoes the line, keeps it in the history, runs it as "input".
    bool executeInput(const std::string& line);

    void appendLog(std::string_view text);
    const std::string& log() const { return log_; }
    void setMessageLine(std::string_view text) { messageLine_ = text; }
    const std::string& messageLine() const { return messageLine_; }
    // The console's one-line input, which the console keys and buttons act upon.
    const std::string& inputLine() const { return inputLine_; }
    void setInputLine(std::string text) { inputLine_ = std::move(text); }
    // Empties the log and the history.
    void clear();

    const std::deque<std::string>& history() const { return history_; }
    int historyCursor() const { return historyCursor_; }
    // Up key: the previous entry; a typed line at the end of the history is kept first.
    std::optional<std::string> historyUp(const std::string& currentLine);
    // Down key: the next entry, when there is one.
    std::optional<std::string> historyDown();

    const std::vector<std::string>& shortcuts() const { return shortcuts_; }

    bool applyToAll() const { return applyToAll_; }
    void setApplyToAll(bool on);
    void rebuildTargets();
    const std::vector<SpectrumDocument*>& targets() const { return targets_; }
    SpectrumDocument* firstTarget() const { return targets_.empty() ? nullptr : targets_[0]; }
    void setOnlyTarget(SpectrumDocument* document);
    // True when the document is still open (pointers handed to scripts are checked first).
    bool isOpen(const SpectrumDocument* document);
    bool running() const { return running_; }

    ScriptContext& context() { return context_; }
    lua_State* state() { return L_; }
    // The host that owns an interpreter state.
    static ScriptHost& of(lua_State* L);

private:
    void registerCommands();

    ScriptContext& context_;
    lua_State* L_ = nullptr;
    std::string log_;
    std::string messageLine_ = "--";
    std::string inputLine_;
    std::deque<std::string> history_;
    int8_t historyCursor_ = 0;
    std::vector<std::string> shortcuts_;
    std::vector<SpectrumDocument*> targets_;
    bool applyToAll_ = false;
    bool running_ = false;
};

// Shortcut names: the text split at every character whose code is 32 or less.
std::vector<std::string> splitShortcuts(std::string_view text);
// "%d-%d-%d   %d:%d:%d": month, day, year, hour, minute, second of the local time now.
std::string logDateLine();

}  // namespace zolt
