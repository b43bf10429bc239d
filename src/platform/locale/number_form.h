#pragma once

#include <string>

/// Numbers by the rules of a locale. Any thread.
namespace tallowcrest {

/// How a locale writes numbers. The defaults are those of the C library's own locale.
struct NumberForm {
    std::string point = ".";
    std::string separator = {};  ///< between groups
    /// The sizes of the groups from the decimal point on, one a character, as in `lconv`: the last
    /// one is repeated, and a size that is not between 1 and CHAR_MAX - 1 ends the grouping.
    std::string grouping = {};
};

/// `value` as `Locale::decimal` wants it. The halves that are rounded are those of the shortest
/// decimal text of the value: 0.15 with one digit is "0.2".
std::string decimalText(double value, int fractionDigits, const NumberForm& form);

}  // namespace tallowcrest
