#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The numbers and lines that the parsers of tool and kernel texts have in common. Independent of
/// the locale. Any thread.
namespace tallowcrest {

/// `piece` as a whole as a decimal integer with an optional sign. Absent for anything else, also
/// when it does not fit.
std::optional<std::int64_t> parseDecimalInteger(std::string_view piece);

/// `piece` as a whole as a finite decimal number: an optional sign, digits with an optional point,
/// an optional exponent. Absent for anything else: hexadecimal, infinity, not-a-number, and what
/// is too large or too small to be represented.
std::optional<double> parseDecimalFloat(std::string_view piece);

/// Takes the next line that is not empty off the front of `text`, without its line feed. Absent
/// when there is none left.
std::optional<std::string_view> takeLine(std::string_view& text);

}  // namespace tallowcrest
