// The custom workflow of a document: the switch that reopening obeys.
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// cw(true) switches the first target's workflow on, anything else off; either way the document
// changed and asks to be saved.
int cw(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    if (optBoolean(L, 1, false))
        d->flags |= document_flags::kCustomWorkflow;
    else
        d->flags &= ~document_flags::kCustomWorkflow;
    d->flags |= document_flags::kModified;
    return 0;
}

}  // namespace

const luaL_Reg kWorkflowCommands[] = {
    {"cw", cw},
    {nullptr, nullptr},
};

}  // namespace zolt
