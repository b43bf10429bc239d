#pragma once

#include <compare>
#include <cstdint>
#include <functional>

namespace tallowcrest {

/// An instant: seconds since 2001-01-01T00:00:00Z, with their fraction.
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

/// Seconds from `earlier` to `later`; negative when the clock was set back in between.
constexpr double secondsBetween(Date earlier, Date later) {
    return later.secondsSinceReference - earlier.secondsSinceReference;
}

/// By how many seconds the clock on the wall is ahead of UTC at an instant; negative west of
/// Greenwich. Asked for dates of `Locale::hasForm` alone. Any thread, several at once.
using UTCOffset = std::function<std::int64_t(Date)>;

}  // namespace tallowcrest
