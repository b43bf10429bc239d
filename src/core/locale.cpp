#include "core/locale.h"

#include <algorithm>
#include <chrono>
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

/// `date` has a form.
std::chrono::sys_seconds wholeSeconds(Date date) {
    return std::chrono::sys_seconds(
        std::chrono::seconds(static_cast<std::int64_t>(std::floor(date.unixSeconds()))));
}

}  // namespace

bool Locale::hasForm(Date date) {
    using std::chrono::January;
    constexpr auto unixSecondsAtStartOf = [](std::chrono::year year) {
        const std::chrono::sys_seconds start = std::chrono::sys_days(year / January / 1);
        return static_cast<double>(start.time_since_epoch().count());
    };
    constexpr double first = unixSecondsAtStartOf(std::chrono::year(1));
    constexpr double end = unixSecondsAtStartOf(std::chrono::year(10000));
    return date.unixSeconds() >= first && date.unixSeconds() < end;
}

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

std::string PlainLocale::dateAndTime(Date date) const {
    if (!hasForm(date)) {
        return std::string(unknownDate);
    }
    const auto seconds = wholeSeconds(date);
    const auto midnight = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss time(seconds - midnight);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count());
}

std::string PlainLocale::timeOfDay(Date date) const {
    if (!hasForm(date)) {
        return std::string(unknownDate);
    }
    const auto seconds = wholeSeconds(date);
    const std::chrono::hh_mm_ss time(seconds - std::chrono::floor<std::chrono::days>(seconds));
    return fmt::format("{:02}:{:02}:{:02}", time.hours().count(), time.minutes().count(),
                       time.seconds().count());
}

}  // namespace tallowcrest
