#include "platform/icu/utc_offset.h"

#include <cmath>
#include <ctime>

namespace tallowcrest {

// The C library, and not ICU, is asked: it understands every form of TZ, and it notices a change of
// zone under a running program, for which ICU would have to search its way anew each time.
std::int64_t utcOffsetOfThisMachine(Date date) {
    ::tzset();
    const auto instant = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    std::tm local{};
    return ::localtime_r(&instant, &local) == nullptr ? 0 : local.tm_gmtoff;
}

}  // namespace tallowcrest
