#include "platform/trash/trash_info.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "disk/file_names.h"

namespace tallowcrest {
namespace {

constexpr std::string_view suffix = ".trashinfo";

constexpr bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '/';
}

std::string percentEncoded(std::string_view path) {
    std::string text;
    for (const char c : path) {
        if (isUnreserved(c)) {
            text += c;
        } else {
            text += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return text;
}

unsigned numberAt(std::string_view text, std::size_t begin, std::size_t length, int base) {
    const std::string_view digits = text.substr(std::min(begin, text.size()), length);
    unsigned value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return value;
}

/// Of a text that `percentEncoded` does not give, any path.
std::string percentDecoded(std::string_view text) {
    std::string path;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            path += static_cast<char>(numberAt(text, i + 1, 2, 16));
            i += 2;
        } else {
            path += text[i];
        }
    }
    return path;
}

std::string localDateText(Date date, std::int64_t utcOffset) {
    using std::chrono::days;
    using std::chrono::floor;
    // The form has four digits for the year.
    constexpr double endOf9999 = 253402300799.0;
    const double seconds =
        std::clamp(std::floor(date.unixSeconds()) + static_cast<double>(utcOffset), 0.0, endOf9999);
    const std::chrono::sys_seconds instant{
        std::chrono::seconds(static_cast<std::int64_t>(seconds))};
    const std::chrono::year_month_day day(floor<days>(instant));
    const std::chrono::hh_mm_ss time(instant - floor<days>(instant));
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

/// The date that `localDateText` gives as this text in UTC. Of a text that it never gives, any
/// date.
Date localDate(std::string_view text) {
    const auto number = [text](std::size_t begin, std::size_t length) {
        return numberAt(text, begin, length, 10);
    };
    const std::chrono::year_month_day day(std::chrono::year(static_cast<int>(number(0, 4))),
                                          std::chrono::month(number(5, 2)),
                                          std::chrono::day(number(8, 2)));
    if (!day.ok()) {
        return {};
    }
    const auto instant = std::chrono::sys_days(day) + std::chrono::hours(number(11, 2)) +
                         std::chrono::minutes(number(14, 2)) + std::chrono::seconds(number(17, 2));
    return Date::fromUnixSeconds(static_cast<double>(instant.time_since_epoch().count()));
}

}  // namespace

std::string trashInfoText(std::string_view path, Date deletedAt, std::int64_t utcOffset) {
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={}\n", percentEncoded(path),
                       localDateText(deletedAt, utcOffset));
}

std::optional<std::string> pathInTrashInfo(std::string_view text) {
    constexpr std::string_view beforePath = "[Trash Info]\nPath=";
    constexpr std::string_view beforeDate = "\nDeletionDate=";
    const std::size_t end = text.find(beforeDate);
    if (!text.starts_with(beforePath) || end == std::string_view::npos) {
        return std::nullopt;
    }
    std::string path = percentDecoded(text.substr(beforePath.size(), end - beforePath.size()));
    const Date deletedAt = localDate(text.substr(end + beforeDate.size()));
    return trashInfoText(path, deletedAt, 0) == text ? std::optional(std::move(path))
                                                     : std::nullopt;
}

std::string trashInfoName(std::string_view name) {
    return std::string(name).append(suffix);
}

std::string_view describedName(std::string_view infoName) {
    return infoName.ends_with(suffix) ? infoName.substr(0, infoName.size() - suffix.size()) : "";
}

std::string nameInTrash(std::string_view name, std::uint64_t number, std::size_t longest) {
    const std::string ending = number == 1 ? "" : fmt::format(".{}", number);
    const std::size_t added = ending.size() + suffix.size();
    return std::string(cutName(name, longest > added ? longest - added : 1)) + ending;
}

}  // namespace tallowcrest
