// Named values kept between runs: integers, texts and byte arrays, with groups.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

enum class SettingKind : uint8_t { Integer, Text, Bytes };

struct SettingValue {
    SettingKind kind = SettingKind::Integer;
    int64_t integer = 0;
    std::string data;  // the text or the bytes
};

// Names are relative to the current group; a "/" inside a name reaches into a sub-group.
// Implementations see full names ("group/sub/name") only.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    // An integer, or a text holding exactly one (stores that keep no types give texts back).
    std::optional<int64_t> integer(std::string_view name) const;
    // A text, or an integer written as decimal digits.
    std::optional<std::string> text(std::string_view name) const;
    std::optional<std::string> bytes(std::string_view name) const;
    bool contains(std::string_view name) const { return read(fullName(name)).has_value(); }
    // Nothing stored under any name: the user's key was never written and cannot be opened.
    virtual bool empty() const = 0;

    void setInteger(std::string_view name, int64_t value);
    void setText(std::string_view name, std::string_view value);
    void setBytes(std::string_view name, std::string_view value);
    // Removes the value and, when the name is a group, everything inside it.
    void remove(std::string_view name) { erase(fullName(name)); }

    void beginGroup(std::string_view group) { groups_.emplace_back(group); }
    void endGroup() {
        if (!groups_.empty()) groups_.pop_back();
    }

protected:
    virtual std::optional<SettingValue> read(const std::string& fullName) const = 0;
    virtual void write(const std::string& fullName, const SettingValue& value) = 0;
    virtual void erase(const std::string& fullName) = 0;

private:
    std::string fullName(std::string_view name) const;
    std::vector<std::string> groups_;
};

// Keeps everything in memory: for tests and for runs that must not touch the user's settings.
class MemorySettingsStore : public SettingsStore {
public:
    const std::map<std::string, SettingValue>& values() const { return values_; }
    bool empty() const override { return values_.empty(); }

protected:
    std::optional<SettingValue> read(const std::string& fullName) const override;
    void write(const std::string& fullName, const SettingValue& value) override;
    void erase(const std::string& fullName) override;

private:
    std::map<std::string, SettingValue> values_;
};

}  // namespace zolt
