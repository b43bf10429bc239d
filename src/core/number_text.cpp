#include "core/number_text.h"

#include <locale.h>
#include <stdlib.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <cerrno>
#include <charconv>
#include <cmath>
#include <system_error>

#include <fmt/format.h>

namespace tallowcrest {
namespace {

std::string fixed(double value, int decimals) {
    // The sign of a NaN has no meaning.
    return std::isnan(value) ? "nan" : fmt::format("{:.{}f}", value, decimals);
}

/// `value` has no fraction, but need not fit an integer type. A negative zero loses its sign.
std::string integer(double value) {
    return fixed(value + 0.0, 0);
}

/// std::from_chars accepts a minus sign but no plus sign.
bool dropPlusSign(std::string_view& text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        return !text.starts_with('-');
    }
    return true;
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

std::optional<std::int64_t> parseDecimalInteger(std::string_view text) {
    if (!dropPlusSign(text)) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, value, 10);
    if (error != std::errc{} || parsed != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> parseDecimalFloat(std::string_view text) {
    // The function also takes blanks, hexadecimal numbers and names, which have other characters.
    if (text.empty() || text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) {
        return std::nullopt;
    }
    // Not std::from_chars: the C++ library of macOS 14 has it for integers only.
    static const locale_t neutral = ::newlocale(LC_ALL_MASK, "C", nullptr);
    const std::string terminated(text);
    char* parsed = nullptr;
    errno = 0;
    const double value = ::strtod_l(terminated.c_str(), &parsed, neutral);
    const bool isTooSmall = errno == ERANGE && value == 0.0;
    if (parsed != terminated.c_str() + terminated.size() || isTooSmall || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

}  // namespace tallowcrest
