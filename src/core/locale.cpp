#include "core/locale.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

std::string lowered(std::string_view bytes) {
    return loweredASCII(replacingInvalidUTF8(bytes));
}

/// To the nearest, halves away from zero; a zero without a sign.
double rounded(double value, int fractionDigits) {
    const double factor = std::pow(10.0, fractionDigits);
    const double scaled = value * factor;
    constexpr double exactIntegersEnd = 9007199254740992.0;  // no halves from here on
    const double result = std::abs(scaled) < exactIntegersEnd ? std::round(scaled) / factor : value;
    return result == 0.0 ? 0.0 : result;
}

/// Only for dates of `hasForm`.
std::tm calendar(Date date) {
    return fmt::gmtime(static_cast<std::time_t>(std::floor(date.unixSeconds())));
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

std::string PlainLocale::dateAndTime(Date date) const {
    return hasForm(date) ? fmt::format("{:%Y-%m-%d %H:%M}", calendar(date))
                         : std::string(unknownDate);
}

std::string PlainLocale::hoursAndMinutes(Date date) const {
    return hasForm(date) ? fmt::format("{:%H:%M}", calendar(date)) : std::string(unknownDate);
}

std::int64_t PlainLocale::localDay(Date date) const {
    constexpr double secondsPerDay = 86400.0;
    return hasForm(date) ? static_cast<std::int64_t>(std::floor(date.unixSeconds() / secondsPerDay))
                         : 0;
}

std::string PlainLocale::timeOfDay(Date date) const {
    return hasForm(date) ? fmt::format("{:%H:%M:%S}", calendar(date)) : std::string(unknownDate);
}

}  // namespace tallowcrest
