#pragma once

#include <cstddef>

#include "core/settings/settings_store.h"

namespace tallowcrest {

/// The `kept` entries with the highest counts; of equal ones those that come first by name. Any
/// thread.
SettingsTable highestCounts(const SettingsTable& counts, std::size_t kept);

}  // namespace tallowcrest
