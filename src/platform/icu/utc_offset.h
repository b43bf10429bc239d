#pragma once

#include <cstdint>

#include "core/date.h"

namespace tallowcrest {

/// The `UTCOffset` of this machine, by the time zone as it is set at the call: by the variable TZ,
/// else for the whole system. 0 when the C library has no local time for the instant.
std::int64_t utcOffsetOfThisMachine(Date date);

}  // namespace tallowcrest
