#pragma once

#include <chrono>

#include "core/date.h"

namespace tallowcrest {

/// The two clocks of the system. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Wall-clock time, for what a person reads and what is stored. It can be set back.
    virtual Date now() const = 0;

    /// Time that only moves forward, for deadlines and rates. Its zero means nothing.
    virtual std::chrono::nanoseconds monotonic() const = 0;
};

}  // namespace tallowcrest
