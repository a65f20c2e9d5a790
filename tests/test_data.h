// Where the tests find real spectrometer data.
#pragma once

#include <string>

namespace zolt::testdata {

// The unpacked data packages (build/testdata).
std::string root();
// The experiment folder of a bruker-data-test set by its short name:
// "aspirin-1h", "aspirin-1h-processed", "naphtoicAcid-1h", "strychnine-1h", "cyclosporin-1h",
// "cyclosporin-cosy", "cyclosporin-hsqc", "cyclosporin-hmbc", "inversion-recovery",
// "t1rho-1h", "cosy-nus", "hsqc-nus".
std::string bruker(const std::string& name);
// The project's shared test data (Varian folders).
std::string shared(const std::string& relative);
// The zolt-cli program built beside the tests.
std::string cliPath();
// A fresh empty folder under the system's temporary folder.
std::string freshTempDir(const std::string& tag);
std::string readFile(const std::string& path);

}  // namespace zolt::testdata
