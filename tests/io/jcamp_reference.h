// What jcampconverter (the npm reference reader) decodes from a JCAMP-DX file, through
// tests/io/jcamp_points.mjs run by node.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "test_data.h"

namespace zolt::testdata {

struct ReferencePage {
    std::vector<double> x, y;
};
struct ReferencePlane {
    size_t rows = 0, columns = 0;
    std::vector<double> z;  // by ascending indirect, then ascending direct frequency
};
struct ReferenceRead {
    std::vector<ReferencePage> pages;
    std::vector<ReferencePlane> planes;
};

inline std::string commandOutput(const std::string& command) {
    std::string out;
    if (FILE* p = popen(command.c_str(), "r")) {
        char buffer[1 << 16];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, p)) > 0;) out.append(buffer, n);
        pclose(p);
    }
    return out;
}

// Nothing when node is not installed; empty pages when jcampconverter failed.
inline std::optional<ReferenceRead> jcampconverterRead(const std::string& file) {
    if (commandOutput("command -v node").empty()) return std::nullopt;
    const std::string text = commandOutput("node '" + testSource("io/jcamp_points.mjs") + "' '" +
                                           nodeModules() + "' '" + file + "' 2>/dev/null");
    ReferenceRead read;
    const char* p = text.c_str();
    const auto number = [&p] {
        char* end = nullptr;
        const double v = std::strtod(p, &end);
        p = end;
        return v;
    };
    for (char word[16]; std::sscanf(p, " %15s", word) == 1;) {
        p = std::strstr(p, word) + std::strlen(word);
        if (std::string(word) == "spectrum") {
            ReferencePage& page = read.pages.emplace_back();
            const auto n = static_cast<size_t>(number());
            for (size_t i = 0; i < n; ++i) page.x.push_back(number()), page.y.push_back(number());
        } else if (std::string(word) == "plane") {
            ReferencePlane& plane = read.planes.emplace_back();
            plane.rows = static_cast<size_t>(number());
            plane.columns = static_cast<size_t>(number());
            plane.z.resize(plane.rows * plane.columns);
            for (double& v : plane.z) v = number();
        } else {
            break;
        }
    }
    return read;
}

// Within a relative tolerance of the reference value (exactly zero when it is).
inline bool closeTo(double ours, double reference, double relative = 1e-6) {
    return std::abs(ours - reference) <= relative * std::abs(reference);
}

}  // namespace zolt::testdata
