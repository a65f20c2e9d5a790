#include <algorithm>
#include <fstream>
#include <string_view>
#include <vector>

#include "io/bruker/bruker_layout.h"

namespace zolt {

namespace {

// The line separator is whatever precedes the first "#" past the file's opening bytes.
char lineSeparator(const std::string& text) {
    const size_t hash = text.find('#', 20);
    return hash != std::string::npos ? text[hash - 1] : '\n';
}

}  // namespace

// acqp holds the acquisition parameters under the names acqus uses, but unsorted, with the
// matrix size as ACQ_size and every array label followed by its dimensions: rewritten, it reads
// as an acqus.
std::string paraVisionToAcqus(std::string text) {
    const char separator = lineSeparator(text);
    const size_t size = text.find("##$ACQ_size=(");
    if (size != std::string::npos) text.replace(size + 3, 4, "TD=(");
    // Copied line by line rather than erased in place, so that many labels cost no more
    // than one pass.
    std::string joined;
    joined.reserve(text.size());
    for (size_t line = 0; line < text.size();) {
        size_t next = text.find(separator, line);
        next = next == std::string::npos ? text.size() : next + 1;
        const std::string_view whole(text.data() + line, next - line);
        const size_t label = whole.find('=');
        if (whole.starts_with("##") && label != std::string_view::npos &&
            whole.substr(label, 2) == "=(")
            joined.append(whole.substr(0, label + 1));  // the values follow on the next line
        else
            joined.append(whole);
        line = next;
    }
    text = std::move(joined);
    const size_t end = text.find("##END");
    if (end != std::string::npos) text.resize(end + 5);

    std::vector<std::string_view> lines;
    std::string_view rest(text);
    while (!rest.empty()) {
        const size_t cut = rest.find(separator);
        lines.push_back(rest.substr(0, cut));
        rest = cut == std::string_view::npos ? std::string_view() : rest.substr(cut + 1);
    }
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    sorted.reserve(text.size() + 1);
    for (std::string_view line : lines) {
        sorted.append(line);
        sorted.push_back(separator);
    }
    return sorted;
}

std::optional<DataSetRead> readParaVision(const std::string& path, const ReadOptions& options) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path given = toPath(path);
    const fs::path folder = fs::is_directory(given, ec) ? given : given.parent_path();
    const auto acqp = readParameterFile(fromPath(folder / "acqp"));
    if (!acqp) return std::nullopt;
    {
        const std::string acqus = paraVisionToAcqus(*acqp);
        std::ofstream out(folder / "acqus", std::ios::binary | std::ios::trunc);
        if (!out.write(acqus.data(), static_cast<std::streamsize>(acqus.size())))
            return std::nullopt;
    }
    auto read = readBrukerExperiment(path, options, "ParaVision");
    if (!read) return std::nullopt;
    SpectrumSource& s = read->source;
    s.ftPreferences[1] = s.ftPreferences[2] = 1;
    s.ftPreferences[std::max(directFIndex(s), 1)] = 2;
    return read;
}

}  // namespace zolt
