#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings/settings_store.h"

namespace tallowcrest {

/// A store in memory that records which keys were written, in order.
class RecordingStore final : public SettingsStore {
public:
    std::optional<SettingsValue> read(std::string_view key) const override {
        return values.read(key);
    }
    void write(std::string_view key, const std::optional<SettingsValue>& value) override {
        written.emplace_back(key);
        values.write(key, value);
        if (onWrite) {
            onWrite(key);
        }
    }

    std::string json(std::string_view key) const {
        return std::get<JSONData>(values.read(key).value()).text;
    }

    MemorySettingsStore values;
    std::vector<std::string> written;
    std::function<void(std::string_view key)> onWrite;  ///< called after each; may be absent
};

}  // namespace tallowcrest
