#include "scripting/script_host.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <lua.hpp>
#include <sstream>

#include "base/files.h"
#include "base/paths.h"
#include "scripting/commands.h"

namespace zolt {

namespace {

// Its address keys the host in the interpreter's registry.
const char kHostKey = 0;

// Scripts are text typed by people; anything larger is not one.
constexpr uintmax_t kMaxScriptBytes = uintmax_t{16} << 20;

std::string errorText(lua_State* L) {
    if (const char* s = lua_tostring(L, -1)) return s;
    return std::string("(error object is a ") + luaL_typename(L, -1) + " value)";
}

std::optional<std::string> readScript(const std::filesystem::path& path) {
    return readWholeFile(fromPath(path), kMaxScriptBytes);
}

bool isAbsoluteScriptName(const std::string& name) {
    return (name.size() > 1 && name[1] == ':') || (!name.empty() && name[0] == '/');
}

}  // namespace

std::vector<std::string> splitShortcuts(std::string_view text) {
    std::vector<std::string> names;
    std::string current;
    for (char c : text) {
        if (static_cast<unsigned char>(c) <= 32) {
            if (!current.empty()) names.push_back(std::move(current));
            current.clear();
        } else {
            current.push_back(c);
        }
    }
    if (!current.empty()) names.push_back(std::move(current));
    return names;
}

std::string logDateLine() {
    std::time_t now = std::time(nullptr);
    std::tm t{};
    localtime_r(&now, &t);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%d-%d-%d   %d:%d:%d", t.tm_mon + 1, t.tm_mday,
                  t.tm_year + 1900, t.tm_hour, t.tm_min, t.tm_sec);
    return buffer;
}

ScriptHost::ScriptHost(ScriptContext& context) : context_(context) {
    L_ = luaL_newstate();  // installs the library's panic handler
    log_ = logDateLine();
    if (!L_) return;
    luaL_openlibs(L_);
    lua_pushlightuserdata(L_, const_cast<char*>(&kHostKey));
    lua_pushlightuserdata(L_, this);
    lua_settable(L_, LUA_REGISTRYINDEX);
    // After the base library, so that print is the program's.
    registerCommands();
    shortcuts_ = splitShortcuts(context_.consoleShortcuts());
    runScript("");
}

ScriptHost::~ScriptHost() {
    if (L_) lua_close(L_);
}

ScriptHost& ScriptHost::of(lua_State* L) {
    lua_pushlightuserdata(L, const_cast<char*>(&kHostKey));
    lua_gettable(L, LUA_REGISTRYINDEX);
    auto* host = static_cast<ScriptHost*>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    return *host;
}

void ScriptHost::registerCommands() {
    for (const luaL_Reg* group : commandGroups()) {
        lua_pushvalue(L_, LUA_GLOBALSINDEX);
        luaL_register(L_, nullptr, group);
        lua_pop(L_, 1);
    }
}

bool ScriptHost::runChunk(std::string_view text, const std::string& chunkName) {
    if (!L_) return false;
    rebuildTargets();
    const bool wasRunning = running_;
    running_ = true;
    int rc = luaL_loadbuffer(L_, text.data(), text.size(), chunkName.c_str());
    if (rc == 0) rc = lua_pcall(L_, 0, 0, 0);
    if (rc != 0) {
        std::string message = errorText(L_);
        setMessageLine(message);
        appendLog(message);
        lua_pop(L_, 1);
    }
    running_ = wasRunning;
    return rc == 0;
}

bool ScriptHost::runScript(const std::string& name) {
    const std::string folder = context_.scriptsFolder();
    if (!L_ || folder.empty()) return false;
    std::filesystem::path path;
    if (isAbsoluteScriptName(name))
        path = name;
    else if (name.empty())
        path = std::filesystem::path(folder) / kInitScriptName;
    else
        path = std::filesystem::path(folder) / (name + ".lua");
    auto text = readScript(path);
    if (!text) return false;
    const std::string chunkName =
        name.empty() ? kInitScriptName : path.filename().replace_extension().string();
    return runChunk(*text, chunkName);
}

bool ScriptHost::executeInput(const std::string& line) {
    if (line.empty()) return false;
    setMessageLine("");
    appendLog(line);
    if (history_.size() >= kHistoryLimit) history_.pop_front();
    history_.push_back(line);
    historyCursor_ = static_cast<int8_t>(history_.size());
    return runChunk(line, kInputChunkName);
}

void ScriptHost::appendLog(std::string_view text) {
    // A line longer than the whole buffer keeps its beginning.
    text = text.substr(0, kLogLimit - 2);
    const size_t length = log_.size() + 2 + text.size();
    if (length > kLogLimit) log_.erase(0, std::min(length - kLogLimit, log_.size()));
    log_ += "\r\n";
    log_ += text;
    context_.logAppended(text);
}

void ScriptHost::clear() {
    log_.clear();
    history_.clear();
    historyCursor_ = 0;
}

std::optional<std::string> ScriptHost::historyUp(const std::string& currentLine) {
    // The cursor is 8-bit: the list never outgrows it.
    if (historyCursor_ == static_cast<int>(history_.size()) && !currentLine.empty() &&
        history_.size() < 127)
        history_.push_back(currentLine);
    if (historyCursor_ <= 0) return std::nullopt;
    --historyCursor_;
    return history_[historyCursor_];
}

std::optional<std::string> ScriptHost::historyDown() {
    if (historyCursor_ + 1 >= static_cast<int>(history_.size())) return std::nullopt;
    ++historyCursor_;
    return history_[historyCursor_];
}

void ScriptHost::setApplyToAll(bool on) {
    applyToAll_ = on;
    rebuildTargets();
    context_.applyToAllChanged(on);
}

void ScriptHost::rebuildTargets() {
    targets_.clear();
    for (SpectrumDocument* doc : context_.documents()) {
        if (doc->source.numberType == NumberType::SpinSystem) continue;
        targets_.push_back(doc);
        if (!applyToAll_) break;
        auto members = context_.containerMembers(*doc);
        targets_.insert(targets_.end(), members.rbegin(), members.rend());
    }
}

void ScriptHost::setOnlyTarget(SpectrumDocument* document) {
    targets_.assign(1, document);
}

bool ScriptHost::isOpen(const SpectrumDocument* document) {
    for (SpectrumDocument* doc : context_.documents()) {
        if (doc == document) return true;
        for (SpectrumDocument* m : context_.containerMembers(*doc))
            if (m == document) return true;
    }
    return false;
}

}  // namespace zolt
