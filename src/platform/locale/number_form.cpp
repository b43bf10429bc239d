#include "platform/locale/number_form.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace tallowcrest {
namespace {

/// A number without a sign: its digits before and after the decimal point.
struct Digits {
    std::string whole;
    std::string fraction;
};

/// The shortest digits that only this value has. `size` is finite and not negative.
Digits shortestDigits(double size) {
    // The smallest values have 323 zeros and 17 digits behind the point.
    std::array<char, 400> buffer{};
    const char* end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), size, std::chars_format::fixed)
            .ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t point = std::min(text.find('.'), text.size());
    return {std::string(text.substr(0, point)),
            std::string(text.substr(std::min(point + 1, text.size())))};
}

/// Adds one to a decimal integer. Returns whether it was all nines, and is all zeros now.
bool addOne(std::string& digits) {
    const auto last =
        std::find_if(digits.rbegin(), digits.rend(), [](char digit) { return digit != '9'; });
    std::fill(digits.rbegin(), last, '0');
    if (last == digits.rend()) {
        return true;
    }
    ++*last;
    return false;
}

/// Halves away from zero.
void roundTo(std::size_t fractionDigits, Digits& digits) {
    const bool isUp =
        digits.fraction.size() > fractionDigits && digits.fraction[fractionDigits] >= '5';
    digits.fraction.resize(fractionDigits, '0');
    if (isUp && addOne(digits.fraction) && addOne(digits.whole)) {
        digits.whole.insert(0, 1, '1');
    }
}

bool isZero(const Digits& digits) {
    return (digits.whole + digits.fraction).find_first_not_of('0') == std::string::npos;
}

std::string grouped(std::string_view whole, const NumberForm& form) {
    std::string text;
    std::size_t group = 0;
    while (group < form.grouping.size()) {
        const int size = form.grouping[group];
        const auto count = static_cast<std::size_t>(std::max(size, 0));
        if (size <= 0 || size >= CHAR_MAX || count >= whole.size()) {
            break;
        }
        text.insert(0, whole.substr(whole.size() - count));
        text.insert(0, form.separator);
        whole.remove_suffix(count);
        if (group + 1 < form.grouping.size()) {
            ++group;
        }
    }
    return text.insert(0, whole);
}

}  // namespace

std::string decimalText(double value, int fractionDigits, const NumberForm& form) {
    constexpr int maximumFractionDigits = 15;
    if (std::isnan(value)) {
        return "NaN";
    }
    if (std::isinf(value)) {
        return value < 0.0 ? "-∞" : "∞";
    }
    Digits digits = shortestDigits(std::abs(value));
    roundTo(static_cast<std::size_t>(std::clamp(fractionDigits, 0, maximumFractionDigits)), digits);
    std::string text = value < 0.0 && !isZero(digits) ? "-" : "";
    text += grouped(digits.whole, form);
    return digits.fraction.empty() ? text : text + form.point + digits.fraction;
}

}  // namespace tallowcrest
