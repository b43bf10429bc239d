#pragma once

#include <string>

/// Numbers in reports and messages: with a point and no grouping, whatever the locale, so that both
/// a person and a program can read them. A figure that is infinite or no number is "inf", "-inf" or
/// "nan"; the largest figures are written out. Any thread.
namespace tallowcrest {

/// As "%.0f" and "%.1f" have it: of two texts that are equally near, the one with an even digit.
std::string withoutDecimals(double value);
std::string withOneDecimal(double value);

/// The nearest integer, halves away from zero.
std::string roundedToInteger(double value);

/// Without the fraction.
std::string cutToInteger(double value);

}  // namespace tallowcrest
