#include "platform/trash/trash_info.h"

#include <algorithm>
#include <chrono>
#include <cmath>

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

}  // namespace

std::string trashInfoText(std::string_view path, Date deletedAt, std::int64_t utcOffset) {
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={}\n", percentEncoded(path),
                       localDateText(deletedAt, utcOffset));
}

std::string trashInfoName(std::string_view name) {
    return std::string(name).append(suffix);
}

std::string nameInTrash(std::string_view name, std::uint64_t number, std::size_t longest) {
    const std::string ending = number == 1 ? "" : fmt::format(".{}", number);
    const std::size_t added = ending.size() + suffix.size();
    return std::string(cutName(name, longest > added ? longest - added : 1)) + ending;
}

}  // namespace tallowcrest
