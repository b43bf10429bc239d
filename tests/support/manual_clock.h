#pragma once

#include <chrono>
#include <cstdint>

#include "core/clock.h"

namespace tallowcrest {

/// A clock that moves only when a test moves it.
class ManualClock final : public Clock {
public:
    Date now() const override { return now_; }

    void advance(std::chrono::nanoseconds duration) {
        now_.secondsSinceReference += std::chrono::duration<double>(duration).count();
    }

private:
    Date now_{800000000.0};
};

/// A `UTCOffset` of a local time zone that is UTC.
inline std::int64_t atGreenwich(Date /*date*/) {
    return 0;
}

}  // namespace tallowcrest
