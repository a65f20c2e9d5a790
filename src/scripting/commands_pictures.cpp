// Pictures of the document windows written to files.
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

int picture(lua_State* L) {
    const std::string path = luaL_checkstring(L, 1);
    const std::string type = luaL_optstring(L, 2, "");
    for (SpectrumDocument* d : targets(L))
        if (!host(L).context().savePicture(*d, path, type))
            return luaL_error(L, "picture: cannot write %s", path.c_str());
    return 0;
}

}  // namespace

const luaL_Reg kPictureCommands[] = {
    {"picture", picture},
    {nullptr, nullptr},
};

}  // namespace zolt
