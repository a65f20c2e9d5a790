// Which documents the commands act upon, and opening documents.
#include <filesystem>

#include "document/document_file.h"
#include "document/folder_export.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

int export_(lua_State* L) {
    const char* folder = luaL_checkstring(L, 1);
    ScriptHost& h = host(L);
    if (h.targets().empty()) return 0;
    if (!exportPackage(*h.targets().front(), folder))
        h.context().message(kSystemErrorCaption, kSystemErrorText);
    return 0;
}

int forall(lua_State* L) {
    ScriptHost& h = host(L);
    if (!lua_isnone(L, 1)) h.setApplyToAll(lua_toboolean(L, 1));
    lua_pushboolean(L, h.applyToAll());
    return 1;
}

// Documents travel through scripts as light userdata and are checked before use.
int target(lua_State* L) {
    ScriptHost& h = host(L);
    if (!lua_isnone(L, 1)) {
        luaL_checktype(L, 1, LUA_TLIGHTUSERDATA);
        auto* doc = static_cast<SpectrumDocument*>(lua_touserdata(L, 1));
        if (h.isOpen(doc)) h.setOnlyTarget(doc);
    }
    const auto& list = h.targets();
    const size_t n = std::min(list.size(), kTargetTableLimit);
    lua_createtable(L, static_cast<int>(n), 0);
    for (size_t i = 0; i < n; ++i) {
        lua_pushlightuserdata(L, list[i]);
        lua_rawseti(L, -2, static_cast<int>(i + 1));
    }
    return 1;
}

int next_window(lua_State* L) {
    ScriptHost& h = host(L);
    h.setApplyToAll(false);
    auto documents = h.context().documents();
    if (!documents.empty()) h.context().bringToFront(*documents.back());
    h.rebuildTargets();
    return 0;
}

int open(lua_State* L) {
    const char* path = luaL_checkstring(L, 1);
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return 0;
    host(L).context().open(path);
    return 0;
}

int reload(lua_State* L) {
    const bool clearProcessedChoice = !lua_isnoneornil(L, 1) && luaL_checknumber(L, 1) == 0;
    ScriptHost& h = host(L);
    for (SpectrumDocument* doc : h.targets())
        if (h.context().reload(*doc, clearProcessedChoice)) h.context().redraw(*doc);
    return 0;
}

}  // namespace

const luaL_Reg kTargetCommands[] = {
    {"export", export_}, {"forall", forall}, {"next_window", next_window}, {"open", open},
    {"reload", reload},  {"target", target}, {nullptr, nullptr},
};

}  // namespace zolt
