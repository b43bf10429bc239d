#pragma once

#include <chrono>

#include "core/clock.h"

namespace tallowcrest {

/// The wall clock of the machine. Any thread.
class SystemClock final : public Clock {
public:
    Date now() const override {
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        return Date::fromUnixSeconds(std::chrono::duration<double>(sinceEpoch).count());
    }
};

}  // namespace tallowcrest
