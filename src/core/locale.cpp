#include "core/locale.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "core/utf8.h"

namespace tallowcrest {
namespace {

std::string lowered(std::string_view bytes) {
    std::string text = replacingInvalidUTF8(bytes);
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

/// To the nearest, halves away from zero; a zero without a sign.
double rounded(double value, int fractionDigits) {
    const double factor = std::pow(10.0, fractionDigits);
    const double scaled = value * factor;
    constexpr double exactIntegersEnd = 9007199254740992.0;  // no halves from here on
    const double result = std::abs(scaled) < exactIntegersEnd ? std::round(scaled) / factor : value;
    return result == 0.0 ? 0.0 : result;
}

}  // namespace

std::weak_ordering PlainLocale::compareIgnoringCase(std::string_view left,
                                                    std::string_view right) const {
    return lowered(left) <=> lowered(right);
}

bool PlainLocale::containsIgnoringCase(std::string_view text, std::string_view part) const {
    return lowered(text).find(lowered(part)) != std::string::npos;
}

std::string PlainLocale::decimal(double value, int fractionDigits) const {
    if (std::isnan(value)) {
        return "NaN";
    }
    if (std::isinf(value)) {
        return value < 0.0 ? "-∞" : "∞";
    }
    const int digits = std::clamp(fractionDigits, 0, 15);
    return fmt::format("{:.{}f}", rounded(value, digits), digits);
}

std::string PlainLocale::wholeNumber(std::int64_t value) const {
    return fmt::format("{}", value);
}

}  // namespace tallowcrest
