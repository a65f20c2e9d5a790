// Console commands: printing, the log, the clipboard text, running scripts.
#include <filesystem>

#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// Like Lua's own print, but the line goes to the console's message line and log.
int print(lua_State* L) {
    const int n = lua_gettop(L);
    // A Lua buffer, not a std::string: tostring may raise an error, which skips destructors.
    luaL_Buffer b;
    lua_getglobal(L, "tostring");
    luaL_buffinit(L, &b);
    for (int i = 1; i <= n; ++i) {
        lua_pushvalue(L, n + 1);
        lua_pushvalue(L, i);
        lua_call(L, 1, 1);
        if (!lua_isstring(L, -1))
            return luaL_error(L, LUA_QL("tostring") " must return a string to " LUA_QL("print"));
        if (i > 1) luaL_addchar(&b, '\t');
        luaL_addvalue(&b);
    }
    luaL_pushresult(&b);
    size_t length = 0;
    const char* text = lua_tolstring(L, -1, &length);
    const std::string line(text, length);
    ScriptHost& h = host(L);
    h.setMessageLine(line);
    h.appendLog(line);
    return 0;
}

int clear(lua_State* L) {
    host(L).clear();
    return 0;
}

int cliptext(lua_State* L) {
    ScriptContext& context = host(L).context();
    if (!lua_isnoneornil(L, 1)) {
        size_t length = 0;
        const char* s = luaL_checklstring(L, 1, &length);
        context.setClipboardText(std::string_view(s, length));
        return 0;
    }
    const std::string text = context.clipboardText();
    if (text.empty()) return 0;
    lua_pushlstring(L, text.data(), text.size());
    return 1;
}

int copylog(lua_State* L) {
    host(L).context().setClipboardText(host(L).log());
    return 0;
}

// dofile on the scripts folder's "<name>.lua": errors travel on to the caller's chunk.
int run(lua_State* L) {
    const char* name = luaL_checkstring(L, 1);
    {
        // No C++ object may be alive when Lua raises an error: its destructor would never run.
        const std::string folder = host(L).context().scriptsFolder();
        const std::string path =
            (std::filesystem::path(folder) / (std::string(name) + ".lua")).string();
        lua_pushstring(L, path.c_str());
    }
    const int base = lua_gettop(L);
    if (luaL_loadfile(L, lua_tostring(L, -1)) != 0) return lua_error(L);
    lua_call(L, 0, LUA_MULTRET);
    return lua_gettop(L) - base;
}

int shell(lua_State*) {
    return 0;
}

int sys_slash(lua_State* L) {
    const char separator[2] = {static_cast<char>(std::filesystem::path::preferred_separator), 0};
    lua_pushstring(L, separator);
    return 1;
}

}  // namespace

const luaL_Reg kConsoleCommands[] = {
    {"clear", clear}, {"cliptext", cliptext}, {"copylog", copylog},     {"print", print},
    {"run", run},     {"shell", shell},       {"sys_slash", sys_slash}, {nullptr, nullptr},
};

}  // namespace zolt
