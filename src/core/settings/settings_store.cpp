#include "core/settings/settings_store.h"

namespace tallowcrest {

SettingsKind kindOf(const SettingsValue& value) {
    return static_cast<SettingsKind>(value.index());
}

std::optional<SettingsValue> MemorySettingsStore::read(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void MemorySettingsStore::write(std::string_view key, const std::optional<SettingsValue>& value) {
    if (value) {
        values_.insert_or_assign(std::string(key), *value);
    } else if (const auto found = values_.find(key); found != values_.end()) {
        values_.erase(found);
    }
}

}  // namespace tallowcrest
