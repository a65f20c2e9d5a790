#include <system_error>

#include "io/bruker_layout.h"

namespace zolt {

std::filesystem::path toPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string fromPath(const std::filesystem::path& path) {
    const std::u8string s = path.generic_u8string();
    return std::string(s.begin(), s.end());
}

bool isRegularFile(const std::string& path) {
    std::error_code ec;
    return std::filesystem::is_regular_file(toPath(path), ec);
}

std::optional<uintmax_t> fileSize(const std::string& path) {
    std::error_code ec;
    const uintmax_t size = std::filesystem::file_size(toPath(path), ec);
    if (ec) return std::nullopt;
    return size;
}

}  // namespace zolt
