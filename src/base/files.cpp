#include "base/files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "base/paths.h"

namespace zolt {

std::optional<std::string> readWholeFile(const std::string& path, uintmax_t maxBytes) {
    if (!isRegularFile(path)) return std::nullopt;
    const std::optional<uintmax_t> size = fileSize(path);
    if (!size || *size > maxBytes) return std::nullopt;
    std::ifstream in(toPath(path), std::ios::binary);
    if (!in) return std::nullopt;
    std::string text(static_cast<size_t>(*size), '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    // A file that shrank while it was read gives what was there.
    text.resize(static_cast<size_t>(in.gcount()));
    return text;
}

std::string readFileHead(const std::string& path, size_t bytes) {
    std::ifstream in(toPath(path), std::ios::binary);
    if (!in) return {};
    // A generous cap on a small file costs no more than the file.
    std::error_code ec;
    const uint64_t size = std::filesystem::file_size(toPath(path), ec);
    if (!ec) bytes = static_cast<size_t>(std::min<uint64_t>(bytes, size));
    std::string head(bytes, '\0');
    in.read(head.data(), static_cast<std::streamsize>(bytes));
    head.resize(static_cast<size_t>(in.gcount()));
    return head;
}

namespace {

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        text.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

// A fresh name beside the target, created exclusively so that nothing planted under it is
// followed; -1 when no such file can be made.
int createTemporary(const std::string& path, std::string& temporary) {
    std::random_device random;
    for (int attempt = 0; attempt < 16; ++attempt) {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, ".%08x.partial", random());
        temporary = path + suffix;
        const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

}  // namespace

std::optional<std::string> writeTemporaryBeside(const std::string& path, std::string_view text) {
    std::string temporary;
    const int fd = createTemporary(path, temporary);
    if (fd < 0) return std::nullopt;
    const bool written = writeAll(fd, text) && ::fsync(fd) == 0;
    if (!(::close(fd) == 0 && written)) {
        std::remove(temporary.c_str());
        return std::nullopt;
    }
    return temporary;
}

std::optional<std::string> createFolderBeside(const std::string& path) {
    std::string name = path + ".XXXXXX";
    if (!::mkdtemp(name.data())) return std::nullopt;
    return name;
}

void syncFolderOf(const std::string& path) {
    std::filesystem::path folder = toPath(path).parent_path();
    if (folder.empty()) folder = ".";
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

bool writeFileReplacing(const std::string& path, std::string_view text) {
    const std::optional<std::string> temporary = writeTemporaryBeside(path, text);
    if (!temporary) return false;
    if (std::rename(temporary->c_str(), path.c_str()) != 0) {
        std::remove(temporary->c_str());
        return false;
    }
    syncFolderOf(path);
    return true;
}

}  // namespace zolt
