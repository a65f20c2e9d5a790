#include "app/recent_files.h"

#include <algorithm>

namespace zolt {

namespace {

constexpr const char* kTitlesGroup = "Recent Titles";
constexpr const char* kPathsGroup = "Recent Paths";

// A damaged store cannot make a list grow without limit.
constexpr size_t kMaxStoredEntries = 1000;

std::vector<std::string> readList(const SettingsStore& store, const std::string& group) {
    std::vector<std::string> list;
    while (list.size() < kMaxStoredEntries) {
        auto text = store.text(group + "/" + std::to_string(list.size()));
        if (!text) break;
        list.push_back(std::move(*text));
    }
    return list;
}

void writeList(SettingsStore& store, const std::string& group,
               const std::vector<std::string>& list) {
    store.remove(group);
    for (size_t i = 0; i < list.size(); ++i)
        store.setText(group + "/" + std::to_string(i), list[i]);
}

}  // namespace

RecentFiles loadRecentFiles(const SettingsStore& store) {
    RecentFiles recent{readList(store, kTitlesGroup), readList(store, kPathsGroup)};
    if (recent.titles.size() != recent.paths.size()) return {};
    recent.titles.resize(std::min(recent.titles.size(), kMaxRecentFiles));
    recent.paths.resize(recent.titles.size());
    return recent;
}

void saveRecentFiles(SettingsStore& store, const RecentFiles& recent) {
    writeList(store, kTitlesGroup, recent.titles);
    writeList(store, kPathsGroup, recent.paths);
}

void addRecentFile(RecentFiles& recent, const std::string& title, const std::string& path) {
    auto it = std::find(recent.paths.begin(), recent.paths.end(), path);
    if (it != recent.paths.end()) removeRecentFile(recent, it - recent.paths.begin());
    recent.titles.insert(recent.titles.begin(), title);
    recent.paths.insert(recent.paths.begin(), path);
    if (recent.paths.size() > kMaxRecentFiles) {
        recent.titles.resize(kMaxRecentFiles);
        recent.paths.resize(kMaxRecentFiles);
    }
}

void removeRecentFile(RecentFiles& recent, size_t index) {
    if (index >= recent.paths.size() || index >= recent.titles.size()) return;
    recent.titles.erase(recent.titles.begin() + index);
    recent.paths.erase(recent.paths.begin() + index);
}

}  // namespace zolt
