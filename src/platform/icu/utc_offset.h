#pragma once

#include <cstdint>
#include <functional>

#include "core/date.h"

namespace tallowcrest {

/// By how many seconds the clock on the wall is ahead of UTC at an instant; negative west of
/// Greenwich. Asked for dates of `Locale::hasForm` alone. Any thread, several at once.
using UTCOffset = std::function<std::int64_t(Date)>;

/// That of this machine, by the time zone as it is set at the call: by the variable TZ, else for
/// the whole system. 0 when the C library has no local time for the instant.
std::int64_t utcOffsetOfThisMachine(Date date);

}  // namespace tallowcrest
