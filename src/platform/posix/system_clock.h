#pragma once

#include "core/clock.h"

namespace tallowcrest {

/// The machine's own clocks.
class SystemClock final : public Clock {
public:
    Date now() const override;
    std::chrono::nanoseconds monotonic() const override;
};

}  // namespace tallowcrest
