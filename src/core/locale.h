#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/date.h"

namespace tallowcrest {

/// Comparison of texts and formats of numbers and dates in the owner's language, country and time
/// zone. Texts are UTF-8; each invalid part counts as U+FFFD. Nothing fails. Every operation may be
/// called on any thread, on several at once.
class Locale {
public:
    /// The text of a date that cannot be formatted, see `hasForm`.
    static constexpr std::string_view unknownDate = "unknown";

    virtual ~Locale() = default;

    /// The locale's order of two texts, upper and lower case being equivalent. A strict weak
    /// ordering of any texts, so that sorts may rely on it.
    virtual std::weak_ordering compareIgnoringCase(std::string_view left,
                                                   std::string_view right) const = 0;

    /// Whether `text` contains `part`, upper and lower case being equivalent. Every text contains
    /// the empty one.
    virtual bool containsIgnoringCase(std::string_view text, std::string_view part) const = 0;

    /// `value` with exactly `fractionDigits` digits after the decimal separator (clamped to 0..15),
    /// rounded to the nearest, halves away from zero: 82.5 is "83", 2.25 is "2.3". A value that
    /// rounds to zero has no minus sign. Infinite values give "∞" or "-∞", not-a-number gives
    /// "NaN", as the locale writes them.
    virtual std::string decimal(double value, int fractionDigits) const = 0;

    /// The date in figures and the time in hours and minutes, in local time: "11/20/2026, 3:45 PM".
    /// One line. `unknownDate` without `hasForm`.
    virtual std::string dateAndTime(Date date) const = 0;

    /// The time alone, in hours, minutes and seconds: "3:45:12 PM". Fractions are cut off. One
    /// line. `unknownDate` without `hasForm`.
    virtual std::string timeOfDay(Date date) const = 0;

    /// The time alone, in hours and minutes: "3:45 PM". One line. `unknownDate` without `hasForm`.
    virtual std::string hoursAndMinutes(Date date) const = 0;

    /// The day of `date` in local time, in days since 1970-01-01: tells whether two dates are of
    /// the same day. 0 without `hasForm`.
    virtual std::int64_t localDay(Date date) const = 0;

    /// Whether `date` lies in the years 1 to 9999. A stored date may be any number or not-a-number.
    static bool hasForm(Date date);
};

/// The fallback without locale data: only A to Z have two cases, texts are ordered by their bytes
/// otherwise, numbers have a point and no grouping, and dates are "2026-11-20 15:45" in UTC.
class PlainLocale final : public Locale {
public:
    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override;
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override;
    std::string decimal(double value, int fractionDigits) const override;
    std::string dateAndTime(Date date) const override;
    std::string timeOfDay(Date date) const override;
    std::string hoursAndMinutes(Date date) const override;
    std::int64_t localDay(Date date) const override;
};

}  // namespace tallowcrest
