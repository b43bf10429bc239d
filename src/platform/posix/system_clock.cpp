#include "platform/posix/system_clock.h"

namespace tallowcrest {

Date SystemClock::now() const {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnixSeconds(std::chrono::duration<double>(sinceEpoch).count());
}

std::chrono::nanoseconds SystemClock::monotonic() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace tallowcrest
