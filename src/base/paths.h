// Paths given as UTF-8 text, as the program keeps them, and the file-system questions asked of
// them everywhere (no exceptions: a path that cannot be examined is simply absent).
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace zolt {

std::filesystem::path toPath(const std::string& utf8);
std::string fromPath(const std::filesystem::path& path);

bool isRegularFile(const std::string& path);
bool isDirectory(const std::string& path);
bool pathExists(const std::string& path);
std::optional<uintmax_t> fileSize(const std::string& path);

}  // namespace zolt
