// File > Recent Files: titles and full paths, most recent first, kept between runs.
#pragma once

#include <string>
#include <vector>

#include "app/settings_store.h"

namespace zolt {

// Entries the menu reaches (identifiers 140-150); older ones are dropped.
inline constexpr size_t kMaxRecentFiles = 11;

struct RecentFiles {
    std::vector<std::string> titles;
    std::vector<std::string> paths;
};

// The groups "Recent Titles" and "Recent Paths", one text per entry named by its position
// ("0", "1", ...) up to the first missing one. Lists of different lengths are both discarded.
RecentFiles loadRecentFiles(const SettingsStore& store);
// Replaces both groups with the lists.
void saveRecentFiles(SettingsStore& store, const RecentFiles& recent);

// The path becomes the first entry (an earlier entry for it moves up).
void addRecentFile(RecentFiles& recent, const std::string& title, const std::string& path);
void removeRecentFile(RecentFiles& recent, size_t index);

}  // namespace zolt
