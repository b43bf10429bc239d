#pragma once

#include "core/date.h"

namespace tallowcrest {

/// Wall-clock time, for what a person reads, what is stored and how often things may happen.
/// Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// It can be set back.
    virtual Date now() const = 0;
};

}  // namespace tallowcrest
