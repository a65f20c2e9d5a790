#include "base/paths.h"

#include <system_error>

namespace zolt {

namespace fs = std::filesystem;

fs::path toPath(const std::string& utf8) {
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string fromPath(const fs::path& path) {
    const std::u8string s = path.generic_u8string();
    return std::string(s.begin(), s.end());
}

bool isRegularFile(const std::string& path) {
    std::error_code ec;
    return fs::is_regular_file(toPath(path), ec);
}

bool isDirectory(const std::string& path) {
    std::error_code ec;
    return fs::is_directory(toPath(path), ec);
}

bool pathExists(const std::string& path) {
    std::error_code ec;
    return fs::exists(toPath(path), ec);
}

std::optional<uintmax_t> fileSize(const std::string& path) {
    std::error_code ec;
    const uintmax_t size = fs::file_size(toPath(path), ec);
    if (ec) return std::nullopt;
    return size;
}

}  // namespace zolt
