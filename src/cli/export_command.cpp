#include "cli/export_command.h"

#include <iostream>

#include "app/document_opening.h"
#include "operations/export_operations.h"

namespace zolt {

int runExportCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        out << kExportUsage;
        return 0;
    }
    if (args.size() != 3 || args[0] != "--jcamp") {
        err << kExportUsage;
        return 2;
    }
    const std::string& target = args[1];
    const std::string& path = args[2];
    Message failure;
    const auto doc = readDocument(path, Preferences{}, failure);
    if (!doc) {
        err << failure.caption << ": " << failure.text << '\n';
        return 1;
    }
    if (!exportJcamp(*doc, target)) {
        err << "zolt-cli export: cannot write " << target << " as JCAMP-DX\n";
        return 1;
    }
    return 0;
}

}  // namespace zolt
