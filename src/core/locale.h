#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/date.h"

namespace tallowcrest {

/// Comparison of texts and form of numbers and dates as the owner is used to. Texts are UTF-8; what
/// is none is taken as U+FFFD, part by part. Nothing fails. Every operation may be called on any
/// thread, on several at once.
class Locale {
public:
    /// What a date shows as that has no form, see `hasForm`.
    static constexpr std::string_view unknownDate = "unknown";

    virtual ~Locale() = default;

    /// The order in which a person expects two texts, upper and lower case being equivalent. A
    /// strict weak ordering of any texts, so that sorts may rely on it.
    virtual std::weak_ordering compareIgnoringCase(std::string_view left,
                                                   std::string_view right) const = 0;

    /// Whether `part` stands somewhere in `text`, upper and lower case being the same. Every text
    /// contains the empty one.
    virtual bool containsIgnoringCase(std::string_view text, std::string_view part) const = 0;

    /// `value` with exactly `fractionDigits` digits after the decimal separator (0 to 15; beyond
    /// that the nearer bound), rounded to the nearest, halves away from zero: 82.5 is "83", 2.25 is
    /// "2.3". What rounds to zero has no minus sign. Infinite values and those that are no number
    /// show as such.
    virtual std::string decimal(double value, int fractionDigits) const = 0;

    /// The day in figures and the time in hours and minutes, as the clock on the wall shows them:
    /// "11/20/2026, 3:45 PM". One line. `unknownDate` without `hasForm`.
    virtual std::string dateAndTime(Date date) const = 0;

    /// The time alone, in hours, minutes and seconds: "3:45:12 PM". Fractions are cut. One line.
    /// `unknownDate` without `hasForm`.
    virtual std::string timeOfDay(Date date) const = 0;

    /// Whether `date` lies in the years 1 to 9999. Stored dates are any number, or none.
    static bool hasForm(Date date);
};

/// The form that belongs to no country: A to Z alone have two cases, texts stand in the order of
/// their bytes otherwise, numbers have a point and no grouping, and dates are "2026-11-20 15:45" in
/// UTC. For where nothing better can be had.
class PlainLocale final : public Locale {
public:
    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override;
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override;
    std::string decimal(double value, int fractionDigits) const override;
    std::string dateAndTime(Date date) const override;
    std::string timeOfDay(Date date) const override;
};

}  // namespace tallowcrest
