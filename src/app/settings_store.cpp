#include "app/settings_store.h"

#include <charconv>

namespace zolt {

std::optional<int64_t> SettingsStore::integer(std::string_view name) const {
    auto v = read(fullName(name));
    if (!v) return std::nullopt;
    if (v->kind == SettingKind::Integer) return v->integer;
    if (v->kind != SettingKind::Text) return std::nullopt;
    int64_t n = 0;
    const char* end = v->data.data() + v->data.size();
    auto [p, ec] = std::from_chars(v->data.data(), end, n);
    if (ec != std::errc() || p != end || v->data.empty()) return std::nullopt;
    return n;
}

std::optional<std::string> SettingsStore::text(std::string_view name) const {
    auto v = read(fullName(name));
    if (!v || v->kind == SettingKind::Bytes) return std::nullopt;
    if (v->kind == SettingKind::Integer) return std::to_string(v->integer);
    return v->data;
}

std::optional<std::string> SettingsStore::bytes(std::string_view name) const {
    auto v = read(fullName(name));
    if (!v || v->kind != SettingKind::Bytes) return std::nullopt;
    return v->data;
}

void SettingsStore::setInteger(std::string_view name, int64_t value) {
    write(fullName(name), SettingValue{SettingKind::Integer, value, {}});
}

void SettingsStore::setText(std::string_view name, std::string_view value) {
    write(fullName(name), SettingValue{SettingKind::Text, 0, std::string(value)});
}

void SettingsStore::setBytes(std::string_view name, std::string_view value) {
    write(fullName(name), SettingValue{SettingKind::Bytes, 0, std::string(value)});
}

std::string SettingsStore::fullName(std::string_view name) const {
    std::string full;
    for (const auto& g : groups_) {
        full += g;
        full += '/';
    }
    full += name;
    return full;
}

std::optional<SettingValue> MemorySettingsStore::read(const std::string& fullName) const {
    auto it = values_.find(fullName);
    if (it == values_.end()) return std::nullopt;
    return it->second;
}

void MemorySettingsStore::write(const std::string& fullName, const SettingValue& value) {
    values_[fullName] = value;
}

void MemorySettingsStore::erase(const std::string& fullName) {
    values_.erase(fullName);
    const std::string prefix = fullName + "/";
    auto it = values_.lower_bound(prefix);
    while (it != values_.end() && it->first.compare(0, prefix.size(), prefix) == 0)
        it = values_.erase(it);
}

}  // namespace zolt
