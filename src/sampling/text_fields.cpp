#include "sampling/text_fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace tallowcrest {
namespace {

/// std::from_chars knows the minus sign alone.
bool dropPlusSign(std::string_view& piece) {
    if (piece.starts_with('+')) {
        piece.remove_prefix(1);
        return !piece.starts_with('-');
    }
    return true;
}

}  // namespace

std::optional<std::int64_t> parseDecimalInteger(std::string_view piece) {
    if (!dropPlusSign(piece)) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    const char* const end = piece.data() + piece.size();
    const auto [parsed, error] = std::from_chars(piece.data(), end, value, 10);
    if (error != std::errc{} || parsed != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> parseDecimalFloat(std::string_view piece) {
    if (!dropPlusSign(piece)) {
        return std::nullopt;
    }
    double value = 0.0;
    const char* const end = piece.data() + piece.size();
    const auto [parsed, error] =
        std::from_chars(piece.data(), end, value, std::chars_format::general);
    if (error != std::errc{} || parsed != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::string_view> takeLine(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
    if (text.empty()) {
        return std::nullopt;
    }
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size());
    return line;
}

}  // namespace tallowcrest
