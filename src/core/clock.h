#pragma once

#include "core/date.h"

namespace tallowcrest {

/// Wall-clock time, for display, for stored dates and for intervals between actions. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Not monotonic: the user or the network can set the clock back.
    virtual Date now() const = 0;
};

}  // namespace tallowcrest
