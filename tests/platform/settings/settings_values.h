#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/settings/settings_store.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {

/// The key of that name, which exists.
const settings_keys::Key& keyOf(std::string_view name);

/// A value for `key` as a long run has it: 180 points of history, 80 events, 40 messages. Every
/// part of it contains `number`, so that a torn or mixed value is detected.
SettingsValue valueFor(const settings_keys::Key& key, std::int64_t number);

/// The number that `value` contains; absent when it is not the whole of `valueFor(key, number)`. Of
/// a flag it is only known whether the number is odd or even.
std::optional<std::int64_t> numberOf(const settings_keys::Key& key, const SettingsValue& value);

}  // namespace tallowcrest
