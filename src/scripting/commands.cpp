#include "scripting/commands.h"

namespace zolt {

const std::vector<const luaL_Reg*>& commandGroups() {
    static const std::vector<const luaL_Reg*> groups = {
        kConsoleCommands, kTargetCommands,    kDocumentCommands,
        kDataCommands,    kTransformCommands, kPhaseBaselineCommands,
        kDisplayCommands, kIntegralCommands,  kPeakCommands,
        kPictureCommands,
    };
    return groups;
}

}  // namespace zolt
