#include "core/number_text.h"

#include <cmath>

#include <fmt/format.h>

namespace tallowcrest {
namespace {

std::string fixed(double value, int decimals) {
    // The sign of what is no number says nothing.
    return std::isnan(value) ? "nan" : fmt::format("{:.{}f}", value, decimals);
}

/// `value` has no fraction. It need not fit an integer type; a zero loses its sign.
std::string integer(double value) {
    return fixed(value + 0.0, 0);
}

}  // namespace

std::string withoutDecimals(double value) {
    return fixed(value, 0);
}

std::string withOneDecimal(double value) {
    return fixed(value, 1);
}

std::string roundedToInteger(double value) {
    return integer(std::round(value));
}

std::string cutToInteger(double value) {
    return integer(std::trunc(value));
}

}  // namespace tallowcrest
