#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tallowcrest {

/// Encoded JSON, as its own kind beside plain text.
struct JSONData {
    std::string text;

    bool operator==(const JSONData&) const = default;
};

/// Bytes that only one component interprets.
struct SettingsData {
    std::string bytes;

    bool operator==(const SettingsData&) const = default;
};

using SettingsTextList = std::vector<std::string>;
using SettingsTable = std::map<std::string, std::int64_t>;

/// The kinds of values that a settings key can hold, in the order of the alternatives of
/// `SettingsValue`.
enum class SettingsKind { flag, number, text, textList, table, json, data };

using SettingsValue = std::variant<bool, double, std::string, SettingsTextList, SettingsTable,
                                   JSONData, SettingsData>;

SettingsKind kindOf(const SettingsValue& value);

/// The owner's flat key-value store. Main thread.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    /// Absent when the key was never written, or when what is stored cannot be decoded.
    virtual std::optional<SettingsValue> read(std::string_view key) const = 0;

    /// Written through before it returns. An absent value removes the key; one that cannot be kept
    /// leaves the older one.
    virtual void write(std::string_view key, const std::optional<SettingsValue>& value) = 0;
};

/// A store that lives as long as the process, for runs that must leave nothing behind.
class MemorySettingsStore final : public SettingsStore {
public:
    std::optional<SettingsValue> read(std::string_view key) const override;
    void write(std::string_view key, const std::optional<SettingsValue>& value) override;

private:
    std::map<std::string, SettingsValue, std::less<>> values_;
};

}  // namespace tallowcrest
