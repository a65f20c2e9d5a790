// Where the tests find real spectrometer data, and what they measure on it.
#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/spectrum_document.h"

namespace zolt::testdata {

// The unpacked data packages, looked up at run time: ZOLT_TESTDATA_DIR from the environment;
// else the folder configured at build time when it can be listed; else a "testdata" folder
// beside the program or one level above it (build/testdata beside build/<tree>), or in the
// current folder or its build/ folder; else the configured folder, readable or not.
std::string root();
// The folder can be listed.
bool readable(const std::string& folder);
// The experiment folder of a bruker-data-test set by its short name:
// "aspirin-1h", "aspirin-1h-processed", "naphtoicAcid-1h", "strychnine-1h", "cyclosporin-1h",
// "cyclosporin-cosy", "cyclosporin-hsqc", "cyclosporin-hmbc", "inversion-recovery",
// "t1rho-1h", "cosy-nus", "hsqc-nus".
std::string bruker(const std::string& name);
// The project's shared test data (Varian folders).
std::string shared(const std::string& relative);
// The installed npm packages (jcampconverter, the data packages): ZOLT_NODE_MODULES_DIR from the
// environment, else the folder configured at build time (tests/data/node_modules by default).
std::string nodeModules();
// A file of the tests' own source folder, by its path below tests/ ("io/jcamp_points.mjs").
std::string testSource(const std::string& relative);
// The zolt-cli program built beside the tests. Defined only in the test programs of the folders
// that CMakeLists.txt lists as running it: those are built after it.
std::string cliPath();
// The desktop program zolt, likewise defined only in the desktop program's tests.
std::string guiPath();
// A fresh empty folder under the system's temporary folder, removed when the program ends.
std::string freshTempDir(const std::string& tag);
std::string readFile(const std::string& path);

// A test set opened as the program opens a folder: read, completed, with the default transform
// steps taken from the spectrometer's window and size. Nothing when it cannot be read.
std::unique_ptr<SpectrumDocument> openExperiment(const std::string& name);
// Every remaining time-domain axis transformed; false as soon as one is not.
bool transformAll(SpectrumDocument& doc);
// A test set opened and transformed along every axis with its default steps.
std::unique_ptr<SpectrumDocument> openTransformed(const std::string& name);
// The spectrometer's own processed spectrum of a set (pdata/1): the real parts, and for 1-D
// spectra the imaginary parts of 1i as well. Nothing when the set keeps no processed data.
std::optional<SpectrumMatrix> vendorSpectrum(const std::string& name);

// Pearson correlation of two equally long series.
template <class A, class B>
double correlation(const A& a, const B& b) {
    double sa = 0, sb = 0, saa = 0, sbb = 0, sab = 0;
    const double n = static_cast<double>(a.size());
    for (size_t i = 0; i < a.size(); ++i) {
        const double x = a[i], y = b[i];
        sa += x, sb += y, saa += x * x, sbb += y * y, sab += x * y;
    }
    return (sab - sa * sb / n) / std::sqrt((saa - sa * sa / n) * (sbb - sb * sb / n));
}
// Correlation of the 1-D spectrum a with b's nearest point at the same ppm, over the range both
// cover: of the real parts, or of the moduli.
double correlationOverPpm(const SpectrumMatrix& a, const SpectrumMatrix& b, bool moduli = false);
// Minus the sum of the negative real values over the sum of the positive ones.
double negativeShare(const std::vector<float>& re);

// A whole record in words, so that a test compares it at once: the axis as "8192 1H sw 15.95721
// lo -0.4786592 at 300.1323 shift -61.02083", with " nus N" and " phase p0 p1" when set; the
// source as its number type, flags, header, block and index fields, then a line per axis of more
// than one point. Reals keep 7 significant digits.
std::string axisText(const DimensionRecord& d);
std::string sourceText(const SpectrumSource& s);

// The direct axis: f2 of a 2-D matrix, f1 of a 1-D one.
int directAxis(const SpectrumMatrix& m);
// Index of point (y along f1, x along the direct axis) of the first plane; y is 0 for 1-D.
size_t pointIndex(const SpectrumMatrix& m, size_t y, size_t x);
struct Peak {
    size_t y, x;
    double yPpm, xPpm, height;  // yPpm is 0 for 1-D
};
// The tallest local maxima (3 x 3) of the modulus, or of |real|, at least `margin` points from
// the edges, tallest first.
std::vector<Peak> strongestPeaks(const SpectrumMatrix& m, size_t count, bool modulus,
                                 size_t margin = 1);

}  // namespace zolt::testdata
