#pragma once

#include "core/clock.h"

namespace tallowcrest {

/// The machine's own clock.
class SystemClock final : public Clock {
public:
    Date now() const override;
};

}  // namespace tallowcrest
