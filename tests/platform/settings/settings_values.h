#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/settings/settings_store.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {

/// The key of that name, which exists.
const settings_keys::Key& keyOf(std::string_view name);

/// A value for `key` as a long run has it: 180 points of history, 80 events, 40 messages. It bears
/// `number` throughout, so that a value that is not whole, or of which a part is another's, shows.
SettingsValue valueFor(const settings_keys::Key& key, std::int64_t number);

/// The number that `value` bears; absent when it is not the whole of `valueFor(key, number)`. A
/// flag bears a number of which no more than its turn among the keys, odd or even, is known.
std::optional<std::int64_t> numberOf(const settings_keys::Key& key, const SettingsValue& value);

}  // namespace tallowcrest
