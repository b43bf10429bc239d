#pragma once

#include <compare>
#include <cstdint>
#include <functional>

namespace tallowcrest {

/// An instant: seconds since 2001-01-01T00:00:00Z, fractions included.
struct Date {
    /// Seconds from 1970-01-01T00:00:00Z to the reference instant.
    static constexpr double unixSecondsAtReference = 978307200.0;

    double secondsSinceReference = 0.0;

    static constexpr Date fromUnixSeconds(double seconds) {
        return {seconds - unixSecondsAtReference};
    }
    constexpr double unixSeconds() const { return secondsSinceReference + unixSecondsAtReference; }

    auto operator<=>(const Date&) const = default;
};

/// Seconds from `earlier` to `later`. Negative when the clock was set back in between.
constexpr double secondsBetween(Date earlier, Date later) {
    return later.secondsSinceReference - earlier.secondsSinceReference;
}

/// The local time zone's offset from UTC at an instant, in seconds; negative west of Greenwich.
/// Only called with dates for which `Locale::hasForm` is true. Any thread, several at once.
using UTCOffset = std::function<std::int64_t(Date)>;

}  // namespace tallowcrest
