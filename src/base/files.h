// Whole files in and out: a bounded read, a head read, and a write that replaces a file only
// once the new contents are complete on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zolt {

// The whole of a regular file, or nothing when it cannot be read or holds more than maxBytes.
std::optional<std::string> readWholeFile(const std::string& path, uintmax_t maxBytes);

// The first bytes of a file, fewer when it is shorter; empty when it cannot be read.
std::string readFileHead(const std::string& path, size_t bytes);

// Writes the text to a new file beside path, under a fresh name created exclusively, and flushes
// it to disk; its name, or nothing (and no file left) on failure. The caller renames it.
std::optional<std::string> writeTemporaryBeside(const std::string& path, std::string_view text);

// Creates a new empty folder beside path under a fresh name; its name, or nothing.
std::optional<std::string> createFolderBeside(const std::string& path);

// Flushes the folder holding path to disk, so that a rename in it survives a crash.
void syncFolderOf(const std::string& path);

// Writes the text to a new temporary file in the same folder, flushes it to disk and renames
// it over path, so that a failure at any point leaves the old file as it was.
bool writeFileReplacing(const std::string& path, std::string_view text);

}  // namespace zolt
