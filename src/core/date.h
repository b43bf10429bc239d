#pragma once

#include <compare>

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

}  // namespace tallowcrest
