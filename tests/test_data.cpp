#include "test_data.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>

namespace zolt::testdata {

std::string root() { return ZOLT_TESTDATA_DIR; }

std::string bruker(const std::string& name) {
    static const std::map<std::string, std::string> folders = {
        {"aspirin-1h", "aspirin-1h/1"},
        {"aspirin-1h-processed", "aspirin-1h-processed/1"},
        {"naphtoicAcid-1h", "naphtoicAcid-1h/1"},
        {"strychnine-1h", "strychnine-1h/strychnine/10"},
        {"cyclosporin-1h", "cyclosporin_1h/cyclosporin_1h/1"},
        {"cyclosporin-cosy", "cyclosporin_cosy/cyclosporin_cosy/1"},
        {"cyclosporin-hsqc", "cyclosporin_hsqc/cyclosporin_hsqc/3"},
        {"cyclosporin-hmbc", "cyclosporin_hmbc/cyclosporin_hmbc/2"},
        {"inversion-recovery", "inversionRecovery2D/inversionRecovery2D/1"},
        {"t1rho-1h", "t1rho-1H/189"},
        {"cosy-nus", "cosy-nus/2"},
        {"hsqc-nus", "hsqc-nus/3"},
    };
    auto it = folders.find(name);
    if (it == folders.end()) throw std::invalid_argument("no test set " + name);
    return root() + "/bruker/" + it->second;
}

std::string shared(const std::string& relative) {
    return std::string(ZOLT_SHARED_TESTDATA_DIR) + "/" + relative;
}

std::string cliPath() {
#ifdef ZOLT_CLI_PATH
    return ZOLT_CLI_PATH;
#else
    return "zolt-cli";
#endif
}

std::string freshTempDir(const std::string& tag) {
    std::random_device rd;
    auto dir = std::filesystem::temp_directory_path() /
               ("zolt-" + tag + "-" + std::to_string(rd()) + std::to_string(rd()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir.string();
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

}  // namespace zolt::testdata
