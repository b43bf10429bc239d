#include "platform/base/system_clock.h"

#include <chrono>

namespace tallowcrest {

Date SystemClock::now() const {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnixSeconds(std::chrono::duration<double>(sinceEpoch).count());
}

}  // namespace tallowcrest
