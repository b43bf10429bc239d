#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as text: with a decimal point and no grouping, whatever the locale is. Any thread.
namespace tallowcrest {

// For reports and messages, which both people and programs read. Infinities and NaN are "inf",
// "-inf" and "nan"; large values are written in full, without an exponent.

/// As printf's "%.0f" and "%.1f" write it: of two texts that are equally near, the one with an even
/// last digit.
std::string withoutDecimals(double value);
std::string withOneDecimal(double value);

/// The nearest integer, halves away from zero.
std::string roundedToInteger(double value);

/// Without the fraction.
std::string cutToInteger(double value);

/// What a regular English noun has behind it for this count: "" or "s".
constexpr std::string_view pluralEnding(std::integral auto count) {
    return count == 1 ? "" : "s";
}

/// The whole of `text` as a decimal integer with an optional sign. Absent for anything else, and
/// for a number that does not fit.
std::optional<std::int64_t> parseDecimalInteger(std::string_view text);

/// The whole of `text` as a finite decimal number: an optional sign, digits with an optional point,
/// an optional exponent. Absent for anything else, such as a hexadecimal number, an infinity or
/// NaN, and for a number too large or too small to be represented.
std::optional<double> parseDecimalFloat(std::string_view text);

}  // namespace tallowcrest
